#include "Support.h"

#include <qel/miscellaneous/BorderConditionExtrapole.h>
#include <qel/miscellaneous/Decimate2D.h>

#include <algorithm>

using namespace qel;
using namespace bench;

namespace {

template <class T> void decimate(benchmark::State& state, Shape const& shape, miscellaneous::DecimationOp operation)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<miscellaneous::Decimate2D> algorithm(miscellaneous::Decimate2D::New());
    algorithm->input = &in;
    algorithm->operatorType = operation;
    algorithm->output = &out;
    algorithm->run();
    auto const* const voxels = reinterpret_cast<T const*>(in.getInternalBuffer());
    auto const* const result = reinterpret_cast<T const*>(out.getInternalBuffer());
    for (unsigned long x = 0; x < shape.columns / 2; ++x) {
        T const* const upper = voxels + 2 * x;
        T const* const lower = upper + shape.columns;
        T const expected = operation == miscellaneous::MAX
                               ? std::max({upper[0], upper[1], lower[0], lower[1]})
                               : static_cast<T>((static_cast<float>(upper[0]) + static_cast<float>(upper[1]) +
                                                 static_cast<float>(lower[0]) + static_cast<float>(lower[1])) *
                                                0.25f);
        require(result[x] == expected, "decimation");
    }
    measure(state, *algorithm, shape, shape.voxels() * sizeof(T) * 5 / 4);
}

template <class T> void extrapole(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    require(out.reserve(Voxel<T>::type, 2 * shape.columns, 2 * shape.rows, shape.plans, 1, 1), "reserve");
    Ref<miscellaneous::BorderConditionExtrapole> algorithm(miscellaneous::BorderConditionExtrapole::New());
    algorithm->input = &in;
    algorithm->bctype = 2;
    algorithm->zoomFactor = 2.0;
    algorithm->output = &out;
    algorithm->run();
    auto const* const voxels = reinterpret_cast<T const*>(in.getInternalBuffer());
    auto const* const result = reinterpret_cast<T const*>(out.getInternalBuffer());
    unsigned long const middle = shape.rows / 2 * 2 * shape.columns + shape.columns / 2;
    for (unsigned long x = 0; x < shape.columns / 2; ++x)
        require(result[middle + x] == voxels[x] && result[middle - 1 - x] == voxels[x], "margin");
    measure(state, *algorithm, shape, shape.voxels() * sizeof(T) * 5);
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T>, Shape const& shape) {
        std::string const suffix = std::string("/") + Voxel<T>::name + "/scalar/" + shape.name;
        registerMemcpy(Voxel<T>::name, sizeof(T), shape);
        add("Decimate2D/mean" + suffix, [=](auto& state) { decimate<T>(state, shape, miscellaneous::MEAN); });
        add("Decimate2D/max" + suffix, [=](auto& state) { decimate<T>(state, shape, miscellaneous::MAX); });
        add("BorderConditionExtrapole/mirror" + suffix, [=](auto& state) { extrapole<T>(state, shape); });
    });
    return run(argc, argv);
}
