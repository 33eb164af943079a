#include "Support.h"

#include <qel/segmentation/Labeling.h>
#include <qel/segmentation/Threshold.h>
#include <qel/segmentation/ThresholdByCriterion.h>

using namespace qel;
using namespace bench;

namespace {

template <class T> void requireBand(memory::InMemoryImage& in, memory::InMemoryImage& out, double low, double high)
{
    auto const* const voxels = reinterpret_cast<T const*>(in.getInternalBuffer());
    for (unsigned long x = 0; x < 1000; ++x)
        require(out.getInternalBuffer()[x] == (voxels[x] >= low && voxels[x] <= high), "threshold");
}

template <class T> void threshold(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<segmentation::Threshold> algorithm(segmentation::Threshold::New());
    algorithm->input = &in;
    algorithm->lowLevel = 64.0;
    algorithm->highLevel = 191.5;
    algorithm->output = &out;
    algorithm->run();
    requireBand<T>(in, out, 64.0, 191.5);
    measure(state, *algorithm, shape, shape.voxels() * (sizeof(T) + 1));
}

template <class T> void thresholdByCriterion(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<segmentation::ThresholdByCriterion> algorithm(segmentation::ThresholdByCriterion::New());
    algorithm->input = &in;
    algorithm->criterion = segmentation::LESS_THAN_OR_EQUAL_TO;
    algorithm->value = Scalar(128u);
    algorithm->output = &out;
    algorithm->run();
    requireBand<T>(in, out, 0.0, 128.0);
    measure(state, *algorithm, shape, shape.voxels() * (sizeof(T) + 1));
}

template <class L> void label(benchmark::State& state, VoxelTypes type, Shape const& shape, bool isNoise)
{
    memory::InMemoryImage in, out;
    if (isNoise) {
        fill(in, QEL_UINT8, shape);
        for (unsigned long i = 0; i < shape.voxels(); ++i)
            in.getInternalBuffer()[i] &= 1;
    } else {
        fill(in, QEL_UINT8, shape, Picture::Blobs);
    }
    require(out.reserve(type, shape.columns, shape.rows, shape.plans, 1, 1), "reserve");
    Ref<segmentation::Labeling> algorithm(segmentation::Labeling::New());
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->run();
    auto const* const labels = reinterpret_cast<L const*>(out.getInternalBuffer());
    unsigned char const* const voxels = in.getInternalBuffer();
    for (unsigned long x = 1; x < shape.columns; ++x) {
        require((labels[x] != 0) == (voxels[x] != 0), "background");
        require(voxels[x - 1] == 0 || voxels[x] == 0 || labels[x - 1] == labels[x], "neighbours");
    }
    measure(state, *algorithm, shape, shape.voxels() * (1 + sizeof(L)));
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T>, Shape const& shape) {
        std::string const suffix = std::string("/") + Voxel<T>::name + "/scalar/" + shape.name;
        registerMemcpy(Voxel<T>::name, sizeof(T), shape);
        add("Threshold" + suffix, [=](benchmark::State& state) { threshold<T>(state, shape); });
        add("ThresholdByCriterion" + suffix, [=](benchmark::State& state) { thresholdByCriterion<T>(state, shape); });
    });
    add("Threshold/uint8/scalar/64", [](benchmark::State& state) { threshold<unsigned char>(state, tiny); });
    for (Shape const& shape : {plane, volume}) {
        std::string const suffix = std::string("/scalar/") + shape.name;
        add("Labeling/blobs/uint16" + suffix,
            [=](auto& state) { label<unsigned short>(state, QEL_UINT16, shape, false); });
        add("Labeling/blobs/uint32" + suffix,
            [=](auto& state) { label<unsigned int>(state, QEL_UINT32, shape, false); });
        add("Labeling/noise/uint32" + suffix,
            [=](auto& state) { label<unsigned int>(state, QEL_UINT32, shape, true); });
    }
    return run(argc, argv);
}
