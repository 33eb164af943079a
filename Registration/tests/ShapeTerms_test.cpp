#include "Core/tests/Support/Support.h"
#include "Registration/private/ShapeBasedMatching/Pyramid.h"
#include "Registration/private/ShapeBasedMatching/ShapeMatcher.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace qel;
using namespace qel::registration;
using namespace qel::test;

namespace {

using Point = math::Vector2<double>;

registration::Shape<double> randomShape(std::size_t count, double reach, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> draw(-reach, reach);
    registration::Shape<double> shape;
    for (std::size_t i = 0; i < count; ++i) {
        shape.points.emplace_back(draw(generator), draw(generator));
        shape.gradients.emplace_back(draw(generator), draw(generator));
    }
    return shape;
}

} // namespace

TEST(Directions, areExactForQuarterTurns)
{
    for (int turn = -9; turn <= 9; ++turn) {
        Direction const direction = Direction::ofDegrees(90.0 * turn);
        int const quarter = ((turn % 4) + 4) % 4;
        EXPECT_EQ(direction.cosine, quarter == 0 ? 1 : quarter == 2 ? -1 : 0) << turn;
        EXPECT_EQ(direction.sine, quarter == 1 ? 1 : quarter == 3 ? -1 : 0) << turn;
    }
    EXPECT_EQ(Direction::ofDegrees(30).cosine, std::cos(30 * (M_PI / 180)));
    EXPECT_EQ(Direction::ofDegrees(30).sine, std::sin(30 * (M_PI / 180)));
}

TEST(Shapes, turnAroundTheirCenterAndScaleTheirPointsAlone)
{
    registration::Shape<double> shape;
    shape.points = {Point(2, 1), Point(4, 3)};
    shape.gradients = {Point(5, 0), Point(1, 2)};
    Point const center = details::computeCenter(shape);
    EXPECT_EQ(center, Point(3, 2));
    details::transformToCenter(shape, center, 90, 2);
    EXPECT_EQ(shape.points[0], Point(2, -2));
    EXPECT_EQ(shape.points[1], Point(-2, 2));
    EXPECT_EQ(shape.gradients[0], Point(0, 5));
    EXPECT_EQ(shape.gradients[1], Point(-2, 1));
    EXPECT_TRUE(std::isnan(details::computeCenter(registration::Shape<double>())[0]));
}

TEST(ShapeTermsTest, holdEachOffsetOnceWithItsSum)
{
    // Dense ones go through a grid, sparse ones are sorted.
    for (auto const& [count, reach] :
         {std::pair<std::size_t, double>(200, 6), std::pair<std::size_t, double>(20, 900)}) {
        registration::Shape<double> const shape = randomShape(count, reach, 1);
        Window const window{0, 2000, 0, 2000, 2000, 2000};
        ShapeTerms terms;
        terms.assign(shape, window, 10000, false);
        std::map<long, Point> expected;
        for (std::size_t i = 0; i < count; ++i)
            expected[long(shape.points[i][1]) * 10000 + long(shape.points[i][0])] += shape.gradients[i];
        ShapeTerms::List const list = terms.at(1000, 0, 2000);
        ASSERT_EQ(list.count, expected.size());
        for (std::size_t i = 0; i < list.count; ++i) {
            ASSERT_TRUE(expected.count(list.terms[i].offset));
            Point const& sum = expected[list.terms[i].offset];
            EXPECT_EQ(list.terms[i].x, sum[0]);
            EXPECT_EQ(list.terms[i].y, sum[1]);
            EXPECT_EQ(list.terms[i].weight, sum.length());
            expected.erase(list.terms[i].offset);
        }
    }
}

TEST(ShapeTermsTest, cutPointsTowardsZero)
{
    registration::Shape<double> shape;
    shape.points = {Point(-0.9, 0.9), Point(1.99, -1.01)};
    shape.gradients = {Point(1, 0), Point(0, 1)};
    ShapeTerms terms;
    terms.assign(shape, Window{0, 9, 0, 9, 9, 9}, 100, false);
    ShapeTerms::List const list = terms.at(4, 0, 9);
    ASSERT_EQ(list.count, 2u);
    EXPECT_EQ(std::min(list.terms[0].offset, list.terms[1].offset), -99);
    EXPECT_EQ(std::max(list.terms[0].offset, list.terms[1].offset), 0);
}

