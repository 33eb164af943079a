#include "Core/private/SimdVec.h"
#include "Morphology/private/MatchKernel.h"

namespace qel::morphology {

template <>
void matchColumns<SimdVec::arch_scalar_tag>(unsigned char const* codes, unsigned char* matches, std::size_t count,
                                            MatchBytes const& bytes)
{
    unsigned int left = codes[-1], centre = codes[0];
    for (std::size_t x = 0; x < count; ++x) {
        unsigned int const right = codes[x + 1];
        matches[x] = static_cast<unsigned char>(-(bytes[left | right << 3] >> centre & 1));
        left = centre;
        centre = right;
    }
}

} // namespace qel::morphology
