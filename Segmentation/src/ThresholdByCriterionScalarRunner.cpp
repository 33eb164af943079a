#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/Throw.h"
#include "Core/private/TypeDispatch.h"
#include "Segmentation/private/ThresholdByCriterionScalarGeneric.h"

#include <qel/segmentation/ThresholdByCriterion.h>

namespace qel::segmentation {

namespace {

bool isSigned(VoxelTypes type)
{
    return type == QEL_INT8 || type == QEL_INT16 || type == QEL_INT32 || type == QEL_INT64;
}

/// Holds both the value and every voxel.
VoxelTypes comparisonType(ThresholdByCriterion const& threshold)
{
    VoxelTypes const type = threshold.input.get()->getVoxelType();
    return helper::lesserCommonType(threshold.value.get().smallestContainingType(isSigned(type)), type);
}

template <class T> T valueAs(Scalar const& value)
{
    switch (value.getType()) {
    case INTEGER:
        return helper::convertVoxel<T>(value.getIntValue());
    case UNSIGNED_INTEGER:
        return helper::convertVoxel<T>(value.getUIntValue());
    case REAL:
        break;
    }
    return helper::convertVoxel<T>(value.getRealValue());
}

template <class T> auto kernelFor(int criterion)
{
    switch (criterion) {
    case LESS_THAN:
        return &compareRow<LESS_THAN, T>;
    case LESS_THAN_OR_EQUAL_TO:
        return &compareRow<LESS_THAN_OR_EQUAL_TO, T>;
    case EQUAL_TO:
        return &compareRow<EQUAL_TO, T>;
    case GREATER_THAN_OR_EQUAL_TO:
        return &compareRow<GREATER_THAN_OR_EQUAL_TO, T>;
    case GREATER_THAN:
        return &compareRow<GREATER_THAN, T>;
    case NOT_EQUAL_TO:
        return &compareRow<NOT_EQUAL_TO, T>;
    default:
        QEL_THROW(UnexpectedError, "The provided criterion is unknow (value=" << criterion << ").");
    }
}

struct ThresholdByCriterionDispatcher
{
    template <class T> static void run(ThresholdByCriterion* threshold)
    {
        ThresholdByCriterionScalarGeneric<T> const kernel{kernelFor<T>(threshold->criterion),
                                                          valueAs<T>(threshold->value)};
        runPointwise<T, unsigned char>(*threshold, threshold->input, threshold->output, kernel);
    }
};

class ScalarThresholdByCriterionRunner : public ScalarRunner<ThresholdByCriterion>
{
    void runOn(ThresholdByCriterion& threshold) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, ThresholdByCriterionDispatcher, ThresholdByCriterion*>()(
            comparisonType(threshold), &threshold);
    }
};

} // namespace

QEL_REGISTER_RUNNER(ThresholdByCriterion, ScalarThresholdByCriterionRunner)

} // namespace qel::segmentation
