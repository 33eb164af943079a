#include "Filtering/private/NonLocalMeanKernels.h"
#include "Filtering/tests/NonLocalMeanModel.h"

#include <limits>
#include <set>

namespace qel::test {
namespace {

using filtering::smoothing::NonLocalMeanFilter2D;
using namespace filtering::smoothing; // the literals of the shape

class NonLocalMeanFilter2DTest : public testing::Test
{
protected:
    void connect(ImageModel const& in, ImageModel& out, NonLocalMeans const& p)
    {
        filter->input = &in;
        filter->output = &out;
        filter->patchSize = static_cast<unsigned int>(p.patch);
        filter->searchWindowSize = static_cast<unsigned int>(p.window);
        filter->similarity = Scalar(p.similarity);
        filter->searchWindowShape = p.isRound ? QEL_DISK : QEL_SQUARE;
    }

    Ref<NonLocalMeanFilter2D> filter = NonLocalMeanFilter2D::New();
};

TEST_F(NonLocalMeanFilter2DTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("NonLocalMeanFilter2D"), NonLocalMeanFilter2D::getClassInfo());
    ASSERT_EQ(filter->getNumOfInputProperties(), 5u);
    EXPECT_EQ(filter->getInputProperty(0), &filter->input);
    EXPECT_EQ(filter->getInputProperty(1), &filter->patchSize);
    EXPECT_EQ(filter->getInputProperty(2), &filter->searchWindowSize);
    EXPECT_EQ(filter->getInputProperty(3), &filter->similarity);
    EXPECT_EQ(filter->getInputProperty(4), &filter->searchWindowShape);
    EXPECT_EQ(describedOutputs(*filter), std::vector<std::string>({"image output = null"}));
    for (char const* const name : {"input", "patchSize", "searchWindowSize", "similarity", "searchWindowShape"}) {
        ASSERT_NE(filter->getPropertyfromName(name), nullptr);
        EXPECT_EQ(filter->getPropertyfromName(name)->getDescription(), String(name));
    }
    EXPECT_EQ(filter->patchSize.get(), 3u);
    EXPECT_EQ(filter->searchWindowSize.get(), 6u);
    EXPECT_EQ(filter->similarity.get().asDouble(), 0.6);
    EXPECT_EQ(filter->searchWindowShape.get(), QEL_SQUARE);
    EXPECT_EQ(filter->searchWindowShape.getEnumInfo()->getEnumName(), String("NeighborhoodShape2DType"));
    EXPECT_EQ(filter->searchWindowShape.getEnumInfo()->getLabelFromValue(1), String("QEL_DISK"));
    EXPECT_EQ(levelsOf(*filter), std::vector<OptimLevelType>{SCALAR});
    for (auto const& [patch, window, reach] : {std::array{3u, 6u, 6u}, std::array{9u, 2u, 9u}}) {
        filter->patchSize = patch;
        filter->searchWindowSize = window;
        AlgoBorderInfluence const influence = filter->getAlgoBorderInfluence();
        for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
            EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                      direction <= ROWS_POSITIVE ? reach : 0);
    }
}

TEST_F(NonLocalMeanFilter2DTest, followsItsDefinitionForEveryVoxelType)
{
    forceLevel(*filter, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            NonLocalMeans const p{1, 2, 6.5};
            auto const picture = noisyPicture<T>(Shape{23, 17, 2}, seed++);
            HostImage const in(picture);
            HostImage out;
            connect(in, out, p);
            filter->run();
            EXPECT_TRUE(closeTo<T>(nonLocalMeans(picture, p), out));
        });
    });
}

TEST_F(NonLocalMeanFilter2DTest, followsItsDefinitionForEverySizeAndShape)
{
    unsigned seed = 1;
    for (NonLocalMeans const p :
         {NonLocalMeans{3, 6, 5}, NonLocalMeans{0, 1, 3}, NonLocalMeans{2, 3, 8, true}, NonLocalMeans{4, 1, 10}})
        for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{7, 1}, Shape{13, 11}, Shape{9, 4, 2, 2, 2}}) {
            SCOPED_TRACE(testing::Message() << shape << ", patch " << p.patch << ", window " << p.window);
            auto const picture = noisyPicture<double>(shape, seed++);
            memory::InMemoryImage const in = toImage(picture);
            memory::InMemoryImage out;
            connect(in, out, p);
            filter->run();
            EXPECT_TRUE(closeTo<double>(nonLocalMeans(picture, p), out));
        }
    auto const picture = noisyPicture<float>(Shape{1030, 25}, seed);
    HostImage const in(picture);
    HostImage out;
    connect(in, out, {1, 1, 4});
    filter->run();
    EXPECT_TRUE(closeTo<float>(nonLocalMeans(picture, {1, 1, 4}), out));
}

