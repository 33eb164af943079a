#include "Core/tests/Support/Support.h"
#include "Registration/private/Estimators2D.h"
#include "Registration/private/Estimators3D.h"
#include "Registration/private/RansacEstimator.h"
#include "Registration/tests/PointSets.h"

#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/RigidTransformation3D.h>
#include <qel/geometry/Translation2D.h>
#include <qel/geometry/Translation3D.h>

#include <Eigen/Geometry>
#include <Eigen/SVD>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>

using namespace qel;
using namespace qel::registration;
using namespace qel::test;
using namespace qel::geometry;

namespace {

constexpr char const* noPoints = "Bad points set the dimension is 0";

template <class Estimator>
typename Estimator::Transformation estimated(std::vector<typename Estimator::Point> const& model,
                                             std::vector<typename Estimator::Point> const& data)
{
    typename Estimator::Transformation result;
    Estimator::estimate(model.data(), model.data() + model.size(), data.data(), result);
    return result;
}

// ---- A transformation of each type, with far from trivial parameters.

template <class Transformation> Transformation planted();
template <> Translation2D planted() { return Translation2D(12.5, -40); }
template <> RigidTransformation2D planted() { return RigidTransformation2D(12.5, -40, 2.1); }
template <> AffineTransformation2D planted() { return AffineTransformation2D(12.5, -40, 1.5, -0.3, 0.7, 0.8); }
template <> ProjectiveTransformation2D planted()
{
    return ProjectiveTransformation2D(12.5, -40, 1.5, -0.3, 0.7, 0.8, 0.002, -0.001);
}
template <> PolynomialOrder2Transformation2D planted()
{
    double const p[] = {5, 1.1, -0.2, 0.002, -0.001, 0.003, -7, 0.1, 0.9, 0.001, 0.004, -0.002};
    return PolynomialOrder2Transformation2D(p);
}
template <> PolynomialOrder3Transformation2D planted()
{
    double const p[] = {5,  1.1, -0.2, 0.002, -0.001, 0.003,  1e-5,  -2e-5, 3e-5, 1e-5,
                        -7, 0.1, 0.9,  0.001, 0.004,  -0.002, -3e-5, 1e-5,  2e-5, -1e-5};
    return PolynomialOrder3Transformation2D(p);
}
template <> Translation3D planted() { return Translation3D(12.5, -40, 7); }
template <> RigidTransformation3D planted()
{
    return RigidTransformation3D(math::Vector3<double>(12.5, -40, 7), 40, -75, 160);
}
template <> AffineTransformation3D planted()
{
    return AffineTransformation3D(math::Vector3<double>(12.5, -40, 7),
                                  math::Matrix3<double>(1.5, -0.3, 0.1, 0.7, 0.8, -0.4, 0.2, 0.6, -1.1));
}

template <class Estimator> class Estimators : public testing::Test
{};

} // namespace

using All = testing::Types<Translation2DEstimator, Rigid2DEstimator, Affine2DEstimator,
                           Projective2DEstimatorByKernelEstimation, Polynomial2DOrder2Estimator,
                           Polynomial2DOrder3Estimator, Translation3DEstimator, Rigid3DEstimator, Affine3DEstimator>;
TYPED_TEST_SUITE(Estimators, All);

TYPED_TEST(Estimators, findAPlantedTransformation)
{
    using Point = typename TypeParam::Point;
    auto const transformation = planted<typename TypeParam::Transformation>();
    for (unsigned seed = 1; seed <= 20; ++seed) {
        for (std::size_t const count : {std::size_t(12), std::size_t(200)}) {
            auto const model = randomPoints<Point>(count, 50, seed);
            auto const data = images(transformation, model);
            auto const result = estimated<TypeParam>(model, data);
            EXPECT_LT(largestDistance(images(result, model), data), 1e-8) << "seed " << seed << ", " << count;
        }
    }
}

TYPED_TEST(Estimators, findAPlantedTransformationFromTheSmallestSample)
{
    using Point = typename TypeParam::Point;
    auto const transformation = planted<typename TypeParam::Transformation>();
    RobustSettings const settings{TypeParam::dimension, TypeParam::numOfParameters, 0.2, 0.99};
    for (unsigned seed = 1; seed <= 20; ++seed) {
        auto const model = randomPoints<Point>(settings.sampleSize(), 50, seed);
        auto const data = images(transformation, model);
        EXPECT_LT(largestDistance(images(estimated<TypeParam>(model, data), model), data), 1e-5) << "seed " << seed;
    }
}

