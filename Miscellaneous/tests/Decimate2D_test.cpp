#include <qel/miscellaneous/Decimate2D.h>

#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/tests/Support/Algorithms.h"
#include "Miscellaneous/private/DecimateBody2D.h"

#include <cmath>

namespace qel::test {
namespace {

using namespace miscellaneous;

template <class T> T reduced(DecimationOp operation, std::vector<T> const& square)
{
    switch (operation) {
    case MEAN: {
        float sum = 0;
        for (T const voxel : square)
            sum += static_cast<float>(voxel);
        return helper::convertVoxel<T>(sum * 0.25f);
    }
    case MIN:
        return *std::min_element(square.begin(), square.end());
    case MAX:
        return *std::max_element(square.begin(), square.end());
    case FIRST:
        break;
    }
    return square[0];
}

template <class T> Picture<T> decimated(Picture<T> const& in, DecimationOp operation)
{
    Shape shape = in.shape;
    shape.columns = (shape.columns + 1) / 2;
    shape.rows = (shape.rows + 1) / 2;
    Picture<T> out(shape);
    forEachVoxel(shape, [&](auto column, auto row, auto plan, auto time, auto series) {
        std::vector<T> square;
        for (unsigned long y : {2 * row, 2 * row + 1})
            for (unsigned long x : {2 * column, 2 * column + 1})
                square.push_back(
                    in.at(std::min(x, in.shape.columns - 1), std::min(y, in.shape.rows - 1), plan, time, series));
        out.at(column, row, plan, time, series) = reduced(operation, square);
    });
    return out;
}

constexpr DecimationOp allOperations[] = {MEAN, MIN, MAX, FIRST};

class Decimate2DTest : public testing::Test
{
protected:
    template <class T> Picture<T> run(Picture<T> const& picture, DecimationOp operation)
    {
        HostImage const in(picture);
        HostImage out;
        decimate->input = &in;
        decimate->operatorType = operation;
        decimate->output = &out;
        decimate->run();
        EXPECT_TRUE(samePicture(picture, in));
        EXPECT_EQ(out.getVoxelType(), in.getVoxelType());
        return fromImage<T>(out);
    }

    Ref<Decimate2D> decimate = Decimate2D::New();
};

TEST_F(Decimate2DTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("Decimate2D"), Decimate2D::getClassInfo());
    EXPECT_EQ(describedInputs(*decimate),
              std::vector<std::string>({"const image input = null", "DecimationOp operatorType = MEAN"}));
    EXPECT_EQ(describedOutputs(*decimate), std::vector<std::string>({"image output = null"}));
    EXPECT_TRUE(hasNoBorder(*decimate));
    EXPECT_EQ(levelsOf(*decimate), std::vector<OptimLevelType>{SCALAR});
    EnumInfo const& info = *decimate->operatorType.getEnumInfo();
    EXPECT_EQ(info.getNumOfValues(), 4u);
    for (DecimationOp const operation : allOperations)
        EXPECT_EQ(info.getLabelFromValue(operation),
                  String(std::vector<char const*>{"MEAN", "MIN", "MAX", "FIRST"}[operation]));
}

TEST_F(Decimate2DTest, matchesItsDefinitionForEveryTypeAndShape)
{
    forceLevel(*decimate, SCALAR);
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes())
                for (DecimationOp const operation : allOperations) {
                    SCOPED_TRACE(testing::Message() << "operator " << operation);
                    auto const picture = randomPicture<T>(shape, seed);
                    EXPECT_TRUE(samePicture(decimated(picture, operation), run(picture, operation)));
                    ++seed;
                }
        });
    });
}

TEST_F(Decimate2DTest, givesTheSameWhereverBlocksAreCut)
{
    auto const picture = randomPicture<float>(Shape{37, 29, 2}, 3);
    auto const expected = decimated(picture, MEAN);
    for (unsigned long const grain : {1ul, 2ul, 3ul, 5ul, 7ul}) {
        SCOPED_TRACE(testing::Message() << "grain " << grain);
        HostImage const in(picture);
        HostImage out(QEL_FLOAT32, expected.shape);
        using List = boost::mpl::vector<float>;
        using Body = DecimateBody2D<float>;
        Body body(&decimateRow<tag_mean, float>);
        ManyToManyImageFilter2d<List, List, SimdVec::arch_scalar_tag, Body> filter(decimate.get(), &body);
        filter.setInput<0>(&in, access::ContinueBorderCondition<float>::New());
        filter.setOutput<0>(&out, access::ContinueBorderCondition<float>::New());
        for (unsigned long top = 0; top < 29; top += grain)
            for (unsigned long left = 0; left < 37; left += grain)
                for (unsigned long plan = 0; plan < 2; ++plan)
                    body.run(access::Block2d({std::min(top + grain, 29ul), top, 1},
                                             {std::min(left + grain, 37ul), left, 1}, plan, 0, 0),
                             filter);
        EXPECT_EQ(out.callsOf(READ_ROW), 0u);
        EXPECT_TRUE(samePicture(expected, out));
    }
}

