#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/safe_cast.h"
#include "Tools/private/QelImage/QelRawImage.h"

#include <qel/tools/LoadQelRawImage.h>

namespace qel::tools {

namespace {

class LoadQelRawImageRunner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override
    {
        auto const* const load = helper::safe_cast<LoadQelRawImage*>(algorithm);
        details::QelRawImage().readImage(load->filePath.get(), load->output.get());
    }
    bool isRunnable(BaseAlgorithm*) const override { return true; }
    OptimLevelType getOptimType() const override { return SCALAR; }
};

} // namespace

QEL_REGISTER_RUNNER(LoadQelRawImage, LoadQelRawImageRunner)

} // namespace qel::tools
