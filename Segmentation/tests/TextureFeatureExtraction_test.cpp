#include "Segmentation/tests/TextureModel.h"

#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/tests/Support/Algorithms.h"
#include "Math/private/Histogram.h"
#include "Segmentation/private/Texture/TextureFeatureExtractionPrivate.h"
#include "Segmentation/private/Texture/TextureWalk.h"

#include <qel/access/Block3d.h>
#include <qel/segmentation/TextureFeatureExtraction2D.h>
#include <qel/segmentation/TextureFeatureExtraction3D.h>

#include <limits>
#include <numeric>
#include <random>

namespace qel::test {
namespace {

using namespace segmentation;
using details::TextureParameters;
using kernel::Offset3D;

constexpr char const* noHistogramBins = "The histogram isn't correctly initialized.";

TextureFeatureGroup groupOf(std::vector<int> const& features)
{
    TextureFeatureGroup group;
    for (int const feature : features)
        group.push_back(static_cast<TextureFeatureTypes>(feature));
    return group;
}

/// All measures, in an order that is not that of the enumeration.
std::vector<int> allFeatures()
{
    std::vector<int> features(69);
    for (int i = 0; i < 69; ++i)
        features[static_cast<std::size_t>(i)] = i * 31 % 69;
    return features;
}

/// Every channel of a voxel, from the levels of its window in any order, measure by measure.
class PlainTexture
{
public:
    explicit PlainTexture(TextureParameters const& parameters)
        : m_parameters(parameters)
    {
        long const r = static_cast<long>(parameters.radius);
        long const limit = static_cast<long>((r + 0.5) * (r + 0.5));
        for (long z = parameters.isVolume ? -r : 0; z <= (parameters.isVolume ? r : 0); ++z)
            for (long y = -r; y <= r; ++y)
                for (long x = -r; x <= r; ++x)
                    if (x * x + y * y + z * z < limit)
                        m_window.push_back({x, y, z});
    }

    unsigned long numOfChannels() const
    {
        unsigned long count = 0;
        for (TextureFeatureTypes const feature : m_parameters.features)
            count += details::isForEachDirection(feature) ? m_parameters.directions.size() : 1;
        return count;
    }

    /// What `levelAt(offset)` is measured as, with the number of the indicator that each channel comes from.
    template <class LevelAt> std::vector<std::pair<int, double>> channelsAt(LevelAt const& levelAt)
    {
        std::vector<std::pair<int, double>> channels;
        std::vector<PlainCooccurrence> matrices;
        for (Offset3D const& d : m_parameters.directions) {
            Levels pairs;
            for (Offset3D const& q : m_window) {
                Offset3D const other{q.x + d.x, q.y + d.y, q.z + d.z};
                if (std::find(m_window.begin(), m_window.end(), other) != m_window.end())
                    pairs.emplace_back(levelAt(q), levelAt(other));
            }
            matrices.emplace_back(m_parameters.cooccurrence.min, m_parameters.cooccurrence.max,
                                  m_parameters.cooccurrence.binSize, pairs);
        }
        math::Histogram histogram(m_parameters.histogram.min, m_parameters.histogram.max,
                                  m_parameters.histogram.binSize);
        if (m_parameters.hasHistogram())
            for (Offset3D const& q : m_window)
                histogram.increment(levelAt(q));
        for (TextureFeatureTypes const feature : m_parameters.features) {
            if (details::isHistogram(feature)) {
                channels.emplace_back(details::contrast, ofHistogram(histogram, feature));
                continue;
            }
            int const indicator = (feature >> 2) + 4;
            std::vector<long double> values;
            for (PlainCooccurrence& matrix : matrices)
                values.push_back(matrix.measure(indicator));
            long double const n = static_cast<long double>(values.size());
            long double const mean = std::accumulate(values.begin(), values.end(), 0.0L) / n;
            long double squares = 0;
            for (long double const value : values)
                squares += (value - mean) * (value - mean);
            if (feature % 4 == 0)
                for (long double const value : values)
                    channels.emplace_back(indicator, static_cast<double>(value));
            if (feature % 4 == 1)
                channels.emplace_back(indicator, static_cast<double>(mean));
            if (feature % 4 == 2)
                channels.emplace_back(-1, static_cast<double>(std::sqrt(squares / n)));
            if (feature % 4 == 3)
                channels.emplace_back(indicator, static_cast<double>(*std::max_element(values.begin(), values.end()) -
                                                                     *std::min_element(values.begin(), values.end())));
        }
        return channels;
    }

private:
    double ofHistogram(math::Histogram& histogram, int feature) const
    {
        switch (feature) {
        case HISTO_Mean:
            return histogram.computeMean();
        case HISTO_Stddev:
            return histogram.computeStddev();
        case HISTO_Variance:
            return histogram.computeVariance();
        case HISTO_Skewness:
            return histogram.computeSkewness();
        case HISTO_Kurtosis:
            return histogram.computeKurtosis();
        case HISTO_Peak:
            return histogram.computePeak();
        default: {
            double const fixed[] = {0.1, 0.25, 0.5, 0.75, 0.9};
            return histogram.computeQuantile(
                feature <= HISTO_Quantile90
                    ? fixed[feature - HISTO_Quantile10]
                    : m_parameters.quantileRatios.at(static_cast<std::size_t>(feature - HISTO_QuantileR1)));
        }
        }
    }

