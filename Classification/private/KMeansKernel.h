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

/// The index of the nearest centre for each voxel of a chunk; of equally near ones, the first. `rows`: one for each
/// component. `centres`: class by class, one value for each component.
template <class T>
void labelNearest(T const* const* rows, std::size_t components, double const* centres, std::size_t classes,
                  int* __restrict labels, std::size_t count)
{
    double distances[kMeansChunk];
    double least[kMeansChunk];
    double nearest[kMeansChunk]; // as doubles, so that all lanes of the loops are of one width
    std::fill_n(nearest, count, 0.0);
    for (std::size_t index = 0; index < classes; ++index) {
        double* const target = index == 0 ? least : distances;
        std::fill_n(target, count, 0.0);
        for (std::size_t component = 0; component < components; ++component)
            addSquaredDistance(rows[component], centres[index * components + component], target, count);
        if (index > 0)
            takeNearer(distances, static_cast<double>(index), least, nearest, count);
    }
    for (std::size_t x = 0; x < count; ++x)
        labels[x] = static_cast<int>(nearest[x]);
}

/// Adds the voxels of a chunk to the sums of their labels, in lanes of a fixed order.
template <class T> class SumsOfLabels
{
public:
    /// Labels are less than `labels`.
    explicit SumsOfLabels(std::size_t labels)
        : m_sums(labels * lanes)
    {}

    void add(T const* row, int const* labels, std::size_t count)
    {
        std::fill(m_sums.begin(), m_sums.end(), 0.0);
        double* const sums = m_sums.data();
        // The same sum comes again after as many voxels as there are lanes: they do not wait for each other.
        for (std::size_t x = 0; x < count; ++x)
            sums[static_cast<std::size_t>(labels[x]) * lanes + x % lanes] += static_cast<double>(row[x]);
    }
    double operator[](std::size_t label) const
    {
        double const* const sums = m_sums.data() + label * lanes;
        return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
    }

private:
    static constexpr std::size_t lanes = 8;
    std::vector<double> m_sums;
};

inline unsigned int countOfLabel(int const* __restrict labels, int label, std::size_t count)
{
    unsigned int total = 0;
    for (std::size_t x = 0; x < count; ++x)
        total += labels[x] == label;
    return total;
}

/// Voxels outside the sample get the label `outside`.
inline void keepSample(unsigned char const* __restrict sample, int outside, int* __restrict labels, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        int const isIn = -static_cast<int>(sample[x]); // all bits or none
        labels[x] = (labels[x] & isIn) | (outside & ~isIn);
    }
}

} // namespace qel::classification
