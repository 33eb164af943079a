#include "Support.h"

#include <qel/point_operations/Anamorphosis.h>
#include <qel/point_operations/ArithmeticImageProcessing.h>
#include <qel/point_operations/ArithmeticValueProcessing.h>
#include <qel/point_operations/CopyImage.h>
#include <qel/point_operations/GradientMagnitude2D.h>
#include <qel/point_operations/LogicalImageProcessing.h>
#include <qel/point_operations/LogicalNotProcessing.h>
#include <qel/point_operations/LogicalValueProcessing.h>
#include <qel/point_operations/MaskImageProcessing.h>

#include <cstring>
#include <utility>

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

template <class T> T const* voxelsOf(memory::InMemoryImage& image)
{
    return reinterpret_cast<T const*>(image.getInternalBuffer());
}

unsigned long bytesOf(ImageModel const& image, Shape const& shape)
{
    return shape.voxels() * memory::sizeOfVoxelType(image.getVoxelType());
}

/// Converts both inputs where the output is wider: integers added, subtracted, divided or multiplied.
template <class T> void arithmetic(benchmark::State& state, int op, Shape const& shape)
{
    memory::InMemoryImage first, second, out;
    fill(first, Voxel<T>::type, shape);
    fill(second, Voxel<T>::type, shape);
    Ref<point_operations::ArithmeticImageProcessing> algorithm(point_operations::ArithmeticImageProcessing::New());
    algorithm->input1 = &first;
    algorithm->input2 = &second;
    algorithm->arithmeticOperator = op;
    algorithm->output = &out;
    algorithm->run();
    if (op == point_operations::ARITHMETIC_MAXIMUM)
        require(std::memcmp(first.getInternalBuffer(), out.getInternalBuffer(), bytesOf(out, shape)) == 0, "maximum");
    measure(state, *algorithm, shape, 2 * bytesOf(first, shape) + bytesOf(out, shape));
}

template <class T> void addValue(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<point_operations::ArithmeticValueProcessing> algorithm(point_operations::ArithmeticValueProcessing::New());
    algorithm->input = &in;
    algorithm->inputValue = 100;
    algorithm->output = &out;
    algorithm->run();
    measure(state, *algorithm, shape, bytesOf(in, shape) + bytesOf(out, shape));
}

template <class T> void logicalImages(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage first, second, out;
    fill(first, Voxel<T>::type, shape);
    fill(second, Voxel<T>::type, shape);
    Ref<point_operations::LogicalImageProcessing> algorithm(point_operations::LogicalImageProcessing::New());
    algorithm->input1 = &first;
    algorithm->input2 = &second;
    algorithm->logicalOperator = point_operations::LOGICAL_NAND;
    algorithm->output = &out;
    algorithm->run();
    for (unsigned long x = 0; x < 1000; ++x)
        require(voxelsOf<T>(out)[x] == static_cast<T>(~voxelsOf<T>(first)[x]), "nand");
    measure(state, *algorithm, shape, 3 * bytesOf(first, shape));
}

template <class T> void logicalValue(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<point_operations::LogicalValueProcessing> algorithm(point_operations::LogicalValueProcessing::New());
    algorithm->input = &in;
    algorithm->inputValue = 0x5a;
    algorithm->logicalOperator = point_operations::LOGICAL_SUB;
    algorithm->output = &out;
    algorithm->run();
    for (unsigned long x = 0; x < 1000; ++x)
        require(voxelsOf<T>(out)[x] == (voxelsOf<T>(in)[x] & static_cast<T>(~0x5a)), "sub");
    measure(state, *algorithm, shape, 2 * bytesOf(in, shape));
}

template <class T> void logicalNot(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    Ref<point_operations::LogicalNotProcessing> algorithm(point_operations::LogicalNotProcessing::New());
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->run();
    for (unsigned long x = 0; x < 1000; ++x)
        require(voxelsOf<T>(out)[x] == static_cast<T>(~voxelsOf<T>(in)[x]), "not");
    measure(state, *algorithm, shape, 2 * bytesOf(in, shape));
}

