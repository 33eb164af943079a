#include <qel/geometry/CenterLine3D.h>

#include "Core/tests/Support/Algorithms.h"
#include "Geometry/tests/CenterLineModel.h"

#include <numbers>
#include <random>
#include <set>
#include <thread>

namespace qel::test {
namespace {

using geometry::CenterLine3D;
using geometry::LineSet3D;
using Point = math::Vector3<double>;
using Lines = std::vector<std::vector<Point>>;

double const pi = std::numbers::pi;

void calibrate(ImageModel& image, CenterLineParameters const& parameters)
{
    for (int axis = 0; axis < 3; ++axis) {
        image.setSpacingOf(Components(axis), parameters.spacings[axis]);
        image.setOriginOf(Components(axis), parameters.origins[axis]);
    }
}

std::vector<unsigned long> indicesOf(LineSet3D const& lines)
{
    return {lines.getIndices().begin(), lines.getIndices().end()};
}

/// The runs of a line set, as points. Each run ends with a separator.
Lines runsOf(LineSet3D const& lines)
{
    Lines runs;
    std::vector<Point> run;
    for (unsigned long index : lines.getIndices()) {
        if (index == LineSet3D::stop)
            runs.push_back(std::exchange(run, {}));
        else
            run.push_back(lines.getCoords()[index]);
    }
    EXPECT_TRUE(run.empty());
    return runs;
}

double lengthOf(std::vector<Point> const& line)
{
    double length = 0;
    for (std::size_t i = 1; i < line.size(); ++i)
        length += (line[i] - line[i - 1]).length();
    return length;
}

/// All voxels within a radius of a segment.
template <class T> void addTube(Picture<T>& picture, Point const& from, Point const& to, double radius, T value = 1)
{
    forEachVoxel(picture.shape, [&](long x, long y, long z, long, long) {
        Point const p{double(x), double(y), double(z)};
        double const t = std::clamp((p - from).dot(to - from) / (to - from).squaredLength(), 0.0, 1.0);
        if ((p - (from + (to - from) * t)).length() <= radius)
            picture.at(x, y, z) = value;
    });
}

/// The greatest distance of a line's points from a segment.
double distanceFrom(std::vector<Point> const& line, Point const& from, Point const& to)
{
    double greatest = 0;
    for (Point const& p : line) {
        double const t = std::clamp((p - from).dot(to - from) / (to - from).squaredLength(), 0.0, 1.0);
        greatest = std::max(greatest, (p - (from + (to - from) * t)).length());
    }
    return greatest;
}

/// Tubes and balls of all sizes, with labels 0 to numOfLabels.
template <class T> Picture<T> scene(Shape const& shape, unsigned seed, int numOfLabels)
{
    std::mt19937 random(seed);
    Picture<T> picture(shape);
    auto const anywhere = [&] {
        return Point{double(random() % shape.columns), double(random() % shape.rows), double(random() % shape.plans)};
    };
    for (int i = 0; i < 8; ++i) {
        Point const from = anywhere();
        addTube(picture, from, anywhere() + Point{0.25, 0, 0}, 0.5 + random() % 35 / 10.0,
                T(1 + int(random()) % numOfLabels));
    }
    for (T& voxel : picture.voxels)
        if (random() % 64 == 0)
            voxel = 0;
    return picture;
}

class CenterLine3DTest : public testing::Test
{
protected:
    void set(CenterLineParameters const& parameters)
    {
        algorithm->autoMode = parameters.autoMode;
        algorithm->numberOfBranches = parameters.numberOfBranches;
        algorithm->newBranchSensibility = parameters.newBranchSensibility;
        algorithm->euclideanDistanceMapSigmaSmoothing = parameters.sigma;
        algorithm->smoothingIteration = parameters.smoothingIteration;
    }

    template <class T>
    void run(Picture<T> const& picture, Interpretations interpretation, CenterLineParameters const& parameters = {})
    {
        HostImage in(picture);
        in.setInterpretation(interpretation);
        calibrate(in, parameters);
        set(parameters);
        algorithm->input = &in;
        algorithm->outputImage = &image;
        algorithm->outputLineSet = &lines;
        algorithm->run();
        EXPECT_TRUE(samePicture(picture, in));
        EXPECT_EQ(image.getVoxelType(), interpretation == QEL_BINARY ? QEL_UINT8 : in.getVoxelType());
        EXPECT_EQ(image.sizes(), in.sizes());
        EXPECT_EQ(image.getInterpretation(), interpretation);
        EXPECT_TRUE(sameCalibration(in, image));
    }

