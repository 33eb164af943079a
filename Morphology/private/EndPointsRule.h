#pragma once

#include "Morphology/private/GeodesicTiles.h"
#include "Morphology/private/HitOrMissKernels.h"
#include "Morphology/private/NeighborhoodRule.h"

namespace qel::morphology {

/// Keeps the voxels that have one neighbour.
template <class T> class EndPointsRule final : public NeighborhoodRule<T>
{
public:
    explicit EndPointsRule(Connectivity const& connectivity);

    void apply(T const* const* rows, T* out, long count) const override;

private:
    HitOrMissKernels<T> m_kernels;
    NeighborRows m_neighbors;
};

} // namespace qel::morphology
