#pragma once

#include "Core/private/Access/computeExtrema.h"
#include "Core/private/Kernel/OffsetCollections.h"
#include "Core/tests/Support/Algorithms.h"
#include "Core/tests/Support/FewerRounds.h"

#include <qel/BaseProperty.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

// Erosions, dilations, openings and closings as they are defined: one voxel of the element at a time.

namespace qel::test {

using Offsets = std::vector<kernel::Offset3D>;

/// Steps of the definition: an element, and how many times.
struct ElementStep
{
    Offsets offsets;
    unsigned long count;
};
using Element = std::vector<ElementStep>;

/// A form with values of its properties, and the element that they stand for.
struct Setting
{
    std::string form;
    std::vector<std::pair<std::string, std::string>> properties;
    Element element;
    bool isOfVolumes;
    bool isLine = false; // the second half of an opening or closing takes the mirror image

    std::string text() const
    {
        std::string all = form;
        for (auto const& [name, value] : properties)
            all += ' ' + name + '=' + value;
        return all;
    }
};

inline std::ostream& operator<<(std::ostream& stream, Setting const& setting) { return stream << setting.text(); }

inline Offsets inSpace(std::vector<kernel::Offset2D> const& offsets)
{
    Offsets all;
    for (auto const& offset : offsets)
        all.push_back({offset.x, offset.y, 0});
    return all;
}

/// The voxel and those at most `steps` axis steps away within the unit square or cube.
inline Offsets neighbours(long steps, bool inVolume)
{
    Offsets offsets;
    for (long z = inVolume ? -1 : 0; z <= (inVolume ? 1 : 0); ++z)
        for (long y = -1; y <= 1; ++y)
            for (long x = -1; x <= 1; ++x)
                if (std::abs(x) + std::abs(y) + std::abs(z) <= steps)
                    offsets.push_back({x, y, z});
    return offsets;
}

inline Setting ofPlans(unsigned long iterations, int neighbourhood)
{
    return {"2D",
            {{"nbIter", std::to_string(iterations)},
             {"neighborhood2D", neighbourhood == 4 ? "QEL_NEIGHBORHOOD2D_4" : "QEL_NEIGHBORHOOD2D_8"}},
            {{neighbours(neighbourhood == 4 ? 1 : 2, false), iterations}},
            false};
}

inline Setting ofVolumes(unsigned long iterations, int neighbourhood)
{
    return {"3D",
            {{"nbIter", std::to_string(iterations)},
             {"neighborhood3D", "QEL_NEIGHBORHOOD3D_" + std::to_string(neighbourhood)}},
            {{neighbours(neighbourhood == 6    ? 1
                         : neighbourhood == 18 ? 2
                                               : 3,
                         true),
              iterations}},
            true};
}

inline Setting disk(unsigned long radius, bool isPrecise)
{
    Setting setting{
        "Disk2D",
        {{"elementSize", std::to_string(radius)}, {"precision", isPrecise ? "QEL_ALGO_PRECISE" : "QEL_ALGO_FAST"}},
        {},
        false};
    if (isPrecise)
        setting.element = {{inSpace(kernel::generateDiskOffset2DCollection(radius)), 1}};
    else
        setting.element = {{neighbours(2, false), radius / 2}, {neighbours(1, false), radius - radius / 2}};
    return setting;
}

inline Setting ball(unsigned long radius, bool isPrecise, unsigned long of6 = 0, unsigned long of18 = 0)
{
    Setting setting{
        "Ball3D",
        {{"elementSize", std::to_string(radius)}, {"precision", isPrecise ? "QEL_ALGO_PRECISE" : "QEL_ALGO_FAST"}},
        {},
        true};
    if (isPrecise)
        setting.element = {{kernel::generateSphereOffset3DCollection(radius), 1}};
    else
        setting.element = {
            {neighbours(1, true), of6}, {neighbours(2, true), of18}, {neighbours(3, true), radius - of6 - of18}};
    return setting;
}

inline std::string textOf(double value)
{
    std::ostringstream text;
    text.precision(17);
    text << value;
    return text.str();
}

inline Setting line(double angle, unsigned long size)
{
    return {"Line2D",
            {{"orientationAngle", textOf(angle)}, {"elementSize", std::to_string(size)}},
            {{inSpace(kernel::generateLineOffset2DCollectionWithConstNumOfPixels(angle, size, true)), 1}},
            false,
            true};
}

inline Setting lineInSpace(double theta, double phi, unsigned long size)
{
    return {"Line3D",
            {{"thetaAngle", textOf(theta)}, {"phiAngle", textOf(phi)}, {"elementSize", std::to_string(size)}},
            {{kernel::generateLineOffset3DCollectionWithConstNumOfPixels(phi, theta, size, true), 1}},
            true,
            true};
}

inline Setting diskInSpace(double theta, double phi, unsigned long radius)
{
    return {"Disk3D",
            {{"thetaAngle", textOf(theta)}, {"phiAngle", textOf(phi)}, {"elementSize", std::to_string(radius)}},
            {{kernel::generateDiskOffset3DCollection(phi, theta, radius), 1}},
            true};
}

/// Each form with a few small elements.
inline std::vector<Setting> smallSettings()
{
    return {ofPlans(1, 8),
            ofPlans(1, 4),
            ofPlans(3, 8),
            ofPlans(4, 4),
            ofVolumes(1, 26),
            ofVolumes(1, 6),
            ofVolumes(1, 18),
            ofVolumes(2, 18),
            ofVolumes(3, 6),
            ofVolumes(2, 26),
            disk(1, false),
            disk(2, false),
            disk(5, false),
            disk(0, true),
            disk(1, true),
            disk(4, true),
            ball(1, false),
            ball(2, false, 1),
            ball(4, false, 2, 1),
            ball(0, true),
            ball(3, true),
            line(10, 3),
            line(-45, 5),
            line(90, 4),
            line(163, 7),
            line(0, 1),
            lineInSpace(0, 0, 3),
            lineInSpace(30, 60, 6),
            lineInSpace(-120, 100, 5),
            diskInSpace(0, 0, 3),
            diskInSpace(30, 40, 3),
            diskInSpace(-70, 90, 2)};
}

inline std::vector<std::string> operators() { return {"Erosion", "Dilation", "Opening", "Closing"}; }

/// What stands outside of the image: it never wins, but over an infinity.
template <class T> T neutral(bool isErosion)
{
    return isErosion ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
}

template <class T> Picture<T> extremum(Picture<T> const& in, Offsets const& offsets, bool isErosion)
{
    Picture<T> out(in.shape);
    auto const isIn = [](long coordinate, unsigned long size) {
        return coordinate >= 0 && coordinate < static_cast<long>(size);
    };
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        bool isFirst = true;
        T value = 0;
        for (auto const& offset : offsets) {
            long const x = static_cast<long>(c) + offset.x;
            long const y = static_cast<long>(r) + offset.y;
            long const z = static_cast<long>(p) + offset.z;
            bool const isInside = isIn(x, in.shape.columns) && isIn(y, in.shape.rows) && isIn(z, in.shape.plans);
            T other = isInside ? in.voxels[in.index(static_cast<unsigned long>(x), static_cast<unsigned long>(y),
                                                    static_cast<unsigned long>(z), t, s)]
                               : neutral<T>(isErosion);
            if (other != other && offsets.size() > 1)
                other = neutral<T>(isErosion);
            if (isFirst || (isErosion ? other < value : value < other))
                value = other;
            isFirst = false;
        }
        out.voxels[out.index(c, r, p, t, s)] = value;
    });
    return out;
}

