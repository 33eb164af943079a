#include "Core/tests/Support/Algorithms.h"
#include "Registration/tests/DirectMatching.h"

#include <qel/registration/ShapeBasedMatching2D.h>
#include <qel/tools/LoadQelRawImage.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

using namespace qel;
using namespace qel::registration;
using namespace qel::test;

namespace {

// Real numbers of an image between its voxels; the edge goes on.
double sampled(Picture<double> const& image, double x, double y)
{
    auto const at = [&](long column, long row) {
        return image.at(std::clamp(column, 0l, long(image.shape.columns) - 1),
                        std::clamp(row, 0l, long(image.shape.rows) - 1));
    };
    long const column = long(std::floor(x)), row = long(std::floor(y));
    double const a = x - double(column), b = y - double(row);
    return (1 - b) * ((1 - a) * at(column, row) + a * at(column + 1, row)) +
           b * ((1 - a) * at(column, row + 1) + a * at(column + 1, row + 1));
}

// Smooth and without repetition.
Picture<double> blobs(unsigned long columns, unsigned long rows, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> draw(0, 1);
    Picture<double> image(Shape{columns, rows});
    unsigned long const count = columns * rows / 80;
    for (unsigned long i = 0; i < count; ++i) {
        double const x = draw(generator) * double(columns), y = draw(generator) * double(rows);
        double const radius = 2 + 4 * draw(generator), height = 200 * draw(generator) - 100;
        forEachVoxel(image.shape, [&](auto column, auto row, auto, auto, auto) {
            double const dx = double(column) - x, dy = double(row) - y;
            if (dx * dx + dy * dy < 16 * radius * radius)
                image.at(column, row) += height * std::exp(-(dx * dx + dy * dy) / (2 * radius * radius));
        });
    }
    return image;
}

template <class T> Picture<T> gradient(Picture<double> const& image, bool alongX, double factor = 1)
{
    Picture<T> result(image.shape);
    forEachVoxel(image.shape, [&](auto column, auto row, auto, auto, auto) {
        long const dx = alongX, dy = !alongX;
        double const difference = sampled(image, double(column) + double(dx), double(row) + double(dy)) -
                                  sampled(image, double(column) - double(dx), double(row) - double(dy));
        result.at(column, row) = static_cast<T>(difference * factor);
    });
    return result;
}

// The template that lies in the image with its first voxel at (x, y), turned and scaled.
Picture<double> cut(Picture<double> const& image, Shape const& shape, double x, double y, double scale, double degrees)
{
    double const c = scale * std::cos(degrees * M_PI / 180), s = scale * std::sin(degrees * M_PI / 180);
    Picture<double> result(shape);
    forEachVoxel(shape, [&](auto column, auto row, auto, auto, auto) {
        result.at(column, row) =
            sampled(image, x + c * double(column) - s * double(row), y + s * double(column) + c * double(row));
    });
    return result;
}

template <class X, class Y = X, class TX = X, class TY = X, class M = unsigned char> struct Scene
{
    Picture<X> x;
    Picture<Y> y;
    Picture<TX> tx;
    Picture<TY> ty;
    Picture<M> mask;
    DirectMatching::Settings settings;

    DirectMatching::Result direct() const { return DirectMatching::run(x, y, tx, ty, mask, settings); }
};

void configure(ShapeBasedMatching2D& matching, DirectMatching::Settings const& settings)
{
    matching.numOfLevel = settings.numOfLevel;
    matching.similarityMeasure =
        settings.absolute ? ShapeBasedMatching2D::NORMALIZED_ABS : ShapeBasedMatching2D::NORMALIZED;
    matching.rotationBegin = settings.rotationBegin;
    matching.rotationEnd = settings.rotationEnd;
    matching.rotationStep = settings.rotationStep;
    matching.scaleBegin = settings.scaleBegin;
    matching.scaleEnd = settings.scaleEnd;
    matching.scaleStep = settings.scaleStep;
}

DirectMatching::Result resultOf(ShapeBasedMatching2D const& matching)
{
    return {matching.outputTx, matching.outputTy, matching.outputScale, matching.outputRotation};
}

template <class Scene> DirectMatching::Result found(Scene const& scene)
{
    HostImage const x(scene.x), y(scene.y), tx(scene.tx), ty(scene.ty), mask(scene.mask);
    Ref<ShapeBasedMatching2D> const matching = ShapeBasedMatching2D::New();
    matching->inputGradientX = &x;
    matching->inputGradientY = &y;
    matching->templateGradientX = &tx;
    matching->templateGradientY = &ty;
    matching->mask = &mask;
    configure(*matching, scene.settings);
    matching->run();
    return resultOf(*matching);
}

testing::AssertionResult same(DirectMatching::Result const& expected, DirectMatching::Result const& actual)
{
    auto const equal = [](double a, double b) { return (std::isnan(a) && std::isnan(b)) || std::abs(a - b) < 1e-9; };
    if (equal(expected.tx, actual.tx) && equal(expected.ty, actual.ty) && expected.scale == actual.scale &&
        expected.rotation == actual.rotation)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "expected (" << expected.tx << ", " << expected.ty << ") " << expected.scale
                                       << " " << expected.rotation << ", got (" << actual.tx << ", " << actual.ty
                                       << ") " << actual.scale << " " << actual.rotation;
}

// A template cut out of an image.
template <class T>
Scene<T> planted(Picture<double> const& image, Shape const& shape, double x, double y, double scale, double degrees,
                 double factor = 1)
{
    Picture<double> const part = cut(image, shape, x, y, scale, degrees);
    Scene<T> scene;
    scene.x = gradient<T>(image, true, factor);
    scene.y = gradient<T>(image, false, factor);
    scene.tx = gradient<T>(part, true, factor);
    scene.ty = gradient<T>(part, false, factor);
    scene.mask = Picture<unsigned char>(shape, 1);
    return scene;
}

Picture<double> cermet()
{
    memory::InMemoryImage image;
    Ref<tools::LoadQelRawImage> const load = tools::LoadQelRawImage::New();
    load->filePath = QUELIDE_SOURCE_DIR "/Examples/data/cermet.qeli";
    load->output = &image;
    load->run();
    Picture<unsigned char> const bytes = fromImage<unsigned char>(image);
    return Picture<double>(bytes.shape, std::vector<double>(bytes.voxels.begin(), bytes.voxels.end()));
}

std::string const name = "ShapeBasedMatching2D";

} // namespace

