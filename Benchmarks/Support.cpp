#include "Support.h"

#include <qel/ImageModelAdapter.h>
#include <qel/tools/LoadQelRawImage.h>

#include <tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>
#include <vector>

namespace bench {

namespace {

/// Box means of 2 * reach + 1 voxels along one axis; edges are repeated.
void smooth(std::vector<float>& voxels, unsigned long count, unsigned long stride, long reach)
{
    std::vector<double> sums(stride);
    std::vector<float> lines(count * stride);
    auto const n = static_cast<long>(count);
    for (unsigned long start = 0; start < voxels.size(); start += count * stride) {
        std::copy_n(voxels.data() + start, lines.size(), lines.data());
        auto const at = [&](long i) {
            return lines.data() + stride * static_cast<unsigned long>(std::clamp(i, 0l, n - 1));
        };
        std::fill(sums.begin(), sums.end(), 0.0);
        for (long i = -reach; i <= reach; ++i)
            for (unsigned long x = 0; x < stride; ++x)
                sums[x] += at(i)[x];
        for (long i = 0; i < n; ++i) {
            float* const out = voxels.data() + start + stride * static_cast<unsigned long>(i);
            for (unsigned long x = 0; x < stride; ++x) {
                out[x] = static_cast<float>(sums[x] / static_cast<double>(2 * reach + 1));
                sums[x] += at(i + reach + 1)[x] - at(i - reach)[x];
            }
        }
    }
}

/// Smooth noise, mean 0 and deviation 1.
std::vector<float> field(Shape const& shape, long reach, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<float> voxels(shape.voxels());
    for (float& voxel : voxels)
        voxel = static_cast<float>(random() >> 20);
    for (int pass = 0; pass < 2; ++pass) {
        smooth(voxels, shape.columns, 1, reach);
        smooth(voxels, shape.rows, shape.columns, reach);
        if (shape.plans > 1)
            smooth(voxels, shape.plans, shape.columns * shape.rows, reach);
    }
    double sum = 0, squares = 0;
    for (float voxel : voxels) {
        sum += voxel;
        squares += double(voxel) * voxel;
    }
    double const mean = sum / static_cast<double>(voxels.size());
    double const deviation = std::sqrt(squares / static_cast<double>(voxels.size()) - mean * mean);
    for (float& voxel : voxels)
        voxel = static_cast<float>((voxel - mean) / deviation);
    return voxels;
}

std::vector<float> texture(Shape const& shape) { return field(shape, shape.plans > 1 ? 4 : 6, 1); }

template <class T> void fillWithNoise(T* out, Shape const& shape)
{
    std::mt19937 random(20231);
    T const scale = std::is_integral_v<T> ? T(1) : T(0.999f);
    for (unsigned long x = 0; x < shape.voxels(); ++x)
        out[x] = static_cast<T>(static_cast<T>(random() >> 24) * scale);
}

template <class T> void fillWithGrey(T* out, Shape const& shape)
{
    std::vector<float> const coarse = texture(shape);
    std::vector<float> const fine = field(shape, 1, 2);
    std::mt19937 random(3);
    float const greatest = std::is_integral_v<T> ? static_cast<float>(std::numeric_limits<T>::max()) : 0;
    for (unsigned long x = 0; x < shape.voxels(); ++x) {
        float const noise = static_cast<float>(random() >> 24) / 255 - 0.5f;
        float const value = 0.8f * coarse[x] + 0.5f * fine[x] + 0.2f * noise;
        if constexpr (std::is_integral_v<T>)
            out[x] = static_cast<T>(std::clamp((0.5f + 0.14f * value) * greatest, 0.f, greatest));
        else
            out[x] = value;
    }
}

/// 1 where the voxel is above the middle of all.
void fillWithUpperHalf(unsigned char* out, std::vector<float> const& voxels)
{
    std::vector<float> sorted(voxels);
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<long>(sorted.size() / 2), sorted.end());
    float const middle = sorted[sorted.size() / 2];
    for (unsigned long x = 0; x < voxels.size(); ++x)
        out[x] = voxels[x] > middle;
}

/// A line of `count` voxels made as long as another one, with linear steps in between; voxels stand `stride` apart.
std::vector<float> enlarged(std::vector<float> const& voxels, unsigned long count, unsigned long stride,
                            unsigned long wanted)
{
    std::vector<float> result;
    for (unsigned long start = 0; start < voxels.size(); start += count * stride)
        for (unsigned long i = 0; i < wanted; ++i) {
            double const exact =
                (static_cast<double>(i) + 0.5) * static_cast<double>(count) / static_cast<double>(wanted);
            double const at = std::clamp(exact - 0.5, 0.0, static_cast<double>(count - 1));
            auto const first = static_cast<unsigned long>(at);
            auto const share = static_cast<float>(at - static_cast<double>(first));
            float const* const low = voxels.data() + start + first * stride;
            float const* const high = first + 1 < count ? low + stride : low;
            for (unsigned long x = 0; x < stride; ++x)
                result.push_back(low[x] + share * (high[x] - low[x]));
        }
    return result;
}

/// From 0 to 1.
std::vector<float> realPicture(Shape const& shape)
{
    qel::memory::InMemoryImage image;
    qel::Ref<qel::tools::LoadQelRawImage> const load(qel::tools::LoadQelRawImage::New());
    load->filePath = shape.plans > 1 ? QUELIDE_DATA "/head_ct.qeli" : QUELIDE_DATA "/cermet.qeli";
    load->output = &image;
    load->run();
    unsigned long const columns = image.getNumOf(qel::COLUMNS), rows = image.getNumOf(qel::ROWS);
    unsigned long const plans = image.getNumOf(qel::PLANS);
    std::vector<float> voxels(columns * rows * plans);
    qel::ImageModelAdapter const floats(&image, qel::QEL_FLOAT32);
    for (unsigned long row = 0; row < rows * plans; ++row)
        require(floats.getImage()->readRowAt(columns, reinterpret_cast<unsigned char*>(voxels.data() + row * columns),
                                             0, row % rows, row / rows, 0, 0),
                "real picture");
    voxels = enlarged(voxels, columns, 1, shape.columns);
    voxels = enlarged(voxels, rows, shape.columns, shape.rows);
    voxels = enlarged(voxels, plans, shape.columns * shape.rows, shape.plans);
    auto const [low, high] = std::minmax_element(voxels.begin(), voxels.end());
    float const lowest = *low, range = *high - *low;
    for (float& voxel : voxels)
        voxel = (voxel - lowest) / range;
    return voxels;
}

template <class T> void fillWithReal(T* out, Shape const& shape, bool isMarker)
{
    std::vector<float> const voxels = realPicture(shape);
    float const greatest = std::is_integral_v<T> ? static_cast<float>(std::numeric_limits<T>::max()) : 1;
    for (unsigned long x = 0; x < voxels.size(); ++x)
        out[x] = static_cast<T>(std::max(voxels[x] - (isMarker ? 0.1f : 0.f), 0.f) * greatest);
}

void fillWithObjects(unsigned char* out, Shape const& shape, bool isSeeds)
{
    fillWithUpperHalf(out, realPicture(shape));
    std::mt19937 random(4);
    for (unsigned long x = 0; isSeeds && x < shape.voxels(); ++x)
        out[x] &= random() % 20000 == 0;
}

template <class T> void make(T* out, Shape const& shape, Picture picture)
{
    switch (picture) {
    case Picture::Noise:
        return fillWithNoise(out, shape);
    case Picture::Grey:
        return fillWithGrey(out, shape);
    case Picture::Real:
    case Picture::Marker:
        return fillWithReal(out, shape, picture == Picture::Marker);
    case Picture::Blobs:
        if constexpr (std::is_same_v<T, unsigned char>)
            return fillWithUpperHalf(out, texture(shape));
        break;
    case Picture::Objects:
    case Picture::Seeds:
        if constexpr (std::is_same_v<T, unsigned char>)
            return fillWithObjects(out, shape, picture == Picture::Seeds);
    }
    require(false, "no such picture of this voxel type");
}

template <class T> void fillFromFile(qel::memory::InMemoryImage& image, Shape const& shape, Picture picture)
{
    auto* const voxels = reinterpret_cast<T*>(image.getInternalBuffer());
    auto const bytes = static_cast<std::streamsize>(shape.voxels() * sizeof(T));
    char const* const folder = std::getenv("QUELIDE_BENCH_IMAGES");
    if (folder == nullptr)
        return make(voxels, shape, picture);
    std::string const path =
        std::string(folder) + "/" + static_cast<char>(picture) + "_" + shape.name + "_" + Voxel<T>::name + ".raw";
    if (std::ifstream file(path, std::ios::binary); file) {
        file.read(reinterpret_cast<char*>(voxels), bytes);
        require(file.gcount() == bytes && file.peek() == EOF, path.c_str());
        return;
    }
    make(voxels, shape, picture);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<char const*>(voxels), bytes);
    require(file.flush().good(), path.c_str());
}

} // namespace

