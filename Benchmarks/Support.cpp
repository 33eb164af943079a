#include "Support.h"

#include <tbb/global_control.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace bench {

namespace {

template <class T> void fillWith(qel::memory::InMemoryImage& image, unsigned long voxels, T scale)
{
    std::mt19937 random(20231);
    T* const row = reinterpret_cast<T*>(image.getInternalBuffer());
    for (unsigned long x = 0; x < voxels; ++x)
        row[x] = static_cast<T>(static_cast<T>(random() >> 24) * scale);
}

} // namespace

void fill(qel::memory::InMemoryImage& image, qel::VoxelTypes type, Shape const& shape)
{
    require(image.reserve(type, shape.columns, shape.rows, shape.plans, 1, 1), "reserve");
    switch (type) {
    case qel::QEL_UINT8:
        return fillWith<unsigned char>(image, shape.voxels(), 1);
    case qel::QEL_UINT16:
        return fillWith<unsigned short>(image, shape.voxels(), 1);
    case qel::QEL_FLOAT32:
        return fillWith<float>(image, shape.voxels(), 0.999f);
    default:
        require(false, "no noise of this voxel type");
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
