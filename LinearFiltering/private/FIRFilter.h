#pragma once

#include "Core/private/Declare.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Rules/RuleKeepInputType.h"
#include "Core/private/Rules/RuleOfOneRun.h"
#include "Core/private/Rules/TypePromotion.h"

#include <qel/AlgoBorderInfluence.h>
#include <qel/EnumInfo.h>
#include <qel/PropertyEnumeration.h>
#include <qel/linear_filtering/OutputModeType.h>

namespace qel::linear_filtering {

// What the filters of two and three dimensions share on their public side.

EnumInfo& outputModeTypeInfo();

/// Voxels beyond the one at offset 0, of a kernel whose offsets go from `lowest` to `highest`.
inline unsigned long reachBelow(long lowest) { return lowest < 0 ? 0 - static_cast<unsigned long>(lowest) : 0; }
inline unsigned long reachAbove(long highest) { return highest > 0 ? static_cast<unsigned long>(highest) : 0; }

/// The rule of one run on the output's voxel type.
template <class Filter> auto typeRuleOf(Filter& filter)
{
    return [&filter](Property<ImageModel*>& output) {
        if (filter.outputMode != QEL_OUTPUT_MODE_CUSTOM) {
            AddRuleEnforceTypePromotionImageImage(&filter.input, &filter.input, rules::PROMOTION_ADD)(output);
            return;
        }
        auto const type = static_cast<VoxelTypes>(filter.outputCustomType.get());
        pushRule<ImageModel*>(output, boost::make_shared<RuleKeepInputType>(&filter.input, type));
        AddRuleEnforceType{type}(output);
    };
}

} // namespace qel::linear_filtering