// ---- The same as the direct search

TEST(ShapeBasedMatching2D, findsWhatTheDirectSearchFindsInEveryVoxelType)
{
    Picture<double> const image = blobs(41, 33, 7);
    forEachVoxelType([&]<class T>() {
        // Unsigned gradients are folded; the search does not mind.
        Scene<T> scene = planted<T>(image, {13, 11}, 9, 8, 1.2, 30);
        if constexpr (std::is_unsigned_v<T>) {
            scene.x = randomPictureBetween<T>(scene.x.shape, 1, 0, 100);
            scene.y = randomPictureBetween<T>(scene.y.shape, 2, 0, 100);
            scene.tx = randomPictureBetween<T>(scene.tx.shape, 3, 0, 100);
            scene.ty = randomPictureBetween<T>(scene.ty.shape, 4, 0, 100);
        }
        scene.settings.numOfLevel = 2;
        scene.settings.rotationStep = 30;
        scene.settings.scaleStep = 0.35;
        onOneAndFourThreads([&] { EXPECT_TRUE(same(scene.direct(), found(scene))); });
    });
}

TEST(ShapeBasedMatching2D, takesGradientsOfDifferentTypes)
{
    Picture<double> const image = blobs(40, 40, 8);
    Scene<float> const base = planted<float>(image, {12, 12}, 12, 9, 1, 90);
    Scene<float, short, double, int, int> scene;
    scene.x = base.x;
    scene.y = gradient<short>(image, false);
    Picture<double> const part = cut(image, {12, 12}, 12, 9, 1, 90);
    scene.tx = gradient<double>(part, true);
    scene.ty = gradient<int>(part, false);
    scene.mask = Picture<int>(Shape{12, 12}, 70000);
    scene.settings.numOfLevel = 2;
    scene.settings.rotationStep = 45;
    EXPECT_TRUE(same(scene.direct(), found(scene)));
}

TEST(ShapeBasedMatching2D, findsWhatTheDirectSearchFindsForAnySizesLevelsAndRanges)
{
    std::mt19937 random(11);
    auto const draw = [&](unsigned low, unsigned high) { return low + random() % (high - low + 1); };
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        Scene<float> scene;
        Shape const shape{draw(1, 40), draw(1, 30)};
        Shape const shapeOfTemplate{draw(1, 12), draw(1, 12)};
        scene.x = randomPictureBetween<float>(shape, draw(0, 1000), -50, 50);
        scene.y = randomPictureBetween<float>(shape, draw(0, 1000), -50, 50);
        scene.tx = randomPictureBetween<float>(shapeOfTemplate, draw(0, 1000), -50, 50);
        scene.ty = randomPictureBetween<float>(shapeOfTemplate, draw(0, 1000), -50, 50);
        scene.mask = randomPictureBetween<unsigned char>(shapeOfTemplate, draw(0, 1000), 0, 2);
        scene.mask.voxels[0] = 1;
        scene.settings.numOfLevel = draw(1, 4);
        scene.settings.absolute = round % 3 == 0;
        scene.settings.rotationBegin = -30.0 * draw(0, 3);
        scene.settings.rotationEnd = scene.settings.rotationBegin + draw(0, 170);
        scene.settings.rotationStep = draw(20, 60);
        scene.settings.scaleBegin = 0.1 * draw(1, 12);
        scene.settings.scaleEnd = scene.settings.scaleBegin + 0.3 * draw(0, 6);
        scene.settings.scaleStep = 0.1 * draw(2, 6);
        EXPECT_TRUE(same(scene.direct(), found(scene)));
    }
}