    /// Runs, and compares all of the result with the model.
    template <class T>
    void compare(Picture<T> const& picture, Interpretations interpretation, CenterLineParameters const& parameters)
    {
        bool const isBinary = interpretation == QEL_BINARY;
        run(picture, interpretation, parameters);
        CenterLineModel const model(picture, isBinary, parameters);
        ASSERT_EQ(indicesOf(lines), model.indices);
        ASSERT_EQ(lines.getCoords().size(), model.coords.size());
        for (std::size_t i = 0; i < model.coords.size(); ++i)
            ASSERT_EQ(lines.getCoords()[i], model.coords[i]) << i;
        if (isBinary) {
            EXPECT_TRUE(samePicture(Picture<unsigned char>(picture.shape, model.lines), image));
        } else {
            Picture<T> expected(picture.shape);
            for (std::size_t i = 0; i < expected.voxels.size(); ++i)
                expected.voxels[i] = model.lines[i] ? picture.voxels[i] : T(0);
            EXPECT_TRUE(samePicture(expected, image));
        }
    }

    Ref<CenterLine3D> algorithm = CenterLine3D::New();
    std::string const name = "CenterLine3D";
    HostImage image;
    LineSet3D lines;
};

TEST_F(CenterLine3DTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(AlgoInfo::fromName("CenterLine3D"), CenterLine3D::getClassInfo());
    EXPECT_EQ(levelsOf(*algorithm), std::vector<OptimLevelType>{SCALAR});
    AlgoBorderInfluence const influence = algorithm->getAlgoBorderInfluence();
    for (DirectionTypes direction : {COLUMNS_NEGATIVE, COLUMNS_POSITIVE, ROWS_NEGATIVE, ROWS_POSITIVE})
        EXPECT_EQ(influence.getNumOfVoxels(direction), ~0UL);
    for (DirectionTypes direction : {PLANS_NEGATIVE, PLANS_POSITIVE, TIME_SERIES_NEGATIVE, SPECTRAL_SERIES_POSITIVE})
        EXPECT_EQ(influence.getNumOfVoxels(direction), 0UL);
}

TEST_F(CenterLine3DTest, declaresItsPropertiesInOrder)
{
    BaseProperty const* const inputs[] = {&algorithm->input,
                                          &algorithm->autoMode,
                                          &algorithm->numberOfBranches,
                                          &algorithm->newBranchSensibility,
                                          &algorithm->euclideanDistanceMapSigmaSmoothing,
                                          &algorithm->smoothingIteration};
    char const* const names[] = {"input",
                                 "autoMode",
                                 "numberOfBranches",
                                 "newBranchSensibility",
                                 "euclideanDistanceMapSigmaSmoothing",
                                 "smoothingIteration"};
    ASSERT_EQ(algorithm->getNumOfInputProperties(), 6UL);
    for (unsigned long i = 0; i < 6; ++i) {
        EXPECT_EQ(algorithm->getInputProperty(i), inputs[i]);
        EXPECT_EQ(inputs[i]->getName(), names[i]);
        EXPECT_EQ(inputs[i]->getDescription(), names[i]);
    }
    ASSERT_EQ(algorithm->getNumOfOutputProperties(), 2UL);
    EXPECT_EQ(algorithm->getOutputProperty(0), &algorithm->outputImage);
    EXPECT_EQ(algorithm->getOutputProperty(1), &algorithm->outputLineSet);
    EXPECT_EQ(algorithm->outputImage.getName(), "outputImage");
    EXPECT_EQ(algorithm->outputLineSet.getName(), "outputLineSet");
    EXPECT_EQ(algorithm->input.get(), nullptr);
    EXPECT_TRUE(algorithm->autoMode);
    EXPECT_EQ(algorithm->numberOfBranches, 3U);
    EXPECT_EQ(algorithm->newBranchSensibility, 3.0);
    EXPECT_EQ(algorithm->euclideanDistanceMapSigmaSmoothing, 0.3);
    EXPECT_EQ(algorithm->smoothingIteration, 3U);
    EXPECT_EQ(algorithm->outputImage.get(), nullptr);
    EXPECT_EQ(algorithm->outputLineSet.get(), nullptr);
}

// ---- Against two plain searches

TEST_F(CenterLine3DTest, isThatOfTwoPlainSearches)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachIntegerType([&]<class T>() {
            SCOPED_TRACE(testing::Message() << voxelTypeName<T>() << " seed " << seed);
            CenterLineParameters parameters;
            parameters.autoMode = seed % 3 != 0;
            parameters.numberOfBranches = seed % 7;
            parameters.newBranchSensibility = 1 + seed % 4;
            parameters.sigma = seed % 2 ? 0.3 : 0.7;
            parameters.smoothingIteration = seed % 4;
            if (seed % 2)
                parameters.spacings = {0.7, 1, 1.3};
            parameters.origins = {-3.1, 100.0 / 3, 1e-3 * seed};
            compare(scene<T>(Shape{31, 25, 19}, seed, 4), seed % 4 == 0 ? QEL_BINARY : QEL_LABEL, parameters);
            ++seed;
        });
    });
}

