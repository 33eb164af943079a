#include <qel/classification/KMeansClassification.h>

#include "Core/tests/Support/Algorithms.h"

#include <array>
#include <cmath>
#include <random>

namespace qel::test {
namespace {

using classification::KMeansClassification;

/// A draw of Boost's uniform integers from 0 to 2^31 - 1 is the generator's number without its lowest bit.
class Draw
{
public:
    double operator()() { return static_cast<double>(m_generator() >> 1) / 2147483647.0; }

private:
    std::mt19937 m_generator{10};
};

/// The blocks into which a volume is cut while an axis is longer than 1024 columns, 10 rows or 10 plans.
struct Box
{
    std::array<unsigned long, 3> begin, end; // columns, rows, plans
};

void cutDown(Box const& box, std::vector<Box>& leaves)
{
    double const grains[3] = {1024, 10, 10};
    int longest = 2; // plans go before rows, and these before columns
    for (int axis : {1, 0}) {
        double const size = static_cast<double>(box.end[axis] - box.begin[axis]);
        double const most = static_cast<double>(box.end[longest] - box.begin[longest]);
        if (size * grains[longest] > most * grains[axis])
            longest = axis;
    }
    if (static_cast<double>(box.end[longest] - box.begin[longest]) <= grains[longest]) {
        leaves.push_back(box);
        return;
    }
    unsigned long const middle = box.begin[longest] + (box.end[longest] - box.begin[longest]) / 2;
    Box left = box, right = box;
    left.end[longest] = middle;
    right.begin[longest] = middle;
    cutDown(left, leaves);
    cutDown(right, leaves);
}

/// The definition as slowly as it reads: a mask, statistics, centres, iterations, labels.
template <class T> Picture<unsigned int> classified(Picture<T> const& in, unsigned int classes, unsigned int percent)
{
    Shape const shape = firstSeries(in.shape);
    Picture<char> mask(shape, 1);
    if (percent <= 99) {
        std::vector<Box> leaves;
        cutDown({{0, 0, 0}, {shape.columns, shape.rows, shape.plans}}, leaves);
        for (unsigned long t = 0; t < shape.timeSeries; ++t)
            for (Box const& leaf : leaves) {
                Draw draw;
                for (unsigned long p = leaf.begin[2]; p < leaf.end[2]; ++p)
                    for (unsigned long r = leaf.begin[1]; r < leaf.end[1]; ++r)
                        for (unsigned long c = leaf.begin[0]; c < leaf.end[0]; ++c)
                            mask.at(c, r, p, t) = percent > static_cast<unsigned int>(draw() * 101.0);
            }
    }

    unsigned long const components = in.shape.spectralSeries;
    std::vector<double> lows, highs;
    for (unsigned long s = 0; s < components; ++s) {
        double sum = 0, squares = 0, low = INFINITY, high = -INFINITY;
        forEachVoxel(shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long) {
            double const v = static_cast<double>(in.at(c, r, p, t, s));
            sum += v;
            squares += v * v;
            low = std::min(low, v);
            high = std::max(high, v);
        });
        double const count = static_cast<double>(shape.count());
        double const mean = sum / count;
        double const deviation = std::sqrt(squares / count - mean * mean);
        high = std::min(high, mean + 4.0 * deviation);
        low = std::max(low, mean - 4.0 * deviation);
        double const middle = (low + high) / 2.0;
        lows.push_back(middle - 0.5 * (high - low));
        highs.push_back(middle + 0.5 * (high - low));
    }
    Draw draw;
    std::vector<std::vector<double>> centres(classes);
    for (auto& centre : centres)
        for (unsigned long s = 0; s < components; ++s)
            centre.push_back(draw() * (highs[s] - lows[s] + 1.0) + lows[s]);

