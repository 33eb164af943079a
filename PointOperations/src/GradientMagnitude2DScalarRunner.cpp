#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/GradientMagnitude2DScalarGeneric.h"
#include "PointOperations/private/ManyPointBody.h"

#include <qel/point_operations/GradientMagnitude2D.h>

namespace qel::point_operations {

namespace {

struct GradientMagnitude2DScalarDispatcher
{
    template <class T> static void run(GradientMagnitude2D* gradient)
    {
        auto const row =
            gradient->outputMode.get() == GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN
                ? &GradientMagnitude2DScalarGeneric<GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN>::template row<T>
                : &GradientMagnitude2DScalarGeneric<GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS>::template row<T>;
        runManyPointwise<T>(*gradient, row, gradient->output.get(), gradient->input1.get(), gradient->input2.get());
    }
};

class ScalarGradientMagnitude2DRunner : public ScalarRunner<GradientMagnitude2D>
{
    void runOn(GradientMagnitude2D& gradient) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, GradientMagnitude2DScalarDispatcher, GradientMagnitude2D*>()(
            gradient.input1.get()->getVoxelType(), &gradient);
    }
};

} // namespace

QEL_REGISTER_RUNNER(GradientMagnitude2D, ScalarGradientMagnitude2DRunner)

} // namespace qel::point_operations
