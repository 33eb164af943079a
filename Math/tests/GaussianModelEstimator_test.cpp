#include "Math/private/GaussianModelEstimator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include <qel/Exception.h>

#include "Core/private/Serialization/BinaryArchive.h"
#include "Core/tests/Support/Expect.h"

using namespace qel;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using Estimator = math::GaussianModelEstimator<double>;

namespace {

/// Samples of a dimension, with correlations among them.
std::vector<VectorXd> someSamples(long dimension, int count, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<VectorXd> samples;
    for (int n = 0; n < count; ++n) {
        VectorXd sample(dimension);
        for (long i = 0; i < dimension; ++i)
            sample(i) = static_cast<double>(random() % 1000) / 100 + (i > 0 ? 0.5 * sample(i - 1) : 3.0);
        samples.push_back(sample);
    }
    return samples;
}

Estimator estimatorOf(std::vector<VectorXd> const& samples)
{
    Estimator estimator(samples.front().size());
    for (VectorXd const& sample : samples)
        estimator.add(sample);
    return estimator;
}

Estimator finalized(Estimator estimator)
{
    estimator.finalize();
    return estimator;
}

/// Mean and covariance in two passes, as the textbook has them.
struct PlainModel
{
    std::vector<long double> mean;
    std::vector<std::vector<long double>> covariance;

    explicit PlainModel(std::vector<VectorXd> const& samples)
        : mean(static_cast<std::size_t>(samples.front().size()))
        , covariance(mean.size(), std::vector<long double>(mean.size()))
    {
        for (std::size_t i = 0; i < mean.size(); ++i) {
            for (VectorXd const& sample : samples)
                mean[i] += sample(static_cast<long>(i));
            mean[i] /= samples.size();
        }
        for (std::size_t i = 0; i < mean.size(); ++i)
            for (std::size_t j = 0; j < mean.size(); ++j) {
                for (VectorXd const& sample : samples)
                    covariance[i][j] +=
                        (sample(static_cast<long>(i)) - mean[i]) * (sample(static_cast<long>(j)) - mean[j]);
                covariance[i][j] /= samples.size();
            }
    }
};

void expectModel(Estimator const& estimator, std::vector<VectorXd> const& samples)
{
    PlainModel const plain(samples);
    long const dimension = samples.front().size();
    ASSERT_EQ(estimator.getDimension(), dimension);
    EXPECT_EQ(estimator.getCount(), samples.size());
    for (long i = 0; i < dimension; ++i) {
        EXPECT_NEAR(estimator.getMeanVector()(i), static_cast<double>(plain.mean[i]), 1e-10);
        for (long j = 0; j < dimension; ++j)
            EXPECT_NEAR(estimator.getCovarianceMatrix()(i, j), static_cast<double>(plain.covariance[i][j]), 1e-9);
    }
    MatrixXd const one = estimator.getCovarianceMatrix() * estimator.getInverseCovarianceMatrix();
    EXPECT_TRUE(one.isApprox(MatrixXd::Identity(dimension, dimension), 1e-8));
}

VectorXd vectorOf(std::initializer_list<double> values)
{
    VectorXd vector(static_cast<long>(values.size()));
    std::copy(values.begin(), values.end(), vector.data());
    return vector;
}

std::string written(Estimator& estimator)
{
    std::ostringstream stream;
    archive::BinaryOutputArchive archive(stream);
    estimator.serialize(archive);
    return stream.str();
}

void readFrom(std::string const& bytes, Estimator& estimator)
{
    std::istringstream stream(bytes);
    archive::BinaryInputArchive archive(stream);
    estimator.serialize(archive);
}

template <class T> std::string bytesOf(T value) { return std::string(reinterpret_cast<char*>(&value), sizeof value); }

} // namespace

