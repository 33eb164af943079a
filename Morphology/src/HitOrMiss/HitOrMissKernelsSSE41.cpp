#include "Morphology/private/HitOrMissKernels.impl.h"

namespace xsimd {
struct sse4_1;
}

namespace qel::morphology {

namespace {

using Packet = signed char __attribute__((vector_size(16)));
using Chars = char __attribute__((vector_size(sizeof(Packet))));
Packet lookUp(Packet table, Packet index)
{
    return reinterpret_cast<Packet>(
        __builtin_ia32_pshufb128(reinterpret_cast<Chars>(table), reinterpret_cast<Chars>(index)));
}

} // namespace

template <>
void details::ColumnMatcher<xsimd::sse4_1>::run(unsigned char const* codes, unsigned char* matches, long count,
                                                MatchBytes const& bytes)
{
    matchPackets<xsimd::sse4_1, Packet, lookUp>(codes, matches, count, bytes);
}

template HitOrMissKernels<unsigned char> hitOrMissKernels<xsimd::sse4_1, unsigned char>();
template HitOrMissKernels<unsigned short> hitOrMissKernels<xsimd::sse4_1, unsigned short>();

} // namespace qel::morphology
