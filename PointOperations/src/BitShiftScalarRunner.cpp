#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/BitShiftScalarGeneric.h"

#include <qel/point_operations/BitShift.h>

namespace qel::point_operations {

namespace {

struct BitShiftScalarDispatcher
{
    template <class T> static void run(BitShift* shift)
    {
        if (shift->shiftRight)
            shiftBy<T, BitShiftOperator_RightTag>(*shift);
        else
            shiftBy<T, BitShiftOperator_LeftTag>(*shift);
    }

    template <class T, class Operator> static void shiftBy(BitShift& shift)
    {
        runPointwise<T, T>(shift, shift.input, shift.output, BitShiftScalarGeneric<T, Operator>{shift.shiftCount});
    }
};

class ScalarBitShiftRunner : public ScalarRunner<BitShift>
{
    void runOn(BitShift& shift) const override
    {
        tmpl_dispatch::Visitor1Args<IntegerVoxelTypes, BitShiftScalarDispatcher, BitShift*>()(
            shift.input.get()->getVoxelType(), &shift);
    }
};

} // namespace

QEL_REGISTER_RUNNER(BitShift, ScalarBitShiftRunner)

} // namespace qel::point_operations
