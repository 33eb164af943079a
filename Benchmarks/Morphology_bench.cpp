#include "Support.h"

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/morphology/Erosion2D.h>
#include <qel/morphology/Erosion3D.h>
#include <qel/morphology/ErosionBall3D.h>
#include <qel/morphology/ErosionDisk2D.h>
#include <qel/morphology/ErosionLine2D.h>
#include <qel/morphology/OpeningDisk2D.h>

#include <algorithm>
#include <cmath>

using namespace qel;
using namespace bench;

namespace {

/// The smallest voxel under the offsets that `isIn` takes, at a voxel in the middle of the image.
template <class T, class IsIn>
T smallest(memory::InMemoryImage const& image, Shape const& shape, unsigned long column, long reach, IsIn const& isIn)
{
    auto const* const voxels = reinterpret_cast<T const*>(image.getInternalBuffer());
    auto const width = static_cast<long>(shape.columns);
    auto const plan = static_cast<long>(shape.rows) * width;
    T const* const centre = voxels + static_cast<long>(shape.plans / 2) * plan +
                            static_cast<long>(shape.rows / 2) * width + static_cast<long>(column);
    T value = *centre;
    long const depth = shape.plans > 1 ? reach : 0;
    for (long z = -depth; z <= depth; ++z)
        for (long y = -reach; y <= reach; ++y)
            for (long x = -reach; x <= reach; ++x)
                if (isIn(x, y, z))
                    value = std::min(value, centre[z * plan + y * width + x]);
    return value;
}

/// Measures an algorithm whose properties are set but for the images. `isIn` tells its element, of at most `reach`; an
/// opening has none and is not checked.
template <class T, class Algorithm, class IsIn>
void run(benchmark::State& state, Ref<Algorithm> algorithm, Shape const& shape, OptimLevelType level, long reach,
         IsIn const& isIn)
{
    memory::InMemoryImage in, out;
    fill(in, Voxel<T>::type, shape, Picture::Grey);
    algorithm->input = &in;
    algorithm->output = &out;
    algorithm->setAutoCpuDispatch(false);
    algorithm->setOptimLevel(level);
    algorithm->run();
    auto const* const result = reinterpret_cast<T const*>(out.getInternalBuffer()) +
                               (shape.plans / 2 * shape.rows + shape.rows / 2) * shape.columns;
    for (unsigned long x = 110; reach > 0 && x < 130; ++x)
        require(result[x] == smallest<T>(in, shape, x, reach, isIn), "erosion");
    measure(state, *algorithm, shape, 2 * shape.voxels() * sizeof(T));
}

char const* nameOf(OptimLevelType level) { return level == SCALAR ? "/scalar/" : "/sse/"; }

template <class T> void registerPlane(std::string const& type, OptimLevelType level)
{
    std::string const suffix = '/' + type + nameOf(level) + plane.name;
    auto const box = [](long reach) {
        return [reach](long x, long y, long z) { return std::max({std::abs(x), std::abs(y), std::abs(z)}) <= reach; };
    };
    auto const diamond = [](long reach) {
        return [reach](long x, long y, long) { return std::abs(x) + std::abs(y) <= reach; };
    };
    auto const ball = [](long reach) {
        return [reach](long x, long y, long z) { return x * x + y * y + z * z <= reach * reach; };
    };
    for (unsigned int const iterations : {1u, 10u})
        for (int const neighbours : {4, 8})
            add("Erosion2D:" + std::to_string(neighbours) + suffix + "/iterations:" + std::to_string(iterations),
                [=](auto& state) {
                    Ref<morphology::Erosion2D> const erosion = morphology::Erosion2D::New();
                    erosion->nbIter = iterations;
                    erosion->neighborhood2D = neighbours == 4 ? QEL_NEIGHBORHOOD2D_4 : QEL_NEIGHBORHOOD2D_8;
                    auto const reach = static_cast<long>(iterations);
                    if (neighbours == 4)
                        run<T>(state, erosion, plane, level, reach, diamond(reach));
                    else
                        run<T>(state, erosion, plane, level, reach, box(reach));
                });
    for (unsigned int const radius : {3u, 10u, 30u})
        add("ErosionDisk2D:precise" + suffix + "/radius:" + std::to_string(radius), [=](auto& state) {
            Ref<morphology::ErosionDisk2D> const erosion = morphology::ErosionDisk2D::New();
            erosion->elementSize = radius;
            erosion->precision = QEL_ALGO_PRECISE;
            run<T>(state, erosion, plane, level, static_cast<long>(radius), ball(static_cast<long>(radius)));
        });
    add("ErosionDisk2D:fast" + suffix + "/radius:10", [=](auto& state) {
        Ref<morphology::ErosionDisk2D> const erosion = morphology::ErosionDisk2D::New();
        erosion->elementSize = 10u;
        auto const octagon = [](long x, long y, long) {
            return std::max(std::abs(x), std::abs(y)) <= 10 && std::abs(x) + std::abs(y) <= 15;
        };
        run<T>(state, erosion, plane, level, 10, octagon);
    });
    for (int const angle : {0, 10, 45, 90})
        for (unsigned int const size : {15u, 101u})
            add("ErosionLine2D:" + std::to_string(angle) + suffix + "/size:" + std::to_string(size), [=](auto& state) {
                Ref<morphology::ErosionLine2D> const erosion = morphology::ErosionLine2D::New();
                erosion->orientationAngle = angle;
                erosion->elementSize = size;
                double const radians = angle * 3.141592653589793 / 180;
                auto const last = static_cast<long>(size) - 1;
                auto const line = [=](long x, long y, long) {
                    return angle <= 40 ? x >= 0 && y == std::floor(static_cast<double>(x) * std::tan(radians) + 0.5)
                                       : y >= 0 && x == std::floor(static_cast<double>(y) / std::tan(radians) + 0.5);
                };
                run<T>(state, erosion, plane, level, last, line);
            });
}

template <class T> void registerVolume(std::string const& type, OptimLevelType level)
{
    std::string const suffix = '/' + type + nameOf(level) + volume.name;
    for (unsigned int const iterations : {1u, 10u})
        for (int const neighbours : {6, 18, 26})
            add("Erosion3D:" + std::to_string(neighbours) + suffix + "/iterations:" + std::to_string(iterations),
                [=](auto& state) {
                    Ref<morphology::Erosion3D> const erosion = morphology::Erosion3D::New();
                    erosion->nbIter = iterations;
                    erosion->neighborhood3D = neighbours == 6    ? QEL_NEIGHBORHOOD3D_6
                                              : neighbours == 18 ? QEL_NEIGHBORHOOD3D_18
                                                                 : QEL_NEIGHBORHOOD3D_26;
                    auto const reach = static_cast<long>(iterations);
                    long const most = (neighbours == 6 ? 1 : neighbours == 18 ? 2 : 3) * reach;
                    run<T>(state, erosion, volume, level, reach,
                           [=](long x, long y, long z) { return std::abs(x) + std::abs(y) + std::abs(z) <= most; });
                });
    for (unsigned int const radius : {3u, 10u})
        for (AlgoPrecisionType const precision : {QEL_ALGO_PRECISE, QEL_ALGO_FAST})
            add(std::string("ErosionBall3D:") + (precision == QEL_ALGO_FAST ? "fast" : "precise") + suffix +
                    "/radius:" + std::to_string(radius),
                [=](auto& state) {
                    Ref<morphology::ErosionBall3D> const erosion = morphology::ErosionBall3D::New();
                    erosion->elementSize = radius;
                    erosion->precision = precision;
                    auto const reach = static_cast<long>(radius);
                    run<T>(state, erosion, volume, level, precision == QEL_ALGO_FAST ? 0 : reach,
                           [=](long x, long y, long z) { return x * x + y * y + z * z <= reach * reach; });
                });
}

template <class T> void registerType()
{
    registerMemcpy(Voxel<T>::name, sizeof(T), plane);
    for (OptimLevelType const level : {SCALAR, VEC_SSE})
        registerPlane<T>(Voxel<T>::name, level);
    add(std::string("OpeningDisk2D:precise/") + Voxel<T>::name + "/scalar/" + plane.name + "/radius:10",
        [](auto& state) {
            Ref<morphology::OpeningDisk2D> const opening = morphology::OpeningDisk2D::New();
            opening->elementSize = 10u;
            opening->precision = QEL_ALGO_PRECISE;
            run<T>(state, opening, plane, SCALAR, 0, [](long, long, long) { return false; });
        });
    registerMemcpy(Voxel<T>::name, sizeof(T), volume);
    for (OptimLevelType const level : {SCALAR, VEC_SSE})
        registerVolume<T>(Voxel<T>::name, level);
}

} // namespace

int main(int argc, char** argv)
{
    registerType<unsigned char>();
    registerType<unsigned short>();
    registerType<float>();
    return bench::run(argc, argv);
}