TEST_F(NonLocalMeanFilter2DTest, leavesEmptyImagesEmpty)
{
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 2, 0}, Shape{3, 2, 1, 0}}) {
        HostImage const in(QEL_FLOAT32, shape);
        HostImage out;
        connect(in, out, {1, 1, 1});
        filter->run();
        EXPECT_EQ(out.sizes(), shape);
        EXPECT_TRUE(out.content().empty());
    }
}

TEST_F(NonLocalMeanFilter2DTest, copiesWithoutAWindowOrWithoutTolerance)
{
    forEachVoxelType([&]<class T>() {
        auto const picture = noisyPicture<T>(Shape{12, 9}, 3);
        HostImage const in(picture);
        HostImage out;
        connect(in, out, {3, 0, 0.6});
        filter->run();
        EXPECT_TRUE(samePicture(picture, out));
    });
    Picture<float> different(Shape{12, 9});
    for (std::size_t i = 0; i < different.voxels.size(); ++i)
        different.voxels[i] = float(i * i);
    HostImage const in(different);
    HostImage out;
    connect(in, out, {1, 2, 1e-3});
    filter->run();
    EXPECT_TRUE(samePicture(different, out));
}

TEST_F(NonLocalMeanFilter2DTest, leavesAConstantAsItIsEdgesIncluded)
{
    forEachVoxelType([&]<class T>() {
        for (T const value : {T(0), T(1), T(100), T(127)})
            for (double const similarity : {0.6, 1e-300, 0.0, 1e9}) {
                HostImage const in(Picture<T>(Shape{11, 9}, value));
                HostImage out;
                connect(in, out, {3, 6, similarity});
                filter->run();
                EXPECT_TRUE(samePicture(Picture<T>(Shape{11, 9}, value), out)) << similarity;
            }
    });
}

TEST_F(NonLocalMeanFilter2DTest, isNotMovedByLargeVoxelsFarAway)
{
    // Sums that slide over the large voxels would leave rests in the distances behind them.
    auto picture = noisyPicture<double>(Shape{60, 30}, 5);
    Picture<double> spiked = picture;
    for (unsigned long r = 0; r < 30; ++r)
        spiked.at(0, r) = 1e15;
    HostImage const in(picture);
    HostImage const spikedIn(spiked);
    HostImage out, spikedOut;
    connect(in, out, {2, 2, 5});
    filter->run();
    connect(spikedIn, spikedOut, {2, 2, 5});
    filter->run();
    auto const expected = fromImage<double>(out);
    auto const actual = fromImage<double>(spikedOut);
    forEachVoxel(Shape{50, 30}, [&](unsigned long c, unsigned long r, unsigned long, unsigned long, unsigned long) {
        EXPECT_EQ(expected.at(c + 10, r), actual.at(c + 10, r)) << c + 10 << ", " << r;
    });
}

TEST_F(NonLocalMeanFilter2DTest, givesTheSameBitsOnAnyNumberOfThreads)
{
    auto const picture = noisyPicture<double>(Shape{300, 130}, 3);
    HostImage const in(picture);
    std::vector<unsigned char> first;
    for (int const threads : {1, 2, 8}) {
        HostImage out;
        withThreads(threads, [&] {
            connect(in, out, {2, 2, 5});
            filter->run();
        });
        if (threads == 1)
            first = out.content();
        EXPECT_TRUE(out.content() == first);
    }
}

TEST_F(NonLocalMeanFilter2DTest, worksInPlaceAndKeepsTypeAndInterpretation)
{
    auto const picture = noisyPicture<unsigned short>(Shape{23, 19}, 4);
    HostImage image(picture);
    image.setSpacingOf(ROWS, 3);
    connect(image, image, {1, 2, 9});
    filter->run();
    EXPECT_TRUE(closeTo<unsigned short>(nonLocalMeans(picture, {1, 2, 9}), image));
    EXPECT_EQ(image.getInterpretation(), QEL_VALUE);
    EXPECT_EQ(image.getSpacingOf(ROWS), 3);
    HostImage out(QEL_INT8, {1, 1});
    connect(image, out, {1, 1, 9});
    filter->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(out.sizes(), image.sizes());
    EXPECT_EQ(out.getSpacingOf(ROWS), 3);
}

/// A host that notes each progress it is told, and can ask for an end at some point.
class Watcher final : public algorithms::InteractionInterface
{
public:
    void updateProgress(double percent) override { last = percent; }
    bool isCancelRequested() override { return false; }
    unsigned short getProgressPeriod() override { return 1; }
    unsigned short getCancelPeriod() override { return 1; }
    double last = -1;
};