TEST_F(CenterLine3DTest, isThatOfTwoPlainSearchesWhereMuchIsEqual)
{
    for (Shape const& shape : {Shape{9, 9, 9}, Shape{12, 7, 5}, Shape{3, 3, 3}, Shape{20, 3, 3}, Shape{3, 5, 9}})
        for (bool const autoMode : {true, false}) {
            CenterLineParameters parameters;
            parameters.autoMode = autoMode;
            parameters.numberOfBranches = 200; // more than the voxels have
            parameters.newBranchSensibility = 1;
            compare(Picture<unsigned char>(shape, 1), QEL_BINARY, parameters);
            parameters.sigma = 0.01; // distances as they are
            compare(Picture<int>(shape, 3), QEL_LABEL, parameters);
        }
}

TEST_F(CenterLine3DTest, isThatOfTwoPlainSearchesInNoise)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 random(seed);
        Picture<unsigned char> picture(Shape{14, 13, 12});
        for (unsigned char& voxel : picture.voxels)
            voxel = random() % 100 < 8 * seed ? static_cast<unsigned char>(1 + random() % 3) : 0;
        CenterLineParameters parameters;
        parameters.autoMode = false;
        parameters.numberOfBranches = 40;
        parameters.spacings = {1, 1, seed % 2 ? 1.0 : 2.0};
        compare(picture, seed % 3 == 0 ? QEL_BINARY : QEL_LABEL, parameters);
    }
}

TEST_F(CenterLine3DTest, needsNoHelpOfTheHostsImage)
{
    // Direct rows or none, and adapters, lead to the same.
    auto const picture = scene<short>(Shape{31, 25, 19}, 99, 3);
    run(picture, QEL_LABEL);
    LineSet3D const expected(lines);
    HostImage in(picture);
    in.giveRows();
    in.setInterpretation(QEL_LABEL);
    calibrate(in, {});
    algorithm->input = &in;
    algorithm->run();
    EXPECT_TRUE(lines == expected);
}

// ---- Shapes

TEST_F(CenterLine3DTest, isOneLineFromEndToEndInACylinder)
{
    for (double const radius : {3.0, 3.5, 4.0, 5.0, 6.3}) {
        Picture<unsigned char> picture(Shape{80, 21, 21});
        forEachVoxel(picture.shape, [&](long x, long y, long z, long, long) {
            picture.at(x, y, z) = x >= 8 && x < 72 && (y - 10) * (y - 10) + (z - 10) * (z - 10) <= radius * radius;
        });
        run(picture, QEL_BINARY);
        Lines const runs = runsOf(lines);
        ASSERT_EQ(runs.size(), 1UL) << radius;
        // The farthest voxels lie in the wall, around the ends. Between them the line keeps to the axis, but for the
        // voxel by which the tree may pass it.
        EXPECT_GE(std::fabs(runs[0].front()[0] - runs[0].back()[0]), 63 - 4 * radius) << radius;
        for (Point const& p : runs[0])
            if (p[0] > 8 + 3 * radius && p[0] < 71 - 3 * radius) {
                EXPECT_LE(std::hypot(p[1] - 10, p[2] - 10), 0.75) << radius;
            }
    }
}

TEST_F(CenterLine3DTest, followsATubeInAnyDirection)
{
    for (Point const& to : {Point{50, 12, 40}, Point{25, 50, 11}, Point{12, 13, 52}, Point{45, 45, 45}}) {
        Point const from{12, 14, 12};
        Picture<unsigned char> picture(Shape{60, 60, 60});
        addTube(picture, from, to, 4);
        run(picture, QEL_BINARY);
        Lines const runs = runsOf(lines);
        ASSERT_EQ(runs.size(), 1UL);
        EXPECT_NEAR(lengthOf(runs[0]), (to - from).length() + 8, 8);
        auto middle = runs[0];
        std::erase_if(middle, [&](Point const& p) { return (p - from).length() < 7 || (p - to).length() < 7; });
        EXPECT_GT(middle.size(), 10UL);
        EXPECT_LE(distanceFrom(middle, from, to), 1.5);
    }
}

TEST_F(CenterLine3DTest, goesRoundATorus)
{
    Picture<unsigned char> picture(Shape{61, 61, 15});
    forEachVoxel(picture.shape, [&](long x, long y, long z, long, long) {
        double const fromRing = std::hypot(std::hypot(x - 30, y - 30) - 22, z - 7);
        picture.at(x, y, z) = fromRing <= 4;
    });
    run(picture, QEL_BINARY);
    // A tree has no circle: the ring is cut somewhere, and the two ends meet there.
    Lines const runs = runsOf(lines);
    ASSERT_EQ(runs.size(), 1UL);
    EXPECT_NEAR(lengthOf(runs[0]), 2 * pi * 22, 20);
    EXPECT_LE((runs[0].front() - runs[0].back()).length(), 10);
    for (std::size_t i = 8; i + 8 < runs[0].size(); ++i)
        EXPECT_LE(std::hypot(std::hypot(runs[0][i][0] - 30, runs[0][i][1] - 30) - 22, runs[0][i][2] - 7), 1.6);
}

