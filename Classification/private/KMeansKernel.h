#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qel::classification {

/// How many voxels the kernels take at once: their distances and labels stay in the first cache.
inline constexpr std::size_t kMeansChunk = 512;

/// distances[x] += (row[x] - centre)^2
template <class T>
void addSquaredDistance(T const* __restrict row, double centre, double* __restrict distances, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        double const difference = static_cast<double>(row[x]) - centre;
        distances[x] += difference * difference;
    }
}

/// A class takes a voxel from an earlier one only if it is strictly nearer.
inline void takeNearer(double const* __restrict distances, double label, double* __restrict least,
                       double* __restrict labels, std::size_t count)
{
    // Two loops of one choice each: of one loop with both the compiler makes a branch, and no vectors.
    for (std::size_t x = 0; x < count; ++x) {
        double const earlier = labels[x];
        labels[x] = distances[x] < least[x] ? label : earlier;
    }
    for (std::size_t x = 0; x < count; ++x) {
        double const earlier = least[x];
        double const here = distances[x];
        least[x] = here < earlier ? here : earlier;
    }
}

/// The index of the nearest centre for each voxel of a chunk. `rows`: one for each component. `centres`: class by
/// class, one value for each component. Labels are doubles, so that all lanes of the loops are of one width.
template <class T>
void labelNearest(T const* const* rows, std::size_t components, double const* centres, std::size_t classes,
                  double* __restrict labels, std::size_t count)
{
    double distances[kMeansChunk];
    double least[kMeansChunk];
    std::fill_n(labels, count, 0.0);
    for (std::size_t index = 0; index < classes; ++index) {
        double* const target = index == 0 ? least : distances;
        std::fill_n(target, count, 0.0);
        for (std::size_t component = 0; component < components; ++component)
            addSquaredDistance(rows[component], centres[index * components + component], target, count);
        if (index > 0)
            takeNearer(distances, static_cast<double>(index), least, labels, count);
    }
}

/// The sum of the voxels of one label, in lanes of a fixed order.
template <class T>
double sumOfLabel(T const* __restrict row, double const* __restrict labels, double label, std::size_t count)
{
    double voxels[kMeansChunk];
    for (std::size_t x = 0; x < count; ++x)
        voxels[x] = static_cast<double>(row[x]);
    for (std::size_t x = 0; x < count; ++x) {
        double const voxel = voxels[x];
        voxels[x] = labels[x] == label ? voxel : 0.0;
    }
    constexpr std::size_t lanes = 8;
    double sums[lanes] = {};
    std::size_t x = 0;
    for (; x + lanes <= count; x += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            sums[lane] += voxels[x + lane];
    for (std::size_t lane = 0; x + lane < count; ++lane)
        sums[lane] += voxels[x + lane];
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

inline unsigned long countOfLabel(double const* __restrict labels, double label, std::size_t count)
{
    unsigned long total = 0;
    for (std::size_t x = 0; x < count; ++x)
        total += labels[x] == label;
    return total;
}

/// Voxels outside the sample get a label of no class.
inline void keepSample(unsigned char const* __restrict sample, double* __restrict labels, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        double const label = labels[x];
        labels[x] = sample[x] ? label : -1.0;
    }
}

} // namespace qel::classification
