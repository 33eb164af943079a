#pragma once

namespace qel::morphology {

/// The patterns of a plan that match: bit `c` of byte `l | r << 3`, where l, c and r are the codes of the columns to
/// the left, in the middle and to the right. A column's code is its voxels from above as bits 0 to 2.
using MatchBytes = unsigned char[64];

/// What a voxel `c` becomes, without a branch: ((c ^ flip) & keep) + add.
template <class T> struct MatchingAction
{
    T flip, keep, add;
};

/// What becomes of the voxels whose pattern matches, and of the others.
template <class T> struct MatchingActions
{
    MatchingAction<T> onMatch, otherwise;
};

/// Which of the rows around a voxel have neighbours of it: in some all three voxels, in others the middle one alone.
/// The voxel's own row is among them, and the voxel too.
struct NeighborRows
{
    int whole[9], single[9], middle;
    int numOfWhole = 0, numOfSingle = 0;
};

/// Row kernels; rows stand as in NeighborhoodRule.
template <class T> struct HitOrMissKernels
{
    void (*matchInPlane)(T const* const* rows, T* out, long count, MatchBytes const& bytes,
                         MatchingActions<T> const& actions);
    /// `words`: those of MorphologicalLut3D.
    void (*matchInSpace)(T const* const* rows, T* out, long count, unsigned int const* words,
                         MatchingActions<T> const& actions);
    void (*keepEnds)(T const* const* rows, T* out, long count, NeighborRows const& neighbors);
};

/// The kernels of an instruction set: arch_scalar_tag, or one of xsimd's.
template <class Arch, class T> HitOrMissKernels<T> hitOrMissKernels();

/// Those for this processor.
template <class T> HitOrMissKernels<T> bestHitOrMissKernels();

} // namespace qel::morphology
