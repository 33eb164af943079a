#include <qel/tools/SaveQelRawImage.h>

#include "Core/private/DefineAlgorithm.h"

namespace qel::tools {

QEL_DEFINE_ALGORITHM(SaveQelRawImage)

void SaveQelRawImage::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addInput(&filePath);
    declare(filePath, "filePath", "");
    addInput(&overwrite);
    declare(overwrite, "overwrite", false);
}

AlgoBorderInfluence SaveQelRawImage::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::tools
