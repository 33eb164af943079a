#include "Morphology/tests/ReconstructionModel.h"

#include <qel/ImageModelAdapter.h>
#include <qel/morphology/GrayScaleReconstruction2D.h>
#include <qel/morphology/GrayScaleReconstruction3D.h>

namespace qel::test {
namespace {

using morphology::GrayScaleReconstruction2D;
using morphology::GrayScaleReconstruction3D;
using morphology::QEL_DILATION;
using morphology::QEL_EROSION;

PropertyEnumeration& neighborhoodOf(GrayScaleReconstruction2D& algorithm) { return algorithm.neighborhood2D; }
PropertyEnumeration& neighborhoodOf(GrayScaleReconstruction3D& algorithm) { return algorithm.neighborhood3D; }
std::vector<int> countsOf(GrayScaleReconstruction2D const&) { return {4, 8}; }
std::vector<int> countsOf(GrayScaleReconstruction3D const&) { return {6, 18, 26}; }

/// Hills and valleys some voxels wide, so that values travel.
template <class T> Picture<T> hills(Shape const& shape, unsigned seed)
{
    Picture<T> picture(shape);
    std::mt19937 random(seed);
    long const lowest = std::is_signed_v<T> ? -60 : 0;
    forEachVoxel(shape, [&](long x, long y, long z, long t, long) {
        long const hill = (x * 7 / 3 + y * 5 / 2 + z * 3 + t) % 60;
        picture.at(x, y, z, t) = static_cast<T>(lowest + hill + long(random() % 60));
    });
    return picture;
}

template <class Algorithm> class GrayScaleReconstructionTest : public testing::Test
{
protected:
    static constexpr bool isPlanar = std::is_same_v<Algorithm, GrayScaleReconstruction2D>;

    void connect(ImageModel const& input, ImageModel const& marker, ImageModel& output)
    {
        reconstruction->input = &input;
        reconstruction->marker = &marker;
        reconstruction->output = &output;
    }
    template <class I, class M>
    testing::AssertionResult isRight(Picture<I> const& in, Picture<M> const& marker, int type, int value)
    {
        HostImage const input(in), markerImage(marker);
        HostImage out;
        reconstruction->reconstructionType = type;
        neighborhoodOf(*reconstruction) = value;
        connect(input, markerImage, out);
        reconstruction->run();
        int const count = countsOf(*reconstruction)[static_cast<std::size_t>(value)];
        return samePicture(reconstructed(cast<M>(in), marker, type == QEL_EROSION, isPlanar, count), out)
               << voxelTypeName<I>() << " to " << voxelTypeName<M>() << ", type " << type << ", " << count
               << " neighbours";
    }

    Ref<Algorithm> reconstruction = Algorithm::New();
    std::string const name = isPlanar ? "GrayScaleReconstruction2D" : "GrayScaleReconstruction3D";
};

using Algorithms = testing::Types<GrayScaleReconstruction2D, GrayScaleReconstruction3D>;
TYPED_TEST_SUITE(GrayScaleReconstructionTest, Algorithms);

TYPED_TEST(GrayScaleReconstructionTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName(this->name.c_str()), TypeParam::getClassInfo());
    EXPECT_EQ(levelsOf(*this->reconstruction), std::vector<OptimLevelType>{SCALAR});
    EXPECT_EQ(describedInputs(*this->reconstruction),
              std::vector<std::string>({"const image input = null", "const image marker = null",
                                        "ReconstructionType reconstructionType = QEL_DILATION",
                                        this->isPlanar ? "Neighborhood2DType neighborhood2D = QEL_NEIGHBORHOOD2D_8"
                                                       : "Neighborhood3DType neighborhood3D = QEL_NEIGHBORHOOD3D_26"}));
    EXPECT_EQ(describedOutputs(*this->reconstruction), std::vector<std::string>({"image output = null"}));
    AlgoBorderInfluence const influence = this->reconstruction->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= ROWS_POSITIVE ? std::numeric_limits<unsigned long>::max() : 0);
}

