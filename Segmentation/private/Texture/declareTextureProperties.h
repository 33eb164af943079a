#pragma once

#include "Core/private/Rules/Asserts.h"

#include <qel/BaseProperty.h>
#include <qel/container/Vector.h>

#include <utility>

namespace qel::segmentation::details {

/// The inputs of both extractions, in the order in which they are listed.
template <class Extraction, class Add> void addTextureProperties(Extraction& extraction, Add const& add)
{
    auto const addNumber = [&](Property<double>& property, char const* name, double value) {
        add(&property);
        declare(property, name, value);
    };
    add(&extraction.input);
    declare(extraction.input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    add(&extraction.radius);
    declare(extraction.radius, "radius", 5u, ASSERT_POSITIVE_ONLY);
    add(&extraction.textureFeaturesGroup);
    declare(extraction.textureFeaturesGroup, "textureFeaturesGroup", decltype(extraction.textureFeaturesGroup.get())(),
            AddRuleContainerNoEmpty());
    addNumber(extraction.minGreyLevelCooccurrence, "minGreyLevelCooccurrence", 0);
    addNumber(extraction.maxGreyLevelCooccurrence, "maxGreyLevelCooccurrence", -1);
    addNumber(extraction.binSizeCooccurrence, "binSizeCooccurrence", 0);
    add(&extraction.directionCollection);
    declare(extraction.directionCollection, "directionCollection", decltype(extraction.directionCollection.get())());
    addNumber(extraction.minGreyLevelHistogram, "minGreyLevelHistogram", 0);
    addNumber(extraction.maxGreyLevelHistogram, "maxGreyLevelHistogram", -1);
    addNumber(extraction.binSizeHistogram, "binSizeHistogram", 0);
    add(&extraction.userQuantileRatioHistogram);
    container::Vector<double> ratios(6);
    for (double& ratio : ratios)
        ratio = -1;
    declare(extraction.userQuantileRatioHistogram, "userQuantileRatioHistogram", ratios, AddRuleContainerSize(6));
}

} // namespace qel::segmentation::details