TEST(ShapeTermsTest, leaveOutWhatNoPositionMeets)
{
    registration::Shape<double> shape;
    // The window has the columns 10 to 19 and the rows 5 to 7 of 40 x 30 voxels.
    for (Point const& point : {Point(-19, 0), Point(-20, 0), Point(29, 0), Point(30, 0), Point(0, -7), Point(0, -8),
                               Point(0, 24), Point(0, 25)}) {
        shape.points.push_back(point);
        shape.gradients.emplace_back(1, 1);
    }
    ShapeTerms terms;
    terms.assign(shape, Window{10, 20, 5, 8, 40, 30}, 1000, false);
    auto const offsets = [&](long row) {
        ShapeTerms::List const list = terms.at(row, 0, 30);
        std::vector<long> all;
        for (std::size_t i = 0; i < list.count; ++i)
            all.push_back(list.terms[i].offset);
        std::sort(all.begin(), all.end());
        return all;
    };
    EXPECT_EQ(offsets(5), std::vector<long>({-19, 29, 24000}));
    EXPECT_EQ(offsets(6), std::vector<long>({-19, 29}));
    EXPECT_EQ(offsets(7), std::vector<long>({-7000, -19, 29}));
}

TEST(ShapeTermsTest, leaveOutGradientsWithoutALengthUnlessTold)
{
    registration::Shape<double> shape;
    shape.points = {Point(0, 0), Point(1, 0)};
    shape.gradients = {Point(0, 0), Point(0, 1)};
    Window const window{0, 9, 0, 9, 9, 9};
    ShapeTerms terms;
    terms.assign(shape, window, 100, false);
    EXPECT_EQ(terms.at(4, 0, 9).count, 1u);
    terms.assign(shape, window, 100, true);
    EXPECT_EQ(terms.at(4, 0, 9).count, 2u);
}

TEST(ShapeTermsTest, tellWhatTheTermsBehindCanAdd)
{
    ShapeTerms terms;
    terms.assign(randomShape(300, 9, 2), Window{0, 99, 0, 99, 99, 99}, 1000, false);
    for (long const row : {50l, 3l}) {
        ShapeTerms::List const list = terms.at(row, 0, 99);
        ASSERT_GT(list.count, termsAtOnce);
        for (std::size_t group = 0; group * termsAtOnce < list.count; ++group) {
            double rest = 0;
            for (std::size_t i = (group + 1) * termsAtOnce; i < list.count; ++i)
                rest += list.terms[i].weight;
            EXPECT_NEAR(list.reachable[group], rest, 1e-9);
        }
    }
}

TEST(ScoreKernel, addsTheTermsOfEachPosition)
{
    std::mt19937 generator(3);
    std::uniform_real_distribution<double> draw(-1, 1);
    std::vector<double> x(400), y(400);
    for (std::size_t i = 0; i < 400; ++i) {
        x[i] = draw(generator) / 2;
        y[i] = draw(generator) / 2;
    }
    for (std::size_t count : {0, 1, 31, 32, 33, 100}) {
        std::vector<Term> terms;
        for (std::size_t i = 0; i < count; ++i)
            terms.push_back({long(generator() % 300) - 100, draw(generator), draw(generator), 0});
        std::vector<double> reachable((count + termsAtOnce - 1) / termsAtOnce);
        for (Term& term : terms)
            term.weight = std::hypot(term.x, term.y);
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t group = 0; group < i / termsAtOnce; ++group)
                reachable[group] += terms[i].weight;
        double scores[positionsAtOnce];
        double expected[positionsAtOnce] = {};
        for (std::size_t position = 0; position < positionsAtOnce; ++position)
            for (Term const& term : terms)
                expected[position] +=
                    x[150 + position + term.offset] * term.x + y[150 + position + term.offset] * term.y;
        double const lowest = std::numeric_limits<double>::lowest();
        for (bool const absolute : {false, true}) {
            ASSERT_TRUE(
                scorePositions(&x[150], &y[150], terms.data(), count, reachable.data(), lowest, absolute, scores));
            for (std::size_t position = 0; position < positionsAtOnce; ++position)
                EXPECT_EQ(scores[position], expected[position]);
            // The best is never given up; what is far below is.
            double best = lowest;
            for (double const score : expected)
                best = std::max(best, absolute ? std::abs(score) : score);
            EXPECT_TRUE(
                scorePositions(&x[150], &y[150], terms.data(), count, reachable.data(), best - 1e-9, absolute, scores));
            if (count > 0) {
                EXPECT_FALSE(scorePositions(&x[150], &y[150], terms.data(), count, reachable.data(), best + 1e-9,
                                            absolute, scores));
            }
        }
    }
}