TEST(ShapeBasedMatching2D, searchesAllPlansAndSeries)
{
    for (Shape const shape : {Shape{20, 18, 3}, Shape{20, 18, 1, 2, 2}, Shape{9, 8, 2, 2, 2}}) {
        Scene<float> scene;
        Shape shapeOfTemplate = shape;
        shapeOfTemplate.columns = 6;
        shapeOfTemplate.rows = 5;
        scene.x = randomPictureBetween<float>(shape, 1, -50, 50);
        scene.y = randomPictureBetween<float>(shape, 2, -50, 50);
        scene.tx = randomPictureBetween<float>(shapeOfTemplate, 3, -50, 50);
        scene.ty = randomPictureBetween<float>(shapeOfTemplate, 4, -50, 50);
        scene.mask = randomPictureBetween<unsigned char>(shapeOfTemplate, 5, 0, 1);
        scene.settings.numOfLevel = 2;
        scene.settings.rotationStep = 40;
        scene.settings.scaleStep = 0.4;
        EXPECT_TRUE(same(scene.direct(), found(scene))) << shape;
    }
}

TEST(ShapeBasedMatching2D, seesNothingOutsideOfTheImage)
{
    // The template is larger than the image, and lies half outside of it.
    Picture<double> const image = blobs(60, 60, 12);
    Scene<double> const whole = planted<double>(image, {40, 40}, 10, 10, 1, 0);
    Scene<double> scene = whole;
    scene.x = gradient<double>(cut(image, {20, 20}, 0, 0, 1, 0), true);
    scene.y = gradient<double>(cut(image, {20, 20}, 0, 0, 1, 0), false);
    scene.settings.numOfLevel = 1;
    scene.settings.rotationStep = 90;
    scene.settings.scaleBegin = scene.settings.scaleEnd = 1;
    EXPECT_TRUE(same(scene.direct(), found(scene)));
}

TEST(ShapeBasedMatching2D, givesTheSameForManyPosesAndForFew)
{
    // One pose on a large image is cut into rows, many poses are not.
    Picture<double> const image = blobs(150, 140, 13);
    Scene<float> scene = planted<float>(image, {15, 15}, 90, 60, 1, 0); // odd, with a whole centre
    scene.settings.numOfLevel = 1;
    scene.settings.scaleBegin = scene.settings.scaleEnd = 1;
    scene.settings.rotationEnd = 0;
    DirectMatching::Result const one = found(scene);
    EXPECT_TRUE(same(scene.direct(), one));
    EXPECT_TRUE(same({90, 60, 1, 0}, one));
    scene.settings.rotationEnd = 350;
    onOneAndFourThreads([&] { EXPECT_TRUE(same(one, found(scene))); });
}

// ---- Planted poses

TEST(ShapeBasedMatching2D, findsPlantedPosesInARealImage)
{
    Picture<double> const image = cermet();
    struct Plant
    {
        double x, y, scale, degrees;
    };
    for (Plant const& plant : {Plant{80, 60, 1, 0}, Plant{150, 40, 1, 90}, Plant{170, 180, 1.2, 200},
                               Plant{60, 120, 0.8, 40}, Plant{120, 200, 1.5, 290}, Plant{200, 90, 0.7, 130}}) {
        Scene<float> scene = planted<float>(image, {48, 48}, plant.x, plant.y, plant.scale, plant.degrees);
        scene.settings.numOfLevel = 3;
        DirectMatching::Result const result = found(scene);
        SCOPED_TRACE(testing::Message() << plant.x << " " << plant.y << " " << plant.scale << " " << plant.degrees
                                        << ": " << result.tx << " " << result.ty << " " << result.scale << " "
                                        << result.rotation);
        EXPECT_NEAR(result.tx, plant.x, 3);
        EXPECT_NEAR(result.ty, plant.y, 3);
        EXPECT_NEAR(result.scale, plant.scale, 0.0501);
        EXPECT_NEAR(result.rotation, plant.degrees, 5);
    }
}