    TextureParameters m_parameters;
    std::vector<Offset3D> m_window;
};

template <class Extraction> class TextureFeatureExtractionTest : public testing::Test
{
protected:
    static constexpr bool isVolume = std::is_same_v<Extraction, TextureFeatureExtraction3D>;
    using Direction = std::conditional_t<isVolume, math::Vector3<int>, math::Vector2<int>>;

    static std::string name() { return Extraction::getClassInfo()->getName().c_str(); }

    void setDirections(std::vector<std::array<int, 3>> const& directions)
    {
        container::Vector<Direction> all;
        for (auto const& direction : directions) {
            Direction step;
            for (unsigned int i = 0; i < Direction::dim(); ++i)
                step[i] = direction[i];
            all.push_back(step);
        }
        extraction->directionCollection = all;
    }

    void setRanges(double min, double max, double binSize)
    {
        extraction->minGreyLevelCooccurrence = min;
        extraction->maxGreyLevelCooccurrence = max;
        extraction->binSizeCooccurrence = binSize;
        extraction->minGreyLevelHistogram = min;
        extraction->maxGreyLevelHistogram = max;
        extraction->binSizeHistogram = binSize;
    }

    void setFeatures(std::vector<int> const& features) { extraction->textureFeaturesGroup = groupOf(features); }

    void setRatios(std::vector<double> const& ratios)
    {
        container::Vector<double> all;
        for (double const ratio : ratios)
            all.push_back(ratio);
        extraction->userQuantileRatioHistogram = all;
    }

    template <class TOut> Picture<TOut> runOn(ImageModel const& in)
    {
        HostImage out(VoxelTypeOf<TOut>::value, Shape{1, 1});
        extraction->input = &in;
        extraction->output = &out;
        extraction->run();
        return fromImage<TOut>(out);
    }

    /// The ranges must be set.
    template <class TOut, class T> void expectModel(Picture<T> const& in)
    {
        TextureParameters const parameters = details::textureParametersOf(*extraction, isVolume);
        PlainTexture plain(parameters);
        unsigned long const channels = plain.numOfChannels();
        HostImage const image(in);
        Picture<TOut> const found = runOn<TOut>(image);
        Shape const& shape = in.shape;
        ASSERT_EQ(found.shape, (Shape{shape.columns, shape.rows, shape.plans,
                                      shape.timeSeries * channels * shape.spectralSeries, 1}));
        auto const mirrored = [](unsigned long at, long step, unsigned long size) {
            return static_cast<unsigned long>(
                access::mirrorCoordinate(static_cast<long>(at) + step, static_cast<long>(size)));
        };
        forEachVoxel(shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
            if (testing::Test::HasFailure())
                return;
            auto const expected = plain.channelsAt([&](Offset3D const& offset) {
                return static_cast<double>(in.at(mirrored(c, offset.x, shape.columns),
                                                 mirrored(r, offset.y, shape.rows), mirrored(p, offset.z, shape.plans),
                                                 t, s));
            });
            for (unsigned long channel = 0; channel < channels; ++channel) {
                auto const [indicator, value] = expected[channel];
                double const got = found.at(c, r, p, (t * shape.spectralSeries + s) * channels + channel);
                if (std::is_same_v<TOut, float>)
                    EXPECT_NEAR(got, value, 1e-6 * std::abs(value) + 1e-3) << "channel " << channel;
                else if (indicator < 0) // a deviation from sums of squares that cancel
                    EXPECT_NEAR(got, value, 1e-6 * (1 + std::abs(value))) << "channel " << channel;
                else
                    EXPECT_TRUE(sameMeasure(indicator, got, static_cast<long double>(value), 1000))
                        << "channel " << channel << " at " << c << ", " << r << ", " << p << ", " << t << ", " << s;
            }
        });
    }

    Ref<Extraction> extraction{Extraction::New()};
};

using Extractions = testing::Types<TextureFeatureExtraction2D, TextureFeatureExtraction3D>;
TYPED_TEST_SUITE(TextureFeatureExtractionTest, Extractions);

access::Range span(unsigned long begin, unsigned long end) { return {end, begin, end - begin}; }

/// Levels from `low` on, smooth enough for neighbours to be alike.
template <class T> Picture<T> texture(Shape const& shape, unsigned seed, T low, int range)
{
    Picture<T> picture(shape);
    std::mt19937 random(seed);
    forEachVoxel(shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        double const wave = 0.5 + 0.4 * std::sin(0.9 * static_cast<double>(c) + 0.4 * static_cast<double>(r * (p + 1)));
        double const noise = 0.1 * std::uniform_real_distribution<double>(-1, 1)(random);
        picture.at(c, r, p, t, s) = static_cast<T>(static_cast<double>(low) + (wave + noise) * range + (t + s) % 2);
    });
    return picture;
}

