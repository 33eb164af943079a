#pragma once

namespace qel::point_operations {

enum GradientMagnitudeOutputType
{
    GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN = 0,
    GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS
};

} // namespace qel::point_operations