TEST_F(CenterLine3DTest, tiesABranchToTheLongestPathOfAT)
{
    Picture<unsigned char> picture(Shape{90, 60, 15});
    addTube(picture, {8, 8, 7}, {81, 8, 7}, 3);
    addTube(picture, {45, 8, 7}, {45, 36, 7}, 3);
    for (unsigned int const smoothing : {0U, 3U, 50U}) {
        CenterLineParameters parameters;
        parameters.smoothingIteration = smoothing;
        run(picture, QEL_BINARY, parameters);
        Lines const runs = runsOf(lines);
        ASSERT_EQ(runs.size(), 2UL);
        EXPECT_GE(std::fabs(runs[0].front()[0] - runs[0].back()[0]), 70);
        EXPECT_GE(runs[1].front()[1], 34); // from its free end to the junction
        // The very vertex of the first line, however it is smoothed.
        EXPECT_NE(std::find(runs[0].begin(), runs[0].end(), runs[1].back()), runs[0].end());
        EXPECT_NEAR(runs[1].back()[0], 45, 4);
        // A vertex more than the entries without the shared one.
        EXPECT_EQ(lines.getIndices().size(), lines.getCoords().size() + 1 + 2);
    }
}

TEST_F(CenterLine3DTest, findsTheThreeArmsOfAY)
{
    Point const centre{40, 40, 12};
    Point const ends[] = {{8, 12, 12}, {72, 12, 12}, {40, 74, 12}};
    Picture<unsigned char> picture(Shape{81, 84, 25});
    for (Point const& end : ends)
        addTube(picture, centre, end, 3.5);
    run(picture, QEL_BINARY);
    Lines const runs = runsOf(lines);
    ASSERT_EQ(runs.size(), 2UL);
    EXPECT_LE((runs[1].back() - centre).length(), 5);
    Point const tips[] = {runs[0].front(), runs[0].back(), runs[1].front()};
    for (Point const& end : ends)
        EXPECT_TRUE(
            std::any_of(std::begin(tips), std::end(tips), [&](Point const& tip) { return (tip - end).length() <= 5; }));
}

TEST_F(CenterLine3DTest, takesOnlyBranchesThatAreLongForTheirJunction)
{
    // A pipe of radius 4 with stumps of length 8 and 36 beyond its surface.
    Picture<unsigned char> picture(Shape{100, 66, 15});
    addTube(picture, {8, 7, 7}, {91, 7, 7}, 4);
    addTube(picture, {30, 7, 7}, {30, 19, 7}, 2);
    addTube(picture, {65, 7, 7}, {65, 47, 7}, 2);
    CenterLineParameters parameters;
    std::vector<std::size_t> numbers;
    for (double const sensibility : {1.0, 2.0, 7.0, 30.0}) {
        parameters.newBranchSensibility = sensibility;
        run(picture, QEL_BINARY, parameters);
        numbers.push_back(runsOf(lines).size());
    }
    EXPECT_GE(numbers[0], 3UL);
    EXPECT_EQ(numbers[1], 3UL);
    EXPECT_EQ(numbers[2], 2UL);
    EXPECT_EQ(numbers[3], 1UL);
}

TEST_F(CenterLine3DTest, takesAsManyBranchesAsAreWanted)
{
    Picture<unsigned char> picture(Shape{60, 21, 21});
    addTube(picture, {10, 10, 10}, {50, 10, 10}, 5);
    CenterLineParameters parameters;
    parameters.autoMode = false;
    std::vector<unsigned char> before(picture.voxels.size());
    for (unsigned int const number : {0U, 1U, 2U, 3U, 10U, 50U}) {
        parameters.numberOfBranches = number;
        run(picture, QEL_BINARY, parameters);
        EXPECT_EQ(runsOf(lines).size(), number);
        // More lines leave those that were there.
        auto const now = fromImage<unsigned char>(image).voxels;
        for (std::size_t i = 0; i < now.size(); ++i)
            ASSERT_LE(before[i], now[i]);
        before = now;
    }
    parameters.numberOfBranches = ~0U;
    run(picture, QEL_BINARY, parameters);
    // Every voxel of the object lies on a line then.
    EXPECT_TRUE(samePicture(picture, image));
}

// ---- Objects