TEST(ShapeBasedMatching2D, findsATemplateUnderNoiseAndAnotherLight)
{
    Picture<double> const image = cermet();
    Picture<double> noisy = image;
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0, 8);
    for (double& voxel : noisy.voxels)
        voxel = voxel * 0.4 + 90 + noise(random);
    Scene<float> scene = planted<float>(image, {48, 48}, 100, 80, 1, 60);
    scene.x = gradient<float>(noisy, true);
    scene.y = gradient<float>(noisy, false);
    scene.settings.numOfLevel = 3;
    DirectMatching::Result const result = found(scene);
    EXPECT_NEAR(result.tx, 100, 3);
    EXPECT_NEAR(result.ty, 80, 3);
    EXPECT_NEAR(result.scale, 1, 1e-9);
    EXPECT_EQ(result.rotation, 60);
}

TEST(ShapeBasedMatching2D, findsInvertedContrastByAbsoluteScoresAlone)
{
    Picture<double> const image = blobs(80, 80, 14);
    Scene<float> scene = planted<float>(image, {20, 20}, 30, 40, 1, 0, 1);
    for (float& voxel : scene.tx.voxels)
        voxel = -voxel;
    for (float& voxel : scene.ty.voxels)
        voxel = -voxel;
    scene.settings.numOfLevel = 2;
    scene.settings.rotationEnd = 90;
    scene.settings.scaleBegin = 0.8;
    scene.settings.scaleEnd = 1.25;
    EXPECT_TRUE(same(scene.direct(), found(scene)));
    EXPECT_GT(std::abs(found(scene).tx - 30) + std::abs(found(scene).ty - 40), 5);
    scene.settings.absolute = true;
    DirectMatching::Result const result = found(scene);
    EXPECT_TRUE(same(scene.direct(), result));
    EXPECT_NEAR(result.tx, 30, 1.5);
    EXPECT_NEAR(result.ty, 40, 1.5);
    EXPECT_EQ(result.rotation, 0);
}

// ---- Edges

TEST(ShapeBasedMatching2D, takesTheFirstOfEqualScores)
{
    // One direction everywhere: inside, all positions are equal.
    Scene<float> scene;
    scene.x = Picture<float>(Shape{30, 20}, 3);
    scene.y = Picture<float>(Shape{30, 20}, 0);
    scene.tx = Picture<float>(Shape{5, 5}, 2);
    scene.ty = Picture<float>(Shape{5, 5}, 0);
    scene.mask = Picture<unsigned char>(Shape{5, 5}, 1);
    scene.settings.numOfLevel = 1;
    scene.settings.rotationStep = 90;
    scene.settings.scaleBegin = 1;
    scene.settings.scaleEnd = 1;
    // 0 and 360 degrees are equal, and so are all positions from (2, 2) on.
    EXPECT_TRUE(same({0, 0, 1, 0}, found(scene)));
    onOneAndFourThreads([&] { EXPECT_TRUE(same(scene.direct(), found(scene))); });
    scene.settings.rotationBegin = -360;
    EXPECT_EQ(found(scene).rotation, -360);
    // Flat: the score is 0 everywhere.
    scene.x = Picture<float>(Shape{30, 20}, 0);
    EXPECT_TRUE(same({-2, -2, 1, -360}, found(scene)));
    EXPECT_TRUE(same(scene.direct(), found(scene)));
}

TEST(ShapeBasedMatching2D, takesTheFirstOfEqualScoresInRowsThatAreSearchedApart)
{
    Scene<float> scene;
    scene.x = Picture<float>(Shape{20, 120}, 3);
    scene.y = Picture<float>(Shape{20, 120}, 0);
    scene.tx = Picture<float>(Shape{5, 5}, 2);
    scene.ty = Picture<float>(Shape{5, 5}, 0);
    scene.mask = Picture<unsigned char>(Shape{5, 5}, 1);
    scene.settings = {1, false, 0, 0, 10, 1, 1, 1};
    EXPECT_TRUE(same({0, 0, 1, 0}, found(scene)));
}