    auto const nearest = [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t) {
        std::size_t best = 0;
        double least = 0;
        for (std::size_t k = 0; k < classes; ++k) {
            double distance = 0;
            for (unsigned long s = 0; s < components; ++s)
                distance += std::pow(static_cast<double>(in.at(c, r, p, t, s)) - centres[k][s], 2);
            if (k == 0 || distance < least) {
                best = k;
                least = distance;
            }
        }
        return best;
    };
    for (int iteration = 1;; ++iteration) {
        std::vector<std::vector<double>> next(classes, std::vector<double>(components, 0.0));
        std::vector<double> counts(classes, 0.0);
        forEachVoxel(shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long) {
            if (!mask.at(c, r, p, t))
                return;
            std::size_t const k = nearest(c, r, p, t);
            counts[k] += 1;
            for (unsigned long s = 0; s < components; ++s)
                next[k][s] += static_cast<double>(in.at(c, r, p, t, s));
        });
        std::size_t largest = 0;
        for (std::size_t k = 1; k < classes; ++k)
            if (counts[k] > counts[largest])
                largest = k;
        double move = 0;
        for (std::size_t k = 0; k < classes; ++k) {
            double distance = 0;
            for (unsigned long s = 0; s < components; ++s) {
                if (counts[k] > 0)
                    next[k][s] /= counts[k];
                if (counts[k] < counts[largest] / 1000.0)
                    next[k][s] = (centres[k][s] + centres[largest][s]) / 2.0;
                distance += std::pow(next[k][s] - centres[k][s], 2);
            }
            move = std::max(move, distance);
        }
        if (!(move > 400.0) || iteration > 9)
            break;
        centres = next;
    }
    Picture<unsigned int> labels(shape);
    forEachVoxel(shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long) {
        labels.at(c, r, p, t) = static_cast<unsigned int>(nearest(c, r, p, t)) + 1;
    });
    return labels;
}

class KMeansClassificationTest : public testing::Test
{
protected:
    template <class T> Picture<unsigned int> run(Picture<T> const& in, unsigned int classes, unsigned int percent = 100)
    {
        HostImage const image(in);
        memory::InMemoryImage labels;
        labels.reserve(QEL_UINT32, 0, 0, 0, 0, 0);
        kMeans->input = &image;
        kMeans->numClasses = classes;
        kMeans->preComputingDataPercent = percent;
        kMeans->classifiedImage = &labels;
        kMeans->run();
        EXPECT_EQ(labels.getInterpretation(), QEL_LABEL);
        return fromImage<unsigned int>(labels);
    }

    Ref<KMeansClassification> kMeans = KMeansClassification::New();
};

TEST_F(KMeansClassificationTest, declaresItsPropertiesInOrder)
{
    ASSERT_EQ(kMeans->getNumOfInputProperties(), 3u);
    ASSERT_EQ(kMeans->getNumOfOutputProperties(), 1u);
    EXPECT_EQ(kMeans->getInputProperty(0), &kMeans->input);
    EXPECT_EQ(kMeans->getInputProperty(1), &kMeans->numClasses);
    EXPECT_EQ(kMeans->getInputProperty(2), &kMeans->preComputingDataPercent);
    EXPECT_EQ(kMeans->getOutputProperty(0), &kMeans->classifiedImage);
    EXPECT_EQ(kMeans->numClasses.get(), 2u);
    EXPECT_EQ(kMeans->preComputingDataPercent.get(), 100u);
    EXPECT_EQ(kMeans->getOutputProperty(0)->getName(), String("classifiedImage"));
    EXPECT_EQ(AlgoInfo::fromName("KMeansClassification"), KMeansClassification::getClassInfo());
}

TEST_F(KMeansClassificationTest, matchesItsDefinitionForEveryVoxelTypeAndOddShapes)
{
    // Small whole numbers: every sum is exact, in whatever order it is taken.
    unsigned seed = 1;
    forEachVoxelType([&]<class T>() {
        for (Shape const& shape :
             std::vector<Shape>{{1, 1}, {1, 7}, {33, 5, 3, 1, 2}, {40, 23, 1, 2}, {65, 12, 11}, {9, 4, 2, 3, 3}}) {
            auto const in = randomPictureBetween<T>(shape, ++seed, T(0), T(120));
            auto whole = in;
            for (T& voxel : whole.voxels)
                voxel = static_cast<T>(static_cast<int>(voxel));
            for (unsigned int const classes : {1u, 2u, 5u})
                for (unsigned int const percent : {100u, 50u, 3u}) {
                    SCOPED_TRACE(testing::Message() << classes << " classes, " << percent << " percent, seed " << seed);
                    onOneAndFourThreads([&] {
                        EXPECT_TRUE(samePicture(classified(whole, classes, percent), run(whole, classes, percent)));
                    });
                }
        }
    });
}