TYPED_TEST(TextureFeatureExtractionTest, isRegisteredWithItsPropertiesInOrder)
{
    auto& it = *this->extraction;
    EXPECT_EQ(AlgoInfo::fromName(this->name().c_str()), TypeParam::getClassInfo());
    std::vector<std::pair<BaseProperty*, char const*>> const inputs{
        {&it.input, "input"},
        {&it.radius, "radius"},
        {&it.textureFeaturesGroup, "textureFeaturesGroup"},
        {&it.minGreyLevelCooccurrence, "minGreyLevelCooccurrence"},
        {&it.maxGreyLevelCooccurrence, "maxGreyLevelCooccurrence"},
        {&it.binSizeCooccurrence, "binSizeCooccurrence"},
        {&it.directionCollection, "directionCollection"},
        {&it.minGreyLevelHistogram, "minGreyLevelHistogram"},
        {&it.maxGreyLevelHistogram, "maxGreyLevelHistogram"},
        {&it.binSizeHistogram, "binSizeHistogram"},
        {&it.userQuantileRatioHistogram, "userQuantileRatioHistogram"}};
    ASSERT_EQ(it.getNumOfInputProperties(), inputs.size());
    for (unsigned long i = 0; i < inputs.size(); ++i) {
        EXPECT_EQ(it.getInputProperty(i), inputs[i].first);
        EXPECT_STREQ(it.getInputProperty(i)->getName().c_str(), inputs[i].second);
        EXPECT_STREQ(it.getInputProperty(i)->getDescription().c_str(), inputs[i].second);
    }
    EXPECT_EQ(describedOutputs(it), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(it.input.get(), nullptr);
    EXPECT_EQ(it.radius.get(), 5u);
    EXPECT_TRUE(it.textureFeaturesGroup.get().empty());
    EXPECT_TRUE(it.directionCollection.get().empty());
    for (auto* const property :
         {&it.minGreyLevelCooccurrence, &it.minGreyLevelHistogram, &it.binSizeCooccurrence, &it.binSizeHistogram})
        EXPECT_EQ(property->get(), 0.0);
    EXPECT_EQ(it.maxGreyLevelCooccurrence.get(), -1.0);
    EXPECT_EQ(it.maxGreyLevelHistogram.get(), -1.0);
    auto const ratios = it.userQuantileRatioHistogram.get();
    EXPECT_EQ(std::vector<double>(ratios.begin(), ratios.end()), std::vector<double>(6, -1.0));
    EXPECT_EQ(levelsOf(it), std::vector<OptimLevelType>{SCALAR});
    it.radius = 7u;
    AlgoBorderInfluence const influence = it.getAlgoBorderInfluence();
    int const last = this->isVolume ? PLANS_POSITIVE : ROWS_POSITIVE;
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), direction <= last ? 7 : 0);
}

TYPED_TEST(TextureFeatureExtractionTest, followsTheModelForEveryVoxelTypeAndAllMeasures)
{
    this->setFeatures(allFeatures());
    this->setDirections({{1, 0, 0}, {-1, 1, 1}, {0, 2, 0}});
    this->setRatios({0.05, 0.3, 0.4, 0.6, 0.95, -1});
    this->extraction->radius = 2u;
    unsigned seed = 7300;
    forEachVoxelType([&]<class T>() {
        T const low = std::is_signed_v<T> ? T(-20) : T(4);
        // Some levels lie beyond both ends of the range.
        this->setRanges(static_cast<double>(low) + 3, static_cast<double>(low) + 33, 3.1);
        Shape const shape = this->isVolume ? Shape{5, 4, 4} : Shape{9, 7, 2};
        this->template expectModel<double>(texture<T>(shape, seed, low, 40));
        this->template expectModel<float>(texture<T>(shape, seed++, low, 40));
    });
}

TYPED_TEST(TextureFeatureExtractionTest, followsTheModelForEveryShapeAndSeries)
{
    this->setFeatures({COOC_Contrast, HISTO_Mean, COOC_EntropyStddev, COOC_CorrelationRange});
    this->setDirections({{1, 0, 0}, {0, -1, 0}});
    this->setRanges(0, 30, 5);
    this->extraction->radius = 2u;
    unsigned seed = 7400;
    for (Shape const& shape : oddShapes()) {
        SCOPED_TRACE(testing::Message() << shape);
        onOneAndFourThreads([&] { this->template expectModel<double>(texture<unsigned char>(shape, seed, 0, 32)); });
        ++seed;
    }
}

TYPED_TEST(TextureFeatureExtractionTest, followsTheModelForEveryRadius)
{
    this->setFeatures({COOC_AngularSecondMomentMean, COOC_InformationMeasuresCorrelation1, HISTO_Quantile50});
    this->setDirections({{1, -1, 0}, {0, 0, 0}});
    this->setRanges(0, 30, 4);
    for (unsigned int const radius : {1u, 3u, 5u, 8u}) {
        if (this->isVolume && radius > 3)
            continue;
        this->extraction->radius = radius;
        this->template expectModel<double>(texture<short>(Shape{6, 5, 2}, radius, 0, 32));
    }
}

