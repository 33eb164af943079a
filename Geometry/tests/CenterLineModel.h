#pragma once

#include "Core/tests/Support/Support.h"

#include <qel/Ref.h>
#include <qel/geometry/LineSet3D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>
#include <qel/linear_filtering/kernel_factory.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/morphology/EuclideanDistanceMap.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <queue>
#include <vector>

namespace qel::test {

struct CenterLineParameters
{
    bool autoMode = true;
    unsigned int numberOfBranches = 3;
    double newBranchSensibility = 3;
    double sigma = 0.3;
    unsigned int smoothingIteration = 3;
    std::array<double, 3> spacings{1, 1, 1};
    std::array<double, 3> origins{0, 0, 0};
};

/// Centre lines with two searches by heaps, each of which passes over the whole object: slow and plain.
class CenterLineModel
{
public:
    using Point = math::Vector3<double>;

    template <class T>
    CenterLineModel(Picture<T> const& picture, bool isBinary, CenterLineParameters const& parameters)
        : p(parameters)
        , nx(long(picture.shape.columns))
        , ny(long(picture.shape.rows))
        , nz(long(picture.shape.plans))
        , lines(picture.voxels.size())
    {
        std::vector<unsigned char> mask(picture.voxels.size());
        for (std::size_t i = 0; i < mask.size(); ++i)
            mask[i] = isBinary ? picture.voxels[i] != 0 : picture.voxels[i] > 0;
        makeMap(mask);
        int number = 0;
        for (int dz = -1; dz <= 1; ++dz)
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    if (dx == 0 && dy == 0 && dz == 0)
                        continue;
                    offset[number] = (dz * ny + dy) * nx + dx;
                    double const x = dx * p.spacings[0], y = dy * p.spacings[1], z = dz * p.spacings[2];
                    length[number++] = float(std::sqrt(x * x + y * y + z * z));
                }
        std::map<T, long> seeds;
        for (long i = 0; i < nx * ny * nz; ++i)
            if (mask[i] && !isFace(i))
                seeds.try_emplace(isBinary ? T(1) : picture.voxels[i], i);
        for (auto const& [label, seed] : seeds)
            runOn(seed);
    }

    std::vector<Point> coords;
    std::vector<unsigned long> indices;

private:
    struct Edge
    {
        float weight;
        long age;
        long voxel;
        int direction;
        bool operator<(Edge const& o) const { return weight != o.weight ? weight < o.weight : age > o.age; }
    };
    struct Vertex
    {
        float cost;
        long age;
        long voxel;
        bool operator<(Vertex const& o) const { return cost != o.cost ? cost > o.cost : age > o.age; }
    };

    bool isFace(long i) const
    {
        long const x = i % nx, y = i / nx % ny, z = i / nx / ny;
        return x == 0 || y == 0 || z == 0 || x == nx - 1 || y == ny - 1 || z == nz - 1;
    }

    void makeMap(std::vector<unsigned char> const& mask)
    {
        memory::InMemoryImage in, distance, smooth;
        in.reserve(QEL_UINT8, nx, ny, nz, 1, 1);
        in.setInterpretation(QEL_BINARY);
        for (int axis = 0; axis < 3; ++axis)
            in.setSpacingOf(Components(axis), p.spacings[axis]);
        std::copy(mask.begin(), mask.end(), in.getInternalBuffer());
        Ref<morphology::EuclideanDistanceMap> const measure = morphology::EuclideanDistanceMap::New();
        measure->input = &in;
        measure->output = &distance;
        measure->run();
        unsigned long n = static_cast<unsigned long>(6 * p.sigma);
        if (n <= 2)
            n = 3;
        else if (n % 2 == 0)
            ++n;
        kernel::Kernel3D kernel = linear_filtering::kernel_factory::createGaussian3D(n, p.sigma);
        kernel.normalize();
        using Filter = linear_filtering::FiniteImpulseResponseFilter3D;
        Ref<Filter> const filter = Filter::New();
        filter->input = &distance;
        filter->kernel3D = kernel;
        filter->outputMode = linear_filtering::QEL_OUTPUT_MODE_CUSTOM;
        filter->outputCustomType = QEL_FLOAT32;
        filter->output = &smooth;
        filter->run();
        float const* const values = reinterpret_cast<float const*>(smooth.getInternalBuffer());
        map.assign(values, values + mask.size());
        for (std::size_t i = 0; i < mask.size(); ++i)
            if (!mask[i] || isFace(long(i)))
                map[i] = 0;
    }

    Point positionOf(long i) const
    {
        return {double(i % nx) * p.spacings[0] + p.origins[0], double(i / nx % ny) * p.spacings[1] + p.origins[1],
                double(i / nx / ny) * p.spacings[2] + p.origins[2]};
    }