TYPED_TEST(Estimators, refuseEmptyRanges)
{
    typename TypeParam::Transformation result;
    EXPECT_QEL_THROW(TypeParam::estimate(nullptr, nullptr, nullptr, result), RuntimeError, noPoints);
    EXPECT_QEL_THROW(RansacEstimator<TypeParam>::robustEstimate(nullptr, nullptr, nullptr, result, 0.2, 0.99),
                     RuntimeError, noPoints);
}

TYPED_TEST(Estimators, carryOnePointOntoItsTargetOrRefuse)
{
    using Point = typename TypeParam::Point;
    std::vector<Point> const model = {randomPoints<Point>(1, 5, 3)};
    std::vector<Point> const data = {randomPoints<Point>(1, 5, 4)};
    if (std::is_same_v<TypeParam, Projective2DEstimatorByKernelEstimation> ||
        std::is_same_v<TypeParam, Rigid2DEstimator>)
        return; // have their own tests
    EXPECT_LT(largestDistance(images(estimated<TypeParam>(model, data), model), data), 1e-12);
}

TYPED_TEST(Estimators, needTheFewestPointsForARobustEstimation)
{
    using Point = typename TypeParam::Point;
    std::size_t fewest = 0;
    while (TypeParam::dimension * fewest < 2 * TypeParam::numOfParameters + 1)
        ++fewest;
    auto const transformation = planted<typename TypeParam::Transformation>();
    auto const model = randomPoints<Point>(fewest, 50, 8);
    auto const data = images(transformation, model);
    typename TypeParam::Transformation result;
    EXPECT_QEL_THROW(RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + fewest - 1, data.data(),
                                                                result, 0.2, 0.99),
                     RuntimeError, " insufficient number of points. N=2*minNumOfPoint+1 points are needed.");
    RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + fewest, data.data(), result, 0.2, 0.99);
    EXPECT_LT(largestDistance(images(result, model), data), 1e-6);
}

// Between 3 outliers in 10 that are far off, and the rest with noise of a hundredth, the result is near to the planted
// one.
TYPED_TEST(Estimators, areRobustAgainstThirtyPercentOfOutliers)
{
    using Point = typename TypeParam::Point;
    auto const transformation = planted<typename TypeParam::Transformation>();
    int const numOfSets = TypeParam::numOfParameters == 20 ? 20 : 100; // those take longest
    for (int seed = 1; seed <= numOfSets; ++seed) {
        std::size_t const size = 100;
        auto const model = randomPoints<Point>(size, 50, seed);
        auto const noise = randomPoints<Point>(size, 0.01, seed + 1000);
        auto const errors = randomPoints<Point>(size, 300, seed + 2000);
        auto const exact = images(transformation, model);
        auto data = exact;
        std::vector<Point> goodModel, goodData;
        for (std::size_t i = 0; i < size; ++i) {
            data[i] += i % 10 < 3 ? errors[i] : noise[i];
            if (i % 10 >= 3) {
                goodModel.push_back(model[i]);
                goodData.push_back(exact[i]);
            }
        }
        typename TypeParam::Transformation result;
        EXPECT_TRUE(RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + size, data.data(), result,
                                                               0.3, 0.99));
        EXPECT_LT(largestDistance(images(result, goodModel), goodData), 0.1) << "seed " << seed;
    }
}

