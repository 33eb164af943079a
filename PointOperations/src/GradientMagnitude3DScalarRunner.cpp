#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/GradientMagnitude3DScalarGeneric.h"
#include "PointOperations/private/ManyPointBody.h"

#include <qel/point_operations/GradientMagnitude3D.h>

namespace qel::point_operations {

namespace {

struct GradientMagnitude3DScalarDispatcher
{
    template <class T> static void run(GradientMagnitude3D* gradient)
    {
        auto const row =
            gradient->outputMode.get() == GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN
                ? &GradientMagnitude3DScalarGeneric<GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN>::template row<T>
                : &GradientMagnitude3DScalarGeneric<GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS>::template row<T>;
        runManyPointwise<T>(*gradient, row, gradient->output.get(), gradient->input1.get(), gradient->input2.get(),
                            gradient->input3.get());
    }
};

class ScalarGradientMagnitude3DRunner : public ScalarRunner<GradientMagnitude3D>
{
    void runOn(GradientMagnitude3D& gradient) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, GradientMagnitude3DScalarDispatcher, GradientMagnitude3D*>()(
            gradient.input1.get()->getVoxelType(), &gradient);
    }
};

} // namespace

QEL_REGISTER_RUNNER(GradientMagnitude3D, ScalarGradientMagnitude3DRunner)

} // namespace qel::point_operations
