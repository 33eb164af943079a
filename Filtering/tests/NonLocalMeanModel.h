#pragma once

#include "Filtering/tests/BoxModel.h"

#include <qel/filtering/smoothing/NonLocalMeanFilter2D.h>
#include <qel/filtering/smoothing/NonLocalMeanFilter3D.h>

#include <cmath>

namespace qel::test {

struct NonLocalMeans
{
    long patch = 3;
    long window = 6;
    double similarity = 0.6;
    bool isRound = false;
    bool isVolume = false;
};

/// The filter as it is defined, voxel by voxel and offset by offset, before the cast to the voxel type.
template <class T> Picture<double> nonLocalMeans(Picture<T> const& in, NonLocalMeans const& p)
{
    auto const at = [&](auto const& picture, long c, long r, long z, unsigned long t, unsigned long s) {
        return static_cast<double>(picture.at(static_cast<unsigned long>(mirrored(c, in.shape.columns)),
                                              static_cast<unsigned long>(mirrored(r, in.shape.rows)),
                                              static_cast<unsigned long>(mirrored(z, in.shape.plans)), t, s));
    };
    long const patchPlans = p.isVolume ? p.patch : 0;
    double const divisor = p.similarity * p.similarity * std::pow(double(2 * p.patch + 1), p.isVolume ? 3 : 2);
    Picture<double> sum(in.shape), weights(in.shape);
    for (std::size_t i = 0; i < in.voxels.size(); ++i) {
        sum.voxels[i] = static_cast<double>(in.voxels[i]);
        weights.voxels[i] = 1;
    }
    long const windowPlans = p.isVolume ? p.window : 0;
    for (long dz = -windowPlans; dz <= windowPlans; ++dz)
        for (long dy = -p.window; dy <= p.window; ++dy)
            for (long dx = -p.window; dx <= p.window; ++dx) {
                long const side = 2 * p.window + 1;
                if ((dz * side + dy) * side + dx >= 0 ||
                    (p.isRound && dx * dx + dy * dy + dz * dz > p.window * p.window))
                    continue;
                Picture<double> difference(in.shape), weight(in.shape);
                forEachVoxel(in.shape,
                             [&](unsigned long c, unsigned long r, unsigned long z, unsigned long t, unsigned long s) {
                                 double const d = at(in, long(c), long(r), long(z), t, s) -
                                                  at(in, long(c) + dx, long(r) + dy, long(z) + dz, t, s);
                                 difference.at(c, r, z, t, s) = d * d;
                             });
                forEachVoxel(in.shape,
                             [&](unsigned long c, unsigned long r, unsigned long z, unsigned long t, unsigned long s) {
                                 double distance = 0;
                                 for (long qz = -patchPlans; qz <= patchPlans; ++qz)
                                     for (long qy = -p.patch; qy <= p.patch; ++qy)
                                         for (long qx = -p.patch; qx <= p.patch; ++qx)
                                             distance += at(difference, long(c) + qx, long(r) + qy, long(z) + qz, t, s);
                                 weight.at(c, r, z, t, s) = std::exp(-distance / divisor);
                             });
                forEachVoxel(
                    in.shape, [&](unsigned long c, unsigned long r, unsigned long z, unsigned long t, unsigned long s) {
                        double const here = weight.at(c, r, z, t, s);
                        double const opposite = at(weight, long(c) - dx, long(r) - dy, long(z) - dz, t, s);
                        sum.at(c, r, z, t, s) += here * at(in, long(c) + dx, long(r) + dy, long(z) + dz, t, s) +
                                                 opposite * at(in, long(c) - dx, long(r) - dy, long(z) - dz, t, s);
                        weights.at(c, r, z, t, s) += here + opposite;
                    });
            }
    for (std::size_t i = 0; i < sum.voxels.size(); ++i)
        sum.voxels[i] /= weights.voxels[i];
    return sum;
}

/// Equal but for the rounding of sums; an integer may differ by 1 where the mean is next to a whole number.
template <class T> testing::AssertionResult closeTo(Picture<double> const& expected, ImageModel const& actual)
{
    if (actual.getVoxelType() != VoxelTypeOf<T>::value)
        return testing::AssertionFailure() << "voxel type " << int(actual.getVoxelType());
    auto const picture = fromImage<T>(actual);
    if (picture.shape != expected.shape)
        return testing::AssertionFailure() << "shape " << picture.shape;
    for (std::size_t i = 0; i < expected.voxels.size(); ++i) {
        double const mean = expected.voxels[i];
        double const slack = 1e-9 * std::max(1.0, std::abs(mean));
        double const value = static_cast<double>(picture.voxels[i]);
        bool const isClose = std::is_floating_point_v<T>
                                 ? std::abs(value - mean) <= (sizeof(T) == 4 ? 1e-6 * std::abs(mean) + slack : slack)
                                 : value >= std::trunc(mean - slack) && value <= std::trunc(mean + slack);
        if (!isClose)
            return testing::AssertionFailure() << voxelTypeName<T>() << ' ' << expected.shape << ": voxel " << i
                                               << " is " << value << ", not " << mean;
    }
    return testing::AssertionSuccess();
}

/// Smooth values with noise: patches alike and not.
template <class T> Picture<T> noisyPicture(Shape const& shape, unsigned seed)
{
    Picture<T> picture = randomPictureBetween<T>(shape, seed, 0, 8);
    forEachVoxel(shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        picture.at(c, r, p, t, s) = T(picture.at(c, r, p, t, s) + (c / 5 + r / 4 + p / 2) % 3 * 30 + t);
    });
    return picture;
}

} // namespace qel::test
