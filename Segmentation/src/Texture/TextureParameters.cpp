#include "Segmentation/private/Texture/TextureParameters.h"

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Throw.h"
#include "Segmentation/private/Texture/GreyLevelBins.h"

#include <qel/ImageModel.h>
#include <qel/Ref.h>
#include <qel/analysis/IntensityExtrema.h>

#include <algorithm>
#include <cmath>

namespace qel::segmentation::details {

bool TextureParameters::hasCooccurrence() const
{
    return std::any_of(features.begin(), features.end(), isCooccurrence);
}

bool TextureParameters::hasHistogram() const { return std::any_of(features.begin(), features.end(), isHistogram); }

void TextureParameters::requireDirections() const
{
    if (hasCooccurrence() && directions.empty())
        QEL_THROW(InvalidCall, "The direction collection is empty.");
}

std::vector<TextureFeatureTypes> featuresOf(TextureFeatureGroup const& group)
{
    return std::vector<TextureFeatureTypes>(group.begin(), group.end());
}

std::vector<kernel::Offset3D> directionsOf(container::Vector<math::Vector2<int>> const& directions)
{
    std::vector<kernel::Offset3D> steps;
    for (math::Vector2<int> const& direction : directions)
        steps.push_back({direction[0], direction[1], 0});
    return steps;
}

std::vector<kernel::Offset3D> directionsOf(container::Vector<math::Vector3<int>> const& directions)
{
    std::vector<kernel::Offset3D> steps;
    for (math::Vector3<int> const& direction : directions)
        steps.push_back({direction[0], direction[1], direction[2]});
    return steps;
}

std::array<double, 6> quantileRatiosOf(container::Vector<double> const& ratios)
{
    std::array<double, 6> result{};
    std::copy_n(ratios.begin(), std::min<unsigned long>(ratios.size(), result.size()), result.begin());
    return result;
}

bool needsExtrema(TextureParameters const& parameters)
{
    return (parameters.hasCooccurrence() && parameters.cooccurrence.isAutomatic()) ||
           (parameters.hasHistogram() && parameters.histogram.isAutomatic());
}

bool settleRanges(TextureParameters& parameters, ImageModel const& image,
                  algorithms::AbstractPrivateImplementation* parent)
{
    if (needsExtrema(parameters)) {
        Ref<analysis::IntensityExtrema> const extrema(analysis::IntensityExtrema::New(parent));
        extrema->input = &image;
        extrema->run();
        if (parent && parent->isCancelled())
            return false;
        double const min = extrema->outputMinimum.get().asDouble();
        double const max = extrema->outputMaximum.get().asDouble();
        for (GreyLevelRange* const range : {&parameters.cooccurrence, &parameters.histogram}) {
            if (range->isAutomatic()) {
                range->min = min;
                range->max = max;
            }
        }
    }
    auto const settleBinSize = [](GreyLevelRange& range, double size) {
        // Whole numbers, also where the grey levels are parts of 1.
        if (range.binSize <= 0)
            range.binSize = std::ceil(size);
    };
    settleBinSize(parameters.cooccurrence, (parameters.cooccurrence.max - parameters.cooccurrence.min) / 20.0);
    settleBinSize(parameters.histogram, (parameters.histogram.max - parameters.histogram.min) * 0.00390625);
    // Refused here, before anything else is done.
    if (parameters.hasCooccurrence())
        GreyLevelBins(parameters.cooccurrence.min, parameters.cooccurrence.max, parameters.cooccurrence.binSize);
    return true;
}

} // namespace qel::segmentation::details