// The search as it is told: sets of indices, sorted residuals, no shortcut.
TYPED_TEST(Estimators, searchAsTheyAreTold)
{
    using Point = typename TypeParam::Point;
    auto const transformation = planted<typename TypeParam::Transformation>();
    for (std::size_t const size : {std::size_t(30), std::size_t(31)}) {
        for (auto const& [ratio, confidence] : {std::pair(0.1, 0.9), std::pair(0.35, 0.95)}) {
            auto const model = randomPoints<Point>(size, 50, 5);
            auto data = images(transformation, model);
            auto const noise = randomPoints<Point>(size, 1, 6);
            for (std::size_t i = 0; i < size; ++i)
                data[i] += noise[i] * (i % 7 == 0 ? 50.0 : 0.1);

            std::size_t const s = (TypeParam::numOfParameters + TypeParam::dimension - 1) / TypeParam::dimension;
            auto const T =
                static_cast<unsigned>(std::log10(1 - confidence) / std::log10(1 - std::pow(1 - ratio, s)) + 0.5);
            boost::random::mt19937 generator(5489);
            boost::random::uniform_int_distribution<int> distribution(0, static_cast<int>(size) - 1);
            auto const median = [](std::vector<double> values) {
                std::sort(values.begin(), values.end());
                std::size_t const n = values.size();
                return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
            };
            double bestMedian = 1.7976931348623157e308;
            std::vector<double> best;
            for (unsigned success = 0; success < 10 * T; ++success) {
                std::set<int> sample;
                while (sample.size() < s)
                    sample.insert(distribution(generator));
                std::vector<Point> from, to;
                for (int const index : sample) {
                    from.push_back(model[index]);
                    to.push_back(data[index]);
                }
                auto const mapped = images(estimated<TypeParam>(from, to), model);
                std::vector<double> residuals;
                for (std::size_t i = 0; i < size; ++i) {
                    double largest = 0;
                    for (unsigned axis = 0; axis < Point::dim(); ++axis)
                        largest = std::max(largest, std::abs(data[i][axis] - mapped[i][axis]));
                    residuals.push_back(largest);
                }
                if (median(residuals) < bestMedian) {
                    bestMedian = median(residuals);
                    best = residuals;
                }
            }
            std::vector<double> deviations;
            for (double const r : best)
                deviations.push_back(std::abs(r - bestMedian));
            double const cut = std::max(3.0 * (median(deviations) * 1.4826), 1.4901161193847656e-8);
            std::vector<Point> from, to;
            for (std::size_t i = 0; i < size; ++i) {
                if (best[i] < cut) {
                    from.push_back(model[i]);
                    to.push_back(data[i]);
                }
            }
            typename TypeParam::Transformation result;
            RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + size, data.data(), result, ratio,
                                                       confidence);
            EXPECT_EQ(images(result, model), images(estimated<TypeParam>(from, to), model));
        }
    }
}

TYPED_TEST(Estimators, takeAllPointsWhereAllFit)
{
    using Point = typename TypeParam::Point;
    auto const model = randomPoints<Point>(60, 10, 9);
    typename TypeParam::Transformation result;
    RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + 60, model.data(), result, 0.2, 0.99);
    // Two points leave a rotation in space open, so that a sample's residuals are no zeros and some points are left
    // out.
    if (!std::is_same_v<TypeParam, Rigid3DEstimator>) {
        EXPECT_EQ(images(result, model), images(estimated<TypeParam>(model, model), model));
    }
    EXPECT_LT(largestDistance(images(result, model), model), 1e-9);
}

TYPED_TEST(Estimators, passOverPairsThatAreNoNumbers)
{
    using Point = typename TypeParam::Point;
    auto const transformation = planted<typename TypeParam::Transformation>();
    auto const model = randomPoints<Point>(60, 50, 10);
    auto const exact = images(transformation, model);
    auto data = exact;
    data[3][0] = std::numeric_limits<double>::quiet_NaN();
    data[17][1] = std::numeric_limits<double>::infinity();
    typename TypeParam::Transformation result;
    RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + 60, data.data(), result, 0.2, 0.99);
    EXPECT_LT(largestDistance(images(result, model), exact), 1e-5);
    // Nothing is left where none is a number.
    for (Point& point : data)
        point[0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_QEL_THROW(
        RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + 60, data.data(), result, 0.2, 0.99),
        RuntimeError, "random sampling failed.");
}

TYPED_TEST(Estimators, surviveRepeatedPoints)
{
    using Point = typename TypeParam::Point;
    std::vector<Point> const model(30, randomPoints<Point>(1, 10, 11)[0]);
    std::vector<Point> const data(30, randomPoints<Point>(1, 10, 12)[0]);
    typename TypeParam::Transformation result;
    try {
        RansacEstimator<TypeParam>::robustEstimate(model.data(), model.data() + 30, data.data(), result, 0.2, 0.99);
    } catch (RuntimeError& error) {
        // Only the types for which one point leaves everything open may find no sample.
        EXPECT_TRUE((std::is_same_v<TypeParam, Projective2DEstimatorByKernelEstimation> ||
                     std::is_same_v<TypeParam, Rigid2DEstimator>))
            << error.what().c_str();
        return;
    }
    for (Point const& point : images(result, model))
        for (unsigned int axis = 0; axis < Point::dim(); ++axis)
            EXPECT_TRUE(std::isfinite(point[axis]));
}

