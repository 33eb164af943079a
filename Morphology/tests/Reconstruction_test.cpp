#include "Morphology/private/connectivityOf.h"
#include "Morphology/tests/BinaryPicture.h"
#include "Morphology/tests/ReconstructionModel.h"

#include <qel/memory/InMemoryImage.h>
#include <qel/morphology/Reconstruction2D.h>
#include <qel/morphology/Reconstruction3D.h>

namespace qel::test {
namespace {

using morphology::Reconstruction2D;
using morphology::Reconstruction3D;

PropertyEnumeration& neighborhoodOf(Reconstruction2D& algorithm) { return algorithm.neighborhood2D; }
PropertyEnumeration& neighborhoodOf(Reconstruction3D& algorithm) { return algorithm.neighborhood3D; }
std::vector<int> countsOf(Reconstruction2D const&) { return {4, 8}; }
std::vector<int> countsOf(Reconstruction3D const&) { return {6, 18, 26}; }

template <class T> Picture<T> objects(Shape const& shape, unsigned seed, unsigned percent)
{
    Picture<T> picture(shape);
    std::mt19937 random(seed);
    for (T& voxel : picture.voxels)
        voxel = random() % 100 < percent ? static_cast<T>(1) << random() % (8 * sizeof(T) - 1) : T(0);
    return picture;
}

template <class Algorithm> class ReconstructionTest : public testing::Test
{
protected:
    static constexpr bool isPlanar = std::is_same_v<Algorithm, Reconstruction2D>;

    template <class I, class M>
    Picture<unsigned char> expected(Picture<I> const& in, Picture<M> const& marker, int count)
    {
        auto const binary = [](auto const& picture) {
            Picture<unsigned char> result(picture.shape);
            std::transform(picture.voxels.begin(), picture.voxels.end(), result.voxels.begin(),
                           [](auto voxel) { return voxel != 0; });
            return result;
        };
        return reconstructed(binary(in), binary(marker), false, isPlanar, count);
    }
    template <class I, class M>
    Picture<unsigned char> run(Picture<I> const& in, Picture<M> const& marker, int neighborhood)
    {
        BinaryImage const input(in);
        BinaryImage const markerImage(marker);
        HostImage out;
        neighborhoodOf(*reconstruction) = neighborhood;
        reconstruction->input = &input;
        reconstruction->marker = &markerImage;
        reconstruction->output = &out;
        reconstruction->run();
        EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
        return fromImage<unsigned char>(out);
    }

    Ref<Algorithm> reconstruction = Algorithm::New();
    std::string const name = isPlanar ? "Reconstruction2D" : "Reconstruction3D";
};

using Algorithms = testing::Types<Reconstruction2D, Reconstruction3D>;
TYPED_TEST_SUITE(ReconstructionTest, Algorithms);

TYPED_TEST(ReconstructionTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName(this->name.c_str()), TypeParam::getClassInfo());
    EXPECT_EQ(levelsOf(*this->reconstruction), std::vector<OptimLevelType>{SCALAR});
    EXPECT_EQ(describedInputs(*this->reconstruction),
              std::vector<std::string>({"const image input = null", "const image marker = null",
                                        this->isPlanar ? "Neighborhood2DType neighborhood2D = QEL_NEIGHBORHOOD2D_8"
                                                       : "Neighborhood3DType neighborhood3D = QEL_NEIGHBORHOOD3D_26"}));
    EXPECT_EQ(describedOutputs(*this->reconstruction), std::vector<std::string>({"image output = null"}));
    AlgoBorderInfluence const influence = this->reconstruction->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= (this->isPlanar ? ROWS_POSITIVE : PLANS_POSITIVE)
                      ? std::numeric_limits<unsigned long>::max()
                      : 0);
}

