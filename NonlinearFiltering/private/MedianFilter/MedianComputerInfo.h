#pragma once

#include <qel/Scalar.h>

class EnumInfo;

namespace qel {
class ImageModel;
}

namespace qel::nonlinear_filtering::details {

/// What the bodies need to know before they begin; read only while they run. The extrema are those of the whole image,
/// and only there where a histogram is used.
struct MedianComputerInfo
{
    bool useHistogram = false;
    Scalar minimum;
    Scalar maximum;
};

/// Describes MedianComputationType.
EnumInfo& medianComputationTypeInfo();

/// Throws RuleException where a histogram is asked of voxels that are no integers.
void checkSearchMode(ImageModel const& input, int searchMode);

/// The maximum less the minimum, which are integers of one kind. 64 bits hold every one.
unsigned long rangeOf(Scalar const& minimum, Scalar const& maximum);

} // namespace qel::nonlinear_filtering::details