TEST_F(CenterLine3DTest, measuresInCalibratedUnits)
{
    CenterLineParameters parameters;
    parameters.spacings = {0.5, 2, 3};
    parameters.origins = {100, -20, 7.5};
    parameters.smoothingIteration = 0;
    Picture<unsigned short> picture(Shape{60, 30, 17});
    addTube<unsigned short>(picture, {6, 8, 5}, {50, 8, 5}, 3, 300);
    addTube<unsigned short>(picture, {6, 20, 10}, {50, 20, 10}, 3, 2);
    run(picture, QEL_LABEL, parameters);
    Lines const runs = runsOf(lines);
    ASSERT_GE(runs.size(), 2UL);
    auto const result = fromImage<unsigned short>(image);
    std::set<std::size_t> marked;
    for (auto const& run : runs)
        for (Point const& p : run) {
            // Back to voxels, which the image has too.
            double const x = (p[0] - 100) / 0.5, y = (p[1] + 20) / 2, z = (p[2] - 7.5) / 3;
            EXPECT_EQ(result.at(long(x), long(y), long(z)), picture.at(long(x), long(y), long(z)));
            EXPECT_NE(result.at(long(x), long(y), long(z)), 0);
            marked.insert(result.index(long(x), long(y), long(z)));
        }
    for (std::size_t i = 0; i < result.voxels.size(); ++i)
        EXPECT_EQ(result.voxels[i] != 0, marked.count(i) == 1);
    // Labels come in their order: 2 first.
    EXPECT_EQ(runs[0][0][1], 20 * 2 - 20 + 2 * std::round((runs[0][0][1] + 20) / 2 - 20));
    EXPECT_GT(runs[0][0][1], 10);
}

TEST_F(CenterLine3DTest, givesEachLabelItsLines)
{
    Picture<long> picture(Shape{40, 30, 30});
    addTube(picture, {6, 6, 6}, {33, 6, 6}, 2.0, 3L);
    addTube(picture, {6, 22, 6}, {33, 22, 6}, 2.0, 1L << 60); // labels may be far apart
    addTube(picture, {6, 6, 22}, {33, 6, 22}, 2.0, 1L);
    addTube(picture, {6, 22, 22}, {33, 22, 22}, 2.0, -1L); // no label
    run(picture, QEL_LABEL);
    Lines const runs = runsOf(lines);
    ASSERT_EQ(runs.size(), 3UL);
    EXPECT_LE(distanceFrom(runs[0], {4, 6, 22}, {35, 6, 22}), 2);
    EXPECT_LE(distanceFrom(runs[1], {4, 6, 6}, {35, 6, 6}), 2);
    EXPECT_LE(distanceFrom(runs[2], {4, 22, 6}, {35, 22, 6}), 2);
}

TEST_F(CenterLine3DTest, takesEachLabelOfTouchingOnesThroughBoth)
{
    // One tube, half of it of either label: the lines of each run through all of it.
    Picture<unsigned char> picture(Shape{50, 15, 15});
    addTube<unsigned char>(picture, {6, 7, 7}, {43, 7, 7}, 3, 1);
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        if (picture.voxels[i] && i % 50 >= 25)
            picture.voxels[i] = 2;
    run(picture, QEL_LABEL);
    Lines const runs = runsOf(lines);
    ASSERT_EQ(runs.size(), 2UL);
    for (auto const& run : runs)
        EXPECT_GE(std::fabs(run.front()[0] - run.back()[0]), 30);
    // The lines of the second do not move those of the first.
    Picture<unsigned char> joined(picture);
    for (unsigned char& voxel : joined.voxels)
        voxel = voxel != 0;
    run(joined, QEL_LABEL);
    EXPECT_EQ(runsOf(lines)[0], runs[0]);
}

TEST_F(CenterLine3DTest, takesTheFirstObjectOfABinaryImage)
{
    Picture<signed char> picture(Shape{40, 30, 15});
    addTube<signed char>(picture, {6, 22, 7}, {33, 22, 7}, 3, 1);
    addTube<signed char>(picture, {6, 7, 7}, {33, 7, 7}, 3, -1); // its first voxel comes first
    run(picture, QEL_BINARY);
    Lines const runs = runsOf(lines);
    ASSERT_EQ(runs.size(), 1UL);
    EXPECT_LE(distanceFrom(runs[0], {3, 7, 7}, {36, 7, 7}), 3);
}

TEST_F(CenterLine3DTest, leavesOutTheOuterLayer)
{
    Picture<unsigned char> picture(Shape{40, 11, 11}, 1);
    run(picture, QEL_BINARY);
    auto const result = fromImage<unsigned char>(image);
    std::size_t marked = 0;
    forEachVoxel(result.shape, [&](long x, long y, long z, long, long) {
        bool const isFace = x == 0 || y == 0 || z == 0 || x == 39 || y == 10 || z == 10;
        EXPECT_TRUE(!isFace || result.at(x, y, z) == 0);
        marked += result.at(x, y, z);
    });
    EXPECT_GE(marked, 30UL);
    // What lies in that layer alone has no line, and the label above it has.
    Picture<unsigned char> labels(Shape{40, 11, 11});
    addTube<unsigned char>(labels, {5, 5, 5}, {34, 5, 5}, 2, 2);
    for (unsigned long x = 0; x < 40; ++x)
        labels.at(x, 0, 0) = 1;
    run(labels, QEL_LABEL);
    EXPECT_EQ(runsOf(lines).size(), 1UL);
}

