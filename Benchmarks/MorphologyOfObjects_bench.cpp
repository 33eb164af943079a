#include "Support.h"

#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>
#include <qel/morphology/ApplyMorphologicalLut2D.h>
#include <qel/morphology/ApplyMorphologicalLut3D.h>
#include <qel/morphology/EndPoints2D.h>
#include <qel/morphology/EndPoints3D.h>
#include <qel/morphology/EuclideanDistanceMap.h>
#include <qel/morphology/GrayScaleReconstruction2D.h>
#include <qel/morphology/GrayScaleReconstruction3D.h>
#include <qel/morphology/LocalThicknessMap.h>
#include <qel/morphology/Reconstruction2D.h>
#include <qel/morphology/Reconstruction3D.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <queue>
#include <vector>

using namespace qel;
using namespace bench;

namespace {

void makeBinary(memory::InMemoryImage& image)
{
    image.setInterpretation(QEL_BINARY);
    for (Components const axis : {COLUMNS, ROWS, PLANS})
        image.setSpacingOf(axis, 1);
}

// ---- Distances

struct Vertex
{
    long index;
    float distance;
    float position[3];
};

struct IsFarther
{
    bool operator()(Vertex const& a, Vertex const& b) const { return a.distance > b.distance; }
};

/// The distance map as it is told, with one std::priority_queue: half-way points between the objects and what is beside
/// them, within the image and around it, spread in the order of their distance. Spacings of 1.
void spreadByQueue(unsigned char const* mask, float* map, Shape const& shape)
{
    long const nx = long(shape.columns), ny = long(shape.rows), nz = long(shape.plans);
    auto const isIn = [&](long x, long y, long z) {
        return x >= 0 && x < nx && y >= 0 && y < ny && z >= 0 && z < nz && mask[(z * ny + y) * nx + x] != 0;
    };
    std::vector<Vertex> vertices, nearest;
    for (long z = 0, index = 0; z < nz; ++z)
        for (long y = 0; y < ny; ++y)
            for (long x = 0; x < nx; ++x, ++index) {
                map[index] = 0;
                if (mask[index] == 0)
                    continue;
                float best = std::numeric_limits<float>::max();
                nearest.clear();
                for (long k = 0; k < 27; ++k) {
                    long const dx = k % 3 - 1, dy = k / 3 % 3 - 1, dz = k / 9 - 1;
                    if (isIn(x + dx, y + dy, z + dz))
                        continue;
                    auto const distance = float(0.5 * std::sqrt(double(dx * dx + dy * dy + dz * dz)));
                    if (best > distance) {
                        nearest.clear();
                        best = distance;
                    }
                    if (best == distance)
                        nearest.push_back({index,
                                           distance,
                                           {float(double(x) + 0.5 * double(dx)), float(double(y) + 0.5 * double(dy)),
                                            float(double(z) + 0.5 * double(dz))}});
                }
                map[index] = best;
                vertices.insert(vertices.end(), nearest.begin(), nearest.end());
            }
    std::priority_queue<Vertex, std::vector<Vertex>, IsFarther> queue(IsFarther(), std::move(vertices));
    while (!queue.empty()) {
        Vertex const vertex = queue.top();
        queue.pop();
        if (map[vertex.index] < vertex.distance)
            continue;
        long const z = vertex.index / (nx * ny), y = vertex.index % (nx * ny) / nx, x = vertex.index % nx;
        for (long k = 0; k < 27; ++k) {
            long const u = x + k % 3 - 1, v = y + k / 3 % 3 - 1, w = z + k / 9 - 1;
            if (k == 13 || !isIn(u, v, w))
                continue;
            double const across = double(vertex.position[0]) - double(u), down = double(vertex.position[1]) - double(v);
            double const deep = double(vertex.position[2]) - double(w);
            auto const distance = float(std::sqrt(across * across + down * down + deep * deep));
            long const neighbour = (w * ny + v) * nx + u;
            if (map[neighbour] > distance) {
                map[neighbour] = distance;
                queue.push({neighbour, distance, {vertex.position[0], vertex.position[1], vertex.position[2]}});
            }
        }
    }
}

void distanceByQueue(benchmark::State& state)
{
    memory::InMemoryImage in;
    fill(in, QEL_UINT8, volume, Picture::Blobs);
    std::vector<float> map(volume.voxels());
    for (auto _ : state) {
        spreadByQueue(in.getInternalBuffer(), map.data(), volume);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<long>(state.iterations() * 5 * volume.voxels()));
}

void distance(benchmark::State& state)
{
    memory::InMemoryImage in, out;
    fill(in, QEL_UINT8, volume, Picture::Blobs);
    makeBinary(in);
    Ref<morphology::EuclideanDistanceMap> const algorithm = morphology::EuclideanDistanceMap::New();
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->run();
    std::vector<float> map(volume.voxels());
    spreadByQueue(in.getInternalBuffer(), map.data(), volume);
    // Where two points are equally near, the queues may spread another one: seen at six voxels, by 0.13 at most.
    auto const* const result = reinterpret_cast<float const*>(out.getInternalBuffer());
    unsigned long differences = 0;
    for (unsigned long i = 0; i < map.size(); ++i) {
        require(std::abs(map[i] - result[i]) <= 0.25f, "distance");
        differences += map[i] != result[i];
    }
    require(differences < map.size() / 100000, "distances");
    measure(state, *algorithm, volume, 5 * volume.voxels());
}

void thickness(benchmark::State& state)
{
    memory::InMemoryImage in, out, distances;
    fill(in, QEL_UINT8, volume, Picture::Blobs);
    makeBinary(in);
    Ref<morphology::LocalThicknessMap> const algorithm = morphology::LocalThicknessMap::New();
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->run();
    Ref<morphology::EuclideanDistanceMap> const map = morphology::EuclideanDistanceMap::New();
    map->input = &in;
    map->output = &distances;
    map->run();
    auto const* const result = reinterpret_cast<float const*>(out.getInternalBuffer());
    auto const* const radii = reinterpret_cast<float const*>(distances.getInternalBuffer());
    for (unsigned long i = 0; i < volume.voxels(); ++i)
        require(result[i] >= 2 * radii[i] && (result[i] == 0) == (radii[i] == 0), "thickness");
    require(*std::max_element(result, result + volume.voxels()) ==
                2 * *std::max_element(radii, radii + volume.voxels()),
            "largest thickness");
    measure(state, *algorithm, volume, 5 * volume.voxels());
}

// ---- Reconstruction

template <class Algorithm> void setNeighbours(Algorithm& algorithm, int neighbours)
{
    if constexpr (requires { algorithm.neighborhood2D; })
        algorithm.neighborhood2D = neighbours == 4 ? QEL_NEIGHBORHOOD2D_4 : QEL_NEIGHBORHOOD2D_8;
    else
        algorithm.neighborhood3D = neighbours == 6    ? QEL_NEIGHBORHOOD3D_6
                                   : neighbours == 18 ? QEL_NEIGHBORHOOD3D_18
                                                      : QEL_NEIGHBORHOOD3D_26;
}

/// A result lies between marker and image, and no step to the next column could raise it: what is left to the tests is
/// that it is the smallest such image.
template <class T, class Algorithm>
void reconstruct(benchmark::State& state, Shape const& shape, int neighbours, Picture image, Picture start)
{
    memory::InMemoryImage in, marker, out;
    fill(in, Voxel<T>::type, shape, image);
    fill(marker, Voxel<T>::type, shape, start);
    if (image == Picture::Objects) {
        makeBinary(in);
        makeBinary(marker);
    }
    Ref<Algorithm> const algorithm = Algorithm::New();
    setNeighbours(*algorithm, neighbours);
    algorithm->input = &in;
    algorithm->marker = &marker;
    algorithm->output = &out;
    algorithm->run();
    auto const voxelsOf = [](memory::InMemoryImage const& of) {
        return reinterpret_cast<T const*>(of.getInternalBuffer());
    };
    auto const *const limit = voxelsOf(in), *const result = voxelsOf(out), *const least = voxelsOf(marker);
    for (unsigned long i = 0; i + 1 < shape.voxels(); ++i) {
        require(least[i] <= result[i] && result[i] <= limit[i], "reconstruction");
        if ((i + 1) % shape.columns != 0)
            require(std::min(result[i], limit[i + 1]) <= result[i + 1], "reconstruction to the right");
    }
    measure(state, *algorithm, shape, 3 * shape.voxels() * sizeof(T));
}

template <class T, class Algorithm>
void addReconstruction(std::string const& name, Shape const& shape, std::vector<int> const& neighbours, bool isBinary)
{
    for (int const count : neighbours)
        add(name + ':' + std::to_string(count) + '/' + Voxel<T>::name + "/scalar/" + shape.name, [=](auto& state) {
            reconstruct<T, Algorithm>(state, shape, count, isBinary ? Picture::Objects : Picture::Real,
                                      isBinary ? Picture::Seeds : Picture::Marker);
        });
}

// ---- Patterns

void fillBinary(memory::InMemoryImage& image, VoxelTypes type, Shape const& shape, bool isNoise)
{
    memory::InMemoryImage bytes;
    fill(bytes, QEL_UINT8, shape, isNoise ? Picture::Noise : Picture::Blobs);
    require(image.reserve(type, shape.columns, shape.rows, shape.plans, 1, 1), "reserve");
    makeBinary(image);
    for (unsigned long i = 0; i < shape.voxels(); ++i) {
        auto const bit = static_cast<unsigned char>(bytes.getInternalBuffer()[i] & 1);
        if (type == QEL_UINT8)
            image.getInternalBuffer()[i] = bit;
        else
            reinterpret_cast<unsigned short*>(image.getInternalBuffer())[i] = bit;
    }
}

/// How many of the voxels around one are set; outside of the image none is.
template <class T> int neighboursOf(T const* voxels, Shape const& shape, unsigned long index)
{
    long const nx = long(shape.columns), ny = long(shape.rows), nz = long(shape.plans), at = long(index);
    long const depth = nz > 1 ? 1 : 0;
    int count = 0;
    for (long z = at / (nx * ny) - depth; z <= at / (nx * ny) + depth; ++z)
        for (long y = at % (nx * ny) / nx - 1; y <= at % (nx * ny) / nx + 1; ++y)
            for (long x = at % nx - 1; x <= at % nx + 1; ++x)
                count += x >= 0 && x < nx && y >= 0 && y < ny && z >= 0 && z < nz && (z * ny + y) * nx + x != at &&
                         voxels[(z * ny + y) * nx + x] != 0;
    return count;
}

/// `isKept(neighbours)` of a voxel that is set.
template <class T, class Algorithm, class IsKept>
void pattern(benchmark::State& state, Ref<Algorithm> algorithm, Shape const& shape, bool isNoise, IsKept const& isKept)
{
    memory::InMemoryImage in, out;
    fillBinary(in, Voxel<T>::type, shape, isNoise);
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->run();
    auto const* const voxels = reinterpret_cast<T const*>(in.getInternalBuffer());
    auto const* const result = reinterpret_cast<T const*>(out.getInternalBuffer());
    for (unsigned long i = 0; i < shape.voxels(); i += i < 3 * shape.columns ? 1 : 997)
        require(result[i] == (voxels[i] != 0 && isKept(neighboursOf(voxels, shape, i))), "pattern");
    measure(state, *algorithm, shape, 2 * shape.voxels() * sizeof(T));
}

/// Deletes lone voxels.
template <class Algorithm, class Lut, class T>
void addLut(std::string const& name, Shape const& shape, unsigned long size, unsigned long centre)
{
    static Lut lut;
    container::Vector<unsigned char> lone(size);
    lone[centre] = 1;
    lut.addKernel(lone);
    for (bool const isNoise : {false, true})
        add(name + (isNoise ? ":noise/" : ":blobs/") + Voxel<T>::name + "/scalar/" + shape.name, [=](auto& state) {
            Ref<Algorithm> const algorithm = Algorithm::New();
            algorithm->morphologicalLut = &lut;
            algorithm->matchingFlag = morphology::SET_ZERO;
            algorithm->noMatchingFlag = morphology::SET_UNCHANGE;
            pattern<T>(state, algorithm, shape, isNoise, [](int neighbours) { return neighbours > 0; });
        });
}

template <class Algorithm, class T> void addEndPoints(std::string const& name, Shape const& shape)
{
    add(name + '/' + Voxel<T>::name + "/scalar/" + shape.name, [=](auto& state) {
        pattern<T>(state, Ref<Algorithm>(Algorithm::New()), shape, false,
                   [](int neighbours) { return neighbours == 1; });
    });
}

template <class T> void registerPatterns()
{
    using namespace morphology;
    registerMemcpy(Voxel<T>::name, sizeof(T), plane);
    addLut<ApplyMorphologicalLut2D, MorphologicalLut2D, T>("ApplyMorphologicalLut2D", plane, 9, 0);
    addEndPoints<EndPoints2D, T>("EndPoints2D", plane);
    registerMemcpy(Voxel<T>::name, sizeof(T), volume);
    addLut<ApplyMorphologicalLut3D, MorphologicalLut3D, T>("ApplyMorphologicalLut3D", volume, 27, 13);
    addEndPoints<EndPoints3D, T>("EndPoints3D", volume);
}

} // namespace