TEST(GaussianModelEstimator, startsWithZeros)
{
    Estimator const estimator(3);
    EXPECT_EQ(estimator.getDimension(), 3);
    EXPECT_EQ(estimator.getCount(), 0u);
    EXPECT_FALSE(estimator.isFinalized());
    EXPECT_EQ(estimator.getMeanOrSum(), VectorXd::Zero(3));
    EXPECT_EQ(estimator.getCovarianceOrSum(), MatrixXd::Zero(3, 3));
    EXPECT_EQ(estimator.getInverseCovarianceMatrix(), MatrixXd::Zero(3, 3));
}

TEST(GaussianModelEstimator, sumsSamplesIntoTheUpperTriangle)
{
    Estimator estimator(2);
    estimator.add(vectorOf({2, 3}));
    estimator.add(vectorOf({1, -1}));
    EXPECT_EQ(estimator.getMeanOrSum(), vectorOf({3, 2}));
    EXPECT_EQ(estimator.getCovarianceOrSum()(0, 0), 5);
    EXPECT_EQ(estimator.getCovarianceOrSum()(0, 1), 5);
    EXPECT_EQ(estimator.getCovarianceOrSum()(1, 0), 0);
    EXPECT_EQ(estimator.getCovarianceOrSum()(1, 1), 10);
}

TEST(GaussianModelEstimator, finalizesToMeanAndCovariance)
{
    Estimator estimator(2);
    for (auto const& sample : {vectorOf({0, 0}), vectorOf({2, 0}), vectorOf({0, 4}), vectorOf({2, 4})})
        estimator.add(sample);
    estimator.finalize();
    EXPECT_EQ(estimator.getMeanVector(), vectorOf({1, 2}));
    EXPECT_EQ(estimator.getCovarianceMatrix()(0, 0), 1);
    EXPECT_EQ(estimator.getCovarianceMatrix()(1, 1), 4);
    EXPECT_EQ(estimator.getCovarianceMatrix()(0, 1), 0);
    EXPECT_EQ(estimator.getInverseCovarianceMatrix()(1, 1), 0.25);
    EXPECT_EQ(estimator.getDeterminantTerm(), -std::log(4.0));
    estimator.finalize(); // once is enough
    EXPECT_EQ(estimator.getMeanVector(), vectorOf({1, 2}));
    for (long const dimension : {1, 2, 5, 20}) {
        auto const samples = someSamples(dimension, 200, 1);
        expectModel(finalized(estimatorOf(samples)), samples);
    }
}

TEST(GaussianModelEstimator, hasADeterminantOfOneWithoutDimensions)
{
    Estimator estimator(0);
    estimator.finalize();
    EXPECT_EQ(estimator.getDeterminantTerm(), 0);
    EXPECT_EQ(math::determinant(MatrixXd(0, 0)), 1);
    EXPECT_EQ(math::inverse(MatrixXd(0, 0)).size(), 0);
    EXPECT_EQ(math::rank(MatrixXd(0, 0)), 0);
}

TEST(GaussianModelEstimator, isNaNWithoutSamples)
{
    Estimator estimator(2);
    estimator.finalize();
    EXPECT_TRUE(estimator.isFinalized());
    EXPECT_TRUE(std::isnan(estimator.getMeanVector()(0)));
    EXPECT_TRUE(std::isnan(estimator.getCovarianceMatrix()(1, 0)));
    EXPECT_TRUE(std::isnan(estimator.getDeterminantTerm()));
}

TEST(GaussianModelEstimator, joinsSums)
{
    auto const samples = someSamples(4, 100, 2);
    Estimator all(4);
    all.joinUnfinalized(estimatorOf({samples.begin(), samples.begin() + 30}));
    all.joinUnfinalized(estimatorOf({samples.begin() + 30, samples.end()}));
    EXPECT_FALSE(all.isFinalized());
    expectModel(finalized(all), samples);
}

TEST(GaussianModelEstimator, joinsFinishedModels)
{
    auto const samples = someSamples(4, 100, 3);
    Estimator all = finalized(estimatorOf({samples.begin(), samples.begin() + 30}));
    all.join(finalized(estimatorOf({samples.begin() + 30, samples.end()})));
    expectModel(all, samples);
    Estimator fromNothing(4);
    fromNothing.clearToFinalized();
    fromNothing.join(all);
    expectModel(fromNothing, samples);
}

