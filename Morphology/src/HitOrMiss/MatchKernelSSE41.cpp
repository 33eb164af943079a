#include "Morphology/private/MatchKernel.impl.h"

namespace xsimd {
struct sse4_1;
}

namespace qel::morphology {

namespace {

using Packet = char __attribute__((vector_size(16)));
Packet lookUp(Packet table, Packet index) { return __builtin_ia32_pshufb128(table, index); }

} // namespace

template <>
void matchColumns<xsimd::sse4_1>(unsigned char const* codes, unsigned char* matches, std::size_t count,
                                 MatchBytes const& bytes)
{
    details::matchPackets<xsimd::sse4_1, Packet, lookUp>(codes, matches, count, bytes);
}

} // namespace qel::morphology
