#include <qel/tools/LoadQelRawImage.h>

#include "Core/private/DefineAlgorithm.h"

namespace qel::tools {

QEL_DEFINE_ALGORITHM(LoadQelRawImage)

void LoadQelRawImage::init()
{
    addInput(&filePath);
    declare(filePath, "filePath", "");
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence LoadQelRawImage::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::tools