TEST(GaussianModelEstimator, reopensToGoOnWithMoreSamples)
{
    auto const samples = someSamples(3, 80, 4);
    Estimator all = finalized(estimatorOf({samples.begin(), samples.begin() + 50}));
    all.reopen();
    EXPECT_FALSE(all.isFinalized());
    for (std::size_t n = 50; n < samples.size(); ++n)
        all.add(samples[n]);
    expectModel(finalized(all), samples);
}

TEST(GaussianModelEstimator, staysNaNWhenItIsReopenedWithoutSamples)
{
    auto const samples = someSamples(3, 20, 4);
    Estimator nothing = finalized(Estimator(3));
    nothing.reopen();
    EXPECT_FALSE(nothing.isFinalized());
    for (auto const& sample : samples)
        nothing.add(sample);
    nothing.finalize();
    EXPECT_EQ(nothing.getCount(), samples.size());
    EXPECT_TRUE(nothing.getMeanVector().array().isNaN().all());
    EXPECT_TRUE(nothing.getCovarianceMatrix().array().isNaN().all());
    EXPECT_TRUE(std::isnan(nothing.getDeterminantTerm()));
}

TEST(GaussianModelEstimator, clears)
{
    Estimator estimator = finalized(estimatorOf(someSamples(3, 10, 5)));
    estimator.clear();
    EXPECT_FALSE(estimator.isFinalized());
    EXPECT_EQ(estimator.getDimension(), 3);
    EXPECT_EQ(estimator.getCount(), 0u);
    EXPECT_EQ(estimator.getMeanOrSum(), VectorXd::Zero(3));
    EXPECT_EQ(estimator.getCovarianceOrSum(), MatrixXd::Zero(3, 3));
}

TEST(GaussianModelEstimator, reducesToSomeDimensionsInAscendingOrder)
{
    auto const samples = someSamples(5, 60, 6);
    Estimator const whole = finalized(estimatorOf(samples));
    Estimator const reduced = whole.reduce({4, 1, 2});
    std::vector<VectorXd> fewer;
    for (auto const& sample : samples)
        fewer.push_back(vectorOf({sample(1), sample(2), sample(4)}));
    expectModel(reduced, fewer);
    EXPECT_TRUE(reduced.isFinalized());
    EXPECT_EQ(whole.reduce({}).getDimension(), 0);
    EXPECT_EQ(whole.reduce({}).getDeterminantTerm(), 0);
}

TEST(GaussianModelEstimator, refusesWhatDoesNotFit)
{
    Estimator two(2);
    Estimator three(3);
    EXPECT_QEL_THROW(two.joinUnfinalized(three), RuntimeError, "The 2 models must have the same dimension");
    EXPECT_QEL_THROW(two.join(three), RuntimeError, "The 2 models must have the same dimension");
    Estimator const done = finalized(estimatorOf(someSamples(2, 10, 7)));
    Estimator doneToo(done);
    EXPECT_QEL_THROW(two.joinUnfinalized(done), RuntimeError, "cannot join 2 models finalized");
    EXPECT_QEL_THROW(doneToo.joinUnfinalized(two), RuntimeError, "cannot join 2 models finalized");
    EXPECT_QEL_THROW(two.join(done), RuntimeError, "cannot join 2 models that have not been finalized");
    EXPECT_QEL_THROW(doneToo.join(two), RuntimeError, "cannot join 2 models that have not been finalized");
    EXPECT_QEL_THROW(two.reduce({0}), RuntimeError, "cannot reduce a model that has not been finalized");
    EXPECT_QEL_THROW(done.reduce({0, 2}), BadIndex, "The index does not exist");
    EXPECT_QEL_THROW(done.reduce({-1}), BadIndex, "The index does not exist");
    EXPECT_QEL_THROW(done.reduce({1, 1}), BadIndex, "Elements of the vector must be unique");
    EXPECT_QEL_THROW(two.getMeanVector(), InvalidCall, "The Gaussian Model is not up to date.");
    EXPECT_QEL_THROW(two.getCovarianceMatrix(), InvalidCall, "The Gaussian Model is not up to date.");
}

