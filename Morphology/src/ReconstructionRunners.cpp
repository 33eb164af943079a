#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Morphology/private/ReconstructionPrivate.h"
#include "Morphology/private/connectivityOf.h"

#include <qel/morphology/GrayScaleReconstruction2D.h>
#include <qel/morphology/GrayScaleReconstruction3D.h>
#include <qel/morphology/Reconstruction2D.h>
#include <qel/morphology/Reconstruction3D.h>

namespace qel::morphology {

namespace {

class Reconstruction2DRunner : public ScalarRunner<Reconstruction2D>
{
    void runOn(Reconstruction2D& algorithm) const override
    {
        ReconstructionPrivate(algorithm, {algorithm.input, algorithm.marker, algorithm.output,
                                          connectivityOf2D(algorithm.neighborhood2D)})
            .run();
    }
};

class GrayScaleReconstruction2DRunner : public ScalarRunner<GrayScaleReconstruction2D>
{
    void runOn(GrayScaleReconstruction2D& algorithm) const override
    {
        GrayScaleReconstructionPrivate(algorithm, {algorithm.input, algorithm.marker, algorithm.output,
                                                   algorithm.reconstructionType == QEL_EROSION,
                                                   connectivityOf2D(algorithm.neighborhood2D)})
            .run();
    }
};

class Reconstruction3DRunner : public ScalarRunner<Reconstruction3D>
{
    void runOn(Reconstruction3D& algorithm) const override
    {
        ReconstructionPrivate(algorithm, {algorithm.input, algorithm.marker, algorithm.output,
                                          connectivityOf3D(algorithm.neighborhood3D)})
            .run();
    }
};

class GrayScaleReconstruction3DRunner : public ScalarRunner<GrayScaleReconstruction3D>
{
    void runOn(GrayScaleReconstruction3D& algorithm) const override
    {
        GrayScaleReconstructionPrivate(algorithm, {algorithm.input, algorithm.marker, algorithm.output,
                                                   algorithm.reconstructionType == QEL_EROSION,
                                                   connectivityOf3D(algorithm.neighborhood3D)})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(Reconstruction2D, Reconstruction2DRunner)
QEL_REGISTER_RUNNER(Reconstruction3D, Reconstruction3DRunner)
QEL_REGISTER_RUNNER(GrayScaleReconstruction2D, GrayScaleReconstruction2DRunner)
QEL_REGISTER_RUNNER(GrayScaleReconstruction3D, GrayScaleReconstruction3DRunner)

} // namespace qel::morphology
