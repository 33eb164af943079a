#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace qel::SimdVec {

/// Code on single voxels, and on packets of 128 bits.
struct arch_scalar_tag
{};
struct arch_128_tag
{};

/// Memory whose first element stands at a multiple of `Alignment` bytes. `Alignment` more bytes follow the last one:
/// the last packet of a row may hang over its end.
template <class T, std::size_t Alignment> class AlignedAllocator
{
public:
    using value_type = T;
    template <class U> struct rebind
    {
        using other = AlignedAllocator<U, Alignment>;
    };

    AlignedAllocator() = default;
    template <class U> AlignedAllocator(AlignedAllocator<U, Alignment> const&) {}

    T* allocate(std::size_t count)
    {
        return static_cast<T*>(::operator new(count * sizeof(T) + Alignment, std::align_val_t(Alignment)));
    }
    void deallocate(T* memory, std::size_t) { ::operator delete(memory, std::align_val_t(Alignment)); }

    template <class U> bool operator==(AlignedAllocator<U, Alignment> const&) const { return true; }
};

/// What follows from the kind of code: how rows are allocated, and how many voxels a packet holds.
template <class T, class Arch> struct Traits;
template <class T> struct Traits<T, arch_scalar_tag>
{
    using Allocator = std::allocator<T>;
    static constexpr int packetSize = 1;
};
template <class T> struct Traits<T, arch_128_tag>
{
    static_assert(sizeof(T) < 8 || static_cast<T>(0.5) != 0, "64-bit integers have no packet form");
    using Allocator = AlignedAllocator<T, 16>;
    static constexpr int packetSize = 16 / static_cast<int>(sizeof(T));
};

template <class T> using PacketAllocator = AlignedAllocator<T, 16>;

} // namespace qel::SimdVec

/// Calls X(type) for the voxel types that have a packet form, in the order of VoxelTypes.
#define QEL_FOR_EACH_PACKET_TYPE(X)                                                                                    \
    X(unsigned char)                                                                                                   \
    X(unsigned short)                                                                                                  \
    X(unsigned int)                                                                                                    \
    X(signed char)                                                                                                     \
    X(short)                                                                                                           \
    X(int)                                                                                                             \
    X(float)                                                                                                           \
    X(double)
