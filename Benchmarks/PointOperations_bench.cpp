#include "Support.h"

#include <qel/point_operations/CopyImage.h>
#include <qel/point_operations/MaskImageProcessing.h>

#include <cstring>

using namespace qel;
using namespace bench;

namespace {

template <class T> void copy(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<point_operations::CopyImage> algorithm(point_operations::CopyImage::New());
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->run();
    require(std::memcmp(in.getInternalBuffer(), out.getInternalBuffer(), shape.voxels() * sizeof(T)) == 0, "copy");
    measure(state, *algorithm, shape, 2 * shape.voxels() * sizeof(T));
}

template <class T> void mask(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, binary, out;
    fill(in, Voxel<T>::type, shape);
    fill(binary, QEL_UINT8, shape);
    for (unsigned long x = 0; x < shape.voxels(); ++x)
        binary.getInternalBuffer()[x] &= 1;
    Ref<point_operations::MaskImageProcessing> algorithm(point_operations::MaskImageProcessing::New());
    algorithm->input = &in;
    algorithm->inputBinary = &binary;
    algorithm->output = &out;
    algorithm->run();
    auto const* const voxels = reinterpret_cast<T const*>(in.getInternalBuffer());
    auto const* const kept = reinterpret_cast<T const*>(out.getInternalBuffer());
    for (unsigned long x = 0; x < 1000; ++x)
        require(kept[x] == (binary.getInternalBuffer()[x] ? voxels[x] : T(0)), "mask");
    measure(state, *algorithm, shape, shape.voxels() * (2 * sizeof(T) + 1));
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T>, Shape const& shape) {
        std::string const suffix = std::string("/") + Voxel<T>::name + "/scalar/" + shape.name;
        registerMemcpy(Voxel<T>::name, sizeof(T), shape);
        add("CopyImage" + suffix, [=](benchmark::State& state) { copy<T>(state, shape); });
        add("MaskImageProcessing" + suffix, [=](benchmark::State& state) { mask<T>(state, shape); });
    });
    add("CopyImage/uint8/scalar/64", [](benchmark::State& state) { copy<unsigned char>(state, tiny); });
    return run(argc, argv);
}
