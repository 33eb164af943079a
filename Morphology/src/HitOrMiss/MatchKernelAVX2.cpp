#include "Morphology/private/MatchKernel.impl.h"

namespace xsimd {
struct avx2;
}

namespace qel::morphology {

namespace {

using Packet = char __attribute__((vector_size(32)));
Packet lookUp(Packet table, Packet index) { return __builtin_ia32_pshufb256(table, index); }

} // namespace

template <>
void matchColumns<xsimd::avx2>(unsigned char const* codes, unsigned char* matches, std::size_t count,
                               MatchBytes const& bytes)
{
    details::matchPackets<xsimd::avx2, Packet, lookUp>(codes, matches, count, bytes);
}

} // namespace qel::morphology