// ---- Single types

TEST(LeastSquares, arePermittedToWorkCoordinateByCoordinate)
{
    // The whole system, one row for each coordinate, with the pseudo-inverse of another library.
    auto const model = randomPoints<math::Vector2<double>>(25, 3, 21);
    auto const data = randomPoints<math::Vector2<double>>(25, 3, 22);
    auto const solve = [&](auto const& rowOf, int parameters) {
        Eigen::MatrixXd a = Eigen::MatrixXd::Zero(50, parameters);
        Eigen::VectorXd b(50);
        for (int i = 0; i < 25; ++i)
            for (int axis = 0; axis < 2; ++axis) {
                rowOf(model[i][0], model[i][1], axis, a, 2 * i + axis);
                b(2 * i + axis) = data[i][axis];
            }
        return Eigen::VectorXd(
            Eigen::JacobiSVD<Eigen::MatrixXd>(a, Eigen::ComputeThinU | Eigen::ComputeThinV).solve(b));
    };
    Eigen::VectorXd const affine = solve(
        [](double x, double y, int axis, Eigen::MatrixXd& a, int row) {
            a(row, axis) = 1;
            a(row, 2 + 2 * axis) = x;
            a(row, 3 + 2 * axis) = y;
        },
        6);
    auto const affineResult = estimated<Affine2DEstimator>(model, data);
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(affineResult.getParam(i), affine(i), 1e-10);
    auto const polynomial = [](int count) {
        return [count](double x, double y, int axis, Eigen::MatrixXd& a, int row) {
            double const monomials[] = {1, x, y, x * x, y * y, x * y, x * x * x, y * y * y, x * x * y, x * y * y};
            for (int i = 0; i < count; ++i)
                a(row, count * axis + i) = monomials[i];
        };
    };
    Eigen::VectorXd const second = solve(polynomial(6), 12);
    auto const secondResult = estimated<Polynomial2DOrder2Estimator>(model, data);
    for (int i = 0; i < 12; ++i)
        EXPECT_NEAR(secondResult.getParam(i), second(i), 1e-10);
    Eigen::VectorXd const third = solve(polynomial(10), 20);
    auto const thirdResult = estimated<Polynomial2DOrder3Estimator>(model, data);
    for (int i = 0; i < 20; ++i)
        EXPECT_NEAR(thirdResult.getParam(i), third(i), 1e-10);
}

TEST(Translation2DEstimator, givesTheDifferenceOfTheMeans)
{
    Translation2D const result = estimated<Translation2DEstimator>({{0, 0}, {2, 4}}, {{10, 0}, {20, 1}});
    EXPECT_EQ(result.getTranslation(), math::Vector2<double>(14, -1.5));
}

TEST(Rigid2DEstimator, isTheBestRotationOfNoisyPoints)
{
    auto const model = randomPoints<math::Vector2<double>>(40, 10, 31);
    auto data = images(RigidTransformation2D(3, 4, -1), model);
    auto const noise = randomPoints<math::Vector2<double>>(40, 2, 32);
    for (int i = 0; i < 40; ++i)
        data[i] += noise[i];
    RigidTransformation2D const result = estimated<Rigid2DEstimator>(model, data);
    auto const error = [&](RigidTransformation2D const& transformation) {
        auto const mapped = images(transformation, model);
        double sum = 0;
        for (int i = 0; i < 40; ++i)
            sum += (mapped[i] - data[i]).squaredLength();
        return sum;
    };
    for (unsigned int parameter = 0; parameter < 3; ++parameter)
        for (double const step : {-1e-3, 1e-3}) {
            RigidTransformation2D moved = result;
            moved.setParam(parameter, moved.getParam(parameter) + step);
            EXPECT_GT(error(moved), error(result));
        }
}

