#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Filtering/private/BoxFilter2dScalarGeneric.h"
#include "Filtering/private/BoxFilterDispatch.h"
#include "Filtering/private/computeWorkType.h"

#include <qel/filtering/smoothing/BoxFilter2D.h>

namespace qel::filtering::smoothing {

namespace {

struct BoxFilter2DScalarDispatcher
{
    template <class T> static void run(BoxFilter2D* box)
    {
        math::Vector2<unsigned int> const size = box->boxSize;
        VoxelTypes const work = details::computeWorkType(VoxelTypeOf<T>::value, details::productOf(size[0], size[1]));
        tmpl_dispatch::visitType<typename WorkTypesOf<T>::type>(
            work, [&]<class Work>(std::type_identity<Work>) { internalRun<T, Work>(*box, size); });
    }

    template <class T, class Work> static void internalRun(BoxFilter2D& box, math::Vector2<unsigned int> const& size)
    {
        if (box.normalize)
            runBox<T, T, Filter2dTag>(box, box.input, box.output, size[1],
                                      BoxFilter2dScalarGeneric<Work, BoxFilterOperator_NormalizeTag>(size));
        else
            runBox<T, Work, Filter2dTag>(box, box.input, box.output, size[1],
                                         BoxFilter2dScalarGeneric<Work, BoxFilterOperator_SumTag>(size));
    }
};

class BoxFilter2DScalarRunner : public ScalarRunner<BoxFilter2D>
{
    void runOn(BoxFilter2D& box) const override
    {
        math::Vector2<unsigned int> const size = box.boxSize;
        checkSides({size[0], size[1]});
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, BoxFilter2DScalarDispatcher, BoxFilter2D*>()(
            box.input.get()->getVoxelType(), &box);
    }
};

} // namespace

QEL_REGISTER_RUNNER(BoxFilter2D, BoxFilter2DScalarRunner)

} // namespace qel::filtering::smoothing
