#pragma once

#include "Morphology/private/GeodesicTiles.h"
#include "Morphology/private/NeighborhoodRule.h"

namespace qel::morphology {

/// Keeps the voxels that have one neighbour.
template <class T> class EndPointsRule final : public NeighborhoodRule<T>
{
public:
    explicit EndPointsRule(Connectivity const& connectivity);

    void apply(T const* const* rows, T* out, long count) const override;

private:
    // By the place of a row: whether all of its three voxels are neighbours, or the one in the middle alone.
    struct Row
    {
        int index;
        bool isWhole;
    };
    Row m_rows[9];
    int m_numOfRows = 0;
    int m_middle;
};

} // namespace qel::morphology