TYPED_TEST(TextureFeatureExtractionTest, doesNotDependOnTheCutOfBlocks)
{
    this->setFeatures(allFeatures());
    this->setDirections({{1, 0, 0}, {1, 1, 0}});
    this->setRanges(0, 30, 2);
    this->setRatios({0.2, 0.3, 0.4, 0.6, 0.7, 0.8});
    Shape const shape = this->isVolume ? Shape{131, 17, 18} : Shape{261, 35, 2};
    this->extraction->radius = this->isVolume ? 1u : 3u;
    Picture<unsigned short> const in = texture<unsigned short>(shape, 7, 0, 31);
    HostImage const image(in);

    // One block that is the whole image: every column by sliding, or some of them, each by its own fill or by sliding.
    TextureParameters const parameters = details::textureParametersOf(*this->extraction, this->isVolume);
    details::TexturePlan const plan(parameters, details::channelsOf(parameters.features, parameters.directions.size()));
    unsigned long const channels = plan.channels().numOfOutputs;
    auto const view = access::View<unsigned short>::New(&image, access::MirrorBorderCondition<unsigned short>::New());
    Picture<double> expected(Shape{shape.columns, shape.rows, shape.plans, channels}, -1);
    details::TextureWalk walk(plan);
    std::vector<double> outputs(channels);
    auto const walkOver = [&](access::Block const& block, unsigned long step, auto const& visit) {
        walk.init(*view, block);
        for (unsigned long p = 0; p < block.getNbPlans(); ++p)
            for (unsigned long r = 0; r < block.getNbRows(); ++r) {
                walk.toRow(static_cast<long>(r), static_cast<long>(p));
                for (unsigned long c = r % step; c < block.getNbCols(); c += step) {
                    walk.measure(static_cast<long>(c), outputs.data());
                    visit(c + block.colsBegin(), r + block.rowsBegin(), p + block.plansBegin());
                }
            }
    };
    auto const store = [&](unsigned long c, unsigned long r, unsigned long p) {
        for (unsigned long channel = 0; channel < channels; ++channel)
            expected.at(c, r, p, channel) = outputs[channel];
    };
    auto const compare = [&](unsigned long c, unsigned long r, unsigned long p) {
        for (unsigned long channel = 0; channel < channels; ++channel)
            ASSERT_EQ(expected.at(c, r, p, channel), outputs[channel]) << c << ' ' << r << ' ' << p << ' ' << channel;
    };
    auto const blockOf = [&](unsigned long col, unsigned long row, unsigned long cols, unsigned long rows) {
        return access::Block3d(span(0, shape.plans), span(row, row + rows), span(col, col + cols), 0, 0);
    };
    if (!this->isVolume) {
        // Plan by plan.
        for (unsigned long p = 0; p < shape.plans; ++p)
            walkOver(access::Block3d(span(p, p + 1), span(0, shape.rows), span(0, shape.columns), 0, 0), 1, store);
        walkOver(access::Block3d(span(1, 2), span(3, 9), span(17, 60), 0, 0), 2, compare);
        walkOver(access::Block3d(span(0, 1), span(3, 9), span(17, 160), 0, 0), 41, compare);
    } else {
        walkOver(blockOf(0, 0, shape.columns, shape.rows), 1, store);
        walkOver(blockOf(20, 3, 90, 5), 2, compare);
        walkOver(blockOf(20, 3, 90, 5), 31, compare);
    }
    onOneAndFourThreads([&] { EXPECT_TRUE(samePicture(expected, this->template runOn<double>(image))); });
}

TYPED_TEST(TextureFeatureExtractionTest, computesAMeasureTheSameWhateverElseIsAskedFor)
{
    this->setDirections({{1, 0, 0}, {0, 1, 0}});
    this->setRanges(0, 30, 2);
    this->extraction->radius = 2u;
    HostImage const image(texture<unsigned char>(Shape{12, 9, 2}, 3, 0, 31));
    std::vector<int> features(69);
    std::iota(features.begin(), features.end(), 0);
    this->setFeatures(features);
    Picture<double> const all = this->template runOn<double>(image);
    unsigned long channel = 0;
    for (int feature = 0; feature < 69; ++feature) {
        this->setFeatures({feature});
        Picture<double> const alone = this->template runOn<double>(image);
        ASSERT_EQ(alone.shape.timeSeries, feature < 52 && feature % 4 == 0 ? 2u : 1u);
        for (unsigned long i = 0; i < alone.shape.timeSeries; ++i, ++channel)
            for (unsigned long c = 0; c < 12; ++c)
                ASSERT_EQ(all.at(c, 4, 1, channel), alone.at(c, 4, 1, i)) << feature;
    }
    EXPECT_EQ(channel, all.shape.timeSeries);
}

