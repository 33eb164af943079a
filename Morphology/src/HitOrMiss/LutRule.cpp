#include "Morphology/private/LutRule.h"

#include "Core/private/SimdVec.h"
#include "Morphology/private/MorphologicalLut2DPrivate.h"
#include "Morphology/private/MorphologicalLut3DPrivate.h"

#include <qel/devices/Cpu.h>
#include <qel/morphology/MatchingActionTypes.h>
#include <qel/morphology/MorphologicalLut2D.h>
#include <qel/morphology/MorphologicalLut3D.h>

#include <algorithm>
#include <type_traits>

namespace xsimd {
struct sse4_1; // their kernels are compiled in units of their own
struct avx2;
} // namespace xsimd

namespace qel::morphology {

namespace {

// Pieces of a row that stay in the fastest cache.
constexpr long pieceLength = 1024;

/// The lowest bits of three voxels of a column, `Distance` bits apart.
template <int Distance, class T>
void codeColumns(T const* __restrict above, T const* __restrict middle, T const* __restrict below,
                 unsigned char* __restrict codes, long count)
{
    for (long x = 0; x < count; ++x)
        codes[x] =
            static_cast<unsigned char>((above[x] & 1) | (middle[x] & 1) << Distance | (below[x] & 1) << (2 * Distance));
}

/// Patterns of three plans from the columns of each, which stand 3 bits apart; from column -1 on.
void joinPlans(unsigned char const* __restrict first, unsigned char const* __restrict second,
               unsigned char const* __restrict third, unsigned int* __restrict patterns, long count)
{
    for (long x = 0; x < count; ++x) {
        auto const columns = [x](unsigned char const* codes) {
            return static_cast<unsigned int>(codes[x] | codes[x + 1] << 1 | codes[x + 2] << 2);
        };
        patterns[x] = columns(first) | columns(second) << 9 | columns(third) << 18;
    }
}

void lookUp(unsigned int const* __restrict patterns, unsigned int const* __restrict words,
            unsigned char* __restrict matches, long count)
{
    for (long x = 0; x < count; ++x)
        matches[x] = static_cast<unsigned char>(-(words[patterns[x] / 32] >> patterns[x] % 32 & 1));
}

template <class T>
void act(MatchingAction<T> const& onMatch, MatchingAction<T> const& otherwise, unsigned char const* __restrict matches,
         T const* __restrict in, T* __restrict out, long count)
{
    MatchingAction<T> const base = otherwise;
    auto const flip = static_cast<T>(onMatch.flip ^ otherwise.flip);
    auto const keep = static_cast<T>(onMatch.keep ^ otherwise.keep);
    auto const add = static_cast<T>(onMatch.add ^ otherwise.add);
    for (long x = 0; x < count; ++x) {
        auto const match = static_cast<T>(static_cast<signed char>(matches[x]));
        out[x] = static_cast<T>(((in[x] ^ base.flip ^ (match & flip)) & (base.keep ^ (match & keep))) +
                                (base.add ^ (match & add)));
    }
}

/// Where the bit of a pattern of MorphologicalLut2D stands.
struct Place
{
    int column, row;
};
constexpr Place places[9] = {{0, 0}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}};

void fillBytes(MorphologicalLut2DPrivate const& lut, MatchBytes& bytes)
{
    std::fill_n(bytes, sizeof(bytes), static_cast<unsigned char>(0));
    for (unsigned int pattern = 0; pattern < MorphologicalLut2DPrivate::size; ++pattern) {
        if (lut.patterns[pattern] == 0)
            continue;
        unsigned int codes[3] = {0, 0, 0};
        for (int bit = 0; bit < 9; ++bit)
            codes[places[bit].column + 1] |= (pattern >> bit & 1) << (places[bit].row + 1);
        bytes[codes[0] | codes[2] << 3] |= static_cast<unsigned char>(1 << codes[1]);
    }
}

MatchKernel matchKernel()
{
    devices::Cpu const& cpu = devices::Cpu::getDevice();
    if (cpu.getAVXLevel() >= 2)
        return &matchColumns<xsimd::avx2>;
    if (cpu.getSSELevel() >= 65)
        return &matchColumns<xsimd::sse4_1>;
    return &matchColumns<SimdVec::arch_scalar_tag>;
}

} // namespace

template <class T> MatchingAction<T> matchingActionOf(int flag)
{
    auto const all = static_cast<T>(-1);
    switch (flag) {
    case SET_ONE:
        return {0, 0, 1};
    case SET_CHANGE: // -c is ~c + 1
        return {all, all, 2};
    case SET_UNCHANGE:
        return {0, all, 0};
    default:
        return {0, 0, 0};
    }
}

template <class T, class Lut>
LutRule<T, Lut>::LutRule(Lut const& lut, int matchingFlag, int noMatchingFlag)
    : m_onMatch(matchingActionOf<T>(matchingFlag))
    , m_otherwise(matchingActionOf<T>(noMatchingFlag))
    , m_bytes{}
    , m_match(nullptr)
    , m_words(nullptr)
{
    if constexpr (std::is_same_v<Lut, MorphologicalLut2D>) {
        fillBytes(lut.getPrivate(), m_bytes);
        m_match = matchKernel();
    } else {
        m_words = lut.getPrivate().words.data();
    }
}

template <class T, class Lut> void LutRule<T, Lut>::apply(T const* const* rows, T* out, long count) const
{
    constexpr bool isPlanar = std::is_same_v<Lut, MorphologicalLut2D>;
    unsigned char matches[pieceLength];
    unsigned char codes[isPlanar ? 1 : 3][pieceLength + matchPacket + 2] = {};
    for (long first = 0; first < count; first += pieceLength) {
        long const length = std::min(pieceLength, count - first);
        long const before = first - 1;
        if constexpr (isPlanar) {
            codeColumns<1>(rows[0] + before, rows[1] + before, rows[2] + before, codes[0], length + 2);
            m_match(codes[0] + 1, matches, static_cast<std::size_t>(length), m_bytes);
        } else {
            for (int plan = 0; plan < 3; ++plan)
                codeColumns<3>(rows[3 * plan] + before, rows[3 * plan + 1] + before, rows[3 * plan + 2] + before,
                               codes[plan], length + 2);
            unsigned int patterns[pieceLength];
            joinPlans(codes[0], codes[1], codes[2], patterns, length);
            lookUp(patterns, m_words, matches, length);
        }
        act(m_onMatch, m_otherwise, matches, rows[isPlanar ? 1 : 4] + first, out + first, length);
    }
}

template class LutRule<unsigned char, MorphologicalLut2D>;
template class LutRule<unsigned short, MorphologicalLut2D>;
template class LutRule<unsigned char, MorphologicalLut3D>;
template class LutRule<unsigned short, MorphologicalLut3D>;

} // namespace qel::morphology