TEST(Rigid2DEstimator, isTheIdentityWithoutAnAngle)
{
    auto const expectIdentity = [](Points2D const& model, Points2D const& data) {
        RigidTransformation2D result(5, 6, 7);
        Rigid2DEstimator::estimate(model.data(), model.data() + model.size(), data.data(), result);
        for (unsigned int i = 0; i < 3; ++i)
            EXPECT_EQ(result.getParam(i), 0);
        EXPECT_EQ(result.getRotationMatrix()(0, 0), 1);
    };
    expectIdentity({{3, 4}}, {{30, 40}});
    expectIdentity({{3, 4}, {3, 4}}, {{30, 40}, {50, 60}});
    // Just below the limit; one above it turns.
    expectIdentity({{-1e-4, 0}, {1e-4, 0}}, {{-7e-5, 0}, {7e-5, 0}});
    RigidTransformation2D const turned = estimated<Rigid2DEstimator>({{-1e-4, 0}, {1e-4, 0}}, {{8e-5, 1}, {-8e-5, 1}});
    EXPECT_NEAR(std::abs(turned.getRotation()), M_PI, 1e-12);
    EXPECT_NEAR(turned.getTranslation()[1], 1, 1e-12);
}

TEST(Rigid3DEstimator, neverReflects)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        auto const model = randomPoints<math::Vector3<double>>(4 + seed % 3, 10, seed);
        // Mirrored, flat, along a line, and anything.
        std::vector<Points3D> all(4, model);
        Points3D flat = model, line = model;
        for (std::size_t i = 0; i < model.size(); ++i) {
            all[0][i][2] = -model[i][2];
            flat[i][2] = 0;
            line[i] = math::Vector3<double>(1, 2, 3) * model[i][0];
        }
        all[3] = randomPoints<math::Vector3<double>>(model.size(), 10, seed + 500);
        for (Points3D const& from : {model, flat, line}) {
            for (Points3D const& to : all) {
                auto const matrix = estimated<Rigid3DEstimator>(from, to).getRotationMatrix();
                Eigen::Matrix3d m;
                for (int i = 0; i < 3; ++i)
                    for (int j = 0; j < 3; ++j)
                        m(i, j) = matrix(i, j);
                EXPECT_LT((m * m.transpose() - Eigen::Matrix3d::Identity()).norm(), 1e-12) << "seed " << seed;
                EXPECT_NEAR(m.determinant(), 1, 1e-12) << "seed " << seed;
            }
        }
    }
}

TEST(Rigid3DEstimator, isTheBestRotationOfAnotherLibrary)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        auto const model = randomPoints<math::Vector3<double>>(12, 10, seed);
        auto data = images(planted<RigidTransformation3D>(), model);
        auto const noise = randomPoints<math::Vector3<double>>(12, 3, seed + 100);
        Eigen::Matrix3Xd from(3, 12), to(3, 12);
        for (int i = 0; i < 12; ++i) {
            data[i] += noise[i];
            for (int axis = 0; axis < 3; ++axis) {
                from(axis, i) = model[i][axis];
                to(axis, i) = data[i][axis];
            }
        }
        Eigen::Matrix4d const expected = Eigen::umeyama(from, to, false);
        RigidTransformation3D const result = estimated<Rigid3DEstimator>(model, data);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(result.getTranslation()[i], expected(i, 3), 1e-10);
            for (int j = 0; j < 3; ++j)
                EXPECT_NEAR(result.getRotationMatrix()(i, j), expected(i, j), 1e-10);
        }
    }
}

TEST(Rigid3DEstimator, carriesALineOntoALine)
{
    Points3D model, data;
    for (int i = 0; i < 5; ++i) {
        model.emplace_back(i, 2 * i, 2 * i);
        data.emplace_back(1, 3 * i, 4);
    }
    EXPECT_LT(largestDistance(images(estimated<Rigid3DEstimator>(model, data), model), data), 1e-12);
}

TEST(Affine2DEstimator, takesTheShortestSolutionOfCollinearPoints)
{
    // On the line y = x the two columns of each row can be told apart by nothing.
    Points2D model, data;
    for (int i = 0; i < 4; ++i) {
        model.emplace_back(i, i);
        data.emplace_back(2 * i + 1, -i);
    }
    AffineTransformation2D const result = estimated<Affine2DEstimator>(model, data);
    EXPECT_LT(largestDistance(images(result, model), data), 1e-12);
    EXPECT_NEAR(result.getParam(2), 1, 1e-12);
    EXPECT_NEAR(result.getParam(3), 1, 1e-12);
    EXPECT_NEAR(result.getParam(4), -0.5, 1e-12);
    EXPECT_NEAR(result.getParam(5), -0.5, 1e-12);
}