TEST_F(KMeansClassificationTest, matchesItsDefinitionForAFewVoxelsFarOut)
{
    // Whole powers of two, few of them large: classes run empty, and centres move until the iterations end.
    std::mt19937 random(11);
    for (int picture = 0; picture < 12; ++picture) {
        Picture<float> in(Shape{90, 60});
        for (float& voxel : in.voxels)
            voxel = std::floor(std::exp2(20.0f * std::pow(static_cast<float>(random() >> 8) / 16777216.0f, 12.0f)));
        for (unsigned int const classes : {2u, 3u, 6u})
            for (unsigned int const percent : {100u, 3u})
                EXPECT_TRUE(samePicture(classified(in, classes, percent), run(in, classes, percent)))
                    << classes << " classes, " << percent << " percent, picture " << picture;
    }
}

TEST_F(KMeansClassificationTest, drawsTheSameSampleInEveryBlock)
{
    // 2051 columns and 23 rows are cut twice and more; what the sample leaves out changes the centres.
    for (Shape const& shape : std::vector<Shape>{{2051, 23}, {1025, 11, 12}}) {
        auto const in = randomPictureBetween<unsigned char>(shape, 7, 0, 255);
        EXPECT_TRUE(samePicture(classified(in, 4, 20), run(in, 4, 20)));
        EXPECT_TRUE(samePicture(classified(in, 4, 99), run(in, 4, 99)));
    }
}

TEST_F(KMeansClassificationTest, separatesTwoIntensities)
{
    Picture<unsigned char> in(Shape{40, 30}, 20);
    for (unsigned long c = 25; c < 40; ++c)
        in.at(c, 4) = 200;
    auto const labels = run(in, 2);
    EXPECT_NE(labels.at(0, 0), labels.at(30, 4));
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long r, unsigned long, unsigned long, unsigned long) {
        EXPECT_EQ(labels.at(c, r), in.at(c, r) == 200 ? labels.at(30, 4) : labels.at(0, 0));
    });
}

TEST_F(KMeansClassificationTest, givesAConstantImageOneLabel)
{
    for (unsigned int const classes : {1u, 2u, 7u}) {
        Picture<float> const in(Shape{31, 17, 2}, 42.5f);
        auto const labels = run(in, classes);
        EXPECT_TRUE(samePicture(classified(in, classes, 100), labels));
        for (unsigned int const label : labels.voxels)
            EXPECT_EQ(label, labels.voxels.front());
    }
}

TEST_F(KMeansClassificationTest, leavesLabelsUnusedWhereThereAreFewerValuesThanClasses)
{
    Picture<unsigned short> in(Shape{64, 64}, 100);
    for (unsigned long r = 0; r < 20; ++r)
        for (unsigned long c = 0; c < 64; ++c)
            in.at(c, r) = 1000;
    auto const labels = run(in, 6);
    std::vector<unsigned int> used = labels.voxels;
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    EXPECT_LE(used.size(), 2u);
    EXPECT_TRUE(samePicture(classified(in, 6, 100), labels));
}

TEST_F(KMeansClassificationTest, givesTheSameLabelsOnEveryRunAndForEveryNumberOfThreads)
{
    auto const in = randomPicture<float>(Shape{700, 90, 3, 1, 2}, 11);
    auto const once = withThreads(1, [&] { return run(in, 5, 40); });
    for (int const threads : {1, 2, 4})
        EXPECT_TRUE(samePicture(once, withThreads(threads, [&] { return run(in, 5, 40); })));
}

