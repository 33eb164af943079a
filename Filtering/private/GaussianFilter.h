#pragma once

#include "Core/private/Declare.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Rules/RuleKeepInputType.h"
#include "Core/private/Rules/RuleOfOneRun.h"

#include <qel/EnumInfo.h>
#include <qel/ImageModel.h>
#include <qel/PropertyEnumeration.h>
#include <qel/filtering/smoothing/OutputStrategyType.h>

namespace qel::filtering::smoothing {

// What the filters of two and three dimensions share on their public side.

EnumInfo& filteringTypeInfo();
EnumInfo& outputStrategyTypeInfo();

/// The voxel type of a smoothed image.
inline VoxelTypes typeOfOutput(ImageModel const& input, int strategy)
{
    return strategy == QEL_FORCED_TO_FLOAT ? QEL_FLOAT32 : input.getVoxelType();
}

/// Voxels that a kernel reaches to each side: no fewer than half of its points.
unsigned long gaussianReach(double sigma, double factor);

/// The rule of one run on the output's voxel type.
template <class Filter> auto typeRuleOf(Filter& filter)
{
    return [&filter](Property<ImageModel*>& output) {
        if (!filter.input.get())
            return; // which the input's own rule reports
        VoxelTypes const type = typeOfOutput(*filter.input.get(), filter.outputStrategy);
        pushRule<ImageModel*>(output, boost::make_shared<RuleKeepInputType>(&filter.input, type));
        AddRuleEnforceType{type}(output);
    };
}

} // namespace qel::filtering::smoothing
