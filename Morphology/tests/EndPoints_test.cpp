#include "Morphology/tests/HitOrMissModel.h"

#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>
#include <qel/morphology/EndPoints2D.h>
#include <qel/morphology/EndPoints3D.h>

#include <cstdlib>

namespace qel::test {
namespace {

using morphology::EndPoints2D;
using morphology::EndPoints3D;

PropertyEnumeration& neighborhoodOf(EndPoints2D& algorithm) { return algorithm.neighborhood2D; }
PropertyEnumeration& neighborhoodOf(EndPoints3D& algorithm) { return algorithm.neighborhood3D; }

template <class Algorithm> class EndPointsTest : public testing::Test
{
protected:
    static constexpr bool isPlanar = std::is_same_v<Algorithm, EndPoints2D>;
    static constexpr int numOfNeighborhoods = isPlanar ? 2 : 3;

    void choose(int neighborhood, int border)
    {
        neighborhoodOf(*ends) = neighborhood;
        ends->borderCondition = border;
    }
    template <class T> Picture<T> expected(Picture<T> const& in)
    {
        long const reach = neighborhoodOf(*ends) + 1;
        long const plans = isPlanar ? 0 : 1;
        return byNeighbours(in, ends->borderCondition, [&](auto const& neighbour) {
            int count = 0;
            for (long z = -plans; z <= plans; ++z)
                for (long y = -1; y <= 1; ++y)
                    for (long x = -1; x <= 1; ++x) {
                        long const steps = std::abs(x) + std::abs(y) + std::abs(z);
                        count += steps > 0 && steps <= reach && neighbour(x, y, z) != 0;
                    }
            return count == 1 ? neighbour(0, 0, 0) : T(0);
        });
    }
    template <class T> Picture<T> run(Picture<T> const& in)
    {
        BinaryImage const input(in);
        HostImage out;
        ends->input = &input;
        ends->output = &out;
        ends->run();
        EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
        return fromImage<T>(out);
    }
    template <class T> void check(Picture<T> const& in)
    {
        auto const picture = expected(in);
        EXPECT_TRUE(samePicture(picture, run(in)));
        BinaryImage image(in);
        ends->input = &image;
        ends->output = &image;
        ends->run();
        EXPECT_TRUE(samePicture(picture, image)) << "in place";
    }

    Ref<Algorithm> ends = Algorithm::New();
    std::string const name = isPlanar ? "EndPoints2D" : "EndPoints3D";
};

using Algorithms = testing::Types<EndPoints2D, EndPoints3D>;
TYPED_TEST_SUITE(EndPointsTest, Algorithms);

TYPED_TEST(EndPointsTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName(this->name.c_str()), TypeParam::getClassInfo());
    EXPECT_EQ(levelsOf(*this->ends), std::vector<OptimLevelType>{SCALAR});
    EXPECT_EQ(describedInputs(*this->ends),
              std::vector<std::string>({"const image input = null",
                                        "BinaryBorderConditionTypes borderCondition = STOP_OBJECT",
                                        this->isPlanar ? "Neighborhood2DType neighborhood2D = QEL_NEIGHBORHOOD2D_8"
                                                       : "Neighborhood3DType neighborhood3D = QEL_NEIGHBORHOOD3D_26"}));
    EXPECT_EQ(describedOutputs(*this->ends), std::vector<std::string>({"image output = null"}));
    // Of both classes, though neighbours in a plan never leave it.
    AlgoBorderInfluence const influence = this->ends->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= PLANS_POSITIVE ? 1u : 0u);
}

TYPED_TEST(EndPointsTest, keepsVoxelsWithOneNeighbour)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachBinaryType([&]<class T>() {
            for (Shape const& shape : allShapes())
                for (int neighborhood = 0; neighborhood < this->numOfNeighborhoods; ++neighborhood)
                    for (int const border : {morphology::STOP_OBJECT, morphology::CONTINUE_OBJECT}) {
                        SCOPED_TRACE(testing::Message()
                                     << shape << ", neighbourhood " << neighborhood << ", border " << border);
                        this->choose(neighborhood, border);
                        this->check(binaryPicture<T>(shape, seed++, this->isPlanar ? 25 : 8));
                    }
        });
    });
}

TYPED_TEST(EndPointsTest, findsTheTwoEndsOfALine)
{
    Picture<unsigned char> in(Shape{9, 7}), expected(in.shape);
    for (unsigned long x = 2; x < 7; ++x)
        in.at(x, x / 2 + 1) = 1;
    expected.at(2, 2) = expected.at(6, 4) = 1;
    EXPECT_TRUE(samePicture(expected, this->run(in)));
}