TEST_F(KMeansClassificationTest, keepsTheVoxelTypeOfTheOutputAndTakesTheSizesOfTheInput)
{
    auto const in = randomPictureBetween<short>(Shape{20, 10, 3, 2, 2}, 3, -50, 50);
    auto const image = toImage(in);
    memory::InMemoryImage labels;
    labels.reserve(QEL_INT8, 5, 5, 5, 1, 1);
    kMeans->input = &image;
    kMeans->classifiedImage = &labels;
    kMeans->run();
    EXPECT_EQ(labels.getVoxelType(), QEL_INT8);
    EXPECT_EQ(shapeOf(labels), (Shape{20, 10, 3, 2, 1}));
    auto const expected = classified(in, 2, 100);
    auto const actual = fromImage<signed char>(labels);
    for (std::size_t i = 0; i < expected.voxels.size(); ++i)
        ASSERT_EQ(static_cast<int>(expected.voxels[i]), actual.voxels[i]);
}

TEST_F(KMeansClassificationTest, saysWhatIsWrongInThreeLevels)
{
    EXPECT_QEL_WHAT(kMeans->run(), RuleException,
                    "Rule exception :\n#1 Error : The parameter \"input\" must be set. \n"
                    "#2 From Rule error in property input \n#3 From KMeansClassification \n");
    auto in = toImage(Picture<unsigned char>(Shape{3, 3}, 1));
    memory::InMemoryImage labels;
    kMeans->input = &in;
    EXPECT_QEL_THROW(kMeans->run(), RuleException, "The parameter \"classifiedImage\" must be set.");
    kMeans->classifiedImage = &labels;
    in.setInterpretation(QEL_LABEL);
    EXPECT_QEL_THROW(kMeans->run(), RuleException,
                     "The parameter \"input\" supports QEL_VALUE. Current image is QEL_LABEL.");
    in.setInterpretation(QEL_VALUE);
    kMeans->numClasses = 0u;
    EXPECT_QEL_THROW(kMeans->run(), RuleException, "The parameter \"numClasses\" must be strictly positive.");
    kMeans->numClasses = 2u;
    kMeans->preComputingDataPercent = 0u;
    EXPECT_QEL_THROW(kMeans->run(), RuleException,
                     "The parameter \"preComputingDataPercent\" must be strictly positive.");
    kMeans->preComputingDataPercent = 100u;
    labels.reserve(QEL_FLOAT32, 3, 3, 1, 1, 1);
    EXPECT_QEL_THROW(
        kMeans->run(), RuleException,
        "The parameter \"classifiedImage\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
        "int16, int32, int64. Current data type is float32.");
}

TEST_F(KMeansClassificationTest, saysThatTheOutputRefusesItsSizes)
{
    auto const in = toImage(Picture<unsigned char>(Shape{3, 3}, 1));
    HostImage labels(Picture<unsigned int>(Shape{2, 2}));
    labels.failOn(RESERVE);
    kMeans->input = &in;
    kMeans->classifiedImage = &labels;
    EXPECT_QEL_THROW(kMeans->run(), RuntimeError, "Output image cannot be resized");
    labels.behave();
    EXPECT_NO_THROW(kMeans->run());
}

TEST_F(KMeansClassificationTest, stopsWhenItIsCancelled)
{
    struct Stop final : algorithms::InteractionInterface
    {
        void updateProgress(double) override {}
        bool isCancelRequested() override { return true; }
        unsigned short getProgressPeriod() override { return 0; }
        unsigned short getCancelPeriod() override { return 0; }
    } stop;
    auto const in = toImage(randomPicture<float>(Shape{2000, 1000}, 5));
    memory::InMemoryImage labels;
    labels.reserve(QEL_UINT8, 0, 0, 0, 0, 0);
    kMeans->input = &in;
    kMeans->numClasses = 40u;
    kMeans->classifiedImage = &labels;
    EXPECT_NO_THROW(kMeans->run(&stop));
    EXPECT_FALSE(kMeans->running());
    EXPECT_LT(kMeans->getProgress(), 100.0);
}

} // namespace
} // namespace qel::test
