#pragma once

#include "Classification/private/KMeansKernel.h"
#include "Classification/private/NearestOnLine.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Access/IteratorSeries.h"

#include <tbb/blocked_range.h> // tbb::split

#include <cmath>
#include <memory>
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

/// Finds the nearest centres of rows, chunk by chunk.
template <class T> class Classifier
{
public:
    explicit Classifier(std::vector<Center> const& centers)
        : m_centres(flatten(centers))
        , m_classes(centers.size())
        , m_components(m_centres.size() / m_classes)
        , m_onLine(m_components == 1 ? m_centres : std::vector<double>{NAN})
    {}

    std::size_t classes() const { return m_classes; }
    std::size_t components() const { return m_components; }

    /// Of the row under the cursor: `use(labels, rows, first, count)` for each chunk.
    template <class Cursor, class Use> void forEachChunk(Cursor const& in, Use const& use) const
    {
        std::vector<T const*> rows(m_components);
        int labels[kMeansChunk];
        for (std::size_t first = 0; first < in.rowLength(); first += kMeansChunk) {
            std::size_t const count = std::min<std::size_t>(kMeansChunk, in.rowLength() - first);
            for (std::size_t component = 0; component < rows.size(); ++component)
                rows[component] = in.rowData(component) + first;
            if (m_onLine.holds(rows[0], count))
                m_onLine.label(rows[0], labels, count);
            else
                labelNearest(rows.data(), rows.size(), m_centres.data(), m_classes, labels, count);
            use(labels, rows, first, count);
        }
    }

private:
    std::vector<double> m_centres;
    std::size_t m_classes;
    std::size_t m_components;
    NearestOnLine<T> m_onLine; // holds nowhere where there are more components
};

/// Gathers what each class needs for its new centre, over the voxels of the sample.
template <class T> class ComputeCentersAssociatedValues
{
public:
    /// `sample`: which voxels of a block count, in row order; empty for all. One pattern serves every block.
    ComputeCentersAssociatedValues(std::vector<Center>& centers, std::vector<unsigned char> const& sample)
        : m_classifier(std::make_shared<Classifier<T> const>(centers))
        , m_sample(sample)
        , m_centers(&centers)
        , m_chunkSums(centers.size() + 1)
    {
        initVCenters();
    }
    ComputeCentersAssociatedValues(ComputeCentersAssociatedValues& other, tbb::split)
        : m_classifier(other.m_classifier)
        , m_sample(other.m_sample)
        , m_centers(nullptr)
        , m_chunkSums(other.m_counts.size() + 1)
    {
        initVCenters();
    }

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        int const outside = static_cast<int>(m_counts.size());
        std::size_t offset = 0; // of the row in the block
        access::IteratorSpectralInput<typename Filter::InputView, 1> in(filter.getInputView());
        for (in.init(block); !in.atEnd(); in.nextRow(), offset += in.rowLength())
            m_classifier->forEachChunk(
                in, [&](int* labels, std::vector<T const*> const& rows, std::size_t first, std::size_t count) {
                    if (!m_sample.empty())
                        keepSample(m_sample.data() + offset + first, outside, labels, count);
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
    void initVCenters()
    {
        m_counts.assign(m_classifier->classes(), 0);
        m_sums.assign(m_classifier->classes() * m_classifier->components(), 0.0);
    }

    void add(int const* labels, std::vector<T const*> const& rows, std::size_t count)
    {
        for (std::size_t index = 0; index < m_counts.size(); ++index)
            m_counts[index] += countOfLabel(labels, static_cast<int>(index), count);
        for (std::size_t component = 0; component < rows.size(); ++component) {
            m_chunkSums.add(rows[component], labels, count);
            for (std::size_t index = 0; index < m_counts.size(); ++index)
                m_sums[index * rows.size() + component] += m_chunkSums[index];
        }
    }

    std::shared_ptr<Classifier<T> const> m_classifier;
    std::vector<unsigned char> const& m_sample;
    std::vector<Center>* m_centers; // of the root alone
    std::vector<unsigned long> m_counts;
    std::vector<double> m_sums;
    SumsOfLabels<T> m_chunkSums; // one more: of what is not in the sample
};

/// Writes the class of every voxel, from 1 on.
template <class T> class ApplyLabel
{
public:
    explicit ApplyLabel(std::vector<Center> const& centers)
        : m_classifier(centers)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorSpectralInput<typename Filter::InputView, 1> in(filter.getInputView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(filter.getOutputView(), false);
        for (in.init(block), out.init(block); !in.atEnd(); in.nextRow(), out.nextRow())
            m_classifier.forEachChunk(
                in, [&](int const* labels, std::vector<T const*> const&, std::size_t first, std::size_t count) {
                    unsigned int* const row = out.rowData() + first;
                    for (std::size_t x = 0; x < count; ++x)
                        row[x] = static_cast<unsigned int>(labels[x]) + 1;
                });
    }

private:
    Classifier<T> m_classifier;
};

} // namespace qel::classification
