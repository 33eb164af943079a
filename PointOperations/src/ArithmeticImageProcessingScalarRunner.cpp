#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/point_operations/ArithmeticImageProcessing.h>

#include <type_traits>

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
        using Rows = ArithmeticImageProcessingScalarGeneric<Operator>;
        using Narrow = typename NarrowInput<T, Operator>::Type;
        if constexpr (!std::is_void_v<Narrow>)
            if (arithmetic.input1.get()->getVoxelType() == VoxelTypeOf<Narrow>::value &&
                arithmetic.input2.get()->getVoxelType() == VoxelTypeOf<Narrow>::value)
                return runRows<T, Narrow>(arithmetic, &Rows::template row<T, Narrow>);
        runRows<T, T>(arithmetic, &Rows::template row<T>);
    }

    /// Not inlined into the calls for all operators.
    template <class T, class In>
    [[gnu::noinline]] static void runRows(ArithmeticImageProcessing& arithmetic, PairRow<T, In> row)
    {
        runPairPointwise<In, In, T>(arithmetic, arithmetic.input1, arithmetic.input2, arithmetic.output, row);
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