TEST_F(CenterLine3DTest, isEmptyWithoutAnObject)
{
    container::Vector<Point> coords(2);
    container::Vector<unsigned long> indices(2);
    for (Interpretations const interpretation : {QEL_BINARY, QEL_LABEL})
        for (Shape const& shape : {Shape{8, 8, 8}, Shape{1, 1, 1}, Shape{2, 9, 9}, Shape{9, 2, 9}, Shape{9, 9, 2},
                                   Shape{7, 7, 1}, Shape{0, 0, 0}, Shape{0, 5, 5}, Shape{5, 0, 5}, Shape{5, 5, 0}}) {
            SCOPED_TRACE(testing::Message() << shape);
            lines.setCoords(coords); // from an earlier run
            lines.setIndices(indices);
            bool const isThin = std::min({shape.columns, shape.rows, shape.plans}) < 3;
            Picture<unsigned char> const picture(shape, isThin);
            run(picture, interpretation);
            EXPECT_TRUE(lines == LineSet3D());
            EXPECT_TRUE(samePicture(Picture<unsigned char>(shape), image));
        }
}

TEST_F(CenterLine3DTest, hasNoLineInASingleVoxel)
{
    for (bool const autoMode : {true, false}) {
        CenterLineParameters parameters;
        parameters.autoMode = autoMode;
        Picture<unsigned char> picture(Shape{9, 9, 9});
        picture.at(2, 2, 2) = 1;
        picture.at(6, 6, 6) = 2; // and two voxels have one
        picture.at(7, 7, 7) = 2;
        run(picture, QEL_LABEL, parameters);
        Lines const runs = runsOf(lines);
        ASSERT_EQ(runs.size(), 1UL);
        EXPECT_EQ(runs[0].size(), 2UL);
        EXPECT_EQ(fromImage<unsigned char>(image).at(2, 2, 2), 0);
    }
}

TEST_F(CenterLine3DTest, smoothesBetweenTheEnds)
{
    auto const picture = scene<unsigned char>(Shape{31, 25, 19}, 7, 1);
    CenterLineParameters parameters;
    parameters.smoothingIteration = 0;
    run(picture, QEL_BINARY, parameters);
    LineSet3D const rough(lines);
    parameters.smoothingIteration = 1;
    run(picture, QEL_BINARY, parameters);
    ASSERT_EQ(indicesOf(lines), indicesOf(rough));
    Lines const before = runsOf(rough);
    Lines const after = runsOf(lines);
    EXPECT_EQ(after[0].front(), before[0].front());
    EXPECT_EQ(after[0].back(), before[0].back());
    for (std::size_t i = 1; i + 1 < before[0].size(); ++i)
        EXPECT_EQ(after[0][i], (before[0][i - 1] + before[0][i] + before[0][i + 1]) / 3.0);
    // However often: a line becomes straight, and that is an end of it.
    parameters.smoothingIteration = ~0U;
    Picture<unsigned char> small(Shape{12, 7, 7});
    addTube<unsigned char>(small, {2, 3, 3}, {9, 3, 3}, 1.5);
    run(small, QEL_BINARY, parameters);
    auto const straight = runsOf(lines).at(0);
    for (std::size_t i = 1; i + 1 < straight.size(); ++i)
        EXPECT_LE((straight[i - 1] + straight[i + 1] - straight[i] * 2.0).length(), 1e-6);
}

// ---- Runs

TEST_F(CenterLine3DTest, endsWithSpacingsThatMakeNoSense)
{
    auto const picture = scene<unsigned char>(Shape{19, 18, 9}, 8, 3);
    double const nan = std::nan("");
    for (std::array<double, 3> const& spacings : {std::array<double, 3>{0, 0, 0},
                                                  {0, 1, 1},
                                                  {1, 0, 1},
                                                  {1, 1, 0},
                                                  {-1, -1, -1},
                                                  {INFINITY, 1, 1},
                                                  {nan, 1, 1},
                                                  {1, nan, 1},
                                                  {1, 1, nan},
                                                  {nan, nan, nan},
                                                  {1e300, 1e300, 1e300},
                                                  {1e-300, 1, 1e-30}})
        for (bool const autoMode : {true, false}) {
            HostImage in(picture);
            in.setInterpretation(QEL_LABEL);
            CenterLineParameters parameters;
            parameters.spacings = spacings;
            parameters.autoMode = autoMode;
            parameters.numberOfBranches = 1000;
            calibrate(in, parameters);
            set(parameters);
            algorithm->input = &in;
            algorithm->outputImage = &image;
            algorithm->outputLineSet = &lines;
            algorithm->run();
            for (unsigned long index : lines.getIndices())
                EXPECT_TRUE(index == LineSet3D::stop || index < lines.getCoords().size());
        }
}