TEST(ShapeBasedMatching2D, takesTheEarlierPoseOfEqualScoresInALaterPlan)
{
    // The first plan fits turned by a quarter, the second one as it is.
    Scene<float> scene;
    scene.x = Picture<float>(Shape{20, 20, 2}, 0);
    scene.y = Picture<float>(Shape{20, 20, 2}, 0);
    std::fill_n(scene.y.voxels.begin(), 400, 3.0f);
    std::fill_n(scene.x.voxels.begin() + 400, 400, 3.0f);
    scene.tx = Picture<float>(Shape{5, 5}, 2);
    scene.ty = Picture<float>(Shape{5, 5}, 0);
    scene.mask = Picture<unsigned char>(Shape{5, 5}, 1);
    scene.settings = {1, false, 0, 90, 90, 1, 1, 1};
    EXPECT_TRUE(same(scene.direct(), found(scene)));
    EXPECT_EQ(found(scene).rotation, 0);
}

TEST(ShapeBasedMatching2D, prefersTheLowerScale)
{
    // A lone point is the same at each scale.
    Scene<float> scene;
    scene.x = randomPictureBetween<float>(Shape{20, 20}, 1, -9, 9);
    scene.y = randomPictureBetween<float>(Shape{20, 20}, 2, -9, 9);
    scene.tx = Picture<float>(Shape{3, 3}, 2);
    scene.ty = Picture<float>(Shape{3, 3}, 1);
    scene.mask = Picture<unsigned char>(Shape{3, 3});
    scene.mask.at(1, 2) = 255;
    scene.settings.numOfLevel = 1;
    DirectMatching::Result const result = found(scene);
    EXPECT_EQ(result.scale, 0.5);
    EXPECT_TRUE(same(scene.direct(), result));
}

TEST(ShapeBasedMatching2D, givesNoNumberForAnEmptyMask)
{
    Scene<float> scene = planted<float>(blobs(30, 30, 15), {8, 8}, 10, 10, 1, 0);
    scene.mask = Picture<unsigned char>(Shape{8, 8});
    for (unsigned const levels : {1u, 2u}) {
        scene.settings.numOfLevel = levels;
        DirectMatching::Result const result = found(scene);
        EXPECT_TRUE(std::isnan(result.tx));
        EXPECT_TRUE(std::isnan(result.ty));
        EXPECT_EQ(result.scale, 0.5);
        EXPECT_EQ(result.rotation, 0);
    }
}

TEST(ShapeBasedMatching2D, leavesOutNegativeMaskVoxels)
{
    Picture<double> const image = blobs(40, 40, 16);
    Scene<float> const base = planted<float>(image, {10, 10}, 12, 9, 1, 0);
    Scene<float, float, float, float, signed char> scene;
    scene.x = base.x;
    scene.y = base.y;
    scene.tx = base.tx;
    scene.ty = base.ty;
    scene.mask = randomPictureBetween<signed char>(Shape{10, 10}, 3, -2, 2);
    scene.settings.numOfLevel = 2;
    scene.settings.rotationStep = 60;
    scene.settings.scaleStep = 0.5;
    EXPECT_TRUE(same(scene.direct(), found(scene)));
}

TEST(ShapeBasedMatching2D, doesNotSearchWithoutALevel)
{
    Scene<float> scene = planted<float>(blobs(30, 30, 17), {8, 8}, 10, 10, 1, 0);
    scene.settings.numOfLevel = 0;
    EXPECT_TRUE(same({0, 0, 1, 0}, found(scene)));
    // Also where an earlier run left something.
    auto const x = toImage(scene.x), y = toImage(scene.y), tx = toImage(scene.tx), ty = toImage(scene.ty);
    auto const mask = toImage(scene.mask);
    Ref<ShapeBasedMatching2D> const matching = ShapeBasedMatching2D::New();
    matching->inputGradientX = &x;
    matching->inputGradientY = &y;
    matching->templateGradientX = &tx;
    matching->templateGradientY = &ty;
    matching->mask = &mask;
    matching->numOfLevel = 1;
    matching->rotationEnd = 0;
    matching->run();
    EXPECT_NE(matching->outputTx.get(), 0);
    matching->numOfLevel = 0;
    matching->run();
    EXPECT_TRUE(same({0, 0, 1, 0}, resultOf(*matching)));
}

TEST(ShapeBasedMatching2D, goesDownToASingleVoxel)
{
    Scene<float> scene = planted<float>(blobs(30, 30, 18), {8, 8}, 10, 10, 1, 0);
    scene.settings.numOfLevel = 10;
    scene.settings.rotationStep = 60;
    scene.settings.scaleStep = 0.5;
    EXPECT_TRUE(same(scene.direct(), found(scene)));
}