TYPED_TEST(GrayScaleReconstructionTest, growsTheMarkerAsFarAsTheImageLetsIt)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        FewerRounds rounds;
        forEachVoxelType([&]<class M>() {
            for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{7, 1}, Shape{0, 3}, Shape{33, 5, 3, 2},
                                       Shape{257, 65, 2}, Shape{129, 17, 17}})
                for (int const type : {QEL_DILATION, QEL_EROSION})
                    for (std::size_t value = 0; value < countsOf(*this->reconstruction).size(); ++value) {
                        if (rounds.leaveThisOut())
                            continue;
                        SCOPED_TRACE(testing::Message() << shape << ", seed " << seed);
                        auto const in = hills<M>(shape, seed++);
                        auto marker = in;
                        std::mt19937 random(seed++);
                        for (M& voxel : marker.voxels) // mostly far below or above, seldom beyond the image
                            voxel = static_cast<M>(random() % 50 == 0 ? 70 : type == QEL_EROSION ? 127 : 0);
                        EXPECT_TRUE(this->isRight(in, marker, type, static_cast<int>(value)));
                    }
        });
    });
}

TYPED_TEST(GrayScaleReconstructionTest, followsACorridorThatWinds)
{
    onOneAndFourThreads([&] {
        for (auto const& corridor : {spiral(131), spiral(261), spiralInSpace(67)})
            for (int const type : {QEL_DILATION, QEL_EROSION})
                for (std::size_t value = 0; value < countsOf(*this->reconstruction).size(); ++value) {
                    bool const isErosion = type == QEL_EROSION;
                    // Between walls, a floor that falls to the right; the marker begins at an end of the corridor.
                    Picture<short> in(corridor.shape), marker(corridor.shape, isErosion ? 3000 : 0);
                    forEachVoxel(in.shape, [&](long x, long y, long z, long, long) {
                        int const floor = static_cast<int>(1000 - x);
                        int const height = corridor.at(x, y, z) != 0 ? floor : 1;
                        in.at(x, y, z) = static_cast<short>(isErosion ? 3000 - height : height);
                    });
                    marker.at(0, 0, in.shape.plans - 1) = isErosion ? 2100 : 900;
                    EXPECT_TRUE(this->isRight(in, marker, type, static_cast<int>(value)));
                }
    });
}

TYPED_TEST(GrayScaleReconstructionTest, comparesInTheTypeOfTheMarker)
{
    unsigned seed = 1;
    forEachVoxelTypePair([&]<class I, class M>() {
        Shape const shape{23, 7, 2};
        EXPECT_TRUE(this->isRight(randomPicture<I>(shape, seed), randomPicture<M>(shape, seed + 1),
                                  seed / 2 % 2 == 0 ? QEL_DILATION : QEL_EROSION, 1));
        seed += 1;
    });
}

TYPED_TEST(GrayScaleReconstructionTest, returnsTheImageForAMarkerThatEqualsItOrLiesAboveIt)
{
    auto const in = hills<unsigned short>(Shape{300, 70, 3}, 1);
    for (unsigned const add : {0u, 500u}) {
        auto marker = in;
        for (auto& voxel : marker.voxels)
            voxel = static_cast<unsigned short>(voxel + add);
        HostImage const input(in), markerImage(marker);
        HostImage out;
        this->connect(input, markerImage, out);
        this->reconstruction->run();
        EXPECT_TRUE(samePicture(in, out));
    }
}

TYPED_TEST(GrayScaleReconstructionTest, staysZeroForAMarkerOfZeros)
{
    HostImage const input(hills<unsigned char>(Shape{300, 70, 3}, 1));
    Picture<float> const marker(Shape{300, 70, 3});
    HostImage const markerImage(marker);
    HostImage out;
    this->connect(input, markerImage, out);
    this->reconstruction->run();
    EXPECT_TRUE(samePicture(marker, out));
}

TYPED_TEST(GrayScaleReconstructionTest, takesZeroForTheOutsideAlsoBelowIt)
{
    Picture<short> const in(Shape{3, 3}, -5), marker(Shape{3, 3}, -9);
    EXPECT_TRUE(this->isRight(in, marker, QEL_DILATION, 0));
    HostImage const input(in), markerImage(marker);
    HostImage out;
    this->connect(input, markerImage, out);
    this->reconstruction->run();
    EXPECT_TRUE(samePicture(in, out)); // from the edges inwards
}

