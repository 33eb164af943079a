#include "Support.h"

#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/segmentation/TextureFeatureExtraction2D.h>
#include <qel/segmentation/TextureFeatureExtraction3D.h>

#include <cmath>

using namespace qel;
using namespace qel::segmentation;
using namespace bench;

namespace {

constexpr Shape square{"512", 512, 512, 1};
constexpr Shape cube{"64^3", 64, 64, 64};

TextureFeatureGroup measuresFrom(int first, int last)
{
    TextureFeatureGroup measures;
    for (int measure = first; measure <= last; ++measure)
        measures.push_back(static_cast<TextureFeatureTypes>(measure));
    return measures;
}

TextureFeatureGroup only(TextureFeatureTypes measure) { return measuresFrom(measure, measure); }

/// The contrast in the middle of the image along rows, as it is defined, in channel `channel`.
void requireContrast(memory::InMemoryImage& in, memory::InMemoryImage& out, long radius, int binSize, int channel)
{
    auto const reach = static_cast<long>((radius + 0.5) * (radius + 0.5));
    long sum = 0;
    long pairs = 0;
    auto const isInside = [&](long x, long y) { return x * x + y * y < reach; };
    for (long y = -radius; y <= radius; ++y)
        for (long x = -radius; x <= radius; ++x)
            if (isInside(x, y) && isInside(x + 1, y)) {
                unsigned char const* const pair = in.getInternalBuffer() + (256 + y) * 512 + 256 + x;
                long const step = pair[0] / binSize - pair[1] / binSize;
                sum += step * step;
                ++pairs;
            }
    double const expected = binSize * binSize * static_cast<double>(sum) / static_cast<double>(pairs);
    float const found = reinterpret_cast<float const*>(out.getInternalBuffer())[channel * 512l * 512 + 256 * 512 + 256];
    require(std::abs(found - expected) <= 1e-5 * expected, "contrast");
}

void extract(benchmark::State& state, TextureFeatureGroup const& measures, unsigned int radius, int binSize,
             int channelOfContrast)
{
    memory::InMemoryImage in, out;
    fill(in, QEL_UINT8, square, Picture::Grey);
    require(out.reserve(QEL_FLOAT32, 1, 1, 1, 1, 1), "reserve");
    Ref<TextureFeatureExtraction2D> algorithm(TextureFeatureExtraction2D::New());
    algorithm->input = &in;
    algorithm->radius = radius;
    algorithm->textureFeaturesGroup = measures;
    algorithm->minGreyLevelCooccurrence = 0.0;
    algorithm->maxGreyLevelCooccurrence = 255.0;
    algorithm->binSizeCooccurrence = static_cast<double>(binSize);
    algorithm->minGreyLevelHistogram = 0.0;
    algorithm->maxGreyLevelHistogram = 255.0;
    algorithm->binSizeHistogram = 1.0;
    container::Vector<math::Vector2<int>> directions;
    for (auto const& direction : {math::Vector2<int>(1, 0), {1, 1}, {0, 1}, {-1, 1}})
        directions.push_back(direction);
    algorithm->directionCollection = directions;
    algorithm->output = &out;
    algorithm->run();
    if (channelOfContrast >= 0)
        requireContrast(in, out, radius, binSize, channelOfContrast);
    unsigned long const channels = out.getNumOf(TIME_SERIES);
    measure(state, *algorithm, square, square.voxels() * (1 + 4 * channels));
}

void extractFromVolume(benchmark::State& state)
{
    memory::InMemoryImage in, out;
    fill(in, QEL_UINT8, cube, Picture::Grey);
    require(out.reserve(QEL_FLOAT32, 1, 1, 1, 1, 1), "reserve");
    Ref<TextureFeatureExtraction3D> algorithm(TextureFeatureExtraction3D::New());
    algorithm->input = &in;
    algorithm->radius = 3u;
    algorithm->textureFeaturesGroup = measuresFrom(COOC_FirstMeasure, COOC_LastMeasure);
    algorithm->minGreyLevelCooccurrence = 0.0;
    algorithm->maxGreyLevelCooccurrence = 255.0;
    algorithm->binSizeCooccurrence = 16.0;
    container::Vector<math::Vector3<int>> directions;
    for (auto const& direction : {math::Vector3<int>(1, 0, 0), {0, 1, 0}, {0, 0, 1}})
        directions.push_back(direction);
    algorithm->directionCollection = directions;
    algorithm->output = &out;
    algorithm->run();
    require(out.getNumOf(TIME_SERIES) == 13 * 6, "channels");
    measure(state, *algorithm, cube, cube.voxels() * (1 + 4 * 13 * 6));
}

} // namespace

int main(int argc, char** argv)
{
    auto const addExtraction = [](char const* name, TextureFeatureGroup const& measures, unsigned int radius,
                                  int binSize, int channelOfContrast) {
        add("TextureFeatureExtraction2D:" + std::string(name) + "/uint8/scalar/512/radius:" + std::to_string(radius) +
                "/bins:" + std::to_string(256 / binSize),
            [=](benchmark::State& state) { extract(state, measures, radius, binSize, channelOfContrast); });
    };
    TextureFeatureGroup const all = measuresFrom(COOC_FirstMeasure, COOC_LastMeasure);
    addExtraction("all52", all, 5, 16, 7);
    addExtraction("all52", all, 5, 1, 7);
    addExtraction("all52", all, 15, 16, 7);
    addExtraction("contrast", only(COOC_Contrast), 5, 16, 0);
    addExtraction("entropy", only(COOC_Entropy), 5, 16, -1);
    addExtraction("histogram17", measuresFrom(HISTO_FirstMeasure, HISTO_LastMeasure), 5, 16, -1);
    add("TextureFeatureExtraction3D:all52/uint8/scalar/64^3/radius:3/bins:16", extractFromVolume);
    return run(argc, argv);
}
