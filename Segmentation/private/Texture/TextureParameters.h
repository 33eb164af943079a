#pragma once

#include "Segmentation/private/Texture/TextureChannels.h"

#include <qel/container/Vector.h>
#include <qel/kernel/Offset3D.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/segmentation/TextureFeatureGroup.h>

#include <array>
#include <vector>

namespace qel {
class ImageModel;
namespace algorithms {
class AbstractPrivateImplementation;
}
} // namespace qel

namespace qel::segmentation::details {

/// The grey levels that a family of measures tells apart. With the minimum above the maximum, those of the image are
/// meant; with a bin size that is not above 0, one that follows from the range.
struct GreyLevelRange
{
    double min = 0;
    double max = -1;
    double binSize = 0;

    bool isAutomatic() const { return min > max; }
};

/// What texture measures are made of: the same for all who compute them.
struct TextureParameters
{
    std::vector<TextureFeatureTypes> features;
    std::vector<kernel::Offset3D> directions; ///< within a plan for a window in a plan
    unsigned int radius = 0;
    bool isVolume = false; ///< a ball instead of a disk
    GreyLevelRange cooccurrence;
    GreyLevelRange histogram;
    std::array<double, 6> quantileRatios{};

    bool hasCooccurrence() const;
    bool hasHistogram() const;
    /// Throws InvalidCall where co-occurrence is measured in no direction.
    void requireDirections() const;
};

std::vector<TextureFeatureTypes> featuresOf(TextureFeatureGroup const& group);
std::vector<kernel::Offset3D> directionsOf(container::Vector<math::Vector2<int>> const& directions);
std::vector<kernel::Offset3D> directionsOf(container::Vector<math::Vector3<int>> const& directions);
std::array<double, 6> quantileRatiosOf(container::Vector<double> const& ratios);

/// Whether a used family takes its range from the image.
bool needsExtrema(TextureParameters const& parameters);
/// The ranges and bin sizes that are left open: those of the image, measured by a child of `parent`, and a 20th of the
/// range for co-occurrence, a 256th for histograms, rounded up to whole numbers. False if the run was cancelled
/// meanwhile. Throws InvalidCall where that leaves co-occurrence without a bin size, in an image of one grey level.
bool settleRanges(TextureParameters& parameters, ImageModel const& image,
                  algorithms::AbstractPrivateImplementation* parent);

} // namespace qel::segmentation::details