TYPED_TEST(ReconstructionTest, keepsWhatTheMarkerTouches)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        FewerRounds rounds;
        forEachIntegerType([&]<class T>() {
            for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{7, 1}, Shape{0, 3}, Shape{33, 5, 3, 2},
                                       Shape{257, 65, 2}, Shape{513, 130}, Shape{129, 17, 17}})
                for (int const count : countsOf(*this->reconstruction)) {
                    if (rounds.leaveThisOut())
                        continue;
                    // Near the density at which objects reach across the image.
                    unsigned const percent = count == 4    ? 60
                                             : count == 8  ? 42
                                             : count == 6  ? 33
                                             : count == 18 ? 16
                                                           : 12;
                    SCOPED_TRACE(testing::Message() << shape << ", " << count << " neighbours, seed " << seed);
                    auto const in = objects<T>(shape, seed++, percent);
                    auto const marker = objects<short>(shape, seed++, 1);
                    auto const counts = countsOf(*this->reconstruction);
                    int const value = int(std::find(counts.begin(), counts.end(), count) - counts.begin());
                    EXPECT_TRUE(
                        samePicture(this->expected(in, marker, count), HostImage(this->run(in, marker, value))));
                }
        });
    });
}

TYPED_TEST(ReconstructionTest, worksInPlaceOnEitherImage)
{
    auto const in = objects<unsigned char>(Shape{300, 70, 3}, 3, 30);
    auto const marker = objects<unsigned char>(Shape{300, 70, 3}, 4, 2);
    auto const expected = this->run(in, marker, 0);
    for (bool const overInput : {true, false}) {
        BinaryImage input(in), markerImage(marker);
        this->reconstruction->input = &input;
        this->reconstruction->marker = &markerImage;
        this->reconstruction->output = overInput ? &input : &markerImage;
        this->reconstruction->run();
        EXPECT_TRUE(samePicture(expected, overInput ? input : markerImage));
    }
}

TYPED_TEST(ReconstructionTest, followsASpiral)
{
    onOneAndFourThreads([&] {
        for (unsigned long const side : {131ul, 301ul}) {
            auto const in = spiral(side);
            Picture<unsigned char> marker(in.shape);
            marker.at(0, 0) = 1;
            for (std::size_t value = 0; value < countsOf(*this->reconstruction).size(); ++value)
                EXPECT_TRUE(samePicture(in, HostImage(this->run(in, marker, int(value)))));
        }
    });
}

TYPED_TEST(ReconstructionTest, followsASpiralThroughPlans)
{
    onOneAndFourThreads([&] {
        auto const in = spiralInSpace(135);
        Picture<unsigned char> marker(in.shape);
        marker.at(0, 0, 2) = 1;
        for (std::size_t value = 0; value < countsOf(*this->reconstruction).size(); ++value) {
            int const count = countsOf(*this->reconstruction)[value];
            auto const expected = this->expected(in, marker, count);
            EXPECT_EQ(expected.at(0, 0, 0), this->isPlanar ? 0 : 1);
            EXPECT_TRUE(samePicture(expected, HostImage(this->run(in, marker, int(value)))));
        }
    });
}

TYPED_TEST(ReconstructionTest, isEmptyWithoutAMarkerOnAnObject)
{
    auto const in = objects<int>(Shape{40, 30, 5}, 1, 50);
    Picture<int> marker(in.shape);
    EXPECT_TRUE(samePicture(Picture<unsigned char>(in.shape), HostImage(this->run(in, marker, 0))));
    for (std::size_t i = 0; i < in.voxels.size(); ++i)
        marker.voxels[i] = in.voxels[i] == 0;
    EXPECT_TRUE(samePicture(Picture<unsigned char>(in.shape), HostImage(this->run(in, marker, 0))));
}

TYPED_TEST(ReconstructionTest, joinsCornersAsTheNeighbourhoodSays)
{
    Picture<unsigned char> in(Shape{4, 4}, {1, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 1});
    Picture<unsigned char> marker(in.shape);
    marker.at(0, 0) = 1;
    auto corner = in;
    for (unsigned long y = 2; y < 4; ++y)
        for (unsigned long x = 2; x < 4; ++x)
            corner.at(x, y) = 0;
    EXPECT_TRUE(samePicture(corner, HostImage(this->run(in, marker, 0))));
    EXPECT_TRUE(samePicture(in, HostImage(this->run(in, marker, 1))));
}

TYPED_TEST(ReconstructionTest, shapesItsOutputLikeItsInput)
{
    BinaryImage input(objects<short>(Shape{4, 3, 2, 2}, 1, 50));
    input.setSpacingOf(PLANS, 7);
    BinaryImage const marker(objects<short>(Shape{4, 3, 2, 2}, 2, 50));
    HostImage out(QEL_FLOAT64, {1, 1});
    this->reconstruction->input = &input;
    this->reconstruction->marker = &marker;
    this->reconstruction->output = &out;
    this->reconstruction->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT8);
    EXPECT_EQ(out.sizes(), input.sizes());
    EXPECT_TRUE(sameCalibration(input, out));
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
}

