#include <qel/morphology/EuclideanDistanceMap.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

#include <limits>

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(EuclideanDistanceMap)

namespace {

EnumInfo& regionTypeInfo()
{
    static EnumInfo info("RegionType", "INSIDE = 0, OUTSIDE");
    return info;
}

EnumInfo& borderConditionInfo()
{
    static EnumInfo info("BorderCondition", "ZERO = 0, MIRROR");
    return info;
}

} // namespace

void EuclideanDistanceMap::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY_TYPE, ASSERT_BINARY,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1), AddRuleAssertDimension(TIME_SERIES, 1));
    addInput(&regionType);
    declareEnumeration(regionType, "regionType", INSIDE, regionTypeInfo());
    addInput(&borderCondition);
    declareEnumeration(borderCondition, "borderCondition", ZERO, borderConditionInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleKeepInputType(&input, QEL_FLOAT32),
            AddRuleEnforceSameSizeAndCalibration(&input), AddRuleEnforceType(QEL_FLOAT32));
}

AlgoBorderInfluence EuclideanDistanceMap::getAlgoBorderInfluence() const
{
    unsigned long const everything = std::numeric_limits<unsigned long>::max();
    return AlgoBorderInfluence(everything, everything, 0, 0, 0);
}

} // namespace qel::morphology
