#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/BinaryLogicalOperators.h"

#include <qel/point_operations/LogicalValueProcessing.h>

namespace qel::point_operations {

namespace {

struct LogicalValueProcessingScalarDispatcher
{
    /// The value is cut to the width of a voxel.
    template <class T> static void run(LogicalValueProcessing* logical)
    {
        visitBinaryLogicalOperator(logical->logicalOperator, [logical]<class Operator>(Operator) {
            runRows<T>(*logical, {&LogicalValueProcessingScalarGeneric<Operator>::template row<T>,
                                  static_cast<T>(logical->inputValue.get())});
        });
    }

    /// Not inlined into the seven calls.
    template <class T> [[gnu::noinline]] static void runRows(LogicalValueProcessing& logical, ValueRow<T> const& row)
    {
        runPointwise<T, T>(logical, logical.input, logical.output, row);
    }
};

class ScalarLogicalValueProcessingRunner : public ScalarRunner<LogicalValueProcessing>
{
    void runOn(LogicalValueProcessing& logical) const override
    {
        tmpl_dispatch::Visitor1Args<IntegerVoxelTypes, LogicalValueProcessingScalarDispatcher,
                                    LogicalValueProcessing*>()(logical.input.get()->getVoxelType(), &logical);
    }
};

} // namespace

QEL_REGISTER_RUNNER(LogicalValueProcessing, ScalarLogicalValueProcessingRunner)

} // namespace qel::point_operations