TEST(GaussianModelEstimator, hasARankFromItsSingularValues)
{
    MatrixXd matrix = MatrixXd::Identity(3, 3);
    EXPECT_EQ(math::rank(matrix), 3);
    matrix(2, 2) = 7e-16;
    EXPECT_EQ(math::rank(matrix), 3);
    matrix(2, 2) = 6e-16; // below 3 epsilon
    EXPECT_EQ(math::rank(matrix), 2);
    EXPECT_EQ(math::rank(MatrixXd::Zero(2, 2)), 0);
    EXPECT_EQ(math::rank(MatrixXd::Constant(4, 4, 2.0)), 1);
    matrix(0, 1) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(math::rank(matrix), 0);
}

TEST(GaussianModelEstimator, isWrittenColumnByColumn)
{
    Estimator estimator(2);
    for (auto const& sample : {vectorOf({0, 0}), vectorOf({2, 0}), vectorOf({0, 4}), vectorOf({2, 4})})
        estimator.add(sample);
    std::string const sums = bytesOf(2l) + bytesOf(2l) + bytesOf(1l) + bytesOf(4.0) + bytesOf(8.0) + bytesOf(2l) +
                             bytesOf(2l) + bytesOf(8.0) + bytesOf(0.0) + bytesOf(8.0) + bytesOf(32.0) + bytesOf(4ul);
    EXPECT_EQ(written(estimator), sums + '\0');
    estimator.finalize();
    EXPECT_EQ(written(estimator), bytesOf(2l) + bytesOf(2l) + bytesOf(1l) + bytesOf(1.0) + bytesOf(2.0) + bytesOf(2l) +
                                      bytesOf(2l) + bytesOf(1.0) + bytesOf(0.0) + bytesOf(0.0) + bytesOf(4.0) +
                                      bytesOf(4ul) + '\1');
}

TEST(GaussianModelEstimator, readsWhatItWroteAndMakesTheInverse)
{
    Estimator estimator = finalized(estimatorOf(someSamples(6, 40, 8)));
    Estimator copy(1);
    readFrom(written(estimator), copy);
    EXPECT_EQ(copy.getMeanVector(), estimator.getMeanVector());
    EXPECT_EQ(copy.getCovarianceMatrix(), estimator.getCovarianceMatrix());
    EXPECT_EQ(copy.getInverseCovarianceMatrix(), estimator.getInverseCovarianceMatrix());
    EXPECT_EQ(copy.getDeterminantTerm(), estimator.getDeterminantTerm());
    EXPECT_EQ(copy.getCount(), estimator.getCount());
}

TEST(GaussianModelEstimator, refusesSizesThatDisagreeOrExceedTheFile)
{
    Estimator estimator = finalized(estimatorOf(someSamples(2, 10, 9)));
    std::string const good = written(estimator);
    Estimator target;
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_THROW(readFrom(good.substr(0, length), target), archive::Corrupted) << length;
    for (std::size_t const place : {0, 8, 16, 40, 48})
        for (long const value : {-1l, 0l, 3l, 1l << 31, 1l << 32, std::numeric_limits<long>::min(), 1l << 62}) {
            std::string bad = good;
            bad.replace(place, 8, bytesOf(value));
            EXPECT_THROW(readFrom(bad, target), archive::Corrupted) << place << ' ' << value;
        }
    for (long const dimension : {-1l, -(1l << 33), 1l << 20, 1l << 32, 1l << 62}) {
        std::string bad = good;
        bad.replace(0, 8, bytesOf(dimension));
        bad.replace(8, 8, bytesOf(dimension));
        bad.replace(40, 8, bytesOf(dimension));
        bad.replace(48, 8, bytesOf(dimension));
        EXPECT_THROW(readFrom(bad, target), archive::Corrupted) << dimension;
    }
}