TEST(Projective2DEstimator, keepsTheKernelOfTheWholeSystem)
{
    auto const model = randomPoints<math::Vector2<double>>(20, 2, 41);
    auto data = images(planted<ProjectiveTransformation2D>(), model);
    auto const noise = randomPoints<math::Vector2<double>>(20, 0.1, 42);
    Eigen::MatrixXd a(40, 9);
    for (int i = 0; i < 20; ++i) {
        data[i] += noise[i];
        double const x = model[i][0], y = model[i][1], u = data[i][0], v = data[i][1];
        a.row(2 * i) << 1, 0, x, y, 0, 0, -u * x, -u * y, -u;
        a.row(2 * i + 1) << 0, 1, 0, 0, x, y, -v * x, -v * y, -v;
    }
    Eigen::VectorXd const kernel = Eigen::JacobiSVD<Eigen::MatrixXd>(a, Eigen::ComputeFullV).matrixV().col(8);
    ProjectiveTransformation2D const result = estimated<Projective2DEstimatorByKernelEstimation>(model, data);
    for (int i = 0; i < 8; ++i)
        EXPECT_NEAR(result.getParam(i), kernel(i) / kernel(8), 1e-8);
}

TEST(Projective2DEstimator, refusesAKernelWithoutALastElement)
{
    // All targets are infinitely far: M(2, 2) must be 0 for the origin to go there.
    Points2D const model = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {2, 1}, {1, 2}};
    Points2D data;
    for (auto const& point : model) {
        double const w = point[0] + point[1];
        data.emplace_back(w == 0 ? 0 : point[0] / w, w == 0 ? 0 : 1 / w);
    }
    data[0] = math::Vector2<double>(std::numeric_limits<double>::infinity(), 0);
    ProjectiveTransformation2D result;
    EXPECT_QEL_THROW(
        Projective2DEstimatorByKernelEstimation::estimate(model.data(), model.data() + 6, data.data(), result),
        RuntimeError, "no convergence in 30 Singular Value Decomposition iterations");
    // Nothing but zeros: each vector is a kernel, and the first has no last element.
    Points2D const zeros(1);
    EXPECT_QEL_THROW(
        Projective2DEstimatorByKernelEstimation::estimate(zeros.data(), zeros.data() + 1, zeros.data(), result),
        RuntimeError, "bad precision.");
}

// ---- The search

TEST(RandomSampling, drawsFromBoostsGeneratorAndItsDistribution)
{
    boost::random::mt19937 generator;
    boost::random::uniform_int_distribution<unsigned> distribution(0, 16);
    SampleDrawer drawer(17);
    for (int draw = 0; draw < 100; ++draw) {
        std::set<std::size_t> expected;
        while (expected.size() < 5)
            expected.insert(distribution(generator));
        EXPECT_EQ(drawer.draw(5), std::vector<std::size_t>(expected.begin(), expected.end()));
    }
    // The generator is the one with the seed 5489, whose 10000th number is known.
    boost::random::mt19937 fresh;
    fresh.discard(9999);
    EXPECT_EQ(fresh(), 4123659995u);
    EXPECT_EQ(SampleDrawer(4).draw(4), std::vector<std::size_t>({0, 1, 2, 3}));
}

TEST(RandomSampling, takesTheMiddleOrTheMeanOfTheTwoInTheMiddle)
{
    std::vector<double> odd = {5, 1, 4, 2, 3};
    EXPECT_EQ(medianOf(odd), 3);
    std::vector<double> even = {8, 1, 4, 2};
    EXPECT_EQ(medianOf(even), 3);
    std::vector<double> one = {7};
    EXPECT_EQ(medianOf(one), 7);
    std::vector<double> two = {7, 9};
    EXPECT_EQ(medianOf(two), 8);
}

