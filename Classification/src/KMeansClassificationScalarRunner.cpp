#include "Classification/private/KMeansHistogram.h"
#include "Classification/private/KMeansScalarGeneric.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ImageModelSizeProxy.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/ImageToQuantificationFilter.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/private/PartitionerInfoDefault.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/Throw.h"

#include <qel/ImageModelAdapter.h>
#include <qel/Ref.h>
#include <qel/analysis/IntensityStatistics.h>
#include <qel/classification/KMeansClassification.h>

#include <boost/random/mersenne_twister.hpp>
#include <boost/random/uniform_int_distribution.hpp>

#include <algorithm>

namespace qel::classification {

namespace {

constexpr unsigned long maxNumOfIterations = 10;

/// A number from 0 to 1, of 2^31 steps. The seed is the same on every run.
class Random
{
public:
    double draw() { return m_distribution(m_generator) / 2147483647.0; }

private:
    boost::random::mt19937 m_generator{10u};
    boost::random::uniform_int_distribution<int> m_distribution{0, 2147483647};
};

/// Which voxels of a block are in the sample, in row order: the generator starts anew in every block, so one pattern
/// serves them all. Empty for all voxels.
std::vector<unsigned char> samplePattern(unsigned int percent, unsigned long numOfVoxels)
{
    std::vector<unsigned char> pattern;
    if (percent > 99)
        return pattern;
    Random random;
    pattern.reserve(numOfVoxels);
    while (pattern.size() < numOfVoxels)
        pattern.push_back(percent > static_cast<unsigned int>(random.draw() * 101.0));
    return pattern;
}

double squaredDistance(std::vector<double> const& a, std::vector<double> const& b)
{
    double sum = 0;
    for (std::size_t component = 0; component < a.size(); ++component)
        sum += (a[component] - b[component]) * (a[component] - b[component]);
    return sum;
}

/// The run of the algorithm, step by step: statistics of each component, iterations, labels.
class KMeansImplementation : public algorithms::AbstractPrivateImplementation
{
public:
    explicit KMeansImplementation(KMeansClassification& kMeans)
        : AbstractPrivateImplementation(&kMeans)
        , m_kMeans(kMeans)
        , m_input(const_cast<ImageModel*>(kMeans.input.get()))
        , m_numOfComponents(m_input->getNumOf(SPECTRAL_SERIES))
    {}

    /// `T`: the type to compute in. Any number of components.
    template <class T> void run()
    {
        Publication const publication(*this);
        setNumOfSteps(m_numOfComponents + maxNumOfIterations + 1);
        if (!drawCenters())
            return;
        ImageModelAdapter const adapter(m_input, VoxelTypeOf<T>::value);
        std::vector<unsigned char> const pattern = sample();
        auto const fromVoxels = [&] {
            using Body = ComputeCentersAssociatedValues<T>;
            Body body(m_centers, pattern);
            ImageToQuantificationFilter3d<T, SimdVec::arch_scalar_tag, Body> filter(nullptr, &body);
            filter.setProcessingRegion(region());
            filter.setInput(adapter.getImage(), access::FixedBorderCondition<T>::New(T(0)));
            return runChild(filter);
        };
        if (iterate(fromVoxels))
            label<T>(adapter.getImage(), ApplyLabel<T>(m_centers));
    }

    /// One component of 8 or 16 bits, of the image's own type: the iterations run on its histogram.
    template <class T> void runOnHistogram()
    {
        Publication const publication(*this);
        setNumOfSteps(1 + 1 + maxNumOfIterations + 1);
        if (!drawCenters())
            return;
        std::vector<unsigned char> const pattern = sample();
        using Body = ComputeHistogram<T>;
        Body body(pattern);
        ManyToManyImageFilter3d<boost::mpl::vector<T>, boost::mpl::vector<>, SimdVec::arch_scalar_tag, Body> filter(
            nullptr, &body);
        filter.setBlocksAreFixed(!pattern.empty());
        filter.template setInput<0>(m_input, access::FixedBorderCondition<T>::New(T(0)));
        if (!runChild(filter))
            return;
        nextStep();
        auto const counts = body.total();
        auto const fromHistogram = [&] {
            computeCenters<T>(m_centers, counts);
            return !isCancelled();
        };
        if (iterate(fromHistogram))
            label<T>(m_input, ApplyLabelOfValue<T>(m_centers));
    }

private:
    /// Every series of components is one position of the region.
    access::Region region() const
    {
        return access::Region(0, m_input->getNumOf(ROWS), 0, m_input->getNumOf(COLUMNS), 0, m_input->getNumOf(PLANS), 0,
                              m_input->getNumOf(TIME_SERIES), 0, 1);
    }