TYPED_TEST(EndPointsTest, findsNoneOnARingOrALoneVoxel)
{
    Picture<short> in(Shape{9, 7});
    for (unsigned long i = 2; i < 6; ++i)
        in.at(i, 1) = in.at(i, 4) = 1;
    for (unsigned long i = 1; i < 5; ++i)
        in.at(2, i) = in.at(5, i) = 1;
    in.at(8, 6) = 1;
    EXPECT_TRUE(samePicture(Picture<short>(in.shape), this->run(in)));
}

TYPED_TEST(EndPointsTest, findsNoneWhereALineMeetsABorderThatContinuesObjects)
{
    unsigned long const plans = this->isPlanar ? 1 : 3;
    Picture<unsigned char> in(Shape{9, 5, plans}), both(in.shape), inner(in.shape);
    for (unsigned long x = 4; x < 9; ++x)
        in.at(x, 2, plans / 2) = 1;
    both.at(4, 2, plans / 2) = inner.at(4, 2, plans / 2) = 1;
    both.at(8, 2, plans / 2) = 1;
    EXPECT_TRUE(samePicture(both, this->run(in)));
    this->ends->borderCondition = morphology::CONTINUE_OBJECT;
    EXPECT_TRUE(samePicture(inner, this->run(in)));
}

TYPED_TEST(EndPointsTest, keepsTheValueOfAnEnd)
{
    Picture<short> in(Shape{4, 1}, {0, -300, 256, 0});
    EXPECT_TRUE(samePicture(in, this->run(in)));
    Picture<signed char> narrow(Shape{4, 1}, {0, -128, 2, 0});
    EXPECT_TRUE(samePicture(narrow, this->run(narrow)));
}

TYPED_TEST(EndPointsTest, shapesItsOutputLikeItsInput)
{
    BinaryImage input(binaryPicture<short>(Shape{4, 3, 2, 2}, 1, 50));
    input.setSpacingOf(PLANS, 7);
    HostImage out(QEL_FLOAT64, {1, 1});
    this->ends->input = &input;
    this->ends->output = &out;
    this->ends->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.sizes(), input.sizes());
    EXPECT_TRUE(sameCalibration(input, out));
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
}

TYPED_TEST(EndPointsTest, refusesWrongParametersInTheRulesWords)
{
    auto& algorithm = *this->ends;
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, this->name);
    };
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    HostImage const grey(QEL_UINT8, {3, 3});
    BinaryImage const real(Picture<float>(Shape{3, 3}));
    BinaryImage const good(Picture<unsigned char>(Shape{3, 3}));
    algorithm.input = &real;
    EXPECT_QEL_WHAT(
        algorithm.run(), RuleException,
        text("The parameter \"input\" supports only data type(s): uint8, uint16, int8, int16. Current data type is "
             "float32.",
             "input"));
    algorithm.input = &grey;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"input\" supports QEL_BINARY. Current image is QEL_VALUE.", "input"));
    algorithm.input = &good;
    for (PropertyEnumeration* const property : {&algorithm.borderCondition, &neighborhoodOf(algorithm)}) {
        int const before = property->get();
        std::string const which = property->getName().c_str();
        *property = -1;
        EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                        text("The value of the parameter \"" + which + "\" is not valid", which));
        *property = before;
    }
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    EXPECT_TRUE(isAtRest(algorithm));
}

TYPED_TEST(EndPointsTest, stopsWhenItIsCancelled)
{
    auto const in = binaryPicture<unsigned char>(Shape{256, 256, 8}, 1, 20);
    ObservedImage input(in);
    input.setInterpretation(QEL_BINARY);
    HostImage out;
    this->ends->input = &input;
    this->ends->output = &out;
    input.onRead = [&] { this->ends->cancelExecution(); };
    this->ends->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 1000u);
    EXPECT_TRUE(isAtRest(*this->ends));
    input.onRead = nullptr;
    Poller patient;
    this->ends->run(&patient);
    EXPECT_TRUE(patient.isSteady);
    EXPECT_TRUE(isAtRest(*this->ends));
    EXPECT_TRUE(samePicture(this->expected(in), out));
}

TYPED_TEST(EndPointsTest, reportsImagesThatFailDuringTheRun)
{
    auto const in = binaryPicture<short>(Shape{5, 23, 2}, 1, 20);
    auto const expected = this->expected(in);
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            images.push_back(std::make_unique<BinaryImage>(in));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[1])); });
}

} // namespace
} // namespace qel::test