/// A table of 256 entries: with a step of 1 from 0, and with all steps of the computation.
template <class T> void anamorphosis(benchmark::State& state, bool hasMinAndStep, Shape const& shape)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    container::Vector<double> lut(256);
    for (unsigned long i = 0; i < 256; ++i)
        lut[i] = static_cast<double>(255 - i);
    Ref<point_operations::Anamorphosis> algorithm(point_operations::Anamorphosis::New());
    algorithm->input = &in;
    algorithm->lut = lut;
    if (hasMinAndStep) {
        algorithm->inputRange = math::Vector2<double>(-1, 255);
        algorithm->step = 2;
    }
    algorithm->output = &out;
    algorithm->run();
    for (unsigned long x = 0; x < 1000; ++x) {
        double const voxel = static_cast<double>(voxelsOf<T>(in)[x]);
        auto const index = static_cast<unsigned long>(hasMinAndStep ? (voxel + 1) / 2 : voxel);
        require(voxelsOf<T>(out)[x] == static_cast<T>(lut[index]), "anamorphosis");
    }
    measure(state, *algorithm, shape, 2 * bytesOf(in, shape));
}

template <class T> void magnitude(benchmark::State& state, Shape const& shape)
{
    memory::InMemoryImage first, second, out;
    fill(first, Voxel<T>::type, shape);
    fill(second, Voxel<T>::type, shape);
    std::memset(second.getInternalBuffer(), 0, bytesOf(second, shape));
    Ref<point_operations::GradientMagnitude2D> algorithm(point_operations::GradientMagnitude2D::New());
    algorithm->input1 = &first;
    algorithm->input2 = &second;
    algorithm->output = &out;
    algorithm->run();
    if (sizeof(T) > 1)
        require(std::memcmp(first.getInternalBuffer(), out.getInternalBuffer(), bytesOf(out, shape)) == 0, "magnitude");
    measure(state, *algorithm, shape, 3 * bytesOf(first, shape));
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T>, Shape const& shape) {
        std::string const suffix = std::string("/") + Voxel<T>::name + "/scalar/" + shape.name;
        registerMemcpy(Voxel<T>::name, sizeof(T), shape);
        add("CopyImage" + suffix, [=](benchmark::State& state) { copy<T>(state, shape); });
        add("MaskImageProcessing" + suffix, [=](benchmark::State& state) { mask<T>(state, shape); });
        using namespace point_operations;
        for (auto const& [name, op] :
             {std::pair{"add", ARITHMETIC_ADD}, std::pair{"multiply", ARITHMETIC_MULTIPLY},
              std::pair{"divide", ARITHMETIC_DIVIDE}, std::pair{"maximum", ARITHMETIC_MAXIMUM}})
            add(std::string("ArithmeticImageProcessing:") + name + suffix,
                [=, op = op](benchmark::State& state) { arithmetic<T>(state, op, shape); });
        add("ArithmeticValueProcessing:add" + suffix, [=](benchmark::State& state) { addValue<T>(state, shape); });
        if constexpr (std::is_integral_v<T>) {
            add("LogicalImageProcessing:nand" + suffix,
                [=](benchmark::State& state) { logicalImages<T>(state, shape); });
            add("LogicalValueProcessing:sub" + suffix, [=](benchmark::State& state) { logicalValue<T>(state, shape); });
            add("LogicalNotProcessing" + suffix, [=](benchmark::State& state) { logicalNot<T>(state, shape); });
        }
        add("Anamorphosis:plain" + suffix, [=](benchmark::State& state) { anamorphosis<T>(state, false, shape); });
        add("Anamorphosis:min+step" + suffix, [=](benchmark::State& state) { anamorphosis<T>(state, true, shape); });
        add("GradientMagnitude2D:euclidean" + suffix, [=](benchmark::State& state) { magnitude<T>(state, shape); });
    });
    add("CopyImage/uint8/scalar/64", [](benchmark::State& state) { copy<unsigned char>(state, tiny); });
    return run(argc, argv);
}