TEST_F(CenterLine3DTest, endsWithOriginsThatAreNoNumbers)
{
    auto const picture = scene<unsigned char>(Shape{19, 18, 9}, 8, 3);
    run(picture, QEL_LABEL);
    std::vector<unsigned long> const indices = indicesOf(lines);
    ASSERT_FALSE(indices.empty());
    for (double const bad : {std::nan(""), -std::numeric_limits<double>::infinity()}) {
        HostImage in(picture);
        in.setInterpretation(QEL_LABEL);
        CenterLineParameters parameters;
        parameters.origins = {bad, 1, 2};
        parameters.smoothingIteration = std::numeric_limits<unsigned int>::max(); // for minutes, if all were done
        calibrate(in, parameters);
        set(parameters);
        algorithm->input = &in;
        algorithm->outputImage = &image;
        algorithm->outputLineSet = &lines;
        algorithm->run();
        EXPECT_EQ(indicesOf(lines), indices);
        for (Point const& p : lines.getCoords()) {
            EXPECT_FALSE(std::isfinite(p[0]));
            EXPECT_TRUE(std::isfinite(p[1]) && std::isfinite(p[2]));
        }
    }
}

TEST_F(CenterLine3DTest, takesManyLabelsInOnePass)
{
    // A rod for each label: time grows with the voxels, not with their product with the labels.
    Picture<unsigned short> picture(Shape{120, 120, 60});
    unsigned short label = 0;
    for (unsigned long z = 2; z + 4 < 60; z += 6)
        for (unsigned long y = 2; y < 118; y += 3)
            for (unsigned long x = 2; x < 118; x += 3) {
                ++label;
                for (unsigned long i = 0; i < 4; ++i)
                    picture.at(x, y, z + i) = label;
            }
    run(picture, QEL_LABEL);
    EXPECT_EQ(runsOf(lines).size(), label);
    EXPECT_EQ(label, 13689);
    EXPECT_TRUE(samePicture(picture, image));
}

