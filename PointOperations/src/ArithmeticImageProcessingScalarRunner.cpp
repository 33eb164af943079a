#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/point_operations/ArithmeticImageProcessing.h>

namespace qel::point_operations {

namespace {

struct ArithmeticImageProcessingScalarDispatcher
{
    /// Of the type of the output: an input of another type is cast on its way.
    template <class T> static void run(ArithmeticImageProcessing* arithmetic)
    {
        visitArithmeticOperator(arithmetic->arithmeticOperator,
                                [arithmetic]<class Operator>(Operator) { runInternal<T, Operator>(*arithmetic); });
    }

    template <class T, class Operator> static void runInternal(ArithmeticImageProcessing& arithmetic)
    {
        runRows<T>(arithmetic, &ArithmeticImageProcessingScalarGeneric<Operator>::template row<T>);
    }

    /// Not inlined into the six that call it.
    template <class T> [[gnu::noinline]] static void runRows(ArithmeticImageProcessing& arithmetic, PairRow<T> row)
    {
        runPairPointwise<T, T, T>(arithmetic, arithmetic.input1, arithmetic.input2, arithmetic.output, row);
    }
};

class ScalarArithmeticImageProcessingRunner : public ScalarRunner<ArithmeticImageProcessing>
{
    void runOn(ArithmeticImageProcessing& arithmetic) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, ArithmeticImageProcessingScalarDispatcher,
                                    ArithmeticImageProcessing*>()(arithmetic.output.get()->getVoxelType(), &arithmetic);
    }
};

} // namespace

QEL_REGISTER_RUNNER(ArithmeticImageProcessing, ScalarArithmeticImageProcessingRunner)

} // namespace qel::point_operations