TEST(RandomSampling, countsTheDrawsThatAreExpectedToHoldACleanSample)
{
    auto const settings = [](unsigned parameters, double ratio, double confidence) {
        return RobustSettings{2, parameters, ratio, confidence};
    };
    EXPECT_EQ(settings(2, 0.1, 0.9).numOfDraws(), 1u);
    EXPECT_EQ(settings(2, 0.2, 0.99).numOfDraws(), 3u);    // 2.86
    EXPECT_EQ(settings(8, 0.2, 0.99).numOfDraws(), 9u);    // 8.74
    EXPECT_EQ(settings(8, 0.4, 0.99).numOfDraws(), 33u);   // 33.2
    EXPECT_EQ(settings(20, 0.4, 0.99).numOfDraws(), 759u); // 759.3
    EXPECT_EQ(settings(2, 0.2, 1.0).numOfDraws(), 100000u);
    EXPECT_EQ((RobustSettings{2, 3, 0.2, 0.9}.sampleSize()), 2u);
    EXPECT_EQ((RobustSettings{3, 5, 0.2, 0.9}.sampleSize()), 2u);
    EXPECT_EQ((RobustSettings{3, 12, 0.2, 0.9}.sampleSize()), 4u);
}

TEST(RandomSampling, givesUpWhereNineInTenAttemptsFail)
{
    RobustSettings const settings{2, 2, 0.2, 0.99}; // 3 draws: 30 successes in 300 attempts
    auto const search = [&](int everyNth) {
        int attempts = 0;
        searchInliers(
            5, settings,
            [&](auto const&, std::vector<double>& residuals) {
                std::fill(residuals.begin(), residuals.end(), 1);
                return ++attempts % everyNth == 0;
            },
            nullptr);
        return attempts;
    };
    EXPECT_EQ(search(1), 30);
    EXPECT_EQ(search(10), 300);
    EXPECT_QEL_THROW(search(11), RuntimeError, "random sampling failed.");
}

TEST(RandomSampling, cutsOffWhatIsAtThreeDeviationsOfTheResidualsFromTheirMedian)
{
    RobustSettings const settings{2, 2, 0.2, 0.99};
    auto const inliersOf = [&](std::vector<double> const& all) {
        return searchInliers(
            all.size(), settings,
            [&](auto const&, std::vector<double>& residuals) {
                residuals = all;
                return true;
            },
            nullptr);
    };
    using Indices = std::vector<std::size_t>;
    // The median is 2, that of the deviations 1: the cut is 3 * 1.4826.
    EXPECT_EQ(inliersOf({0, 1, 2, 3, 4.4}), Indices({0, 1, 2, 3, 4}));
    EXPECT_EQ(inliersOf({4.5, 1, 2, 3, 0}), Indices({1, 2, 3, 4}));
    EXPECT_EQ(inliersOf({3.0 * 1.4826, 1, 2, 3, 0}), Indices({1, 2, 3, 4}));
    // More than half are equal: there is no deviation, and the least cut remains.
    EXPECT_EQ(inliersOf({0, 0, 0, 1, 1e-8}), Indices({0, 1, 2, 4}));
    EXPECT_EQ(inliersOf({1, 1, 1, 1.4901161193847656e-8, 0}), Indices({4}));
    EXPECT_EQ(inliersOf({1, 1, 1, 1, 1}), Indices());
}

TEST(RandomSampling, keepsTheFirstOfEqualMedians)
{
    RobustSettings const settings{2, 2, 0.2, 0.99};
    int attempts = 0;
    auto const inliers = searchInliers(
        3, settings,
        [&](auto const&, std::vector<double>& residuals) {
            residuals = attempts++ == 0 ? std::vector<double>{1e-9, 2e-9, 5} : std::vector<double>{5, 2e-9, 1e-9};
            return true;
        },
        nullptr);
    EXPECT_EQ(inliers, std::vector<std::size_t>({0, 1}));
}

TEST(RobustEstimation, countsSamplesWhoseProjectionDoesNotReachAllPointsAsFailures)
{
    auto model = randomPoints<math::Vector2<double>>(200, 1, 51);
    auto data = images(ProjectiveTransformation2D(0, 0, 1, 0, 0, 1, 0.5, 0), model);
    ProjectiveTransformation2D result;
    auto const run = [&] {
        RansacEstimator<Projective2DEstimatorByKernelEstimation>::robustEstimate(
            model.data(), model.data() + model.size(), data.data(), result, 0.2, 0.99);
    };
    run();
    EXPECT_LT(largestDistance(images(result, model), data), 1e-9);
    // The horizon of nearly each sample passes through one more point.
    model.emplace_back(-2, 0);
    data.emplace_back(7, 7);
    EXPECT_QEL_THROW(run(), RuntimeError, "random sampling failed.");
}
