#include "Morphology/private/ElementGraph.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>

namespace qel::morphology {

namespace {

using Tap = ElementGraph::Tap;
using Point = std::array<long, 3>;

Point pointOf(kernel::Offset3D const& offset) { return {offset.x, offset.y, offset.z}; }

Tap shifted(Tap tap, Point const& distance)
{
    for (unsigned axis = 0; axis < 3; ++axis)
        tap.offset[axis] += distance[axis];
    return tap;
}

/// The graph of one of several ways to take an element apart: the cheapest one is kept.
struct Attempt
{
    ElementGraph graph;
    Tap top;
};

} // namespace

Tap ElementGraph::add(std::vector<Tap> taps)
{
    nodes.push_back(std::move(taps));
    return {static_cast<unsigned>(nodes.size() - 1), {0, 0, 0}};
}

unsigned long ElementGraph::cost() const
{
    unsigned long accesses = 0;
    for (auto const& taps : nodes)
        accesses += taps.size() + 1;
    return accesses;
}

std::vector<ElementGraph::Reach> ElementGraph::reaches() const
{
    std::vector<Reach> reaches(nodes.size());
    std::vector<bool> isSeen(nodes.size(), false);
    // Whoever sees a node comes after it.
    for (std::size_t node = nodes.size(); node-- > 0;)
        for (Tap const& tap : nodes[node]) {
            Reach& reach = reaches[tap.node];
            for (unsigned axis = 0; axis < 3; ++axis) {
                long const lowest = reaches[node].lowest[axis] + tap.offset[axis];
                long const highest = reaches[node].highest[axis] + tap.offset[axis];
                reach.lowest[axis] = isSeen[tap.node] ? std::min(reach.lowest[axis], lowest) : lowest;
                reach.highest[axis] = isSeen[tap.node] ? std::max(reach.highest[axis], highest) : highest;
            }
            isSeen[tap.node] = true;
        }
    return reaches;
}

Tap ElementGraph::window(Tap from, int axis, unsigned long length)
{
    if (length <= 1)
        return from;
    // Thirds that may overlap: fewer accesses than halves.
    unsigned long const part = length <= 4 ? 1 : (length + 2) / 3;
    Tap const inner = window(from, axis, part);
    std::vector<Tap> taps;
    for (unsigned long start = 0; start + part < length; start += part)
        taps.push_back(inner.shifted(axis, static_cast<long>(start)));
    taps.push_back(inner.shifted(axis, static_cast<long>(length - part)));
    return add(taps);
}

Tap ElementGraph::box(Tap from, unsigned long radius, int axes)
{
    for (int axis = 0; axis < axes; ++axis)
        from = window(from.shifted(axis, -static_cast<long>(radius)), axis, 2 * radius + 1);
    return from;
}

Tap ElementGraph::diamond(Tap from, unsigned long radius, int axes)
{
    unsigned long done = 0;
    while (done < radius) {
        // A diamond is covered by smaller ones around its corners if no voxel of it is further than their radius from
        // the nearest corner. In space that lets less remain for the corners than in the plane.
        unsigned long step = 1;
        if (done > 0)
            step = std::min(radius - done, axes == 2 ? done : std::max(done / 2, 1ul));
        auto const distance = static_cast<long>(step);
        std::vector<Tap> taps;
        if (done == 0)
            taps.push_back(from);
        for (int axis = 0; axis < axes; ++axis) {
            taps.push_back(from.shifted(axis, -distance));
            taps.push_back(from.shifted(axis, distance));
        }
        from = add(taps);
        done += step;
    }
    return from;
}

Tap ElementGraph::cuboctahedron(Tap from, unsigned long radius)
{
    for (unsigned long i = 0; i < radius; ++i) {
        Tap const row = add({from.shifted(0, -1), from, from.shifted(0, 1)});
        std::vector<Tap> taps{row, row.shifted(1, -1), row.shifted(1, 1), row.shifted(2, -1), row.shifted(2, 1)};
        for (long const z : {-1l, 1l})
            for (long const y : {-1l, 1l})
                taps.push_back(from.shifted(1, y).shifted(2, z));
        from = add(taps);
    }
    return from;
}

std::vector<ElementGraph::Run> ElementGraph::runsOf(std::vector<kernel::Offset3D> const& offsets, Order const& order)
{
    std::vector<Point> points; // slice, row, place in the row
    points.reserve(offsets.size());
    for (auto const& offset : offsets) {
        Point const point = pointOf(offset);
        points.push_back({point[static_cast<unsigned>(order[2])], point[static_cast<unsigned>(order[1])],
                          point[static_cast<unsigned>(order[0])]});
    }
    std::sort(points.begin(), points.end());
    std::vector<Run> all;
    for (Point const& point : points) {
        bool const isInRow = !all.empty() && all.back().slice == point[0] && all.back().row == point[1];
        long const end = isInRow ? all.back().begin + static_cast<long>(all.back().length) : 0;
        if (isInRow && point[2] == end)
            ++all.back().length;
        else if (!isInRow || point[2] > end) // else it is there already
            all.push_back({point[0], point[1], point[2], 1});
    }
    return all;
}

/// The extremum over a run is computed once for all runs of a length, and a slice once for all that are alike.
Tap ElementGraph::runs(Tap from, std::vector<Run> const& sorted, Order const& order)
{
    std::set<unsigned long> lengths;
    for (Run const& run : sorted)
        lengths.insert(run.length);
    if (lengths.size() > 64) {
        // Rows of them all would not fit the cache: a run becomes two windows of a power of two.
        unsigned long const longest = *lengths.rbegin();
        lengths.clear();
        for (unsigned long length = 1; length <= longest; length *= 2)
            lengths.insert(length);
    }
    // From the shortest on: each length out of the one before.
    std::map<unsigned long, Tap> windows;
    Tap shorter = from;
    unsigned long done = 1;
    for (unsigned long const length : lengths) {
        while (done < length) {
            unsigned long const next = std::min(length, 3 * done);
            std::vector<Tap> taps{shorter};
            if (next > 2 * done)
                taps.push_back(shorter.shifted(order[0], static_cast<long>(done)));
            taps.push_back(shorter.shifted(order[0], static_cast<long>(next - done)));
            shorter = add(taps);
            done = next;
        }
        windows.emplace(length, shorter);
    }
    auto const addTaps = [&](Run const& run, std::vector<Tap>& taps) {
        auto const& [length, window] = *std::prev(windows.upper_bound(run.length)); // the longest that is not longer
        Tap const first = window.shifted(order[1], run.row).shifted(order[0], run.begin);
        taps.push_back(first);
        if (length < run.length)
            taps.push_back(first.shifted(order[0], static_cast<long>(run.length - length)));
    };

    std::map<long, std::vector<Run>> slices; // their runs as if they stood in slice 0
    for (Run run : sorted) {
        auto& slice = slices[run.slice];
        run.slice = 0;
        slice.push_back(run);
    }
    std::map<std::vector<Run>, unsigned long> counts;
    for (auto const& [place, slice] : slices)
        ++counts[slice];
    std::map<std::vector<Run>, Tap> shared;
    std::vector<Tap> all;
    for (auto const& [place, slice] : slices) {
        std::vector<Tap> taps;
        auto const known = shared.find(slice);
        if (known != shared.end()) {
            taps.push_back(known->second);
        } else {
            for (Run const& run : slice)
                addTaps(run, taps);
            if (counts[slice] > 1 && taps.size() > 1) {
                taps = {add(taps)};
                shared.emplace(slice, taps.front());
            }
        }
        for (Tap const& tap : taps)
            all.push_back(tap.shifted(order[2], place));
    }
    return all.size() == 1 ? all.front() : add(all);
}

Tap ElementGraph::ball(Tap from, unsigned long radius, int axes)
{
    auto const whole = static_cast<long>(radius);
    auto const square = [](long value) { return static_cast<unsigned long>(value * value); };
    std::vector<Run> all;
    for (long z = axes == 3 ? -whole : 0; z <= (axes == 3 ? whole : 0); ++z) {
        long half = 0;
        for (long y = -whole; y <= whole; ++y) {
            if (square(z) + square(y) > square(whole))
                continue;
            // The edge moves by little from row to row.
            unsigned long const rest = square(whole) - square(z) - square(y);
            while (square(half + 1) <= rest)
                ++half;
            while (square(half) > rest)
                --half;
            all.push_back({z, y, -half, static_cast<unsigned long>(2 * half + 1)});
        }
    }
    return runs(from, all, {0, 1, 2});
}

Tap ElementGraph::collection(Tap from, std::vector<kernel::Offset3D> const& offsets)
{
    Attempt best;
    unsigned long lowest = std::numeric_limits<unsigned long>::max();
    for (Order const& order :
         {Order{0, 1, 2}, Order{0, 2, 1}, Order{1, 0, 2}, Order{1, 2, 0}, Order{2, 0, 1}, Order{2, 1, 0}}) {
        Attempt attempt{*this, {}};
        attempt.top = attempt.graph.runs(from, runsOf(offsets, order), order);
        if (attempt.graph.cost() < lowest) {
            lowest = attempt.graph.cost();
            best = std::move(attempt);
        }
    }
    *this = std::move(best.graph);
    return best.top;
}

/// Stretches of a power of two of the list, each made of two halves. A digital line has few different stretches of a
/// length, whatever its slope, and each is computed once.
Tap ElementGraph::halves(Tap from, std::vector<kernel::Offset3D> const& offsets)
{
    std::map<std::vector<Point>, Tap> known; // by the steps from the first voxel of a stretch
    auto const stretch = [&](auto const& self, std::size_t begin, std::size_t length) -> Tap {
        Point const first = pointOf(offsets[begin]);
        if (length == 1)
            return shifted(from, first);
        std::vector<Point> steps;
        for (std::size_t i = begin; i < begin + length; ++i) {
            Point const point = pointOf(offsets[i]);
            steps.push_back({point[0] - first[0], point[1] - first[1], point[2] - first[2]});
        }
        Point const back{-first[0], -first[1], -first[2]};
        auto found = known.find(steps);
        if (found == known.end()) {
            std::vector<Tap> taps;
            // Quarters cost less than halves, but are not worth a stretch of two.
            std::size_t const part = length % 4 == 0 && length > 4 ? length / 4 : length <= 4 ? 1 : length / 2;
            for (std::size_t i = begin; i < begin + length; i += part)
                taps.push_back(shifted(self(self, i, part), back));
            found = known.emplace(steps, add(taps)).first;
        }
        return shifted(found->second, first);
    };
    std::size_t length = 1;
    while (2 * length <= offsets.size())
        length *= 2;
    Tap const head = stretch(stretch, 0, length);
    if (length == offsets.size())
        return head;
    return add({head, stretch(stretch, offsets.size() - length, length)});
}

Tap ElementGraph::line(Tap from, std::vector<kernel::Offset3D> const& offsets)
{
    Attempt inRuns{*this, {}};
    inRuns.top = inRuns.graph.collection(from, offsets);
    Attempt inHalves{*this, {}};
    inHalves.top = inHalves.graph.halves(from, offsets);
    Attempt& best = inHalves.graph.cost() < inRuns.graph.cost() ? inHalves : inRuns;
    *this = std::move(best.graph);
    return best.top;
}

void ElementGraph::finish(Tap const& top)
{
    bool const isLast = top.node + 1 == nodes.size() && top.offset == Point{0, 0, 0};
    if (!isLast || (isImage() && reachesOutside))
        add({top});
}

} // namespace qel::morphology
