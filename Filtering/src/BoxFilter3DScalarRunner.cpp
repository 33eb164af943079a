#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Filtering/private/BoxFilter3dScalarGeneric.h"
#include "Filtering/private/BoxFilterDispatch.h"
#include "Filtering/private/computeWorkType.h"

#include <qel/filtering/smoothing/BoxFilter3D.h>

namespace qel::filtering::smoothing {

namespace {

struct BoxFilter3DScalarDispatcher
{
    template <class T> static void run(BoxFilter3D* box)
    {
        math::Vector3<unsigned int> const size = box->boxSize;
        VoxelTypes const work = details::computeWorkType(
            VoxelTypeOf<T>::value, details::productOf(details::productOf(size[0], size[1]), size[2]));
        tmpl_dispatch::visitType<typename WorkTypesOf<T>::type>(
            work, [&]<class Work>(std::type_identity<Work>) { internalRun<T, Work>(*box, size); });
    }

    template <class T, class Work> static void internalRun(BoxFilter3D& box, math::Vector3<unsigned int> const& size)
    {
        if (box.normalize)
            runBox<T, T, Filter3dTag>(box, box.input, box.output, size[1],
                                      BoxFilter3dScalarGeneric<Work, BoxFilterOperator_NormalizeTag>(size));
        else
            runBox<T, Work, Filter3dTag>(box, box.input, box.output, size[1],
                                         BoxFilter3dScalarGeneric<Work, BoxFilterOperator_SumTag>(size));
    }
};

class BoxFilter3DScalarRunner : public ScalarRunner<BoxFilter3D>
{
    void runOn(BoxFilter3D& box) const override
    {
        math::Vector3<unsigned int> const size = box.boxSize;
        checkSides({size[0], size[1], size[2]});
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, BoxFilter3DScalarDispatcher, BoxFilter3D*>()(
            box.input.get()->getVoxelType(), &box);
    }
};

} // namespace

QEL_REGISTER_RUNNER(BoxFilter3D, BoxFilter3DScalarRunner)

} // namespace qel::filtering::smoothing
