#pragma once

// What the tests of both median filters share: a model that sorts the window of each voxel.
#include "Core/private/Access/BorderGeometry.h"
#include "Core/tests/Support/Algorithms.h"
#include "Core/tests/Support/FewerRounds.h"

#include <qel/ImageModelAdapter.h>
#include <qel/nonlinear_filtering/MedianFilter2D.h>
#include <qel/nonlinear_filtering/MedianFilter3D.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace qel::test {

/// The window of a filter.
struct Window
{
    long radius;
    bool isRound = false;
    bool isVolume = false;
};

inline std::ostream& operator<<(std::ostream& stream, Window const& window)
{
    return stream << (window.isVolume ? (window.isRound ? "ball " : "cube ") : (window.isRound ? "disk " : "square "))
                  << window.radius;
}

/// -0 before +0, and NaN behind all others.
template <class T> bool comesBefore(T a, T b)
{
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(a) || std::isnan(b))
            return !std::isnan(a) && std::isnan(b);
        if (a == b)
            return std::signbit(a) && !std::signbit(b);
    }
    return a < b;
}

template <class T> Picture<T> medians(Picture<T> const& in, Window const& window)
{
    Picture<T> out(in.shape);
    long const r = window.radius;
    auto const mirrored = [](unsigned long at, long step, unsigned long size) {
        return static_cast<unsigned long>(
            access::mirrorCoordinate(static_cast<long>(at) + step, static_cast<long>(size)));
    };
    std::vector<T> voxels;
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long row, unsigned long p, unsigned long t, unsigned long s) {
        voxels.clear();
        for (long z = window.isVolume ? -r : 0; z <= (window.isVolume ? r : 0); ++z)
            for (long y = -r; y <= r; ++y)
                for (long x = -r; x <= r; ++x)
                    if (!window.isRound || x * x + y * y + z * z <= r * r)
                        voxels.push_back(
                            in.voxels[in.index(mirrored(c, x, in.shape.columns), mirrored(row, y, in.shape.rows),
                                               mirrored(p, z, in.shape.plans), t, s)]);
        auto const middle = voxels.begin() + static_cast<long>(voxels.size() / 2);
        std::nth_element(voxels.begin(), middle, voxels.end(), comesBefore<T>);
        out.at(c, row, p, t, s) = *middle;
    });
    return out;
}

/// Sets shape and radius by the window.
template <class Filter> void setWindow(Filter& filter, Window const& window)
{
    filter.neighborhoodSize = static_cast<unsigned int>(window.radius);
    filter.neighborhoodShape = window.isRound ? 1 : 0;
}

template <class T> std::vector<int> searchModesOf()
{
    using namespace nonlinear_filtering;
    return std::is_floating_point_v<T> ? std::vector<int>{AUTOMATIC, SELECTION}
                                       : std::vector<int>{AUTOMATIC, HISTOGRAM, SELECTION};
}

/// Voxels that lie near each other, below and above 0: a histogram of them is small.
template <class T> Picture<T> nearVoxels(Shape const& shape, unsigned seed, int range = 100)
{
    T const low = std::is_signed_v<T> ? T(-range / 2) : T(3);
    return randomPictureBetween<T>(shape, seed, low, T(low + T(range)));
}

/// What the tests of either filter need.
template <class Filter> class MedianFilterTest : public testing::Test
{
protected:
    static constexpr bool isVolume = std::is_same_v<Filter, nonlinear_filtering::MedianFilter3D>;

    void connect(ImageModel const& in, ImageModel& out, Window const& window, int mode)
    {
        setWindow(*filter, window);
        filter->input = &in;
        filter->output = &out;
        filter->searchMode = mode;
    }

    /// In every search mode, on one thread and on four.
    template <class T> void expectModel(Picture<T> const& picture, Window const& window)
    {
        SCOPED_TRACE(testing::Message() << window << " on " << picture.shape);
        Picture<T> const expected = medians(picture, window);
        HostImage const in(picture);
        onOneAndFourThreads([&] {
            for (int const mode : searchModesOf<T>()) {
                if (mode == nonlinear_filtering::HISTOGRAM && sizeof(T) > 2 && isWide(picture))
                    continue; // more counters than there is memory
                HostImage out;
                connect(in, out, window, mode);
                filter->run();
                ASSERT_TRUE(samePicture(expected, out)) << "mode " << mode;
            }
        });
    }

    template <class T> void expectModelInPlace(Picture<T> const& picture, Window const& window)
    {
        SCOPED_TRACE(testing::Message() << window << " in place on " << picture.shape);
        Picture<T> const expected = medians(picture, window);
        onOneAndFourThreads([&] {
            HostImage image(picture);
            connect(image, image, window, nonlinear_filtering::AUTOMATIC);
            filter->run();
            ASSERT_TRUE(samePicture(expected, image));
            HostImage adapted(picture);
            ImageModelAdapter first(&adapted, VoxelTypeOf<T>::value), second(&adapted, VoxelTypeOf<T>::value);
            connect(*first.getImage(), *second.getImage(), window, nonlinear_filtering::SELECTION);
            filter->run();
            ASSERT_TRUE(samePicture(expected, adapted));
        });
    }

    template <class T> static bool isWide(Picture<T> const& picture)
    {
        auto const [low, high] = std::minmax_element(picture.voxels.begin(), picture.voxels.end());
        return !picture.voxels.empty() && double(*high) - double(*low) > 1e5;
    }

    Ref<Filter> filter = Filter::New();
    std::string const name = isVolume ? "MedianFilter3D" : "MedianFilter2D";
};

} // namespace qel::test