void fill(qel::memory::InMemoryImage& image, qel::VoxelTypes type, Shape const& shape, Picture picture)
{
    require(image.reserve(type, shape.columns, shape.rows, shape.plans, 1, 1), "reserve");
    switch (type) {
    case qel::QEL_UINT8:
        return fillFromFile<unsigned char>(image, shape, picture);
    case qel::QEL_UINT16:
        return fillFromFile<unsigned short>(image, shape, picture);
    case qel::QEL_FLOAT32:
        return fillFromFile<float>(image, shape, picture);
    default:
        require(false, "no images of this voxel type");
    }
}

void require(bool isTrue, char const* what)
{
    if (isTrue)
        return;
    std::fprintf(stderr, "wrong result: %s\n", what);
    std::exit(1);
}

void registerMemcpy(char const* type, unsigned long voxelSize, Shape const& shape)
{
    add(std::string("memcpy/") + type + "/" + shape.name, [=](benchmark::State& state) {
        unsigned long const bytes = voxelSize * shape.voxels();
        std::vector<char> const source(bytes, 1);
        std::vector<char> target(bytes, 2);
        for (auto _ : state) {
            std::memcpy(target.data(), source.data(), bytes);
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(static_cast<long>(2 * state.iterations() * bytes));
    });
}

void registerRead(char const* type, unsigned long voxelSize, Shape const& shape)
{
    add(std::string("read/") + type + "/" + shape.name, [=](benchmark::State& state) {
        unsigned long const bytes = voxelSize * shape.voxels();
        std::vector<unsigned long> const words(bytes / sizeof(unsigned long), 1);
        for (auto _ : state) {
            unsigned long sum = 0;
            for (unsigned long word : words)
                sum += word;
            benchmark::DoNotOptimize(sum);
        }
        state.SetBytesProcessed(static_cast<long>(state.iterations() * bytes));
    });
}

int run(int argc, char** argv)
{
    tbb::global_control const threads(tbb::global_control::max_allowed_parallelism, 2);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace bench
