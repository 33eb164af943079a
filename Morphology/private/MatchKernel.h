#pragma once

#include <cstddef>

namespace qel::morphology {

/// The patterns of a plan that match: bit `c` of byte `l | r << 3`, where l, c and r are the codes of the columns to
/// the left, in the middle and to the right. A column's code is its voxels from above as bits 0 to 2.
using MatchBytes = unsigned char[64];

/// matches[x] = 255 where the columns codes[x - 1], codes[x] and codes[x + 1] make a pattern that matches, 0 elsewhere.
/// Both rows go on to whole packets, of 32 bytes at most.
using MatchKernel = void (*)(unsigned char const* codes, unsigned char* matches, std::size_t count,
                             MatchBytes const& bytes);

/// The kernel of an instruction set: arch_scalar_tag, or one of xsimd's.
template <class Arch>
void matchColumns(unsigned char const* codes, unsigned char* matches, std::size_t count, MatchBytes const& bytes);

inline constexpr std::size_t matchPacket = 32;

} // namespace qel::morphology
