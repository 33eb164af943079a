#include "Support.h"

#include <qel/filtering/smoothing/GaussianFilter2D.h>
#include <qel/filtering/smoothing/GaussianFilter3D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter2D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>
#include <qel/linear_filtering/kernel_factory.h>

#include <cmath>
#include <random>

using namespace qel;
using namespace bench;
using namespace qel::linear_filtering;

namespace {

/// A kernel that no filter can take apart.
kernel::Kernel2D randomKernel2D(long radius)
{
    std::mt19937 random(7);
    kernel::Kernel2D kernel;
    for (long y = -radius; y <= radius; ++y)
        for (long x = -radius; x <= radius; ++x)
            kernel.addPoint(x, y, static_cast<double>(random() % 1000) / 1000);
    kernel.normalize();
    return kernel;
}

kernel::Kernel3D randomKernel3D(long radius)
{
    std::mt19937 random(7);
    kernel::Kernel3D kernel;
    for (long z = -radius; z <= radius; ++z)
        for (long y = -radius; y <= radius; ++y)
            for (long x = -radius; x <= radius; ++x)
                kernel.addPoint(x, y, z, static_cast<double>(random() % 1000) / 1000);
    kernel.normalize();
    return kernel;
}

template <class T, class Filter, class Kernel, class OffsetColumns>
void filterBy(benchmark::State& state, Shape const& shape, OptimLevelType level, Filter& algorithm,
              Property<Kernel>& property, Kernel const& kernel, OffsetColumns const& indexOf)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    algorithm.setAutoCpuDispatch(false);
    algorithm.setOptimLevel(level);
    algorithm.input = &in;
    property = kernel;
    algorithm.outputMode = QEL_OUTPUT_MODE_CUSTOM;
    algorithm.outputCustomType = Voxel<T>::type;
    algorithm.output = &out;
    algorithm.run();
    auto const* const voxels = reinterpret_cast<T const*>(in.getInternalBuffer());
    auto const middle =
        static_cast<long>((shape.plans / 2 * shape.rows + shape.rows / 2) * shape.columns + shape.columns / 2);
    float sum = 0;
    for (unsigned long i = 0; i < kernel.getNumOfPoints(); ++i)
        sum +=
            static_cast<float>(kernel.getWeight(i)) * static_cast<float>(voxels[middle + indexOf(kernel.getOffset(i))]);
    require(reinterpret_cast<T const*>(out.getInternalBuffer())[middle] == static_cast<T>(sum), "weighted sum");
    measure(state, algorithm, shape, 2 * shape.voxels() * sizeof(T));
}

template <class T> void plane2D(benchmark::State& state, OptimLevelType level, kernel::Kernel2D const& kernel)
{
    Ref<FiniteImpulseResponseFilter2D> filter(FiniteImpulseResponseFilter2D::New());
    filterBy<T>(state, plane, level, *filter, filter->kernel2D, kernel,
                [](kernel::Offset2D const& offset) { return offset.y * static_cast<long>(plane.columns) + offset.x; });
}

template <class T> void volume3D(benchmark::State& state, OptimLevelType level, kernel::Kernel3D const& kernel)
{
    Ref<FiniteImpulseResponseFilter3D> filter(FiniteImpulseResponseFilter3D::New());
    filterBy<T>(state, volume, level, *filter, filter->kernel3D, kernel, [](kernel::Offset3D const& offset) {
        return (offset.z * static_cast<long>(volume.rows) + offset.y) * static_cast<long>(volume.columns) + offset.x;
    });
}

template <class T> void addLevel(std::string const& levelName, OptimLevelType level)
{
    auto const name = [&](char const* dimensions, char const* shape, std::string const& kernel) {
        return std::string("FiniteImpulseResponseFilter") + dimensions + "/" + Voxel<T>::name + "/" + levelName + "/" +
               shape + "/" + kernel;
    };
    auto const addPlane = [&](std::string const& kernelName, kernel::Kernel2D const& kernel) {
        add(name("2D", plane.name, kernelName), [=](benchmark::State& state) { plane2D<T>(state, level, kernel); });
    };
    auto const addVolume = [&](std::string const& kernelName, kernel::Kernel3D const& kernel) {
        add(name("3D", volume.name, kernelName), [=](benchmark::State& state) { volume3D<T>(state, level, kernel); });
    };
    using namespace kernel_factory;
    addPlane("row:13", createGaussian1D(13, 2, QEL_KERNEL_DIRECTION2D_X));
    addPlane("column:13", createGaussian1D(13, 2, QEL_KERNEL_DIRECTION2D_Y));
    addPlane("square:3", randomKernel2D(1));
    addPlane("square:7", randomKernel2D(3));
    addVolume("row:13", createGaussian1D(13, 2, QEL_KERNEL_DIRECTION3D_X));
    addVolume("column:13", createGaussian1D(13, 2, QEL_KERNEL_DIRECTION3D_Y));
    addVolume("plans:13", createGaussian1D(13, 2, QEL_KERNEL_DIRECTION3D_Z));
    addVolume("cube:3", randomKernel3D(1));
}

/// The centre of a smoothed point.
template <class Filter> void checkPoint(Filter& filter, unsigned long plans)
{
    memory::InMemoryImage in, out;
    in.reserve(QEL_FLOAT32, 41, 41, plans, 1, 1);
    auto* const voxels = reinterpret_cast<float*>(in.getInternalBuffer());
    unsigned long const middle = (plans / 2 * 41 + 20) * 41 + 20;
    for (unsigned long i = 0; i < 41 * 41 * plans; ++i)
        voxels[i] = i == middle ? 1.f : 0.f;
    filter.input = &in;
    filter.output = &out;
    filter.run();
    double const peak = 1 / (2 * std::sqrt(2 * M_PI));
    double const expected = plans == 1 ? peak * peak : peak * peak * peak;
    double const actual = reinterpret_cast<float const*>(out.getInternalBuffer())[middle];
    require(std::abs(actual / expected - 1) < 0.01, "smoothed point");
}

template <class T, class Filter> void gaussian(benchmark::State& state, Shape const& shape)
{
    Ref<Filter> filter(Filter::New());
    checkPoint(*filter, shape.plans == 1 ? 1 : 41);
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape);
    filter->input = &in;
    filter->output = &out;
    measure(state, *filter, shape, 2 * shape.voxels() * sizeof(T));
}

template <class T> void addType()
{
    registerMemcpy(Voxel<T>::name, sizeof(T), plane);
    registerMemcpy(Voxel<T>::name, sizeof(T), volume);
    addLevel<T>("sse", VEC_SSE);
    addLevel<T>("scalar", SCALAR);
    using namespace filtering::smoothing;
    std::string const type = Voxel<T>::name;
    add("GaussianFilter2D/" + type + "/scalar/4096/sigma:2",
        [](benchmark::State& state) { gaussian<T, GaussianFilter2D>(state, plane); });
    add("GaussianFilter3D/" + type + "/scalar/256^3/sigma:2",
        [](benchmark::State& state) { gaussian<T, GaussianFilter3D>(state, volume); });
}

} // namespace

int main(int argc, char** argv)
{
    addType<float>();
    addType<unsigned char>();
    addType<unsigned short>();
    return run(argc, argv);
}
