#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/BinaryLogicalOperators.h"

#include <qel/point_operations/LogicalImageProcessing.h>

namespace qel::point_operations {

namespace {

struct LogicalImageProcessingScalarDispatcher
{
    template <class T> static void run(LogicalImageProcessing* logical)
    {
        visitBinaryLogicalOperator(logical->logicalOperator, [logical]<class Operator>(Operator) {
            runRows<T>(*logical, &LogicalImageProcessingScalarGeneric<Operator>::template row<T>);
        });
    }

    /// Not inlined into the seven calls.
    template <class T> [[gnu::noinline]] static void runRows(LogicalImageProcessing& logical, PairRow<T> row)
    {
        runPairPointwise<T, T, T>(logical, logical.input1, logical.input2, logical.output, row);
    }
};

class ScalarLogicalImageProcessingRunner : public ScalarRunner<LogicalImageProcessing>
{
    void runOn(LogicalImageProcessing& logical) const override
    {
        tmpl_dispatch::Visitor1Args<IntegerVoxelTypes, LogicalImageProcessingScalarDispatcher,
                                    LogicalImageProcessing*>()(logical.input1.get()->getVoxelType(), &logical);
    }
};

} // namespace

QEL_REGISTER_RUNNER(LogicalImageProcessing, ScalarLogicalImageProcessingRunner)

} // namespace qel::point_operations