    /// Within four deviations around each component's mean. False if the run was cancelled.
    bool drawCenters()
    {
        std::vector<double> lows, highs;
        for (unsigned long component = 0; component < m_numOfComponents; ++component) {
            ImageModelSizeProxy const series(m_input, 0, m_input->getNumOf(COLUMNS), 0, m_input->getNumOf(ROWS), 0,
                                             m_input->getNumOf(PLANS), 0, m_input->getNumOf(TIME_SERIES), component, 1);
            Ref<analysis::IntensityStatistics> statistics(analysis::IntensityStatistics::New(this));
            statistics->input = &series;
            statistics->run();
            if (isCancelled())
                return false;
            double const mean = statistics->outputMean.get().asDouble();
            double const reach = 4.0 * statistics->outputStandardDeviation.get().asDouble();
            double maximum = statistics->outputMaximum.get().asDouble();
            double minimum = statistics->outputMinimum.get().asDouble();
            if (mean + reach < maximum)
                maximum = mean + reach;
            if (mean - reach > minimum)
                minimum = mean - reach;
            double const middle = (minimum + maximum) / 2.0;
            double const range = maximum - minimum;
            lows.push_back(middle - 0.5 * range);
            highs.push_back(middle + 0.5 * range);
            removeChild();
            nextStep();
        }

        Random random;
        m_centers.resize(m_kMeans.numClasses);
        for (Center& center : m_centers)
            for (unsigned long component = 0; component < m_numOfComponents; ++component)
                center.centre.push_back(random.draw() * (highs[component] - lows[component] + 1.0) + lows[component]);
        return true;
    }

    std::vector<unsigned char> sample() const
    {
        AbstractPartitionerPolicy::PartitionerGrainSizes grains;
        PartitionerInfoDefault().getPartitionerGrainSizes(grains, access::Region());
        return samplePattern(m_kMeans.preComputingDataPercent, grains.grainCols * grains.grainRows * grains.grainPlans);
    }

    /// False if the run was cancelled.
    template <class Filter> bool runChild(Filter& filter)
    {
        setCurrentChild(&filter);
        filter.run();
        removeChild();
        return !isCancelled();
    }

    /// `compute` finds the new centres. False if the run was cancelled.
    template <class Compute> bool iterate(Compute const& compute)
    {
        for (unsigned long iteration = 1;; ++iteration) {
            if (!compute())
                return false;
            nextStep();
            pullEmptyClasses();
            double move = 0;
            for (Center const& center : m_centers)
                move = std::max(move, squaredDistance(center.newCentre, center.centre));
            if (!(move > 400.0 && iteration < maxNumOfIterations))
                return true;
            for (Center& center : m_centers)
                center.centre = center.newCentre;
        }
    }

    /// Towards the largest class, where they come to life again.
    void pullEmptyClasses()
    {
        Center const& largest = *std::max_element(m_centers.begin(), m_centers.end(),
                                                  [](auto const& a, auto const& b) { return a.count < b.count; });
        double const least = static_cast<double>(largest.count) / 1000.0;
        for (Center& center : m_centers)
            if (static_cast<double>(center.count) < least)
                for (std::size_t component = 0; component < m_numOfComponents; ++component)
                    center.newCentre[component] = (center.centre[component] + largest.centre[component]) / 2.0;
    }

    template <class T, class Body> void label(ImageModel const* image, Body body)
    {
        ImageModelAdapter const output(m_kMeans.classifiedImage, QEL_UINT32);
        ImageToImageFilter3d<T, unsigned int, SimdVec::arch_scalar_tag, Body> filter(nullptr, &body);
        filter.setProcessingRegion(region());
        filter.setInput(image, access::FixedBorderCondition<T>::New(T(0)));
        filter.setOutput(output.getImage(), access::FixedBorderCondition<unsigned int>::New(0u));
        runChild(filter);
    }

    KMeansClassification& m_kMeans;
    ImageModel* m_input;
    unsigned long m_numOfComponents;
    std::vector<Center> m_centers;
};

/// The output is as large as the input, with one label for all components.
void shapeOutput(KMeansClassification const& kMeans)
{
    ImageModel const& input = *kMeans.input.get();
    ImageModel& output = *kMeans.classifiedImage.get();
    bool fits = output.getNumOf(SPECTRAL_SERIES) == 1;
    for (Components const component : {COLUMNS, ROWS, PLANS, TIME_SERIES})
        fits = fits && output.getNumOf(component) == input.getNumOf(component);
    if (!fits && !output.reserve(output.getVoxelType(), input.getNumOf(COLUMNS), input.getNumOf(ROWS),
                                 input.getNumOf(PLANS), input.getNumOf(TIME_SERIES), 1))
        QEL_THROW(RuntimeError, "Output image cannot be resized");
}

class ScalarKMeansClassificationRunner : public ScalarRunner<KMeansClassification>
{
    void runOn(KMeansClassification& kMeans) const override
    {
        shapeOutput(kMeans);
        KMeansImplementation implementation(kMeans);
        bool const hasOneComponent = kMeans.input.get()->getNumOf(SPECTRAL_SERIES) == 1;
        switch (kMeans.input.get()->getVoxelType()) {
        case QEL_UINT8:
            return hasOneComponent ? implementation.runOnHistogram<unsigned char>() : implementation.run<float>();
        case QEL_UINT16:
            return hasOneComponent ? implementation.runOnHistogram<unsigned short>() : implementation.run<float>();
        case QEL_INT8:
            return hasOneComponent ? implementation.runOnHistogram<signed char>() : implementation.run<float>();
        case QEL_INT16:
            return hasOneComponent ? implementation.runOnHistogram<short>() : implementation.run<float>();
        case QEL_FLOAT32:
            return implementation.run<float>();
        default:
            return implementation.run<double>();
        }
    }
};

} // namespace

QEL_REGISTER_RUNNER(KMeansClassification, ScalarKMeansClassificationRunner)

} // namespace qel::classification