TYPED_TEST(TextureFeatureExtractionTest, leavesTheFirstChannelsOfAMeasureThatStandsTwice)
{
    this->setDirections({{1, 0, 0}, {0, 1, 0}});
    this->setRanges(0, 30, 2);
    this->extraction->radius = 1u;
    HostImage const image(texture<unsigned char>(Shape{7, 5, 2}, 3, 5, 20));
    this->setFeatures({COOC_Contrast, HISTO_Mean, COOC_Contrast, COOC_ContrastMean, HISTO_Mean});
    Picture<double> const twice = this->template runOn<double>(image);
    this->setFeatures({COOC_Contrast, COOC_ContrastMean, HISTO_Mean});
    Picture<double> const once = this->template runOn<double>(image);
    ASSERT_EQ(twice.shape.timeSeries, 7u);
    forEachVoxel(image.sizes(), [&](unsigned long c, unsigned long r, unsigned long p, unsigned long, unsigned long) {
        for (unsigned long channel = 0; channel < 3; ++channel)
            EXPECT_EQ(twice.at(c, r, p, channel), 0.0);
        for (unsigned long channel = 0; channel < 4; ++channel)
            EXPECT_EQ(twice.at(c, r, p, channel + 3), once.at(c, r, p, channel));
        EXPECT_EQ(once.at(c, r, p, 2), (once.at(c, r, p, 0) + once.at(c, r, p, 1)) / 2);
    });
}

TYPED_TEST(TextureFeatureExtractionTest, takesRangesFromTheImageWhereTheyAreOpen)
{
    Picture<float> in = texture<float>(Shape{11, 8, 3}, 3, -7.f, 90);
    auto const [low, high] = std::minmax_element(in.voxels.begin(), in.voxels.end());
    double const min = *low, max = *high;
    HostImage const image(in);
    this->setFeatures({COOC_Contrast, HISTO_Quantile25, COOC_SumAverageMean, HISTO_Mean});
    this->setDirections({{1, 0, 0}});
    this->extraction->radius = 2u;
    Picture<double> const automatic = this->template runOn<double>(image);
    EXPECT_EQ(this->extraction->maxGreyLevelCooccurrence.get(), -1.0);
    this->setRanges(min, max, 0);
    EXPECT_TRUE(samePicture(automatic, this->template runOn<double>(image)));
    this->extraction->binSizeCooccurrence = std::ceil((max - min) / 20.0);
    this->extraction->binSizeHistogram = std::ceil((max - min) / 256.0);
    EXPECT_TRUE(samePicture(automatic, this->template runOn<double>(image)));
    this->template expectModel<double>(in);
    // One family open, and a bin size below 0.
    this->extraction->minGreyLevelCooccurrence = 1e6;
    this->extraction->binSizeHistogram = -3.0;
    EXPECT_TRUE(samePicture(automatic, this->template runOn<double>(image)));
    // A 20th and a 256th, rounded up.
    Picture<unsigned short> wide = texture<unsigned short>(Shape{9, 7, 3}, 3, 0, 1000);
    wide.voxels.front() = 0;
    wide.voxels.back() = 1020;
    HostImage const levels(wide);
    this->setRanges(0, -1, 0);
    Picture<double> const open = this->template runOn<double>(levels);
    this->setRanges(0, 1020, 51);
    this->extraction->binSizeHistogram = 4.0;
    EXPECT_TRUE(samePicture(open, this->template runOn<double>(levels)));
    // Between 0 and 1 there are two bins.
    for (float& voxel : in.voxels)
        voxel = (voxel + 7) / 100;
    HostImage const parts(in);
    this->setRanges(0, -1, 0);
    Picture<double> const coarse = this->template runOn<double>(parts);
    this->setRanges(static_cast<double>(*std::min_element(in.voxels.begin(), in.voxels.end())),
                    static_cast<double>(*std::max_element(in.voxels.begin(), in.voxels.end())), 1);
    EXPECT_TRUE(samePicture(coarse, this->template runOn<double>(parts)));
}

TYPED_TEST(TextureFeatureExtractionTest, refusesToCutAConstantImageIntoBins)
{
    HostImage const image(Picture<short>(Shape{7, 5, 2}, short(9)));
    HostImage out(QEL_FLOAT32, Shape{1, 1});
    this->extraction->input = &image;
    this->extraction->output = &out;
    this->setDirections({{1, 0, 0}});
    this->setFeatures({HISTO_Mean});
    EXPECT_QEL_THROW(this->extraction->run(), InvalidCall, noHistogramBins);
    for (auto const& features : {std::vector<int>{COOC_Contrast}, {HISTO_Mean, COOC_Contrast}}) {
        this->setFeatures(features);
        EXPECT_QEL_THROW(this->extraction->run(), InvalidCall, "The bin size must be greater than 0.");
    }
    EXPECT_TRUE(isAtRest(*this->extraction));
    // With bins it has measures.
    this->extraction->binSizeCooccurrence = 2.0;
    this->extraction->binSizeHistogram = 2.0;
    Picture<double> const measures = this->template runOn<double>(image);
    for (unsigned long c = 0; c < 7; ++c) {
        EXPECT_EQ(measures.at(c, 2, 1, 0), 10.0); // the centre of a bin from 9 on
        EXPECT_EQ(measures.at(c, 2, 1, 1), 0.0);
    }
}