TEST_F(NonLocalMeanFilter2DTest, raisesItsProgressInEqualSteps)
{
    // A block reads its voxels before it begins: what is seen then are whole steps of the blocks before it.
    ObservedImage in(QEL_FLOAT32, Shape{16, 640});
    HostImage out;
    long const window = 2;
    connect(in, out, {1, window, 1});
    double const steps = double((4 * window + 4) * (2 * window + 1) + 5);
    std::set<double> seen;
    in.onRead = [&] {
        double const done = filter->getProgress() * steps / 100;
        EXPECT_NEAR(done, std::round(done), 1e-9);
        if (!seen.empty()) {
            EXPECT_GE(done, *seen.rbegin());
        }
        seen.insert(done);
    };
    withThreads(1, [&] { filter->run(); });
    EXPECT_GE(seen.size(), 8u);
    // 12 offsets of four steps, and three to close up.
    EXPECT_NEAR(filter->getProgress(), 100 * (12 * 4 + 3) / steps, 1e-9);
    in.onRead = nullptr;
    Watcher watcher;
    filter->run(&watcher);
    EXPECT_NEAR(watcher.last, 100 * (12 * 4 + 3) / steps, 1e-9);
}

TEST_F(NonLocalMeanFilter2DTest, stopsWhenItIsCancelled)
{
    ObservedImage in(noisyPicture<float>(Shape{32, 1280}, 1));
    HostImage out;
    connect(in, out, {1, 3, 4});
    for (unsigned long const after : {0ul, 500ul}) {
        out.forgetCalls();
        std::atomic<unsigned long> reads = 0;
        in.onRead = [&] {
            if (++reads > after)
                filter->cancelExecution();
        };
        filter->run();
        EXPECT_LE(out.callsOf(WRITE_ROW), after);
        EXPECT_LT(filter->getProgress(), 90);
        EXPECT_TRUE(isAtRest(*filter));
    }
    in.onRead = nullptr;
    out.forgetCalls();
    filter->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 1280u);
}

TEST_F(NonLocalMeanFilter2DTest, refusesWrongInputInTheRulesWords)
{
    std::string const name = "NonLocalMeanFilter2D";
    EXPECT_QEL_WHAT(filter->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    HostImage in(QEL_UINT8, {3, 4});
    filter->input = &in;
    EXPECT_QEL_WHAT(filter->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    HostImage out;
    filter->output = &out;
    for (Interpretations const interpretation : {QEL_LABEL, QEL_BINARY}) {
        in.setInterpretation(interpretation);
        EXPECT_THROW(filter->run(), RuleException);
    }
    in.setInterpretation(QEL_VALUE);
    filter->searchWindowShape = 2;
    EXPECT_THROW(filter->run(), RuleException);
    filter->searchWindowShape = QEL_DISK;
    filter->run();
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_TRUE(isAtRest(*filter));
}

TEST_F(NonLocalMeanFilter2DTest, passesOnWhatAnImageThrows)
{
    auto const picture = noisyPicture<float>(Shape{9, 8}, 1);
    HostImage in(picture);
    HostImage out;
    connect(in, out, {1, 1, 1});
    in.throwOn(READ_ROW, 3);
    EXPECT_THROW(filter->run(), UnexpectedError);
    EXPECT_TRUE(isAtRest(*filter));
    in.behave();
    out.failOn(WRITE_ROW);
    EXPECT_THROW(filter->run(), UnexpectedError);
    out.behave();
    filter->run();
    EXPECT_TRUE(closeTo<float>(nonLocalMeans(picture, {1, 1, 1}), out));
}

TEST(NonLocalMeanKernelsTest, weighByTheExponential)
{
    std::vector<double> const sums = {0, 5e-324, 1e-17, 1e-9, 0.1,    0.3465, 0.3466,
                                      1, 2.5,    40,    700,  707.99, 708.01, 1e300};
    for (double const divisor : {1.0, 0.25, 49 * 0.36}) {
        for (std::size_t start = 0; start < 3; ++start) { // in vectors and in their rest
            std::vector<double> weights(sums.begin() + long(start), sums.end());
            weightRow(weights.data(), divisor, weights.size());
            for (std::size_t i = 0; i < weights.size(); ++i) {
                double const exponent = -sums[start + i] / divisor;
                double const expected = exponent < -708 ? 0 : std::exp(exponent);
                EXPECT_NEAR(weights[i], expected, 1e-15 * expected) << sums[start + i];
                EXPECT_LE(weights[i], 1);
            }
        }
    }
    double special[] = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(), 0};
    weightRow(special, 2, 3);
    EXPECT_EQ(special[0], 0);
    EXPECT_TRUE(std::isnan(special[1]));
    EXPECT_EQ(special[2], 1);
    double undivided[] = {0, 1e-300, 7};
    weightRow(undivided, 0, 3);
    EXPECT_EQ(undivided[0], 1);
    EXPECT_EQ(undivided[1], 0);
    EXPECT_EQ(undivided[2], 0);
}

} // namespace
} // namespace qel::test
