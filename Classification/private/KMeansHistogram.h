#pragma once

#include "Classification/private/KMeansScalarGeneric.h"

#include <tbb/enumerable_thread_specific.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace qel::classification {

/// How often each value occurs among the voxels of the sample, for voxels of 8 or 16 bits. All that the iterations need
/// of them: so the image is read once, and sums of whole numbers are exact in any order.
template <class T> class ComputeHistogram
{
public:
    static constexpr long lowest = std::numeric_limits<T>::min();
    static constexpr std::size_t size = std::size_t(1) << (8 * sizeof(T));
    using Counts = std::vector<unsigned long>;

    explicit ComputeHistogram(std::vector<unsigned char> const& sample)
        : m_sample(sample)
        , m_counts(Counts(size, 0))
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        Counts& counts = m_counts.local();
        std::size_t offset = 0; // of the row in the block
        access::IteratorPixelInput<typename Filter::template InputView<0>, 1> in(filter.template getInputView<0>());
        for (in.init(block); !in.atEnd(); in.nextRow(), offset += in.rowLength())
            add(in.rowData(), in.rowLength(), m_sample.empty() ? nullptr : m_sample.data() + offset, counts.data());
    }

    Counts total() const
    {
        Counts sum(size, 0);
        for (Counts const& counts : m_counts)
            for (std::size_t index = 0; index < size; ++index)
                sum[index] += counts[index];
        return sum;
    }

private:
    static void add(T const* row, std::size_t count, unsigned char const* sample, unsigned long* counts)
    {
        using Index = std::make_unsigned_t<T>;
        for (std::size_t x = 0; x < count; ++x)
            counts[static_cast<Index>(row[x] - lowest)] += sample ? sample[x] : 1;
    }

    std::vector<unsigned char> const& m_sample;
    tbb::enumerable_thread_specific<Counts> m_counts;
};

/// The index of the nearest centre for every value of the type.
template <class T> std::vector<unsigned int> nearestOfValues(std::vector<Center> const& centers)
{
    std::vector<double> const centres = flatten(centers);
    std::vector<unsigned int> nearest;
    nearest.reserve(ComputeHistogram<T>::size);
    float values[kMeansChunk];
    int labels[kMeansChunk];
    while (nearest.size() < ComputeHistogram<T>::size) {
        std::size_t const count = std::min(kMeansChunk, ComputeHistogram<T>::size - nearest.size());
        for (std::size_t x = 0; x < count; ++x)
            values[x] = static_cast<float>(ComputeHistogram<T>::lowest + static_cast<long>(nearest.size() + x));
        float const* const row = values;
        labelNearest(&row, 1, centres.data(), centers.size(), labels, count);
        for (std::size_t x = 0; x < count; ++x)
            nearest.push_back(static_cast<unsigned int>(labels[x]));
    }
    return nearest;
}

/// What ComputeCentersAssociatedValues gathers from the voxels, from their histogram.
template <class T> void computeCenters(std::vector<Center>& centers, std::vector<unsigned long> const& counts)
{
    for (Center& center : centers) {
        center.count = 0;
        center.sum.assign(1, 0.0);
        center.newCentre.assign(1, 0.0);
    }
    std::vector<unsigned int> const nearest = nearestOfValues<T>(centers);
    for (std::size_t index = 0; index < counts.size(); ++index) {
        double const value = static_cast<double>(ComputeHistogram<T>::lowest + static_cast<long>(index));
        centers[nearest[index]].count += counts[index];
        centers[nearest[index]].sum[0] += static_cast<double>(counts[index]) * value;
    }
    for (Center& center : centers)
        if (center.count > 0)
            center.newCentre[0] = center.sum[0] / static_cast<double>(center.count);
}

/// Writes the class of every voxel, from 1 on: one look-up each.
template <class T> class ApplyLabelOfValue
{
public:
    explicit ApplyLabelOfValue(std::vector<Center> const& centers)
        : m_labels(nearestOfValues<T>(centers))
    {
        for (unsigned int& label : m_labels)
            ++label;
    }

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        using Index = std::make_unsigned_t<T>;
        access::IteratorPixelInput<typename Filter::InputView, 1> in(filter.getInputView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(filter.getOutputView(), false);
        for (in.init(block), out.init(block); !in.atEnd(); in.nextRow(), out.nextRow()) {
            T const* const row = in.rowData();
            unsigned int* const labels = out.rowData();
            for (std::size_t x = 0; x < in.rowLength(); ++x)
                labels[x] = m_labels[static_cast<Index>(row[x] - ComputeHistogram<T>::lowest)];
        }
    }

private:
    std::vector<unsigned int> m_labels;
};

} // namespace qel::classification
