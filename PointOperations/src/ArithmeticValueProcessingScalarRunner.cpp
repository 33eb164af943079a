#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/point_operations/ArithmeticValueProcessing.h>

namespace qel::point_operations {

namespace {

struct ArithmeticValueProcessingScalarDispatcher
{
    /// Of the type of the output: an input of another type is cast on its way, and the value once.
    template <class T> static void run(ArithmeticValueProcessing* arithmetic)
    {
        visitArithmeticOperator(arithmetic->arithmeticOperator,
                                [arithmetic]<class Operator>(Operator) { runInternal<T, Operator>(*arithmetic); });
    }

    template <class T, class Operator> static void runInternal(ArithmeticValueProcessing& arithmetic)
    {
        runRows<T>(arithmetic, {&ArithmeticValueProcessingScalarGeneric<Operator>::template row<T>,
                                helper::convertVoxel<T>(arithmetic.inputValue.get())});
    }

    /// Not inlined into the six that call it.
    template <class T>
    [[gnu::noinline]] static void runRows(ArithmeticValueProcessing& arithmetic, ValueRow<T> const& row)
    {
        runPointwise<T, T>(arithmetic, arithmetic.input, arithmetic.output, row);
    }
};

class ScalarArithmeticValueProcessingRunner : public ScalarRunner<ArithmeticValueProcessing>
{
    void runOn(ArithmeticValueProcessing& arithmetic) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, ArithmeticValueProcessingScalarDispatcher,
                                    ArithmeticValueProcessing*>()(arithmetic.output.get()->getVoxelType(), &arithmetic);
    }
};

} // namespace

QEL_REGISTER_RUNNER(ArithmeticValueProcessing, ScalarArithmeticValueProcessingRunner)

} // namespace qel::point_operations
