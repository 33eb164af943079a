#pragma once

#include "Morphology/private/MatchKernel.h"
#include "Morphology/private/NeighborhoodRule.h"

namespace qel::morphology {

class MorphologicalLut2D;
class MorphologicalLut3D;

/// What a voxel `c` becomes, without a branch: ((c ^ flip) & keep) + add.
template <class T> struct MatchingAction
{
    T flip, keep, add;
};

/// Of a MatchingActionTypes.
template <class T> MatchingAction<T> matchingActionOf(int flag);

/// A hit-or-miss operation. `Lut`: MorphologicalLut2D or MorphologicalLut3D; it must outlive the rule.
template <class T, class Lut> class LutRule final : public NeighborhoodRule<T>
{
public:
    LutRule(Lut const& lut, int matchingFlag, int noMatchingFlag);

    void apply(T const* const* rows, T* out, long count) const override;

private:
    MatchingAction<T> m_onMatch;
    MatchingAction<T> m_otherwise;
    MatchBytes m_bytes; // of a plan
    MatchKernel m_match;
    unsigned int const* m_words; // of space
};

} // namespace qel::morphology
