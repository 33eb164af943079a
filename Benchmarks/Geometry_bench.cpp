// Centre lines of a vessel-like tree of tubes, and of blobs that fill half of a volume: how long they take, and how
// much memory a run needs beyond its images.
#include "Support.h"

#include <qel/geometry/CenterLine3D.h>
#include <qel/geometry/SphereSampling.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>
#include <string>

using namespace bench;

namespace {

using Point = qel::math::Vector3<double>;

/// Tubes that branch and become thinner.
class Vessels
{
public:
    explicit Vessels(qel::memory::InMemoryImage& image)
        : m_voxels(image.getInternalBuffer())
    {
        grow({128, 128, 14}, {0, 0, 1}, 12);
    }

private:
    void grow(Point at, Point direction, double radius)
    {
        if (radius < 1.5)
            return;
        double const length = 8 * radius * (0.7 + 0.6 * random());
        for (double done = 0; done < length; done += 0.5) {
            ball(at, radius);
            Point const bend(random() - 0.5, random() - 0.5, random() - 0.5);
            Point const inward = Point(128, 128, 128) - at;
            direction = direction + bend * 0.3 + inward * (inward.squaredLength() > 100 * 100 ? 0.0006 : 0);
            direction = direction / direction.length();
            at = at + direction * 0.5;
        }
        for (int branch = 0; branch < 2; ++branch) {
            Point const aside(random() - 0.5, random() - 0.5, random() - 0.5);
            Point const turned = direction + aside * 1.8;
            grow(at, turned / turned.length(), radius * (0.7 + 0.12 * random()));
        }
    }

    void ball(Point const& centre, double radius)
    {
        auto const low = [&](double c) { return std::max(0L, std::lround(c - radius)); };
        auto const high = [&](double c) { return std::min(255L, std::lround(c + radius)); };
        for (long z = low(centre[2]); z <= high(centre[2]); ++z)
            for (long y = low(centre[1]); y <= high(centre[1]); ++y)
                for (long x = low(centre[0]); x <= high(centre[0]); ++x)
                    if ((Point(double(x), double(y), double(z)) - centre).squaredLength() <= radius * radius)
                        m_voxels[(z * 256 + y) * 256 + x] = 1;
    }

    double random() { return double(m_random() >> 8) / (1 << 24); }

    std::mt19937 m_random{5};
    unsigned char* m_voxels;
};

/// The greatest number of bytes that the process held since `forgetPeak`.
double peakBytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmHWM:") {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    return 0;
}
void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

void centerLine(benchmark::State& state, bool isVessels)
{
    qel::memory::InMemoryImage in, out;
    if (isVessels) {
        in.reserve(qel::QEL_UINT8, 256, 256, 256, 1, 1);
        std::fill_n(in.getInternalBuffer(), volume.voxels(), static_cast<unsigned char>(0));
        Vessels{in};
    } else {
        fill(in, qel::QEL_UINT8, volume, Picture::Blobs);
    }
    for (qel::Components axis : {qel::COLUMNS, qel::ROWS, qel::PLANS})
        in.setSpacingOf(axis, 1);
    in.setInterpretation(qel::QEL_BINARY);
    qel::geometry::LineSet3D lines;
    qel::Ref<qel::geometry::CenterLine3D> const algorithm = qel::geometry::CenterLine3D::New();
    algorithm->input = &in;
    algorithm->outputImage = &out;
    algorithm->outputLineSet = &lines;
    forgetPeak();
    double const before = peakBytes();
    algorithm->run();
    state.counters["bytes_a_voxel"] = (peakBytes() - before) / double(volume.voxels());
    state.counters["lines"] =
        double(std::count(lines.getIndices().begin(), lines.getIndices().end(), qel::geometry::LineSet3D::stop));
    state.counters["object_voxels"] =
        double(std::count(in.getInternalBuffer(), in.getInternalBuffer() + volume.voxels(), 1));
    require(state.counters["lines"] >= 1, "CenterLine3D finds lines");
    measure(state, *algorithm, volume, 2 * volume.voxels());
}

void sphereSampling(benchmark::State& state)
{
    qel::container::Vector<qel::math::Vector2<double>> directions;
    qel::Ref<qel::geometry::SphereSampling> const algorithm = qel::geometry::SphereSampling::New();
    algorithm->nbDesiredSamples = 6000;
    algorithm->directionSamplesVec = &directions;
    algorithm->run();
    require(directions.size() == 6000, "SphereSampling gives the directions");
    for (auto _ : state)
        algorithm->run();
}

} // namespace

int main(int argc, char** argv)
{
    registerMemcpy("uint8", 1, volume);
    add("CenterLine3D:vessels/uint8/scalar/256^3", [](auto& state) { centerLine(state, true); });
    add("CenterLine3D:blobs/uint8/scalar/256^3", [](auto& state) { centerLine(state, false); });
    add("SphereSampling/6000", sphereSampling);
    return bench::run(argc, argv);
}
