#include "Support.h"

#include <qel/segmentation/Labeling.h>
#include <qel/segmentation/Threshold.h>
#include <qel/segmentation/ThresholdByCriterion.h>

#include <algorithm>
#include <vector>

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

/// Box means of 2 * reach + 1 voxels along one axis; edges are repeated.
void smooth(std::vector<float>& voxels, unsigned long count, unsigned long stride, long reach)
{
    std::vector<float> line(count);
    auto const n = static_cast<long>(count);
    for (unsigned long start = 0; start < voxels.size(); ++start) {
        if (start / stride % count != 0)
            continue;
        auto const at = [&](long i) {
            return voxels[start + stride * static_cast<unsigned long>(std::clamp(i, 0l, n - 1))];
        };
        double sum = 0;
        for (long i = -reach; i <= reach; ++i)
            sum += at(i);
        for (long i = 0; i < n; ++i) {
            line[static_cast<unsigned long>(i)] = static_cast<float>(sum / static_cast<double>(2 * reach + 1));
            sum += at(i + reach + 1) - at(i - reach);
        }
        for (unsigned long i = 0; i < count; ++i)
            voxels[start + stride * i] = line[i];
    }
}

/// Blobs: smooth noise above its mean, so half of the voxels are 1.
void fillWithBlobs(memory::InMemoryImage& image, Shape const& shape)
{
    memory::InMemoryImage noise;
    fill(noise, QEL_UINT8, shape);
    std::vector<float> field(noise.getInternalBuffer(), noise.getInternalBuffer() + shape.voxels());
    for (int pass = 0; pass < 2; ++pass) {
        smooth(field, shape.columns, 1, 6);
        smooth(field, shape.rows, shape.columns, 6);
        if (shape.plans > 1)
            smooth(field, shape.plans, shape.columns * shape.rows, 6);
    }
    std::vector<float> sorted(field);
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<long>(sorted.size() / 2), sorted.end());
    float const middle = sorted[sorted.size() / 2];
    require(image.reserve(QEL_UINT8, shape.columns, shape.rows, shape.plans, 1, 1), "reserve");
    for (unsigned long i = 0; i < field.size(); ++i)
        image.getInternalBuffer()[i] = field[i] > middle;
}

template <class L> void label(benchmark::State& state, VoxelTypes type, Shape const& shape, bool isNoise)
{
    memory::InMemoryImage in, out;
    if (isNoise) {
        fill(in, QEL_UINT8, shape);
        for (unsigned long i = 0; i < shape.voxels(); ++i)
            in.getInternalBuffer()[i] &= 1;
    } else {
        fillWithBlobs(in, shape);
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
