#include "Support.h"

#include <qel/filtering/smoothing/BoxFilter2D.h>
#include <qel/filtering/smoothing/BoxFilter3D.h>
#include <qel/filtering/smoothing/NonLocalMeanFilter2D.h>
#include <qel/filtering/smoothing/NonLocalMeanFilter3D.h>

#include <cmath>

using namespace qel;
using namespace bench;
namespace smoothing = qel::filtering::smoothing;

namespace {

constexpr Shape block{"64^3", 64, 64, 64};

template <class Size> Size cubeOf(unsigned int side);
template <> math::Vector2<unsigned int> cubeOf(unsigned int side) { return {side, side}; }
template <> math::Vector3<unsigned int> cubeOf(unsigned int side) { return {side, side, side}; }

/// The mean around a voxel in the middle of the image, where no border is near.
template <class T> double meanAround(T const* voxels, Shape const& shape, long reach)
{
    long const planReach = shape.plans > 1 ? reach : 0;
    double sum = 0;
    double count = 0;
    for (long z = -planReach; z <= planReach; ++z)
        for (long y = -reach; y <= reach; ++y)
            for (long x = -reach; x <= reach; ++x, ++count) {
                unsigned long const plan = shape.plans / 2 + static_cast<unsigned long>(z);
                unsigned long const row = shape.rows / 2 + static_cast<unsigned long>(y);
                unsigned long const column = shape.columns / 2 + static_cast<unsigned long>(x);
                sum += voxels[(plan * shape.rows + row) * shape.columns + column];
            }
    return sum / count;
}

template <class Box, class Size, class T>
void box(benchmark::State& state, std::type_identity<T>, Shape const& shape, unsigned int side)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<Box> algorithm(Box::New());
    algorithm->input = &in;
    algorithm->boxSize = cubeOf<Size>(side);
    algorithm->output = &out;
    algorithm->run();
    unsigned long const middle = (shape.plans / 2 * shape.rows + shape.rows / 2) * shape.columns + shape.columns / 2;
    double const mean = meanAround(reinterpret_cast<T const*>(in.getInternalBuffer()), shape, side / 2);
    double const result = reinterpret_cast<T const*>(out.getInternalBuffer())[middle];
    require(std::abs(result - (std::is_floating_point_v<T> ? mean : std::trunc(mean))) < 1e-3, "box");
    measure(state, *algorithm, shape, 2 * shape.voxels() * sizeof(T));
}

template <class Filter>
void nonLocalMeans(benchmark::State& state, Shape const& shape, unsigned int patch, unsigned int window)
{
    memory::InMemoryImage in, out;
    fill(in, QEL_FLOAT32, shape);
    Ref<Filter> algorithm(Filter::New());
    algorithm->input = &in;
    algorithm->patchSize = patch;
    algorithm->searchWindowSize = window;
    algorithm->similarity = Scalar(60.0);
    algorithm->output = &out;
    measure(state, *algorithm, shape, 2 * shape.voxels() * sizeof(float));
    // Smoothed, and around the same mean.
    auto const* const before = reinterpret_cast<float const*>(in.getInternalBuffer());
    auto const* const after = reinterpret_cast<float const*>(out.getInternalBuffer());
    double sums[2] = {}, squares[2] = {};
    for (unsigned long x = 0; x < shape.voxels(); ++x) {
        sums[0] += before[x];
        sums[1] += after[x];
        squares[0] += double(before[x]) * before[x];
        squares[1] += double(after[x]) * after[x];
    }
    double const voxels = static_cast<double>(shape.voxels());
    require(std::abs(sums[0] - sums[1]) < 3 * voxels, "mean of non-local means");
    require(squares[1] - sums[1] * sums[1] / voxels < squares[0] - sums[0] * sums[0] / voxels, "non-local means");
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T> type, Shape const& shape) {
        registerMemcpy(Voxel<T>::name, sizeof(T), shape);
        bool const isPlane = shape.plans == 1;
        for (unsigned int const side : {3u, 7u, 31u, 101u})
            add(std::string(isPlane ? "BoxFilter2D/" : "BoxFilter3D/") + Voxel<T>::name + "/scalar/" + shape.name +
                    "/side:" + std::to_string(side),
                [=](benchmark::State& state) {
                    if (isPlane)
                        box<smoothing::BoxFilter2D, math::Vector2<unsigned int>>(state, type, shape, side);
                    else
                        box<smoothing::BoxFilter3D, math::Vector3<unsigned int>>(state, type, shape, side);
                });
    });
    for (unsigned int const patch : {1u, 3u, 10u})
        add("NonLocalMeanFilter2D/float32/scalar/1024/patch:" + std::to_string(patch) + "/window:6",
            [=](benchmark::State& state) {
                nonLocalMeans<smoothing::NonLocalMeanFilter2D>(state, megapixel, patch, 6);
            });
    add("NonLocalMeanFilter3D/float32/scalar/64^3/patch:1/window:2",
        [](benchmark::State& state) { nonLocalMeans<smoothing::NonLocalMeanFilter3D>(state, block, 1, 2); });
    return run(argc, argv);
}