TEST(ShapeBasedMatching2D, findsNothingInNothing)
{
    for (Shape const shape : {Shape{0, 0}, Shape{0, 5}, Shape{5, 0}, Shape{5, 5, 0}}) {
        Scene<float> scene = planted<float>(blobs(30, 30, 19), {8, 8}, 10, 10, 1, 0);
        scene.x = scene.y = Picture<float>(shape);
        for (unsigned const levels : {1u, 3u}) {
            scene.settings.numOfLevel = levels;
            EXPECT_TRUE(same({0, 0, 0, 0}, found(scene))) << shape;
        }
    }
    Scene<float> scene = planted<float>(blobs(30, 30, 20), {8, 8}, 10, 10, 1, 0);
    scene.tx = scene.ty = Picture<float>(Shape{0, 0});
    scene.mask = Picture<unsigned char>(Shape{0, 0});
    scene.settings.numOfLevel = 2;
    EXPECT_TRUE(std::isnan(found(scene).tx));
}

TEST(ShapeBasedMatching2D, passesOverGradientsThatAreNoNumbers)
{
    Picture<double> const image = blobs(50, 50, 21);
    Scene<double> scene = planted<double>(image, {10, 10}, 25, 30, 1, 0);
    // A NaN counts as no gradient; an infinite one spoils the positions that meet it.
    for (double const bad : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        Scene<double> spoilt = scene;
        for (int i = 0; i < 4; ++i)
            spoilt.x.at(5 + 7 * i, 4 + i) = bad;
        spoilt.tx.at(3, 3) = spoilt.ty.at(3, 3) = 0;
        spoilt.settings.numOfLevel = 1;
        spoilt.settings.rotationStep = 60;
        spoilt.settings.scaleStep = 0.5;
        EXPECT_TRUE(same(spoilt.direct(), found(spoilt)));
    }
    // Nothing but infinite ones: no position has a score.
    scene.x = Picture<double>(scene.x.shape, std::numeric_limits<double>::infinity());
    scene.settings.numOfLevel = 1;
    EXPECT_TRUE(same({0, 0, 0, 0}, found(scene)));
}

TEST(ShapeBasedMatching2D, countsNothingWhereATemplatesOddGradientMeetsNone)
{
    // Both templates lie in an image that is flat around, and their odd voxels outside of what is there.
    Picture<double> image(Shape{60, 50});
    Picture<double> const object = blobs(12, 12, 22);
    forEachVoxel(object.shape, [&](auto x, auto y, auto, auto, auto) { image.at(x + 30, y + 20) = object.at(x, y); });
    double const infinity = std::numeric_limits<double>::infinity();
    for (auto const& bad : {std::array<double, 2>{std::nan(""), 0}, {1, std::nan("")}, {infinity, 1}, {0, -infinity}})
        for (bool const absolute : {false, true}) {
            Scene<double> scene = planted<double>(image, {24, 22}, 25, 14, 1, 0);
            scene.tx.at(1, 20) = bad[0];
            scene.ty.at(1, 20) = bad[1];
            scene.settings = {1, absolute, 0, 180, 90, 0.5, 1, 0.5};
            EXPECT_TRUE(same(scene.direct(), found(scene)));
            if (std::isnan(bad[0]) || std::isnan(bad[1])) { // any other place has a number only beside the object
                EXPECT_NEAR(found(scene).tx, 25, 1);
            }
        }
}

// ---- Rules and errors

class ShapeBasedMatching2DRun : public testing::Test
{
protected:
    ShapeBasedMatching2DRun()
        : matching(ShapeBasedMatching2D::New())
    {
        matching->inputGradientX = &x;
        matching->inputGradientY = &y;
        matching->templateGradientX = &tx;
        matching->templateGradientY = &ty;
        matching->mask = &mask;
        matching->numOfLevel = 2;
        matching->rotationStep = 60;
        matching->scaleStep = 0.5;
    }

    void expectRefused(std::string const& message, std::string const& property)
    {
        EXPECT_QEL_WHAT(matching->run(), RuleException, ruleText(message, property, name));
        EXPECT_TRUE(isAtRest(*matching));
    }

    Scene<float> scene = planted<float>(blobs(40, 30, 22), {8, 8}, 10, 10, 1, 0);
    HostImage x{scene.x}, y{scene.y}, tx{scene.tx}, ty{scene.ty}, mask{scene.mask};
    Ref<ShapeBasedMatching2D> matching;
};