TYPED_TEST(TextureFeatureExtractionTest, refusesBadParametersWithTheirWords)
{
    HostImage const image(texture<unsigned char>(Shape{7, 5, 2}, 3, 5, 20));
    HostImage out(QEL_FLOAT32, Shape{1, 1});
    auto& it = *this->extraction;
    std::string const name = this->name();
    it.output = &out;
    this->setFeatures({COOC_Contrast});
    EXPECT_QEL_WHAT(it.run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    HostImage const complex(QEL_COMPLEX_FLOAT32, Shape{3, 3});
    it.input = &complex;
    EXPECT_QEL_WHAT(it.run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                             "int16, int32, int64, float32, float64. Current data type is complex float32.",
                             "input", name));
    it.input = &image;
    it.output = nullptr;
    EXPECT_QEL_WHAT(it.run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    HostImage integers(QEL_INT32, Shape{1, 1});
    it.output = &integers;
    EXPECT_QEL_WHAT(it.run(), RuleException,
                    ruleText("The parameter \"output\" supports only data type(s): float32, float64. Current data "
                             "type is int32.",
                             "output", name));
    it.output = &out;
    it.radius = 0u;
    EXPECT_QEL_WHAT(it.run(), RuleException,
                    ruleText("The parameter \"radius\" must be strictly positive.", "radius", name));
    it.radius = 2u;
    this->setFeatures({});
    EXPECT_QEL_WHAT(
        it.run(), RuleException,
        ruleText("The parameter \"textureFeaturesGroup\" should not be empty.", "textureFeaturesGroup", name));
    this->setFeatures({COOC_Contrast});
    this->setRatios({0.5});
    EXPECT_QEL_WHAT(it.run(), RuleException,
                    ruleText("The parameter \"userQuantileRatioHistogram\" must have a size of 6. Current size is 1.",
                             "userQuantileRatioHistogram", name));
    this->setRatios({-1, -1, -1, -1, -1, -1});

    EXPECT_QEL_THROW(it.run(), InvalidCall, "The direction collection is empty.");
    this->setFeatures({HISTO_Mean, COOC_LastMeasure});
    EXPECT_QEL_THROW(it.run(), InvalidCall, "The direction collection is empty.");
    for (int const feature : {69, -1, 1000000}) {
        this->setFeatures({HISTO_Mean, feature});
        EXPECT_QEL_THROW(it.run(), InvalidCall, "There is no texture feature " + std::to_string(feature) + ".");
    }
    // Histograms need no direction.
    EXPECT_TRUE(shapeOf(out) == (Shape{1, 1}));
    this->setFeatures({HISTO_Mean});
    it.run();
    EXPECT_TRUE(shapeOf(out) == (Shape{7, 5, 2}));

    this->setFeatures({COOC_Contrast});
    this->setDirections({{1, 0, 0}, {-5, 1, 0}});
    EXPECT_QEL_THROW(it.run(), InvalidCall,
                     this->isVolume ? "The <-5; 1; 0> direction is imcompatible with the radius."
                                    : "The <-5; 1> direction is imcompatible with the radius.");
    this->setDirections({{4, 0, 0}});
    it.run();
    this->setDirections({{0, 5, 0}});
    EXPECT_QEL_THROW(it.run(), InvalidCall,
                     this->isVolume ? "The <0; 5; 0> direction is imcompatible with the radius."
                                    : "The <0; 5> direction is imcompatible with the radius.");
    // Nothing is made of directions where no measure needs them.
    this->setFeatures({HISTO_Mean});
    it.run();

    out.failOn(RESERVE);
    this->setFeatures({HISTO_Mean, HISTO_Peak});
    EXPECT_QEL_THROW(it.run(), RuleException,
                     this->isVolume ? "Output image cannot be resized" : "The parameter \"output\" cannot be resized.");
    EXPECT_TRUE(isAtRest(it));
}

TYPED_TEST(TextureFeatureExtractionTest, refusesWhatNoMemoryHolds)
{
    HostImage const image(texture<unsigned char>(Shape{7, 5, 2}, 3, 5, 20));
    HostImage out(QEL_FLOAT32, Shape{1, 1});
    auto& it = *this->extraction;
    it.input = &image;
    it.output = &out;
    this->setFeatures({COOC_Entropy});
    this->setDirections({{1, 0, 0}});
    this->setRanges(0, 1e7, 1);
    EXPECT_QEL_THROW(it.run(), MemoryError,
                     "A cooccurrence matrix has 65536 bins at most. The grey levels from 0 to 1e+07 make 1e+07.");
    this->setRanges(0, 30, 1);
    it.radius = 3000000000u;
    EXPECT_QEL_THROW(it.run(), MemoryError, "The available memory does not hold a window of radius 3000000000.");
    it.radius = 2;
    this->setFeatures({HISTO_Mean});
    for (double const most : {5e9, 1e13}) {
        this->setRanges(0, most, 1);
        EXPECT_QEL_THROW(it.run(), MemoryError,
                         "The available memory does not hold histograms of " +
                             std::string(most == 5e9 ? "5e+09" : "1e+13") + " bins.");
    }
}

TYPED_TEST(TextureFeatureExtractionTest, failsWhereNoVoxelOfAWindowIsInTheHistogram)
{
    Picture<float> in(Shape{40, 12, 3}, 5.f);
    for (unsigned long p = 0; p < 3; ++p)
        for (unsigned long r = 0; r < 12; ++r)
            for (unsigned long c = 20; c < 40; ++c)
                in.at(c, r, p) = c % 2 == 0 ? 1000.f : std::numeric_limits<float>::quiet_NaN();
    HostImage const image(in);
    HostImage out(QEL_FLOAT32, Shape{1, 1});
    this->extraction->input = &image;
    this->extraction->output = &out;
    this->extraction->radius = 2u;
    this->setFeatures({HISTO_Mean});
    this->setRanges(0, 10, 1);
    onOneAndFourThreads([&] {
        EXPECT_QEL_THROW(this->extraction->run(), InvalidCall,
                         "The histogram is empty: impossible to compute a measure.");
    });
    // NaN alone is no level either, though the range is that of the image.
    this->setRanges(0, -1, 2);
    Picture<double> const found = this->template runOn<double>(image);
    EXPECT_EQ(found.at(3, 3, 1), 6.0);
    EXPECT_GT(found.at(30, 3, 1), 900.0);
}

TYPED_TEST(TextureFeatureExtractionTest, putsNaNIntoTheFirstBinOfAMatrix)
{
    Picture<double> in = texture<double>(Shape{9, 7, 2}, 3, 5, 20);
    for (std::size_t i = 0; i < in.voxels.size(); i += 3)
        in.voxels[i] =
            i % 2 == 0 ? std::numeric_limits<double>::quiet_NaN() : -std::numeric_limits<double>::quiet_NaN();
    this->setFeatures({COOC_Contrast, COOC_Entropy, HISTO_Mean});
    this->setDirections({{1, 0, 0}});
    this->setRanges(0, 30, 4);
    this->extraction->radius = 2u;
    this->template expectModel<double>(in);
}

TYPED_TEST(TextureFeatureExtractionTest, givesTheCentreOfTheFirstBinForARatioThatIsLeftOpen)
{
    HostImage const image(texture<unsigned char>(Shape{9, 7, 2}, 3, 15, 10));
    this->setFeatures({HISTO_QuantileR3});
    this->setRanges(4, 30, 3);
    Picture<double> const found = this->template runOn<double>(image);
    for (double const value : found.voxels)
        ASSERT_EQ(value, 5.5);
}

TYPED_TEST(TextureFeatureExtractionTest, takesLevelsOf64Bits)
{
    unsigned long const top = ~0ul;
    std::mt19937_64 random(5);
    Picture<unsigned long> in(Shape{9, 7, 3});
    for (unsigned long& voxel : in.voxels)
        voxel = top - (random() >> 8);
    in.voxels[0] = top;
    HostImage const image(in);
    this->setFeatures({COOC_EntropyMean, HISTO_Mean});
    this->setDirections({{1, 0, 0}});
    this->extraction->radius = 2u;
    for (double const value : this->template runOn<double>(image).voxels)
        ASSERT_TRUE(std::isfinite(value));
    this->extraction->minGreyLevelCooccurrence = 0.0;
    this->extraction->maxGreyLevelCooccurrence = 18446744073709551616.0;
    this->extraction->binSizeCooccurrence = 1152921504606846976.0;
    this->extraction->minGreyLevelHistogram = 18374686479671623680.0;
    this->extraction->maxGreyLevelHistogram = 18446744073709551616.0;
    this->extraction->binSizeHistogram = 1125899906842624.0;
    this->template expectModel<double>(in);
}

TYPED_TEST(TextureFeatureExtractionTest, mayHaveOneImageForBoth)
{
    Picture<float> const in = texture<float>(Shape{40, 23, 3}, 3, 5, 20);
    this->setDirections({{1, 0, 0}, {0, 1, 0}});
    this->extraction->radius = 2u;
    for (auto const& features : {std::vector<int>{HISTO_Mean}, {COOC_Contrast, HISTO_Quantile50}})
        for (bool const isOpen : {false, true}) {
            this->setFeatures(features);
            this->setRanges(0, isOpen ? -1 : 30, isOpen ? 0 : 2);
            HostImage const other(in);
            Picture<float> const expected = this->template runOn<float>(other);
            HostImage image(in);
            this->extraction->input = &image;
            this->extraction->output = &image;
            this->extraction->run();
            EXPECT_TRUE(samePicture(expected, image));
        }
}

TYPED_TEST(TextureFeatureExtractionTest, makesAnEmptyOutputOfAnEmptyImage)
{
    this->setFeatures({COOC_Contrast, HISTO_Mean});
    this->setDirections({{1, 0, 0}, {0, 1, 0}});
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 2, 2, 0}, Shape{3, 2, 1, 2, 0}}) {
        HostImage const image(QEL_UINT8, shape);
        Picture<float> const found = this->template runOn<float>(image);
        EXPECT_EQ(found.shape,
                  (Shape{shape.columns, shape.rows, shape.plans, shape.timeSeries * 3 * shape.spectralSeries, 1}));
    }
}

