#include "Support.h"

#include <qel/nonlinear_filtering/MedianFilter2D.h>
#include <qel/nonlinear_filtering/MedianFilter3D.h>

#include <algorithm>
#include <vector>

using namespace qel;
using namespace bench;
namespace nonlinear = qel::nonlinear_filtering;

namespace {

/// Of the square or the cube around a voxel in the middle of the image, where no border is near.
template <class T> T medianAround(T const* voxels, Shape const& shape, long reach)
{
    long const planReach = shape.plans > 1 ? reach : 0;
    std::vector<T> window;
    for (long z = -planReach; z <= planReach; ++z)
        for (long y = -reach; y <= reach; ++y)
            for (long x = -reach; x <= reach; ++x) {
                unsigned long const plan = shape.plans / 2 + static_cast<unsigned long>(z);
                unsigned long const row = shape.rows / 2 + static_cast<unsigned long>(y);
                unsigned long const column = shape.columns / 2 + static_cast<unsigned long>(x);
                window.push_back(voxels[(plan * shape.rows + row) * shape.columns + column]);
            }
    std::sort(window.begin(), window.end());
    return window[window.size() / 2];
}

template <class Filter, class T>
void median(benchmark::State& state, std::type_identity<T>, Shape const& shape, unsigned int radius, bool isRound)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<Filter> algorithm(Filter::New());
    algorithm->input = &in;
    algorithm->neighborhoodSize = radius;
    algorithm->neighborhoodShape = isRound ? 1 : 0;
    algorithm->output = &out;
    if (!isRound) {
        algorithm->run();
        unsigned long const middle =
            (shape.plans / 2 * shape.rows + shape.rows / 2) * shape.columns + shape.columns / 2;
        require(reinterpret_cast<T const*>(out.getInternalBuffer())[middle] ==
                    medianAround(reinterpret_cast<T const*>(in.getInternalBuffer()), shape, radius),
                "median");
    }
    measure(state, *algorithm, shape, 2 * shape.voxels() * sizeof(T));
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T> type, Shape const& shape) {
        registerMemcpy(Voxel<T>::name, sizeof(T), shape);
        bool const isPlane = shape.plans == 1;
        for (unsigned int const radius :
             isPlane ? std::vector<unsigned int>{1, 2, 3, 10} : std::vector<unsigned int>{1, 3})
            for (bool const isRound : {false, true}) {
                std::string const form = isPlane ? (isRound ? "/disk" : "/square") : (isRound ? "/ball" : "/cube");
                add(std::string(isPlane ? "MedianFilter2D/" : "MedianFilter3D/") + Voxel<T>::name + "/scalar/" +
                        shape.name + form + "/radius:" + std::to_string(radius),
                    [=](benchmark::State& state) {
                        if (isPlane)
                            median<nonlinear::MedianFilter2D>(state, type, shape, radius, isRound);
                        else
                            median<nonlinear::MedianFilter3D>(state, type, shape, radius, isRound);
                    });
            }
    });
    return run(argc, argv);
}
