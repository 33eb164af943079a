#include <qel/filtering/smoothing/NonLocalMeanFilter2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

#include <algorithm>

namespace qel::filtering::smoothing {

QEL_DEFINE_ALGORITHM(NonLocalMeanFilter2D)

namespace {

EnumInfo& neighborhoodShape2DTypeInfo()
{
    static EnumInfo info("NeighborhoodShape2DType", "QEL_SQUARE = 0, QEL_DISK");
    return info;
}

} // namespace

void NonLocalMeanFilter2D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING, ASSERT_VALUE);
    addInput(&patchSize);
    declare(patchSize, "patchSize", 3u);
    addInput(&searchWindowSize);
    declare(searchWindowSize, "searchWindowSize", 6u);
    addInput(&similarity);
    declare(similarity, "similarity", Scalar(0.6));
    addInput(&searchWindowShape);
    declareEnumeration(searchWindowShape, "searchWindowShape", QEL_SQUARE, neighborhoodShape2DTypeInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence NonLocalMeanFilter2D::getAlgoBorderInfluence() const
{
    unsigned int const reach = std::max(patchSize.get(), searchWindowSize.get());
    return AlgoBorderInfluence(reach, reach, 0, 0, 0);
}

} // namespace qel::filtering::smoothing
