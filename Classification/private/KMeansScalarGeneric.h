#pragma once

#include "Classification/private/KMeansKernel.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Access/IteratorSeries.h"

#include <tbb/blocked_range.h> // tbb::split

#include <vector>

namespace qel::classification {

struct Center
{
    std::vector<double> centre; // one value a component
    std::vector<double> sum;    // of the samples of the class
    unsigned long count = 0;
    std::vector<double> newCentre;
};

/// The centres class by class, as the kernels take them.
inline std::vector<double> flatten(std::vector<Center> const& centers)
{
    std::vector<double> values;
    for (Center const& center : centers)
        values.insert(values.end(), center.centre.begin(), center.centre.end());
    return values;
}

/// Labels the row under the cursor, chunk by chunk, and hands each chunk on: `use(labels, rows, first, count)`.
template <class T, class Cursor, class Use>
void forEachChunk(Cursor const& in, std::vector<double> const& centres, std::size_t classes, Use const& use)
{
    std::vector<T const*> rows(in.size());
    double labels[kMeansChunk];
    for (std::size_t first = 0; first < in.rowLength(); first += kMeansChunk) {
        std::size_t const count = std::min<std::size_t>(kMeansChunk, in.rowLength() - first);
        for (std::size_t component = 0; component < rows.size(); ++component)
            rows[component] = in.rowData(component) + first;
        labelNearest(rows.data(), rows.size(), centres.data(), classes, labels, count);
        use(labels, rows, first, count);
    }
}

/// Gathers what each class needs for its new centre, over the voxels of the sample.
template <class T> class ComputeCentersAssociatedValues
{
public:
    /// `sample`: which voxels of a block count, in row order; empty for all. One pattern serves every block.
    ComputeCentersAssociatedValues(std::vector<Center>& centers, std::vector<unsigned char> const& sample)
        : m_centres(flatten(centers))
        , m_sample(sample)
        , m_centers(&centers)
    {
        initVCenters(centers.size(), centers.front().centre.size());
    }
    ComputeCentersAssociatedValues(ComputeCentersAssociatedValues& other, tbb::split)
        : m_centres(other.m_centres)
        , m_sample(other.m_sample)
        , m_centers(nullptr)
    {
        initVCenters(other.m_counts.size(), other.m_sums.size() / other.m_counts.size());
    }

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        std::size_t const classes = m_counts.size();
        std::size_t offset = 0; // of the row in the block
        access::IteratorSpectralInput<typename Filter::InputView, 1> in(filter.getInputView());
        for (in.init(block); !in.atEnd(); in.nextRow(), offset += in.rowLength())
            forEachChunk<T>(
                in, m_centres, classes,
                [&](double* labels, std::vector<T const*> const& rows, std::size_t first, std::size_t count) {
                    if (!m_sample.empty())
                        keepSample(m_sample.data() + offset + first, labels, count);
                    add(labels, rows, count);
                });
    }

    void join(ComputeCentersAssociatedValues& right)
    {
        for (std::size_t i = 0; i < m_sums.size(); ++i)
            m_sums[i] += right.m_sums[i];
        for (std::size_t i = 0; i < m_counts.size(); ++i)
            m_counts[i] += right.m_counts[i];
    }

    void finalize()
    {
        std::size_t const components = m_centers->front().centre.size();
        for (std::size_t index = 0; index < m_counts.size(); ++index) {
            Center& center = (*m_centers)[index];
            center.count = m_counts[index];
            center.sum.assign(m_sums.begin() + static_cast<long>(index * components),
                              m_sums.begin() + static_cast<long>((index + 1) * components));
            center.newCentre.assign(components, 0.0);
            if (center.count > 0)
                for (std::size_t component = 0; component < components; ++component)
                    center.newCentre[component] = center.sum[component] / static_cast<double>(center.count);
        }
    }

private:
    void initVCenters(std::size_t classes, std::size_t components)
    {
        m_counts.assign(classes, 0);
        m_sums.assign(classes * components, 0.0);
    }

    void add(double const* labels, std::vector<T const*> const& rows, std::size_t count)
    {
        for (std::size_t index = 0; index < m_counts.size(); ++index) {
            double const label = static_cast<double>(index);
            m_counts[index] += countOfLabel(labels, label, count);
            for (std::size_t component = 0; component < rows.size(); ++component)
                m_sums[index * rows.size() + component] += sumOfLabel(rows[component], labels, label, count);
        }
    }

    std::vector<double> m_centres;
    std::vector<unsigned char> const& m_sample;
    std::vector<Center>* m_centers; // of the root alone
    std::vector<unsigned long> m_counts;
    std::vector<double> m_sums;
};

/// Writes the class of every voxel, from 1 on.
template <class T> class ApplyLabel
{
public:
    explicit ApplyLabel(std::vector<Center> const& centers)
        : m_centres(flatten(centers))
        , m_classes(centers.size())
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorSpectralInput<typename Filter::InputView, 1> in(filter.getInputView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(filter.getOutputView(), false);
        for (in.init(block), out.init(block); !in.atEnd(); in.nextRow(), out.nextRow())
            forEachChunk<T>(
                in, m_centres, m_classes,
                [&](double const* labels, std::vector<T const*> const&, std::size_t first, std::size_t count) {
                    unsigned int* const row = out.rowData() + first;
                    for (std::size_t x = 0; x < count; ++x)
                        row[x] = static_cast<unsigned int>(static_cast<int>(labels[x])) + 1;
                });
    }

private:
    std::vector<double> m_centres;
    std::size_t m_classes;
};

} // namespace qel::classification