TEST_F(ShapeBasedMatching2DRun, hasItsPropertiesAndDefaults)
{
    Ref<ShapeBasedMatching2D> const fresh = ShapeBasedMatching2D::New();
    EXPECT_EQ(describedInputs(*fresh),
              std::vector<std::string>({"const image inputGradientX = null", "const image inputGradientY = null",
                                        "const image templateGradientX = null", "const image templateGradientY = null",
                                        "const image mask = null", "unknown numOfLevel",
                                        "SIMILARITY_MEASURE similarityMeasure = NORMALIZED", "double rotationBegin = 0",
                                        "double rotationEnd = 360", "double rotationStep = 10",
                                        "double scaleBegin = 0.5", "double scaleEnd = 1.8", "double scaleStep = 0.1"}));
    EXPECT_EQ(describedOutputs(*fresh),
              std::vector<std::string>({"double outputTx = 0", "double outputTy = 0", "double outputScale = 1",
                                        "double outputRotation = 0"}));
    EXPECT_EQ(fresh->numOfLevel.get(), 4u);
    EXPECT_EQ(fresh->similarityMeasure.getEnumInfo()->getValueFromLabel("NORMALIZED_ABS"),
              ShapeBasedMatching2D::NORMALIZED_ABS);
    EXPECT_EQ(levelsOf(*fresh), std::vector<OptimLevelType>({SCALAR}));
    EXPECT_EQ(fresh->getAlgoBorderInfluence().getNumOfVoxels(COLUMNS_NEGATIVE), static_cast<unsigned long>(-1));
    EXPECT_EQ(fresh->getAlgoBorderInfluence().getNumOfVoxels(PLANS_NEGATIVE), 0u);
}

TEST_F(ShapeBasedMatching2DRun, refusesMissingImages)
{
    for (auto* const property : {&matching->inputGradientX, &matching->inputGradientY, &matching->templateGradientX,
                                 &matching->templateGradientY, &matching->mask}) {
        ImageModel const* const image = property->get();
        *property = nullptr;
        std::string const of = property->getName().c_str();
        expectRefused("The parameter \"" + of + "\" must be set.", of);
        *property = image;
    }
}

TEST_F(ShapeBasedMatching2DRun, refusesImagesOfOtherTypesAndSizes)
{
    HostImage const complex(QEL_COMPLEX_FLOAT32, Shape{40, 30});
    HostImage const small(QEL_UINT8, Shape{7, 8});
    HostImage const real(QEL_FLOAT32, Shape{8, 8});
    auto const throwsAt = [&](Property<ImageModel const*>& property, ImageModel const& image) {
        ImageModel const* const before = property.get();
        property = &image;
        std::string text;
        try {
            matching->run();
        } catch (RuleException& error) {
            text = error.getInfoLevel(0).message.c_str();
        }
        property = before;
        return text;
    };
    std::string const all = "uint8, uint16, uint32, uint64, int8, int16, int32, int64, float32, float64";
    EXPECT_NE(throwsAt(matching->inputGradientX, complex)
                  .find("The parameter \"inputGradientX\" supports only data type(s): "),
              std::string::npos);
    EXPECT_NE(throwsAt(matching->templateGradientX, complex).find("supports only data type(s)"), std::string::npos);
    EXPECT_NE(throwsAt(matching->mask, real).find("The parameter \"mask\" supports only data type(s): "),
              std::string::npos);
    for (auto* const property : {&matching->inputGradientY, &matching->templateGradientY, &matching->mask}) {
        std::string const text = throwsAt(*property, small);
        EXPECT_NE(text.find(property->getName().c_str()), std::string::npos) << text;
    }
}

TEST_F(ShapeBasedMatching2DRun, refusesValuesOutsideOfTheirRanges)
{
    matching->numOfLevel = 11;
    expectRefused("The parameter \"numOfLevel\" must be in the range [0 ; 10[.", "numOfLevel");
    matching->numOfLevel = 1;
    matching->similarityMeasure = 2;
    expectRefused("The value of the parameter \"similarityMeasure\" is not valid", "similarityMeasure");
    matching->similarityMeasure = 1;
    matching->rotationBegin = 20;
    matching->rotationEnd = 10;
    expectRefused("The parameter \"rotationEnd\" (value=10) must be greater than or equal to the parameter "
                  "\"rotationBegin\" (value=20).",
                  "rotationEnd");
    matching->rotationEnd = 20;
    for (double const bad : {0.0, -1.0, 361.0}) {
        matching->rotationStep = bad;
        expectRefused("The parameter \"rotationStep\" must be in the range ]0 ; 360[.", "rotationStep");
    }
    matching->rotationStep = 360;
    for (double const bad : {0.09, 10.1}) {
        matching->scaleBegin = bad;
        expectRefused("The parameter \"scaleBegin\" must be in the range [0.1 ; 10[.", "scaleBegin");
    }
    matching->scaleBegin = 1.5;
    matching->scaleEnd = 11;
    expectRefused("The parameter \"scaleEnd\" must be in the range [0.1 ; 10[.", "scaleEnd");
    matching->scaleEnd = 1.25;
    expectRefused(
        "The parameter \"scaleEnd\" (value=1.25) must be greater than or equal to the parameter \"scaleBegin\" "
        "(value=1.5).",
        "scaleEnd");
    matching->scaleEnd = 1.5;
    for (double const bad : {0.0, 10.5}) {
        matching->scaleStep = bad;
        expectRefused("The parameter \"scaleStep\" must be in the range ]0 ; 10[.", "scaleStep");
    }
    matching->scaleStep = 10;
    matching->run();
    EXPECT_EQ(matching->outputScale.get(), 1.5);
    EXPECT_EQ(matching->outputRotation.get(), 20);
}

