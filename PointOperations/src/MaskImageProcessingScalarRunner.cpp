#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/MaskImageProcessingScalarGeneric.h"

#include <qel/point_operations/MaskImageProcessing.h>

#include <type_traits>

namespace qel::point_operations {

namespace {

struct MaskImageProcessingDispatcher
{
    /// "Not 0" survives a cast between types of one width, and no cast to a narrower one: so two widths of masks serve
    /// for the four types.
    template <class T> static void run(MaskImageProcessing* mask)
    {
        auto const maskByType = [mask]<class Mask>(std::type_identity<Mask>) {
            maskBy<T, std::make_unsigned_t<Mask>>(*mask);
        };
        tmpl_dispatch::visitType<BinaryVoxelTypes>(mask->inputBinary.get()->getVoxelType(), maskByType);
    }

    template <class T, class Mask> static void maskBy(MaskImageProcessing& mask)
    {
        runPairPointwise<T, Mask, T>(mask, mask.input, mask.inputBinary, mask.output,
                                     MaskImageProcessingScalarGeneric<T, Mask>());
    }
};

class ScalarMaskImageProcessingRunner : public ScalarRunner<MaskImageProcessing>
{
    void runOn(MaskImageProcessing& mask) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, MaskImageProcessingDispatcher, MaskImageProcessing*>()(
            mask.input.get()->getVoxelType(), &mask);
    }
};

} // namespace

QEL_REGISTER_RUNNER(MaskImageProcessing, ScalarMaskImageProcessingRunner)

} // namespace qel::point_operations