TEST_F(Decimate2DTest, givesTheKnownValues)
{
    Picture<unsigned char> const picture(Shape{3, 3}, {1, 2, 255, 4, 6, 253, 10, 21, 100});
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2, 2}, {3, 254, 15, 100}), run(picture, MEAN)));
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2, 2}, {1, 253, 10, 100}), run(picture, MIN)));
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2, 2}, {6, 255, 21, 100}), run(picture, MAX)));
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2, 2}, {1, 255, 10, 100}), run(picture, FIRST)));
    // Cut towards zero, and in single precision.
    EXPECT_TRUE(samePicture(Picture<short>(Shape{1}, {-1}), run(Picture<short>(Shape{2, 2}, {-1, -2, -2, -2}), MEAN)));
    EXPECT_TRUE(samePicture(Picture<double>(Shape{1}, {double(0.1f)}), run(Picture<double>(Shape{1}, {0.1}), MEAN)));
    EXPECT_TRUE(samePicture(Picture<int>(Shape{1}, {16777216}), run(Picture<int>(Shape{1}, {16777217}), MEAN)));
    auto const zero = run(Picture<float>(Shape{1}, {-0.0f}), MEAN);
    EXPECT_FALSE(std::signbit(zero.voxels[0]));
}

TEST_F(Decimate2DTest, takesTheFirstVoxelWhateverStandsBesideIt)
{
    auto picture = randomPicture<int>(Shape{9, 7}, 1);
    auto const first = run(picture, FIRST);
    for (unsigned long y = 0; y < 7; ++y)
        for (unsigned long x = 0; x < 9; ++x)
            if (x % 2 == 1 || y % 2 == 1)
                picture.at(x, y) = -5;
    EXPECT_TRUE(samePicture(first, run(picture, FIRST)));
}

TEST_F(Decimate2DTest, ordersMinimumMeanAndMaximum)
{
    auto const picture = randomPictureBetween<unsigned short>(Shape{33, 21, 2}, 5, 0, 60000);
    auto const low = run(picture, MIN);
    auto const mean = run(picture, MEAN);
    auto const high = run(picture, MAX);
    for (std::size_t i = 0; i < mean.voxels.size(); ++i) {
        EXPECT_LE(low.voxels[i], mean.voxels[i]);
        EXPECT_LE(mean.voxels[i], high.voxels[i]);
    }
}

TEST_F(Decimate2DTest, shapesItsOutputOnlyWhereItDoesNotFit)
{
    HostImage in(randomPicture<short>(Shape{5, 5, 2, 3, 2}, 1));
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(COLUMNS, 7);
    HostImage out;
    decimate->input = &in;
    decimate->output = &out;
    decimate->run();
    EXPECT_EQ(out.callsOf(RESERVE), 1u);
    EXPECT_EQ(out.sizes(), (Shape{3, 3, 2, 3, 2}));
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    EXPECT_EQ(out.getSpacingOf(COLUMNS), 1);
    decimate->run();
    EXPECT_EQ(out.callsOf(RESERVE), 1u);
    HostImage const other(QEL_UINT8, {5, 5, 2, 3, 2});
    decimate->input = &other;
    decimate->run();
    EXPECT_EQ(out.callsOf(RESERVE), 2u);
    EXPECT_EQ(decimate->getProgress(), 100);
}

TEST_F(Decimate2DTest, refusesWrongParametersInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out;
    auto const text = [](std::string const& message, std::string const& property) {
        return ruleText(message, property, "Decimate2D");
    };
    EXPECT_QEL_WHAT(decimate->run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    decimate->input = &in;
    EXPECT_QEL_WHAT(decimate->run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    decimate->output = &out;
    decimate->operatorType = 4;
    EXPECT_QEL_WHAT(decimate->run(), RuleException,
                    text("The value of the parameter \"operatorType\" is not valid", "operatorType"));
    decimate->operatorType = MAX;
    out.failOn(RESERVE);
    EXPECT_QEL_THROW(decimate->run(), RuleException,
                     "The parameter \"output\" cannot be resized and retyped to fit \"input\".");
    EXPECT_TRUE(isAtRest(*decimate));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TEST_F(Decimate2DTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<unsigned int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<Decimate2D>(
        [&](Decimate2D& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(QEL_UINT32, Shape{3, 12}));
            algorithm.input = images[0].get();
            algorithm.operatorType = MAX;
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(decimated(picture, MAX), *images[1])); });
}

} // namespace
} // namespace qel::test