TEST_F(ShapeBasedMatching2DRun, refusesRangesWithoutAnEnd)
{
    auto const expectEndless = [&](std::string const& of) {
        EXPECT_QEL_WHAT(matching->run(), InvalidCall,
                        "Invalid call :\n#1 Error : The range of " + of + " cannot be walked in its steps. \n#2 From " +
                            name + " \n");
        EXPECT_TRUE(isAtRest(*matching));
    };
    double const infinity = std::numeric_limits<double>::infinity();
    matching->rotationEnd = infinity;
    expectEndless("rotations");
    matching->rotationBegin = -infinity;
    matching->rotationEnd = 0;
    expectEndless("rotations");
    matching->rotationBegin = 0;
    matching->rotationEnd = 360;
    matching->rotationStep = 1e-14;
    expectEndless("rotations");
    matching->rotationStep = 1e-9;
    expectEndless("rotations");
    matching->rotationStep = 90;
    matching->scaleStep = 1e-17;
    expectEndless("scales");
}

TEST_F(ShapeBasedMatching2DRun, reportsImagesThatFail)
{
    expectFailingImagesAreReported<ShapeBasedMatching2D>(
        [&](ShapeBasedMatching2D& m, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(scene.x));
            images.push_back(std::make_unique<HostImage>(scene.y));
            images.push_back(std::make_unique<HostImage>(scene.tx));
            images.push_back(std::make_unique<HostImage>(scene.ty));
            images.push_back(std::make_unique<HostImage>(scene.mask));
            m.inputGradientX = images[0].get();
            m.inputGradientY = images[1].get();
            m.templateGradientX = images[2].get();
            m.templateGradientY = images[3].get();
            m.mask = images[4].get();
            m.numOfLevel = 1;
            m.rotationStep = 60;
            m.scaleStep = 0.5;
            m.outputScale = 0;
        },
        [&](HostImages const&) { return true; });
}

TEST_F(ShapeBasedMatching2DRun, reportsImagesThatFailInTheirPyramids)
{
    x.failOn(READ_ROW);
    EXPECT_QEL_WHAT(matching->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : Error in readRowAt implementation, return value is false \n#2 From "
                    "Decimate2D \n#3 From ShapeBasedMatching2D \n");
    EXPECT_TRUE(isAtRest(*matching));
    x.behave();
    matching->run();
    scene.settings = {2, false, 0, 360, 60, 0.5, 1.8, 0.5};
    EXPECT_TRUE(same(scene.direct(), resultOf(*matching)));
}

TEST_F(ShapeBasedMatching2DRun, callsNothingButRowsFromOtherThreads)
{
    withThreads(4, [&] { matching->run(); });
    for (HostImage const* const image : {&x, &y, &tx, &ty, &mask})
        EXPECT_TRUE(onlyRowsWereForeign(*image));
}

TEST_F(ShapeBasedMatching2DRun, isCancelled)
{
    // Hours of work.
    HostImage const large(randomPictureBetween<float>(Shape{700, 700}, 1, -9, 9));
    matching->inputGradientX = &large;
    matching->inputGradientY = &large;
    matching->numOfLevel = 1;
    matching->rotationStep = 0.001;
    matching->scaleStep = 0.001;
    Poller poller;
    poller.wantsToCancel = true;
    matching->run(&poller);
    EXPECT_TRUE(poller.hasCancelled);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_TRUE(same({0, 0, 1, 0}, resultOf(*matching)));
    EXPECT_TRUE(isAtRest(*matching));
    matching->inputGradientX = &x;
    matching->inputGradientY = &y;
    matching->numOfLevel = 3;
    matching->rotationStep = 1;
    matching->scaleStep = 0.1;
    Poller patient;
    matching->run(&patient);
    EXPECT_TRUE(patient.isSteady);
    EXPECT_NEAR(matching->outputTx.get(), 10, 2);
}
