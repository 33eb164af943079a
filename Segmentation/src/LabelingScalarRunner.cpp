#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Segmentation/private/LabelingPrivate.h"

#include <qel/devices/Cpu.h>
#include <qel/segmentation/Labeling.h>

namespace qel::segmentation {

namespace {

struct LabelingDispatcher
{
    template <class L> static void run(Labeling* labeling)
    {
        LabelingPrivate<L> implementation(labeling, labeling->input, labeling->output,
                                          devices::Cpu::getDevice().getLogicalProcessors());
        implementation.run();
    }
};

class ScalarLabelingRunner : public ScalarRunner<Labeling>
{
    void runOn(Labeling& labeling) const override
    {
        tmpl_dispatch::Visitor1Args<IntegerVoxelTypes, LabelingDispatcher, Labeling*>()(
            labeling.output.get()->getVoxelType(), &labeling);
    }
};

} // namespace

QEL_REGISTER_RUNNER(Labeling, ScalarLabelingRunner)

} // namespace qel::segmentation
