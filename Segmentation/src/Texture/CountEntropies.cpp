#include "Segmentation/private/Texture/CountEntropies.h"

#include <cmath>

namespace qel::segmentation::details {

CountEntropies::CountEntropies(std::uint64_t largest)
    : m_values(largest + 1)
    , m_steps(largest)
{
    auto const entropyOf = [](std::uint64_t count) {
        auto const n = static_cast<long double>(count);
        return count < 2 ? 0.0L : n * std::log(n);
    };
    // The largest of all sums takes 62 bits at most, so that differences of two have their sign.
    int const bits = 61 - std::ilogb(entropyOf(largest) + 1);
    for (std::uint64_t count = 0; count <= largest; ++count)
        m_values[count] = std::llround(std::ldexp(entropyOf(count), bits));
    for (std::uint64_t count = 0; count < largest; ++count)
        m_steps[count] = m_values[count + 1] - m_values[count];
    m_logOfTwo = std::llround(std::ldexp(std::log(2.0L), bits));
    m_unit = std::ldexp(1.0, -bits);
}

} // namespace qel::segmentation::details
