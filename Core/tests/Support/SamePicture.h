#pragma once

#include "Core/tests/Support/Images.h"
#include "Core/tests/Support/Picture.h"
#include "Core/tests/Support/VoxelTypeLoop.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace qel::test {

/// Equal, or both NaN.
template <class T> bool sameValue(T a, T b) { return a == b || (a != a && b != b); }

/// Compares shape and voxels. A failure names the type, the shape, the first wrong voxel and both values.
template <class T> testing::AssertionResult samePicture(Picture<T> const& expected, Picture<T> const& actual)
{
    if (expected.shape != actual.shape)
        return testing::AssertionFailure()
               << voxelTypeName<T>() << ": expected the shape " << expected.shape << ", got " << actual.shape;
    unsigned long wrong = 0;
    std::size_t first = 0;
    for (std::size_t i = 0; i < expected.voxels.size(); ++i)
        if (!sameValue(expected.voxels[i], actual.voxels[i]) && wrong++ == 0)
            first = i;
    if (wrong == 0)
        return testing::AssertionSuccess();
    Shape const& shape = expected.shape;
    std::size_t rest = first;
    auto const next = [&](unsigned long size) {
        unsigned long const coordinate = rest % size;
        rest /= size;
        return coordinate;
    };
    unsigned long const column = next(shape.columns);
    unsigned long const row = next(shape.rows);
    unsigned long const plan = next(shape.plans);
    unsigned long const time = next(shape.timeSeries);
    std::ostringstream values;
    values.precision(std::numeric_limits<double>::max_digits10);
    // Through unary plus, so that 8-bit voxels are printed as numbers.
    values << "expected " << +expected.voxels[first] << ", got " << +actual.voxels[first];
    return testing::AssertionFailure() << voxelTypeName<T>() << ' ' << shape << ": " << wrong << " of "
                                       << expected.voxels.size() << " voxels are wrong, the first at (" << column
                                       << ", " << row << ", " << plan << ", " << time << ", " << rest
                                       << "): " << values.str();
}

/// The same for the voxels of an image.
template <class T> testing::AssertionResult samePicture(Picture<T> const& expected, ImageModel const& actual)
{
    if (actual.getVoxelType() != VoxelTypeOf<T>::value)
        return testing::AssertionFailure()
               << "expected voxel type " << voxelTypeName<T>() << ", got number " << int(actual.getVoxelType());
    return samePicture(expected, fromImage<T>(actual));
}

/// Compares origins, spacings and unit names.
inline testing::AssertionResult sameCalibration(ImageModel const& expected, ImageModel const& actual)
{
    for (Components const axis : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES}) {
        if (!sameValue(expected.getOriginOf(axis), actual.getOriginOf(axis)))
            return testing::AssertionFailure() << "axis " << int(axis) << ": expected the origin "
                                               << expected.getOriginOf(axis) << ", got " << actual.getOriginOf(axis);
        if (!sameValue(expected.getSpacingOf(axis), actual.getSpacingOf(axis)))
            return testing::AssertionFailure() << "axis " << int(axis) << ": expected the spacing "
                                               << expected.getSpacingOf(axis) << ", got " << actual.getSpacingOf(axis);
    }
    if (expected.getSpatialUnitName() != actual.getSpatialUnitName())
        return testing::AssertionFailure() << "expected the spatial unit \"" << expected.getSpatialUnitName().c_str()
                                           << "\", got \"" << actual.getSpatialUnitName().c_str() << '"';
    if (expected.getTemporalUnitName() != actual.getTemporalUnitName())
        return testing::AssertionFailure() << "expected the temporal unit \"" << expected.getTemporalUnitName().c_str()
                                           << "\", got \"" << actual.getTemporalUnitName().c_str() << '"';
    return testing::AssertionSuccess();
}

} // namespace qel::test
