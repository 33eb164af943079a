#pragma once

#include <qel/Ref.h>
#include <qel/memory/InMemoryImage.h>

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>

namespace bench {

/// The images that everything is measured on: a plane, a volume, and one so small that only the cost of a run is seen.
struct Shape
{
    char const* name;
    unsigned long columns, rows, plans;
    unsigned long voxels() const { return columns * rows * plans; }
};
inline constexpr Shape plane{"4096", 4096, 4096, 1};
inline constexpr Shape smallPlane{"2048", 2048, 2048, 1};
inline constexpr Shape volume{"256^3", 256, 256, 256};
inline constexpr Shape tiny{"64", 64, 64, 1};
inline constexpr Shape megapixel{"1024", 1024, 1024, 1}; // for what takes long

template <class T> struct Voxel;
template <> struct Voxel<unsigned char>
{
    static constexpr qel::VoxelTypes type = qel::QEL_UINT8;
    static constexpr char const* name = "uint8";
};
template <> struct Voxel<unsigned short>
{
    static constexpr qel::VoxelTypes type = qel::QEL_UINT16;
    static constexpr char const* name = "uint16";
};
template <> struct Voxel<float>
{
    static constexpr qel::VoxelTypes type = qel::QEL_FLOAT32;
    static constexpr char const* name = "float32";
};

/// What an image shows; the letters are names of files.
enum class Picture : char
{
    Noise = 'n',   ///< voxels from 0 to 255, fractions in the float image
    Grey = 'g',    ///< smooth texture and some noise, over the range of integers; around 0 with deviation 1 in floats
    Blobs = 'b',   ///< 1 where the texture is above its middle, 0 elsewhere; bytes
    Real = 'r',    ///< gold grains in glass, or a CT of a head, enlarged: over the range of integers, and from 0 to 1
    Marker = 'm',  ///< the real picture less a tenth of that range, and not below 0
    Objects = 'o', ///< 1 where the real picture is above its middle, 0 elsewhere; bytes
    Seeds = 's',   ///< one object voxel of 20000; bytes
};

/// The same image on every run. Where the environment variable QUELIDE_BENCH_IMAGES names a folder, it is read from
/// there if it has the file (`<letter>_<shape>_<type>.raw`, voxels alone), and else made and left there, for others to
/// measure the same voxels.
void fill(qel::memory::InMemoryImage& image, qel::VoxelTypes type, Shape const& shape,
          Picture picture = Picture::Noise);

/// Ends the program where a result is not what it should be: a benchmark of a wrong result is worth nothing.
void require(bool isTrue, char const* what);

/// One memcpy of as many bytes, on one thread: what all others are compared with. Bytes that are read count once, bytes
/// that are written once more.
void registerMemcpy(char const* type, unsigned long voxelSize, Shape const& shape);
/// A plain sum over as many bytes: for what only reads.
void registerRead(char const* type, unsigned long voxelSize, Shape const& shape);

/// Runs the algorithm; `movedBytes` is what one run has to read and write.
template <class Algorithm>
void measure(benchmark::State& state, Algorithm& algorithm, Shape const& shape, unsigned long movedBytes)
{
    for (auto _ : state) {
        algorithm.run();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<long>(state.iterations() * shape.voxels()));
    state.SetBytesProcessed(static_cast<long>(state.iterations() * movedBytes));
}

template <class Function> void add(std::string const& name, Function function)
{
    benchmark::RegisterBenchmark(name.c_str(), function)->UseRealTime()->Unit(benchmark::kMillisecond);
}

/// Calls `registerFor<T>(shape)` for the voxel types and shapes that everything is measured on.
template <class Register> void forEachTypeAndShape(Register const& registerFor)
{
    for (Shape const& shape : {plane, volume}) {
        registerFor(std::type_identity<unsigned char>(), shape);
        registerFor(std::type_identity<unsigned short>(), shape);
        registerFor(std::type_identity<float>(), shape);
    }
}

/// Two threads, whatever the machine has.
int run(int argc, char** argv);

} // namespace bench