TYPED_TEST(GrayScaleReconstructionTest, endsWhereVoxelsAreNoNumbers)
{
    HostImage const input(randomPicture<float>(Shape{150, 40, 2}, 1, true));
    HostImage const marker(randomPicture<float>(Shape{150, 40, 2}, 2, true));
    for (int const type : {QEL_DILATION, QEL_EROSION}) {
        std::vector<Picture<float>> results;
        onOneAndFourThreads([&] {
            HostImage out;
            this->reconstruction->reconstructionType = type;
            this->connect(input, marker, out);
            this->reconstruction->run();
            results.push_back(fromImage<float>(out));
        });
        EXPECT_TRUE(samePicture(results.front(), HostImage(results.back())));
    }
}

TYPED_TEST(GrayScaleReconstructionTest, worksInPlaceOnEitherImage)
{
    auto const in = hills<short>(Shape{300, 70, 3}, 3);
    auto marker = in;
    for (auto& voxel : marker.voxels)
        voxel = static_cast<short>(voxel - 20);
    HostImage expected;
    {
        HostImage const input(in), markerImage(marker);
        this->connect(input, markerImage, expected);
        this->reconstruction->run();
    }
    auto const picture = fromImage<short>(expected);
    for (int const place : {0, 1, 2}) {
        HostImage input(in), markerImage(marker);
        ImageModelAdapter adapter(&input, QEL_INT16);
        this->connect(input, markerImage,
                      place == 0   ? static_cast<ImageModel&>(input)
                      : place == 1 ? markerImage
                                   : *adapter.getImage());
        this->reconstruction->run();
        EXPECT_TRUE(samePicture(picture, place == 1 ? markerImage : input));
    }
}

TYPED_TEST(GrayScaleReconstructionTest, shapesItsOutputLikeItsMarker)
{
    HostImage const input(hills<unsigned char>(Shape{4, 3, 2, 2}, 1));
    HostImage marker(hills<float>(Shape{4, 3, 2, 2}, 2));
    marker.setSpacingOf(PLANS, 7);
    marker.setInterpretation(QEL_LABEL);
    HostImage out(QEL_FLOAT64, {1, 1});
    this->connect(input, marker, out);
    this->reconstruction->run();
    EXPECT_EQ(out.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(out.sizes(), input.sizes());
    EXPECT_TRUE(sameCalibration(marker, out));
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
}

TYPED_TEST(GrayScaleReconstructionTest, refusesWrongParametersInTheRulesWords)
{
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, this->name);
    };
    auto& algorithm = *this->reconstruction;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    HostImage good(QEL_UINT8, {3, 3});
    HostImage const large(QEL_UINT8, {4, 3});
    HostImage const wide(QEL_INT32, {3, 3});
    HostImage const series(QEL_UINT8, {3, 3, 1, 1, 2});
    algorithm.input = &series;
    EXPECT_QEL_WHAT(
        algorithm.run(), RuleException,
        text("The number of spectral series of the parameter \"input\" must be 1. Current size is 2.", "input"));
    algorithm.input = &good;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"marker\" must be set.", "marker"));
    algorithm.marker = &large;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameters \"input\" and \"marker\" must have the same size.", "marker"));
    algorithm.marker = &wide;
    algorithm.reconstructionType = 2;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The value of the parameter \"reconstructionType\" is not valid", "reconstructionType"));
    algorithm.reconstructionType = 1;
    std::string const neighborhood = neighborhoodOf(algorithm).getName().c_str();
    neighborhoodOf(algorithm) = 3;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The value of the parameter \"" + neighborhood + "\" is not valid", neighborhood));
    neighborhoodOf(algorithm) = 1;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    algorithm.output = &good;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"input\" cannot be used as output image if it must be retyped.", "output"));
    EXPECT_EQ(good.getVoxelType(), QEL_UINT8);
    EXPECT_TRUE(isAtRest(algorithm));
}

TYPED_TEST(GrayScaleReconstructionTest, reportsImagesThatFailDuringTheRun)
{
    auto const in = hills<int>(Shape{5, 23}, 1);
    auto marker = in;
    for (auto& voxel : marker.voxels)
        voxel -= 15;
    HostImage const input(in), markerImage(marker);
    HostImage out;
    this->connect(input, markerImage, out);
    this->reconstruction->run();
    auto const expected = fromImage<int>(out);
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            for (Picture<int> const* const picture : {&in, &std::as_const(marker)})
                images.push_back(std::make_unique<HostImage>(*picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.marker = images[1].get();
            algorithm.output = images[2].get();
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[2])); });
}

} // namespace
} // namespace qel::test