TYPED_TEST(TextureFeatureExtractionTest, keepsTheTypeOfItsOutputAndAnOutputThatFits)
{
    HostImage const image(texture<unsigned char>(Shape{7, 5, 2}, 3, 5, 20));
    this->setFeatures({HISTO_Mean, HISTO_Peak});
    this->setRanges(0, 30, 2);
    HostImage out(QEL_FLOAT64, Shape{7, 5, 2, 2});
    this->extraction->input = &image;
    this->extraction->output = &out;
    out.failOn(RESERVE);
    this->extraction->run();
    EXPECT_EQ(out.getVoxelType(), QEL_FLOAT64);
    EXPECT_TRUE(samePicture(this->template runOn<double>(image), out));
}

TYPED_TEST(TextureFeatureExtractionTest, tellsItsProgressAndStopsWhenItIsTold)
{
    Picture<unsigned char> const in = texture<unsigned char>(Shape{120, 60, 3, 6}, 3, 5, 20);
    this->setFeatures({COOC_Contrast, HISTO_Mean});
    this->setDirections({{1, 0, 0}, {0, 1, 0}});
    this->extraction->radius = 2u;
    for (bool const isOpen : {false, true}) {
        this->setRanges(0, isOpen ? -1 : 30, isOpen ? 0 : 2);
        HostImage const image(in);
        HostImage out(QEL_FLOAT32, Shape{1, 1});
        this->extraction->input = &image;
        this->extraction->output = &out;
        Poller poller;
        this->extraction->run(&poller);
        EXPECT_TRUE(poller.isSteady);
        EXPECT_EQ(this->extraction->getProgress(), 100);
        EXPECT_TRUE(samePicture(this->template runOn<float>(image), out));

        ObservedImage observed(in);
        Poller stopper;
        observed.onRead = [&] { stopper.wantsToCancel = true; };
        this->extraction->input = &observed;
        this->extraction->output = &out;
        this->extraction->run(&stopper);
        EXPECT_TRUE(isAtRest(*this->extraction));
    }
}

