#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Morphology/private/EndPointsRule.h"
#include "Morphology/private/LutRule.h"
#include "Morphology/private/connectivityOf.h"

#include <qel/morphology/ApplyMorphologicalLut2D.h>
#include <qel/morphology/ApplyMorphologicalLut3D.h>
#include <qel/morphology/EndPoints2D.h>
#include <qel/morphology/EndPoints3D.h>

namespace qel::morphology {

namespace {

/// `makeRule(T())` is the rule for voxels of that type.
template <class Algorithm, class MakeRule> void runRule(Algorithm& algorithm, bool isPlanar, MakeRule const& makeRule)
{
    visitWidthOf(algorithm.input.get()->getVoxelType(), [&]<class T>(T voxel) {
        runNeighborhoodRule<T>(algorithm, algorithm.input, algorithm.output, isPlanar, algorithm.borderCondition,
                               makeRule(voxel));
    });
}

template <class Algorithm, class Lut> class ApplyMorphologicalLutRunner : public ScalarRunner<Algorithm>
{
    void runOn(Algorithm& algorithm) const override
    {
        runRule(algorithm, std::is_same_v<Lut, MorphologicalLut2D>, [&]<class T>(T) {
            return LutRule<T, Lut>(*algorithm.morphologicalLut.get(), algorithm.matchingFlag, algorithm.noMatchingFlag);
        });
    }
};
using ApplyMorphologicalLut2DRunner = ApplyMorphologicalLutRunner<ApplyMorphologicalLut2D, MorphologicalLut2D>;
using ApplyMorphologicalLut3DRunner = ApplyMorphologicalLutRunner<ApplyMorphologicalLut3D, MorphologicalLut3D>;

class EndPoints2DRunner : public ScalarRunner<EndPoints2D>
{
    void runOn(EndPoints2D& algorithm) const override
    {
        Connectivity const connectivity = connectivityOf2D(algorithm.neighborhood2D);
        runRule(algorithm, true, [&]<class T>(T) { return EndPointsRule<T>(connectivity); });
    }
};

class EndPoints3DRunner : public ScalarRunner<EndPoints3D>
{
    void runOn(EndPoints3D& algorithm) const override
    {
        Connectivity const connectivity = connectivityOf3D(algorithm.neighborhood3D);
        runRule(algorithm, false, [&]<class T>(T) { return EndPointsRule<T>(connectivity); });
    }
};

} // namespace

QEL_REGISTER_RUNNER(ApplyMorphologicalLut2D, ApplyMorphologicalLut2DRunner)
QEL_REGISTER_RUNNER(ApplyMorphologicalLut3D, ApplyMorphologicalLut3DRunner)
QEL_REGISTER_RUNNER(EndPoints2D, EndPoints2DRunner)
QEL_REGISTER_RUNNER(EndPoints3D, EndPoints3DRunner)

} // namespace qel::morphology
