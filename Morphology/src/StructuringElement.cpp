#include "Morphology/private/StructuringElement.h"

#include "Core/private/Access/computeExtrema.h"
#include "Core/private/Kernel/OffsetCollections.h"
#include "Core/private/Throw.h"

#include <qel/AlgoPrecisionType.h>
#include <qel/Exception.h>
#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>

#include <algorithm>
#include <cmath>

namespace qel::morphology {

namespace {

using Offsets = std::vector<kernel::Offset3D>;

/// How far one pass carries iterations. Further, its margins cost more than another pass over memory.
constexpr unsigned long REACH_IN_PLANS = 32;
constexpr unsigned long REACH_IN_VOLUMES = 16;

constexpr double PI = 3.141592653589793;

enum class Step
{
    Of4,
    Of8,
    Of6,
    Of18,
    Of26
};

struct Steps
{
    Step step;
    unsigned long count;
};

/// The elementary steps that a form repeats; none for all others.
std::vector<Steps> stepsOf(StructuringElement const& element)
{
    unsigned long const size = element.size;
    if (element.form == Form::Of2D)
        return {{element.choice == QEL_NEIGHBORHOOD2D_4 ? Step::Of4 : Step::Of8, size}};
    if (element.form == Form::Of3D)
        return {{element.choice == QEL_NEIGHBORHOOD3D_6    ? Step::Of6
                 : element.choice == QEL_NEIGHBORHOOD3D_18 ? Step::Of18
                                                           : Step::Of26,
                 size}};
    if (element.form == Form::OfDisk2D) {
        unsigned long const of8 = size >> 1;
        return {{Step::Of8, of8}, {Step::Of4, size - of8}};
    }
    auto const of6 = static_cast<unsigned long>(0.6 * static_cast<double>(size));
    auto const of18 = static_cast<unsigned long>(0.3 * static_cast<double>(size));
    return {{Step::Of6, of6}, {Step::Of18, of18}, {Step::Of26, size - (of6 + of18)}};
}

ElementGraph::Tap repeated(ElementGraph& graph, ElementGraph::Tap from, Steps const& steps)
{
    switch (steps.step) {
    case Step::Of4:
        return graph.diamond(from, steps.count, 2);
    case Step::Of8:
        return graph.box(from, steps.count, 2);
    case Step::Of6:
        return graph.diamond(from, steps.count, 3);
    case Step::Of18:
        return graph.cuboctahedron(from, steps.count);
    case Step::Of26:
        break;
    }
    return graph.box(from, steps.count, 3);
}

/// Iterations of an elementary step with neutral voxels outside are one extremum over the step's multiple, cut off by
/// the image: between two voxels of a box there is always a way of such steps within it. So a pass carries many.
std::vector<ElementGraph> carried(std::vector<Steps> const& steps, unsigned long mostSteps, unsigned long reach)
{
    std::vector<ElementGraph> passes;
    ElementGraph graph;
    ElementGraph::Tap top{0, {0, 0, 0}};
    unsigned long inPass = 0;
    auto const end = [&] {
        if (inPass == 0)
            return;
        graph.finish(top);
        passes.push_back(std::move(graph));
        graph = ElementGraph();
        top = {0, {0, 0, 0}};
        inPass = 0;
    };
    for (auto [step, count] : steps) {
        // More steps than there are voxels along all axes change nothing any more.
        count = std::min(count, mostSteps);
        while (count > 0) {
            if (inPass == reach)
                end();
            unsigned long const some = std::min(count, reach - inPass);
            top = repeated(graph, top, {step, some});
            inPass += some;
            count -= some;
        }
    }
    end();
    return passes;
}

Offsets inSpace(std::vector<kernel::Offset2D> const& offsets)
{
    Offsets all;
    all.reserve(offsets.size());
    for (auto const& offset : offsets)
        all.push_back({offset.x, offset.y, 0});
    return all;
}

/// The voxels of a line or of a disk in space.
Offsets offsetsOf(StructuringElement const& element, unsigned long size)
{
    if (element.form == Form::OfLine2D)
        return inSpace(kernel::generateLineOffset2DCollectionWithConstNumOfPixels(element.angle, size, true));
    if (element.form == Form::OfLine3D)
        return kernel::generateLineOffset3DCollectionWithConstNumOfPixels(element.phi, element.theta, size, true);
    return kernel::generateDiskOffset3DCollection(element.phi, element.theta, size);
}

/// Those of them that reach furthest, without all others: the element may be larger than the memory.
Offsets outermost(StructuringElement const& element)
{
    if (element.size == 0 && element.form != Form::OfDisk3D)
        return {};
    if (element.form == Form::OfLine2D) {
        kernel::DigitalLine2D const line(element.angle, true);
        return inSpace({line(0), line(element.size - 1)});
    }
    if (element.form == Form::OfLine3D) {
        kernel::DigitalLine3D const line(element.phi, element.theta, true);
        return {line(0), line(element.size - 1)};
    }
    // The furthest in a direction is a voxel of the edge, and as near to the furthest point of the circle as the circle
    // takes to fall by one voxel: about root(2 r).
    kernel::PlaneInSpace const plane(element.phi, element.theta);
    auto const radius = static_cast<double>(element.size);
    auto const whole = static_cast<long>(element.size);
    double const radiansOfPhi = element.phi * PI / 180;
    double const radiansOfTheta = element.theta * PI / 180;
    auto const window = static_cast<long>(2 * std::sqrt(2 * radius)) + 4;
    Offsets offsets;
    auto const addAround = [&](double a, double b) {
        double const length = std::hypot(a, b);
        auto const furthest = length > 0 ? static_cast<long>(radius * a / length) : 0;
        for (long const centre : {furthest, -furthest})
            for (long i = std::max(centre - window, -whole); i <= std::min(centre + window, whole); ++i) {
                auto const square = [](long value) {
                    return static_cast<unsigned long>(value) * static_cast<unsigned long>(value);
                };
                unsigned long const rest = square(whole) - square(i);
                auto j = std::min(static_cast<long>(std::sqrt(static_cast<double>(rest))), whole);
                while (square(j) > rest)
                    --j;
                while (j < whole && square(j + 1) <= rest)
                    ++j;
                offsets.push_back(plane({i, j}));
                offsets.push_back(plane({i, -j}));
            }
    };
    addAround(std::cos(radiansOfTheta) * std::cos(radiansOfPhi), std::sin(radiansOfTheta)); // columns
    addAround(std::sin(radiansOfTheta) * std::cos(radiansOfPhi), std::cos(radiansOfTheta)); // rows
    addAround(1, 0);                                                                        // plans
    return offsets;
}

bool isLine(Form form) { return form == Form::OfLine2D || form == Form::OfLine3D; }

} // namespace

bool isOfVolumes(Form form) { return form != Form::Of2D && form != Form::OfDisk2D && form != Form::OfLine2D; }

AlgoBorderInfluence StructuringElement::influence() const
{
    switch (form) {
    case Form::Of2D:
    case Form::OfDisk2D:
        return {size, size, 0, 0, 0};
    case Form::Of3D:
    case Form::OfBall3D:
        return {size, size, size, 0, 0};
    default:
        break;
    }
    long minX, maxX, minY, maxY, minZ, maxZ;
    kernel::computeExtrema(outermost(*this), minX, maxX, minY, maxY, minZ, maxZ);
    auto const below = [](long lowest) { return lowest < 0 ? 0 - static_cast<unsigned long>(lowest) : 0; };
    auto const above = [](long highest) { return highest < 0 ? 0 : static_cast<unsigned long>(highest); };
    return {below(minX), above(maxX), below(minY), above(maxY), below(minZ), above(maxZ), 0, 0, 0, 0};
}

std::vector<ElementGraph> StructuringElement::passes(unsigned long cols, unsigned long rows, unsigned long plans) const
{
    bool const isVolume = isOfVolumes(form);
    if (isLine(form) && size == 0)
        QEL_THROW(InvalidCall, "The structuring element is empty.");
    if (cols == 0 || rows == 0 || plans == 0)
        return {};
    if (!isVolume)
        plans = 1;

    bool const isExact = (form == Form::OfDisk2D || form == Form::OfBall3D) && choice == QEL_ALGO_PRECISE;
    bool const isInSteps = form == Form::Of2D || form == Form::Of3D || form == Form::OfDisk2D || form == Form::OfBall3D;
    if (isInSteps && !isExact)
        return carried(stepsOf(*this), cols + rows + plans, isVolume ? REACH_IN_VOLUMES : REACH_IN_PLANS);

    ElementGraph graph;
    ElementGraph::Tap const image{0, {0, 0, 0}};
    if (isExact) {
        auto const square = [](unsigned long value) { return static_cast<double>(value) * static_cast<double>(value); };
        if (square(size) >= square(cols) + square(rows) + (isVolume ? square(plans) : 0)) {
            // Every voxel sees the whole image, and beyond.
            graph.reachesOutside = true;
            graph.finish(graph.box(image, std::max({cols, rows, plans}), isVolume ? 3 : 2));
        } else {
            graph.finish(graph.ball(image, size, isVolume ? 3 : 2));
        }
        return {graph};
    }

    // Voxels of the element that are further away than the image is long are never in it.
    unsigned long const longest = std::max({cols, rows, plans});
    double const diagonal = std::sqrt(3.0) * static_cast<double>(longest);
    unsigned long const most = isLine(form) ? longest + 1 : static_cast<unsigned long>(diagonal) + 4;
    Offsets offsets = offsetsOf(*this, std::min(size, most));
    auto const isOutside = [](long step, unsigned long extent) {
        return step <= -static_cast<long>(extent) || step >= static_cast<long>(extent);
    };
    auto const isNever = [&](kernel::Offset3D const& offset) {
        return isOutside(offset.x, cols) || isOutside(offset.y, rows) || isOutside(offset.z, plans);
    };
    auto const firstNever = std::remove_if(offsets.begin(), offsets.end(), isNever);
    graph.reachesOutside = firstNever != offsets.end();
    offsets.erase(firstNever, offsets.end());
    graph.finish(isLine(form) && !offsets.empty() ? graph.line(image, offsets) : graph.collection(image, offsets));
    return {graph};
}

} // namespace qel::morphology
