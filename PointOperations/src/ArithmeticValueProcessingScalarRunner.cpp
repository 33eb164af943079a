#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/point_operations/ArithmeticValueProcessing.h>

#include <type_traits>

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
        using Rows = ArithmeticValueProcessingScalarGeneric<Operator>;
        using Narrow = typename NarrowInput<T, Operator>::Type;
        T const value = helper::convertVoxel<T>(arithmetic.inputValue.get());
        if constexpr (!std::is_void_v<Narrow>)
            if (arithmetic.input.get()->getVoxelType() == VoxelTypeOf<Narrow>::value)
                return runRows<T, Narrow>(arithmetic, {&Rows::template row<T, Narrow>, value});
        runRows<T, T>(arithmetic, {&Rows::template row<T>, value});
    }

    /// Not inlined into the calls for all operators.
    template <class T, class In>
    [[gnu::noinline]] static void runRows(ArithmeticValueProcessing& arithmetic, ValueRow<T, In> const& row)
    {
        runPointwise<In, T>(arithmetic, arithmetic.input, arithmetic.output, row);
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
