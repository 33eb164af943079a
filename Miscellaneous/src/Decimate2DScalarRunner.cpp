#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Miscellaneous/private/DecimateBody2D.h"

#include <qel/ImageModel.h>
#include <qel/miscellaneous/Decimate2D.h>

namespace qel::miscellaneous {

namespace {

template <class T> typename DecimateBody2D<T>::Kernel kernelFor(int operation)
{
    switch (operation) {
    case MIN:
        return &decimateRow<tag_min, T>;
    case MAX:
        return &decimateRow<tag_max, T>;
    case FIRST:
        return &decimateRow<tag_first, T>;
    default:
        return &decimateRow<tag_mean, T>;
    }
}

struct Decimate2DDispatcher
{
    template <class T> static void run(Decimate2D* decimate)
    {
        using List = boost::mpl::vector<T>;
        DecimateBody2D<T> body(kernelFor<T>(decimate->operatorType));
        ManyToManyImageFilter2d<List, List, SimdVec::arch_scalar_tag, DecimateBody2D<T>> filter(decimate, &body);
        filter.template setInput<0>(decimate->input, access::ContinueBorderCondition<T>::New());
        filter.template setOutput<0>(decimate->output, access::ContinueBorderCondition<T>::New());
        filter.run();
    }
};

class Decimate2DRunner : public ScalarRunner<Decimate2D>
{
    void runOn(Decimate2D& decimate) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, Decimate2DDispatcher, Decimate2D*>()(
            decimate.input.get()->getVoxelType(), &decimate);
    }
};

} // namespace

QEL_REGISTER_RUNNER(Decimate2D, Decimate2DRunner)

} // namespace qel::miscellaneous
