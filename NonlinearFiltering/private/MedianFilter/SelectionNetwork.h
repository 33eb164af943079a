#pragma once

#include "NonlinearFiltering/private/MedianFilter/NetworkStep.h"

#include <qel/kernel/Offset2D.h>
#include <qel/kernel/Offset3D.h>

#include <vector>

namespace qel::nonlinear_filtering {

/// How to find the median under a window by minima and maxima of whole rows: a lane of the rows is a voxel, and the
/// same steps lead to the median of each.
///
/// Each column of the window is sorted, sorted lists are merged in pairs, and what can no longer be the median is
/// dropped on the way. A list that is the same one some columns further is made once, and read there: so a voxel pays
/// for one sorted column and one pair of columns, however many the window has. Only those minima and maxima are kept
/// that the median depends on.
///
/// References: K. E. Batcher, "Sorting networks and their applications", AFIPS SJCC 32:307-314, 1968, for the merges;
/// A. Adams, "Fast median filters using separable sorting networks", ACM Trans. Graph. 40(4), 2021, for the sharing.
class SelectionNetwork
{
public:
    /// A row of voxels, relative to the row that is computed.
    struct Input
    {
        long row;
        long plan;
    };

    explicit SelectionNetwork(std::vector<kernel::Offset2D> const& window);
    explicit SelectionNetwork(std::vector<kernel::Offset3D> const& window);

    /// Registers 0 and on: rows of the image from the first lane's voxel on.
    std::vector<Input> const& inputs() const { return m_inputs; }
    /// In registers behind the inputs, which the steps use again and again. What they read of an input may lie `reach`
    /// voxels before the first lane and behind the last one.
    unsigned long numOfTemporaries() const { return m_numOfTemporaries; }
    std::vector<NetworkStep> const& steps() const { return m_steps; }
    /// How many lanes more than wanted a temporary may have.
    unsigned long excess() const { return m_excess; }
    /// Where the median stands, from lane 0 on: a temporary, or an input where the window is one voxel.
    unsigned int result() const { return m_result; }
    long resultLane() const { return m_resultLane; }

private:
    class Builder;

    std::vector<Input> m_inputs;
    std::vector<NetworkStep> m_steps;
    unsigned long m_numOfTemporaries = 0;
    unsigned long m_excess = 0;
    unsigned int m_result = 0;
    long m_resultLane = 0;
};

/// Windows with more voxels have networks that leave the cache, and take long to be made.
inline constexpr unsigned long largestNetwork = 2000;

/// What a voxel costs, in steps on keys of one byte: as measured, and good enough to choose.
struct MedianCosts
{
    /// `numOfVoxels` are under the window, `numOfMoving` of them enter with each move.
    static unsigned long ofSelection(unsigned long numOfVoxels) { return 72 * numOfVoxels; }
    static unsigned long ofHistogram(unsigned long numOfMoving) { return 700 + 36 * numOfMoving; }
    static constexpr unsigned long ofColumns = 400;
    static unsigned long ofNetwork(SelectionNetwork const& network, unsigned long keySize)
    {
        return network.steps().size() * keySize;
    }
};

} // namespace qel::nonlinear_filtering
