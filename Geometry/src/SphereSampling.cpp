#include <qel/geometry/SphereSampling.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

namespace qel::geometry {

QEL_DEFINE_ALGORITHM(SphereSampling)

namespace {

EnumInfo& samplingModeInfo()
{
    static EnumInfo info("SamplingMode", "SPHERE = 0, HALF_SPHERE");
    return info;
}

} // namespace

void SphereSampling::init()
{
    addInput(&nbDesiredSamples);
    declare(nbDesiredSamples, "nbDesiredSamples", 100, ASSERT_POSITIVE_ONLY);
    addInput(&samplingMode);
    declareEnumeration(samplingMode, "samplingMode", SPHERE, samplingModeInfo());
    addOutput(&directionSamplesVec);
    declare(directionSamplesVec, "directionSamplesVec", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence SphereSampling::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::geometry