template <class T> Picture<T> half(Picture<T> picture, Setting const& setting, bool isErosion, bool isMirrored)
{
    for (ElementStep step : setting.element) {
        if (isMirrored)
            kernel::invert(step.offsets);
        for (unsigned long i = 0; i < step.count; ++i)
            picture = extremum(picture, step.offsets, isErosion);
    }
    return picture;
}

template <class T> Picture<T> expected(std::string const& operation, Setting const& setting, Picture<T> const& in)
{
    bool const isErosionFirst = operation == "Erosion" || operation == "Opening";
    Picture<T> const first = half(in, setting, isErosionFirst, false);
    if (operation == "Erosion" || operation == "Dilation")
        return first;
    return half(first, setting, !isErosionFirst, setting.isLine);
}

/// An algorithm by its name, with its properties set by theirs.
inline Ref<BaseAlgorithm> create(std::string const& operation, Setting const& setting)
{
    Ref<BaseAlgorithm> const algorithm = AlgoInfo::fromName((operation + setting.form).c_str())->createInstance();
    for (auto const& [name, value] : setting.properties) {
        String rest;
        EXPECT_TRUE(algorithm->getPropertyfromName(name.c_str())->read(value.c_str(), rest)) << name;
    }
    return algorithm;
}

inline void setImages(BaseAlgorithm& algorithm, ImageModel const* input, ImageModel* output)
{
    dynamic_cast<Property<ImageModel const*>&>(*algorithm.getPropertyfromName("input")).set(input);
    dynamic_cast<Property<ImageModel*>&>(*algorithm.getPropertyfromName("output")).set(output);
}

} // namespace qel::test