int main(int argc, char** argv)
{
    using namespace morphology;
    registerPatterns<unsigned char>();
    registerPatterns<unsigned short>();
    addReconstruction<unsigned char, Reconstruction2D>("Reconstruction2D", smallPlane, {4, 8}, true);
    addReconstruction<unsigned char, GrayScaleReconstruction2D>("GrayScaleReconstruction2D", smallPlane, {4, 8}, false);
    addReconstruction<unsigned short, GrayScaleReconstruction2D>("GrayScaleReconstruction2D", smallPlane, {4, 8},
                                                                 false);
    addReconstruction<float, GrayScaleReconstruction2D>("GrayScaleReconstruction2D", smallPlane, {4, 8}, false);
    addReconstruction<unsigned char, Reconstruction3D>("Reconstruction3D", volume, {6, 18, 26}, true);
    addReconstruction<unsigned char, GrayScaleReconstruction3D>("GrayScaleReconstruction3D", volume, {6, 18, 26},
                                                                false);
    addReconstruction<unsigned short, GrayScaleReconstruction3D>("GrayScaleReconstruction3D", volume, {26}, false);
    addReconstruction<float, GrayScaleReconstruction3D>("GrayScaleReconstruction3D", volume, {26}, false);
    add("EuclideanDistanceMap/uint8/scalar/256^3", distance);
    add("EuclideanDistanceMap:queue/uint8/plain/256^3", distanceByQueue);
    add("LocalThicknessMap/uint8/scalar/256^3", thickness);
    return bench::run(argc, argv);
}