TYPED_TEST(ReconstructionTest, refusesWrongParametersInTheRulesWords)
{
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, this->name);
    };
    auto& algorithm = *this->reconstruction;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    BinaryImage good(Picture<unsigned char>(Shape{3, 3}));
    HostImage const grey(QEL_UINT8, {3, 3});
    BinaryImage wide(Picture<int>(Shape{3, 3}));
    BinaryImage const large(Picture<unsigned char>(Shape{4, 3}));
    BinaryImage const series(Picture<unsigned char>(Shape{3, 3, 1, 1, 2}));
    algorithm.input = &grey;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"input\" supports QEL_BINARY. Current image is QEL_VALUE.", "input"));
    algorithm.input = &series;
    EXPECT_QEL_WHAT(
        algorithm.run(), RuleException,
        text("The number of spectral series of the parameter \"input\" must be 1. Current size is 2.", "input"));
    BinaryImage const real(Picture<float>(Shape{3, 3}));
    algorithm.input = &real;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                         "int16, int32, int64. Current data type is float32.",
                         "input"));
    algorithm.input = &good;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"marker\" must be set.", "marker"));
    algorithm.marker = &grey;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"marker\" supports QEL_BINARY. Current image is QEL_VALUE.", "marker"));
    algorithm.marker = &real;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"marker\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                         "int16, int32, int64. Current data type is float32.",
                         "marker"));
    algorithm.marker = &large;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameters \"input\" and \"marker\" must have the same size.", "marker"));
    algorithm.marker = &wide;
    std::string const neighborhood = neighborhoodOf(algorithm).getName().c_str();
    neighborhoodOf(algorithm) = 3;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The value of the parameter \"" + neighborhood + "\" is not valid", neighborhood));
    neighborhoodOf(algorithm) = 1;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    algorithm.output = &wide;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"marker\" cannot be used as output image if it must be retyped.", "output"));
    EXPECT_EQ(wide.getVoxelType(), QEL_INT32);
    EXPECT_TRUE(isAtRest(algorithm));
}

TYPED_TEST(ReconstructionTest, stopsWhenItIsCancelled)
{
    BinaryImage const input(objects<unsigned char>(Shape{512, 512, 4}, 1, 70));
    BinaryImage const marker(objects<unsigned char>(Shape{512, 512, 4}, 2, 1));
    HostImage out;
    this->reconstruction->input = &input;
    this->reconstruction->marker = &marker;
    this->reconstruction->output = &out;
    Poller poller;
    poller.wantsToCancel = true;
    this->reconstruction->run(&poller);
    EXPECT_TRUE(poller.hasCancelled);
    Poller patient;
    this->reconstruction->run(&patient);
    EXPECT_TRUE(patient.isSteady);
    EXPECT_TRUE(isAtRest(*this->reconstruction));
}

TYPED_TEST(ReconstructionTest, reportsImagesThatFailDuringTheRun)
{
    auto const in = objects<int>(Shape{5, 23}, 1, 60), marker = objects<int>(Shape{5, 23}, 2, 10);
    auto const expected = this->run(in, marker, 0);
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            for (Picture<int> const* const picture : {&in, &marker}) {
                images.push_back(std::make_unique<HostImage>(*picture));
                images.back()->setInterpretation(QEL_BINARY);
            }
            images.push_back(std::make_unique<HostImage>());
            neighborhoodOf(algorithm) = 0;
            algorithm.input = images[0].get();
            algorithm.marker = images[1].get();
            algorithm.output = images[2].get();
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[2])); });
}

TEST(ReconstructionNeighbourhood, thatIsUnknownIsRefused)
{
    EXPECT_QEL_THROW(morphology::connectivityOf2D(7), InvalidCall, "The provided neighborhoord is unknown (value=7).");
    EXPECT_QEL_THROW(morphology::connectivityOf3D(-1), InvalidCall,
                     "The provided neighborhoord is unknown (value=-1).");
}

} // namespace
} // namespace qel::test
