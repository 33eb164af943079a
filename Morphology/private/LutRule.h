#pragma once

#include "Morphology/private/HitOrMissKernels.h"
#include "Morphology/private/NeighborhoodRule.h"

namespace qel::morphology {

class MorphologicalLut2D;
class MorphologicalLut3D;

/// A hit-or-miss operation. `Lut`: MorphologicalLut2D or MorphologicalLut3D; it must outlive the rule.
template <class T, class Lut> class LutRule final : public NeighborhoodRule<T>
{
public:
    /// The flags are MatchingActionTypes.
    LutRule(Lut const& lut, int matchingFlag, int noMatchingFlag);

    void apply(T const* const* rows, T* out, long count) const override;

private:
    HitOrMissKernels<T> m_kernels;
    MatchingActions<T> m_actions;
    MatchBytes m_bytes;          // of a plan
    unsigned int const* m_words; // of space
};

} // namespace qel::morphology
