#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/InvertImageScalarGeneric.h"

#include <qel/point_operations/LogicalNotProcessing.h>

namespace qel::point_operations {

namespace {

struct LogicalNotProcessingScalarDispatcher
{
    template <class T> static void run(LogicalNotProcessing* logical)
    {
        runPointwise<T, T>(*logical, logical->input, logical->output,
                           InvertImageScalarGeneric<T>{static_cast<T>(~T(0))});
    }
};

class ScalarLogicalNotProcessingRunner : public ScalarRunner<LogicalNotProcessing>
{
    void runOn(LogicalNotProcessing& logical) const override
    {
        tmpl_dispatch::Visitor1Args<IntegerVoxelTypes, LogicalNotProcessingScalarDispatcher, LogicalNotProcessing*>()(
            logical.input.get()->getVoxelType(), &logical);
    }
};

} // namespace

QEL_REGISTER_RUNNER(LogicalNotProcessing, ScalarLogicalNotProcessingRunner)

} // namespace qel::point_operations
