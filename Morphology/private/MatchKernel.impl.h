#pragma once

#include "Morphology/private/MatchKernel.h"

// One text for all instruction sets that can look bytes up in a packet. `Arch` keeps the instances of the units apart.

namespace qel::morphology::details {

/// `Packet`: a vector of bytes. `lookUp(table, index)`: of each index below 16 the byte of the table, whose 16 bytes
/// stand in the packet again and again.
template <class Arch, class Packet, Packet (*lookUp)(Packet, Packet)>
void matchPackets(unsigned char const* codes, unsigned char* matches, std::size_t count, MatchBytes const& bytes)
{
    Packet parts[4], bitOf;
    for (std::size_t lane = 0; lane < sizeof(Packet); ++lane) {
        for (std::size_t part = 0; part < 4; ++part)
            parts[part][lane] = static_cast<char>(bytes[16 * part + lane % 16]);
        bitOf[lane] = static_cast<char>(1 << lane % 8);
    }
    for (std::size_t x = 0; x < count; x += sizeof(Packet)) {
        Packet left, centre, right;
        __builtin_memcpy(&left, codes + x - 1, sizeof(Packet));
        __builtin_memcpy(&centre, codes + x, sizeof(Packet));
        __builtin_memcpy(&right, codes + x + 1, sizeof(Packet));
        Packet const index = left | right << 3;
        Packet const lower = (index & 16) != 0 ? lookUp(parts[1], index & 15) : lookUp(parts[0], index & 15);
        Packet const upper = (index & 16) != 0 ? lookUp(parts[3], index & 15) : lookUp(parts[2], index & 15);
        Packet const byte = (index & 32) != 0 ? upper : lower;
        Packet const match = (byte & lookUp(bitOf, centre)) != 0;
        __builtin_memcpy(matches + x, &match, sizeof(Packet));
    }
}

} // namespace qel::morphology::details