TYPED_TEST(TextureFeatureExtractionTest, reportsImagesThatFail)
{
    this->setDirections({{1, 0, 0}});
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& it, HostImages& images) {
            it.textureFeaturesGroup = groupOf({COOC_Contrast, HISTO_Mean});
            it.directionCollection = this->extraction->directionCollection.get();
            it.radius = 1u;
            // With a range that is open, a child would be the one that fails.
            it.maxGreyLevelCooccurrence = 30.0;
            it.maxGreyLevelHistogram = 30.0;
            images.push_back(std::make_unique<HostImage>(texture<unsigned char>(Shape{9, 7, 2}, 3, 5, 20)));
            images.push_back(std::make_unique<HostImage>(QEL_FLOAT32, Shape{9, 7, 2, 2}));
            it.input = images[0].get();
            it.output = images[1].get();
        },
        [](HostImages const& images) {
            auto const out = fromImage<float>(*images[1]);
            return out.shape == Shape{9, 7, 2, 2} && out.at(4, 4, 1, 1) > 5 && out.at(4, 4, 1, 1) < 25;
        });
}

TEST(TextureChannelsTest, followTheListWithSourcesOfSummariesBehindThem)
{
    details::TextureChannels const channels = details::channelsOf(
        {HISTO_Peak, COOC_ContrastStddev, COOC_Entropy, COOC_EntropyRange, COOC_SumAverageMean, HISTO_Mean}, 4);
    EXPECT_EQ(channels.numOfOutputs, 9u);
    EXPECT_EQ(channels.numOfChannels, 17u);
    std::vector<std::pair<int, long>> const expected{
        {HISTO_Peak, 0},          {COOC_ContrastStddev, 1}, {COOC_Entropy, 2},  {COOC_EntropyRange, 6},
        {COOC_SumAverageMean, 7}, {HISTO_Mean, 8},          {COOC_Contrast, 9}, {COOC_SumAverage, 13}};
    for (auto const& [feature, channel] : expected)
        EXPECT_EQ(channels.channelOf[static_cast<std::size_t>(feature)], channel) << feature;
    EXPECT_EQ(std::count(channels.channelOf.begin(), channels.channelOf.end(), -1), 69 - 8);

    details::TextureChannels const alone = details::channelsOf({COOC_ContrastStddev}, 3);
    EXPECT_EQ(alone.numOfOutputs, 1u);
    EXPECT_EQ(alone.numOfChannels, 4u);
}

} // namespace
} // namespace qel::test