TEST_F(CenterLine3DTest, progressesAndCanBeCancelled)
{
    auto const picture = scene<unsigned char>(Shape{64, 64, 64}, 3, 5);
    for (unsigned long stopAfter : {0UL, 1UL, 100UL, 5000UL, 9000UL, ~0UL}) {
        ObservedImage in(picture);
        in.setInterpretation(QEL_LABEL);
        calibrate(in, {});
        Poller poller;
        std::atomic<unsigned long> rows{0};
        in.onRead = [&] {
            if (rows++ >= stopAfter) {
                poller.wantsToCancel = true;
                for (int i = 0; i < 1000 && !poller.hasCancelled; ++i)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        };
        HostImage untouched(QEL_UINT8, {1, 1, 1});
        algorithm->input = &in;
        algorithm->outputImage = &untouched;
        algorithm->outputLineSet = &lines;
        algorithm->run(&poller);
        EXPECT_TRUE(poller.isSteady);
        EXPECT_TRUE(isAtRest(*algorithm));
        if (poller.hasCancelled) {
            EXPECT_TRUE(lines == LineSet3D());
            EXPECT_EQ(untouched.sizes(), HostImage(QEL_UINT8, {1, 1, 1}).sizes());
        } else {
            EXPECT_EQ(poller.last, 100);
            EXPECT_EQ(untouched.sizes(), in.sizes());
        }
    }
}

TEST_F(CenterLine3DTest, keepsTheLinesOfObjectsThatWereDoneBeforeItWasCancelled)
{
    // A short straight rod, and a long one that goes to and fro: it takes a minute to become straight.
    Picture<unsigned char> picture(Shape{100, 50, 5});
    for (unsigned long column = 2; column < 10; ++column)
        picture.at(column, 46, 2) = 1;
    for (unsigned long row = 2; row <= 42; ++row)
        for (unsigned long column = 2; column < 98; ++column)
            if (row % 4 == 2 || column == ((row - 2) / 4 % 2 ? 2UL : 97UL))
                picture.at(column, row, 2) = 2;
    CenterLineParameters parameters;
    run(picture, QEL_LABEL, parameters);
    Lines const all = runsOf(lines);
    ASSERT_EQ(all.size(), 2UL);
    ASSERT_EQ(all[0].size(), 8UL);
    ASSERT_GE(all[1].size(), 1000UL);

    // Cancels when one of two objects is done, in the seventh of eight steps.
    class Impatient final : public algorithms::InteractionInterface
    {
    public:
        void updateProgress(double percent) override { last = percent; }
        bool isCancelRequested() override { return last > 80; }
        unsigned short getProgressPeriod() override { return 1; }
        unsigned short getCancelPeriod() override { return 1; }

        std::atomic<double> last = 0;
    };
    HostImage in(picture);
    in.setInterpretation(QEL_LABEL);
    calibrate(in, parameters);
    HostImage untouched(QEL_UINT8, {1, 1, 1});
    algorithm->input = &in;
    algorithm->outputImage = &untouched;
    algorithm->smoothingIteration = std::numeric_limits<unsigned int>::max();
    Impatient impatient;
    algorithm->run(&impatient);
    EXPECT_TRUE(isAtRest(*algorithm));
    EXPECT_EQ(runsOf(lines), Lines({all[0]}));
    EXPECT_EQ(lines.getCoords().size(), 8UL);
    EXPECT_EQ(untouched.sizes(), HostImage(QEL_UINT8, {1, 1, 1}).sizes());
}

TEST_F(CenterLine3DTest, reportsImagesThatFail)
{
    auto const picture = scene<short>(Shape{21, 20, 9}, 5, 2);
    for (Interpretations const interpretation : {QEL_BINARY, QEL_LABEL})
        for (int which = 0; which < 2; ++which)
            for (int operation = 0; operation < NUM_OF_OPERATIONS; ++operation)
                for (bool const refuses : {false, true}) {
                    HostImage in(picture);
                    in.setInterpretation(interpretation);
                    calibrate(in, {});
                    HostImage out;
                    algorithm->input = &in;
                    algorithm->outputImage = &out;
                    algorithm->outputLineSet = &lines;
                    in.forgetCalls();
                    algorithm->run();
                    HostImage& bad = which ? out : in;
                    unsigned long const calls = bad.callsOf(static_cast<Operation>(operation));
                    if (calls == 0 || (refuses && operation != READ_ROW && operation != WRITE_ROW))
                        continue;
                    for (unsigned long const after : {0UL, calls / 2, calls - 1}) {
                        HostImage other;
                        algorithm->outputImage = which ? &other : &out;
                        HostImage& spoilt = which ? other : in;
                        spoilt.forgetCalls();
                        if (refuses)
                            spoilt.failOn(static_cast<Operation>(operation), after);
                        else
                            spoilt.throwOn(static_cast<Operation>(operation), after);
                        EXPECT_THROW(algorithm->run(), UnexpectedError);
                        EXPECT_TRUE(isAtRest(*algorithm));
                        spoilt.behave();
                        algorithm->run();
                    }
                }
}

TEST_F(CenterLine3DTest, refusesWrongParametersInTheRulesWords)
{
    HostImage in(QEL_UINT8, {5, 5, 5});
    in.setInterpretation(QEL_BINARY);
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, name);
    };
    EXPECT_QEL_WHAT(algorithm->run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    algorithm->input = &in;
    EXPECT_QEL_WHAT(algorithm->run(), RuleException, text("The parameter \"outputImage\" must be set.", "outputImage"));
    algorithm->outputImage = &in;
    EXPECT_THROW(algorithm->run(), RuleException);
    algorithm->outputImage = &image;
    EXPECT_QEL_WHAT(algorithm->run(), RuleException,
                    text("The parameter \"outputLineSet\" must be set.", "outputLineSet"));
    algorithm->outputLineSet = &lines;
    algorithm->run();

    algorithm->newBranchSensibility = 0.999;
    EXPECT_QEL_WHAT(algorithm->run(), RuleException,
                    text("The parameter \"newBranchSensibility\" (value=0.999) must be greater than or equal to <1>.",
                         "newBranchSensibility"));
    algorithm->newBranchSensibility = 1;
    algorithm->euclideanDistanceMapSigmaSmoothing = 0;
    EXPECT_QEL_WHAT(
        algorithm->run(), RuleException,
        text("The parameter \"euclideanDistanceMapSigmaSmoothing\" (value=0) must be greater than or equal to <0.01>.",
             "euclideanDistanceMapSigmaSmoothing"));
    algorithm->euclideanDistanceMapSigmaSmoothing = 0.01;
    algorithm->run();

    in.setInterpretation(QEL_VALUE);
    EXPECT_THROW(algorithm->run(), RuleException);
    for (Shape const& shape : {Shape{5, 5, 5, 2, 1}, Shape{5, 5, 5, 1, 2}}) {
        HostImage series(QEL_UINT8, shape);
        series.setInterpretation(QEL_BINARY);
        algorithm->input = &series;
        EXPECT_THROW(algorithm->run(), RuleException);
    }
    for (VoxelTypes const type : {QEL_FLOAT32, QEL_FLOAT64}) {
        HostImage real(type, {5, 5, 5});
        real.setInterpretation(QEL_LABEL);
        algorithm->input = &real;
        EXPECT_THROW(algorithm->run(), RuleException);
    }
}

TEST_F(CenterLine3DTest, refusesAKernelThatNoMemoryHolds)
{
    HostImage in(QEL_UINT8, {5, 5, 5});
    in.setInterpretation(QEL_BINARY);
    algorithm->input = &in;
    algorithm->outputImage = &image;
    algorithm->outputLineSet = &lines;
    for (auto const& [sigma, digits] : std::vector<std::pair<double, std::string>>{
             {1e5, "100000"}, {1e300, "1e+300"}, {INFINITY, "inf"}, {std::nan(""), "nan"}}) {
        algorithm->euclideanDistanceMapSigmaSmoothing = sigma;
        EXPECT_QEL_WHAT(algorithm->run(), UnexpectedError,
                        errorText("The available memory does not hold a kernel of deviation " + digits + ".", name));
    }
}

} // namespace
} // namespace qel::test
