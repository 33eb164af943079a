#include "Morphology/private/HitOrMissKernels.impl.h"

namespace xsimd {
struct avx2;
}

namespace qel::morphology {

namespace {

using Packet = signed char __attribute__((vector_size(32)));
using Chars = char __attribute__((vector_size(sizeof(Packet))));
Packet lookUp(Packet table, Packet index)
{
    return reinterpret_cast<Packet>(
        __builtin_ia32_pshufb256(reinterpret_cast<Chars>(table), reinterpret_cast<Chars>(index)));
}

} // namespace

template <>
void details::ColumnMatcher<xsimd::avx2>::run(unsigned char const* codes, unsigned char* matches, long count,
                                              MatchBytes const& bytes)
{
    matchPackets<xsimd::avx2, Packet, lookUp>(codes, matches, count, bytes);
}

template HitOrMissKernels<unsigned char> hitOrMissKernels<xsimd::avx2, unsigned char>();
template HitOrMissKernels<unsigned short> hitOrMissKernels<xsimd::avx2, unsigned short>();

} // namespace qel::morphology