TEST(ScoreKernel, givesUpNoPositionThatIsNoNumber)
{
    std::vector<double> x(40, std::nan("")), y(40, 0);
    Term const term{0, 1, 0, 1};
    double const reachable = 0;
    double scores[positionsAtOnce];
    EXPECT_TRUE(scorePositions(x.data(), y.data(), &term, 1, &reachable, 100, false, scores));
    EXPECT_TRUE(std::isnan(scores[0]));
}

TEST(PoseRanges, countByRepeatedAddition)
{
    PoseRange range({0.5, 0}, {1.8, 360}, {0.1, 10});
    std::vector<Pose> all;
    for (auto poses = range.next(100); !poses.empty(); poses = range.next(100))
        all.insert(all.end(), poses.begin(), poses.end());
    EXPECT_EQ(all.size(), range.size());
    std::size_t i = 0;
    for (double scale = 0.5; scale <= 1.8; scale += 0.1)
        for (double rotation = 0; rotation <= 360; rotation += 10, ++i) {
            ASSERT_LT(i, all.size());
            EXPECT_EQ(all[i].scale, scale);
            EXPECT_EQ(all[i].rotation, rotation);
        }
    EXPECT_EQ(i, all.size());
    EXPECT_EQ(PoseRange({1, 5}, {1, 5}, {10, 360}).next(7).size(), 1u);
}

TEST(Pyramids, halveTheImageLevelByLevel)
{
    Picture<short> const picture = randomPicture<short>({13, 6, 2}, 4);
    auto const base = toImage(picture);
    Pyramid pyramid(&base, 3, miscellaneous::MAX);
    EXPECT_EQ(pyramid.get(0), &base);
    EXPECT_TRUE(pyramid.run());
    auto const first = fromImage<short>(*pyramid.get(1));
    EXPECT_EQ(first.shape, (test::Shape{7, 3, 2}));
    forEachVoxel(first.shape, [&](auto x, auto y, auto p, auto, auto) {
        short largest = picture.at(2 * x, 2 * y, p);
        for (auto const& [a, b] : {std::pair(1, 0), std::pair(0, 1), std::pair(1, 1)})
            largest = std::max(largest, picture.at(std::min(2 * x + a, 12ul), 2 * y + b, p));
        EXPECT_EQ(first.at(x, y, p), largest);
    });
    EXPECT_EQ(shapeOf(*pyramid.get(2)), (test::Shape{4, 2, 2}));
    EXPECT_QEL_THROW(pyramid.get(3), BadIndex, "invalid level of pyramid");
}

TEST(Pyramids, mayHaveOneLevelOrNone)
{
    auto const base = toImage(Picture<short>(test::Shape{2, 2}));
    Pyramid one(&base, 1, miscellaneous::MEAN);
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.get(0), &base);
    EXPECT_QEL_THROW(one.get(1), BadIndex, "invalid level of pyramid");
    Pyramid none(&base, 0, miscellaneous::MEAN);
    EXPECT_TRUE(none.run());
    EXPECT_QEL_THROW(none.get(0), BadIndex, "invalid level of pyramid");
}