    void runOn(long seed)
    {
        tree.assign(map.size(), 0);
        onLine.assign(map.size(), 0);
        firstVertex = coords.size();
        firstIndex = indices.size();
        growTree(seed);
        unsigned int sweeps = 0;
        float previous = -1;
        bool settled = false;
        long farthest = seed;
        for (unsigned int b = 0; p.autoMode || b < p.numberOfBranches;) {
            std::vector<long> sources;
            if (b > 0) {
                for (long i = 0; i < long(onLine.size()); ++i)
                    if (onLine[i])
                        sources.push_back(i);
            } else {
                sources.push_back(farthest);
            }
            ++sweeps;
            auto const [last, far] = search(sources);
            farthest = last;
            if (far == 0)
                break;
            if (!settled) {
                if (previous == -1) {
                    previous = far;
                    continue;
                }
                if (sweeps <= 10) {
                    double const change = std::fabs(double(previous) - far) / previous;
                    previous = far;
                    settled = change < 0.01;
                    if (!settled)
                        continue;
                }
                settled = true;
            }
            if (!trace(farthest, far, b == 0) && p.autoMode)
                break;
            ++b;
        }
        smooth();
    }

    void growTree(long seed)
    {
        std::priority_queue<Edge> heap;
        long age = 0;
        float level = map[seed];
        auto const push = [&](long v) {
            for (int k = 0; k < 26; ++k) {
                long const u = v + offset[k];
                if (u != seed && tree[u] == 0 && map[u] > 0)
                    heap.push({std::max(map[u], level), age++, v, k});
            }
        };
        push(seed);
        while (!heap.empty()) {
            Edge const edge = heap.top();
            heap.pop();
            long const u = edge.voxel + offset[edge.direction];
            if (tree[u] != 0)
                continue;
            tree[edge.voxel] |= 1u << edge.direction;
            tree[u] = 1u << (25 - edge.direction);
            level = map[u];
            push(u);
        }
    }

    std::pair<long, float> search(std::vector<long> const& sources)
    {
        geodesic.assign(map.size(), std::numeric_limits<float>::infinity());
        std::priority_queue<Vertex> heap;
        long age = 0;
        for (long const source : sources)
            heap.push({0, age++, source});
        std::pair<long, float> last{sources.at(0), 0};
        while (!heap.empty()) {
            Vertex const top = heap.top();
            heap.pop();
            if (top.cost > geodesic[top.voxel])
                continue;
            geodesic[top.voxel] = top.cost;
            last = {top.voxel, top.cost};
            for (int k = 0; k < 26; ++k) {
                long const u = top.voxel + offset[k];
                if (!(tree[top.voxel] >> k & 1) || !(map[u] > 0))
                    continue;
                float const d = top.cost + length[k];
                if (geodesic[u] > d)
                    heap.push({d, age++, u});
            }
        }
        return last;
    }

    bool trace(long farthest, float far, bool isFirst)
    {
        std::vector<long> way{farthest};
        while (geodesic[way.back()] > 0) {
            long const v = way.back();
            long next = -1;
            for (int k = 0; k < 26; ++k)
                if (tree[v] >> k & 1)
                    if (next < 0 || geodesic[v + offset[k]] < geodesic[next])
                        next = v + offset[k];
            way.push_back(next);
        }
        if (!isFirst && p.autoMode && !(far > map[way.back()] * p.newBranchSensibility))
            return false;
        for (std::size_t i = 0; i < way.size(); ++i) {
            Point const position = positionOf(way[i]);
            unsigned long vertex = coords.size();
            if (!isFirst && i + 1 == way.size())
                vertex = static_cast<unsigned long>(
                    std::find(coords.begin() + long(firstVertex), coords.end(), position) - coords.begin());
            else
                coords.push_back(position);
            indices.push_back(vertex);
            onLine[way[i]] = lines[way[i]] = 1;
        }
        indices.push_back(geometry::LineSet3D::stop);
        return true;
    }

    void smooth()
    {
        for (unsigned int round = 0; round < p.smoothingIteration; ++round) {
            std::vector<Point> const before = coords;
            std::size_t begin = firstIndex;
            while (begin < indices.size()) {
                std::size_t end = begin;
                while (indices[end] != geometry::LineSet3D::stop)
                    ++end;
                for (std::size_t i = begin + 1; i + 1 < end; ++i)
                    coords[indices[i]] = (before[indices[i - 1]] + before[indices[i]] + before[indices[i + 1]]) / 3.0;
                begin = end + 1;
            }
        }
    }

    CenterLineParameters const p;
    long const nx, ny, nz;
    long offset[26];
    float length[26];
    std::vector<float> map, geodesic;
    std::vector<unsigned int> tree;
    std::vector<unsigned char> onLine;
    std::size_t firstVertex = 0, firstIndex = 0;

public:
    /// 1 on all lines.
    std::vector<unsigned char> lines;
};

} // namespace qel::test
