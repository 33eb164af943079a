#include "Core/private/Helper/convertVecFunc.h"

#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/VoxelTypeOf.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace qel::helper {

namespace {

template <bool PutsUnsigned, class T> struct UnsignedIf
{
    using Type = T;
};
template <class T> struct UnsignedIf<true, T>
{
    using Type = std::make_unsigned_t<T>;
};

/// Types whose conversion gives the same bits as that from Source to Target, as far as possible unsigned ones: the sign
/// of an integer source matters only when it widens, the sign of a target only where a real is truncated to 32 or 64
/// bits.
template <class Source, class Target> struct SameBits
{
    static constexpr bool FROM_INTEGER = std::is_integral_v<Source>;
    static constexpr bool TO_INTEGER = std::is_integral_v<Target>;
    using From = typename UnsignedIf<FROM_INTEGER && TO_INTEGER && sizeof(Target) <= sizeof(Source), Source>::Type;
    using To = typename UnsignedIf<TO_INTEGER && (FROM_INTEGER || sizeof(Target) <= 2), Target>::Type;
};

template <class Source, class Target>
void convertVecFunc(unsigned char const*& source, unsigned char*& target, unsigned long count)
{
    if constexpr (std::is_same_v<Source, Target>) {
        std::memmove(target, source, count * sizeof(Target));
    } else {
        // A block of results is complete before it is stored, and a stored block ends before the source of the next one
        // begins (see the one way to overlap): this is ascending order, and the loop can still be vectorised.
        constexpr unsigned long BLOCK = 512;
        unsigned char const* from = source;
        unsigned char* to = target;
        while (count != 0) {
            unsigned long const n = std::min(count, BLOCK);
            Target results[BLOCK];
            for (unsigned long i = 0; i < n; ++i) {
                Source value;
                std::memcpy(&value, from + i * sizeof(Source), sizeof(Source));
                results[i] = convertVoxel<Target>(value);
            }
            std::memcpy(to, results, n * sizeof(Target));
            from += n * sizeof(Source);
            to += n * sizeof(Target);
            count -= n;
        }
    }
}

template <class Source, class Target> constexpr VoxelConversion conversion()
{
    if constexpr (std::is_same_v<Source, Target>)
        return nullptr;
    else
        return &convertVecFunc<typename SameBits<Source, Target>::From, typename SameBits<Source, Target>::To>;
}

constexpr unsigned NUM_OF_TYPES = 10;

// One row of the table for each source type.
template <class Source> struct Row
{
#define QEL_CONVERSION(Target) conversion<Source, Target>(),
    static constexpr VoxelConversion to[NUM_OF_TYPES] = {QEL_FOR_EACH_VOXEL_TYPE(QEL_CONVERSION)};
#undef QEL_CONVERSION
};

#define QEL_ROW(Source) Row<Source>::to,
constexpr VoxelConversion const* CONVERSIONS[NUM_OF_TYPES] = {QEL_FOR_EACH_VOXEL_TYPE(QEL_ROW)};
#undef QEL_ROW

} // namespace

VoxelConversion voxelConversion(VoxelTypes source, VoxelTypes target)
{
    unsigned const from = static_cast<unsigned>(source);
    unsigned const to = static_cast<unsigned>(target);
    return from < NUM_OF_TYPES && to < NUM_OF_TYPES ? CONVERSIONS[from][to] : nullptr;
}

} // namespace qel::helper
