#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/safe_cast.h"
#include "Tools/private/QelImage/QelRawImage.h"

#include <qel/tools/SaveQelRawImage.h>

namespace qel::tools {

namespace {

class SaveQelRawImageRunner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override
    {
        auto const* const save = helper::safe_cast<SaveQelRawImage*>(algorithm);
        details::QelRawImage().writeImage(save->input.get(), save->filePath.get(), save->overwrite.get(), 1);
    }
    bool isRunnable(BaseAlgorithm*) const override { return true; }
    OptimLevelType getOptimType() const override { return SCALAR; }
};

} // namespace

QEL_REGISTER_RUNNER(SaveQelRawImage, SaveQelRawImageRunner)

} // namespace qel::tools
