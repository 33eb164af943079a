#include "Support.h"

#include <qel/analysis/IntensityExtrema.h>
#include <qel/analysis/IntensityStatistics.h>

#include <cmath>

using namespace qel;
using namespace bench;

namespace {

template <class T> void extrema(benchmark::State& state, Shape const& shape, OptimLevelType level)
{
    memory::InMemoryImage in;
    fill(in, Voxel<T>::type, shape);
    Ref<analysis::IntensityExtrema> algorithm(analysis::IntensityExtrema::New());
    algorithm->setAutoCpuDispatch(false);
    algorithm->setOptimLevel(level);
    algorithm->input = &in;
    algorithm->run();
    require(algorithm->outputMinimum.get().asDouble() == 0.0, "minimum");
    require(std::abs(algorithm->outputMaximum.get().asDouble() - 255.0) < 0.5, "maximum");
    measure(state, *algorithm, shape, shape.voxels() * sizeof(T));
}

template <class T> void statistics(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in;
    fill(in, Voxel<T>::type, shape);
    Ref<analysis::IntensityStatistics> algorithm(analysis::IntensityStatistics::New());
    algorithm->input = &in;
    algorithm->run();
    require(std::abs(algorithm->outputMean.get().asDouble() - 127.5) < 2.0, "mean");
    measure(state, *algorithm, shape, shape.voxels() * sizeof(T));
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T>, Shape const& shape) {
        std::string const prefix = std::string("/") + Voxel<T>::name;
        registerRead(Voxel<T>::name, sizeof(T), shape);
        add("IntensityExtrema" + prefix + "/sse/" + shape.name,
            [=](benchmark::State& state) { extrema<T>(state, shape, VEC_SSE); });
        add("IntensityExtrema" + prefix + "/scalar/" + shape.name,
            [=](benchmark::State& state) { extrema<T>(state, shape, SCALAR); });
        add("IntensityStatistics" + prefix + "/scalar/" + shape.name,
            [=](benchmark::State& state) { statistics<T>(state, shape); });
    });
    return run(argc, argv);
}
