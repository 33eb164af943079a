#include "Morphology/private/LutRule.h"

#include "Morphology/private/MorphologicalLut2DPrivate.h"
#include "Morphology/private/MorphologicalLut3DPrivate.h"

#include <qel/morphology/MatchingActionTypes.h>
#include <qel/morphology/MorphologicalLut2D.h>
#include <qel/morphology/MorphologicalLut3D.h>

#include <algorithm>
#include <type_traits>

namespace qel::morphology {

namespace {

template <class T> MatchingAction<T> actionOf(int flag)
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

} // namespace

template <class T, class Lut>
LutRule<T, Lut>::LutRule(Lut const& lut, int matchingFlag, int noMatchingFlag)
    : m_kernels(bestHitOrMissKernels<T>())
    , m_actions{actionOf<T>(matchingFlag), actionOf<T>(noMatchingFlag)}
    , m_bytes{}
    , m_words(nullptr)
{
    if constexpr (std::is_same_v<Lut, MorphologicalLut2D>)
        fillBytes(lut.getPrivate(), m_bytes);
    else
        m_words = lut.getPrivate().words.data();
}

template <class T, class Lut> void LutRule<T, Lut>::apply(T const* const* rows, T* out, long count) const
{
    if constexpr (std::is_same_v<Lut, MorphologicalLut2D>)
        m_kernels.matchInPlane(rows, out, count, m_bytes, m_actions);
    else
        m_kernels.matchInSpace(rows, out, count, m_words, m_actions);
}

template class LutRule<unsigned char, MorphologicalLut2D>;
template class LutRule<unsigned short, MorphologicalLut2D>;
template class LutRule<unsigned char, MorphologicalLut3D>;
template class LutRule<unsigned short, MorphologicalLut3D>;

} // namespace qel::morphology
