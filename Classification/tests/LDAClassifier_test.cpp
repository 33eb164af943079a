#include "Classification/private/LDAClassifier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <sstream>

#include <qel/Exception.h>

#include "Core/private/Serialization/BinaryArchive.h"
#include "Core/tests/Support/Expect.h"

using namespace qel;
using classification::AbstractSupervisedClassifier;
using classification::LDAClassifier;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

VectorXd vectorOf(std::initializer_list<double> values)
{
    VectorXd vector(static_cast<long>(values.size()));
    std::copy(values.begin(), values.end(), vector.data());
    return vector;
}

/// A number between 0 and 1.
double draw(std::mt19937& random) { return static_cast<double>(random()) / 4294967296.0; }

/// Three classes over five features: feature 3 tells all of them, feature 1 the last one; feature 4 is constant.
void trainThreeClasses(LDAClassifier& classifier, unsigned int seed = 1, int count = 200)
{
    std::mt19937 random(seed);
    for (int n = 0; n < count; ++n)
        for (unsigned long c = 0; c < 3; ++c) {
            double const wide = 10 * draw(random);
            classifier.train(vectorOf({wide, draw(random) + (c == 2 ? 2.0 : 0.0), wide + draw(random),
                                       draw(random) + 1.5 * static_cast<double>(c), 7.0}),
                             c);
        }
}

// The same formulas over plain arrays: elimination in long double, and a covariance in two passes.
using Row = std::vector<long double>;
using Table = std::vector<Row>;

long double plainDeterminant(Table table)
{
    long double result = 1;
    for (std::size_t k = 0; k < table.size(); ++k) {
        std::size_t pivot = k;
        for (std::size_t i = k; i < table.size(); ++i)
            if (std::fabs(table[i][k]) > std::fabs(table[pivot][k]))
                pivot = i;
        if (pivot != k) {
            std::swap(table[pivot], table[k]);
            result = -result;
        }
        result *= table[k][k];
        for (std::size_t i = k + 1; i < table.size(); ++i)
            for (std::size_t j = table.size(); j-- > k;)
                table[i][j] -= table[k][j] * table[i][k] / table[k][k];
    }
    return result;
}

/// transposed(d) times the inverse of the table times d, by Cramer's rule.
long double plainDistance(Table const& table, Row const& d)
{
    long double const all = plainDeterminant(table);
    long double result = 0;
    for (std::size_t i = 0; i < d.size(); ++i) {
        Table replaced = table;
        for (std::size_t r = 0; r < d.size(); ++r)
            replaced[r][i] = d[r];
        result += d[i] * plainDeterminant(replaced) / all;
    }
    return result;
}

struct PlainGaussian
{
    Row mean;
    Table covariance;

    PlainGaussian(std::vector<VectorXd> const& samples, std::vector<long> const& features)
        : mean(features.size())
        , covariance(features.size(), Row(features.size()))
    {
        for (std::size_t i = 0; i < features.size(); ++i) {
            for (auto const& sample : samples)
                mean[i] += sample(features[i]);
            mean[i] /= samples.size();
        }
        for (std::size_t i = 0; i < features.size(); ++i)
            for (std::size_t j = 0; j < features.size(); ++j) {
                for (auto const& sample : samples)
                    covariance[i][j] += (sample(features[i]) - mean[i]) * (sample(features[j]) - mean[j]);
                covariance[i][j] /= samples.size();
            }
    }
};

double plainPower(std::vector<std::vector<VectorXd>> const& classes, std::vector<long> const& features)
{
    std::vector<VectorXd> all;
    for (auto const& samples : classes)
        all.insert(all.end(), samples.begin(), samples.end());
    PlainGaussian const global(all, features);
    long double power = 0;
    for (auto const& samples : classes) {
        PlainGaussian const one(samples, features);
        Table average = global.covariance;
        Row difference(features.size());
        for (std::size_t i = 0; i < features.size(); ++i) {
            difference[i] = global.mean[i] - one.mean[i];
            for (std::size_t j = 0; j < features.size(); ++j)
                average[i][j] = (average[i][j] + one.covariance[i][j]) / 2;
        }
        long double const b = plainDistance(average, difference) / 8 +
                              std::log(plainDeterminant(average) / std::sqrt(plainDeterminant(global.covariance) *
                                                                             plainDeterminant(one.covariance))) /
                                  2;
        power += std::sqrt(1 - std::exp(-b));
    }
    return static_cast<double>(power);
}

std::string written(LDAClassifier& classifier)
{
    std::ostringstream stream;
    archive::BinaryOutputArchive archive(stream);
    classifier.serialize(archive);
    return stream.str();
}

void readFrom(std::string const& bytes, LDAClassifier& classifier)
{
    std::istringstream stream(bytes);
    archive::BinaryInputArchive archive(stream);
    classifier.serialize(archive);
}

template <class T> std::string bytesOf(T value) { return std::string(reinterpret_cast<char*>(&value), sizeof value); }

/// One feature, two classes: each with a mean and a spread.
std::unique_ptr<LDAClassifier> twoClasses(double mean0, double spread0, double mean1, double spread1)
{
    auto classifier = std::make_unique<LDAClassifier>();
    classifier->init(1, 2);
    for (double const sign : {-1.0, 1.0}) {
        classifier->train(vectorOf({mean0 + sign * spread0}), 0);
        classifier->train(vectorOf({mean1 + sign * spread1}), 1);
    }
    classifier->finalize();
    return classifier;
}

/// Another classifier than the library's own.
class StrangeClassifier : public AbstractSupervisedClassifier
{
    AbstractSupervisedClassifier* New(bool) const override { return nullptr; }
    AbstractSupervisedClassifier* clone() const override { return nullptr; }
    void init(long, long) override {}
    long getLearningSpaceDimension() const override { return 0; }
    void train(VectorXd const&, unsigned long) override {}
    void join(AbstractSupervisedClassifier*) override {}
    int forceUseFeature(long, bool) override { return 0; }
    void finalize() override {}
    bool finalized() const override { return false; }
    bool isUsedFeature(long) const override { return false; }
    long getClassicationSpaceDimension() const override { return 0; }
    long classify(VectorXd const&) const override { return -1; }
    String getInfo() const override { return {}; }
    void startTraining() override {}
    long getNumOfClasses() const override { return 0; }
};

} // namespace

TEST(LDAClassifier, refusesCallsBeforeInit)
{
    LDAClassifier classifier;
    EXPECT_EQ(classifier.getStatus(), LDAClassifier::UNINITIALIZED);
    EXPECT_EQ(classifier.getMinimumRelativeImprovement(), 0.01);
    EXPECT_EQ(classifier.getSquaredRejectionDistance(), 9.0);
    EXPECT_QEL_THROW(classifier.getLearningSpaceDimension(), InvalidCall,
                     "Call getLearningSpaceDimension while status is UNINITIALIZED.");
    EXPECT_QEL_THROW(classifier.forceUseFeature(0, true), InvalidCall,
                     "Call getLearningSpaceDimension while status is UNINITIALIZED.");
    EXPECT_QEL_THROW(classifier.finalize(), InvalidCall, "Call finalize while status is UNINITIALIZED.");
    EXPECT_QEL_THROW(classifier.startTraining(), RuntimeError,
                     "Cannot start a training on an uninitialized classification");
    EXPECT_QEL_THROW(classifier.isUsedFeature(0), InvalidCall, "Call isUsedFeature while the model is not finalized.");
    EXPECT_QEL_THROW(classifier.getClassicationSpaceDimension(), InvalidCall,
                     "Call getClassicationSpaceDimension while the model is not finalized.");
    EXPECT_QEL_THROW(classifier.getInfo(), InvalidCall, "Call getInfo while the model is not finalized.");
    classifier.train(vectorOf({1}), 0);
    EXPECT_EQ(classifier.getStatus(), LDAClassifier::UNINITIALIZED);
    EXPECT_EQ(classifier.classify(vectorOf({1})), -1);
    EXPECT_QEL_THROW(classifier.init(0, 2), RuntimeError, "The learning space dimension must be greater than 0");
    EXPECT_QEL_THROW(classifier.init(-1, 2), RuntimeError, "The learning space dimension must be greater than 0");
    EXPECT_QEL_THROW(classifier.init(1, 1), RuntimeError, "The number of classes must be greater than 1");
}

TEST(LDAClassifier, isInTrainingAfterInit)
{
    LDAClassifier classifier;
    classifier.init(3, 2);
    EXPECT_EQ(classifier.getStatus(), LDAClassifier::IN_TRAINING);
    EXPECT_FALSE(classifier.finalized());
    EXPECT_EQ(classifier.getLearningSpaceDimension(), 3);
    EXPECT_EQ(classifier.getNumOfClasses(), 2);
    EXPECT_EQ(classifier.getLearningModel(1).getDimension(), 3);
    EXPECT_EQ(classifier.getClassificationModel(1).getDimension(), 3);
    EXPECT_EQ(classifier.getPower(2), -1.0);
    EXPECT_EQ(classifier.forceUseFeature(2, true), 0);
    EXPECT_QEL_THROW(classifier.forceUseFeature(3, true), BadIndex, "index must be less than 3");
    EXPECT_QEL_THROW(classifier.isUsedFeature(0), InvalidCall, "Call isUsedFeature while the model is not finalized.");
    EXPECT_QEL_THROW(classifier.getClassicationSpaceDimension(), InvalidCall,
                     "Call getClassicationSpaceDimension while the model is not finalized.");
    EXPECT_QEL_THROW(classifier.getInfo(), InvalidCall, "Call getInfo while the model is not finalized.");
    EXPECT_QEL_THROW(classifier.computeSeparationPower({0}), InvalidCall, "The Gaussian Model is not up to date.");
}

TEST(LDAClassifier, choosesTheFeaturesThatTellTheClasses)
{
    LDAClassifier classifier;
    classifier.init(5, 3);
    trainThreeClasses(classifier);
    classifier.setMinimumRelativeImprovement(0.1);
    classifier.forceUseFeature(0, true); // changes nothing
    classifier.finalize();
    EXPECT_TRUE(classifier.finalized());
    EXPECT_FALSE(classifier.isUsedFeature(0));
    EXPECT_TRUE(classifier.isUsedFeature(1));
    EXPECT_FALSE(classifier.isUsedFeature(2));
    EXPECT_TRUE(classifier.isUsedFeature(3));
    EXPECT_FALSE(classifier.isUsedFeature(4));
    EXPECT_EQ(classifier.getPower(4), -1.0); // it has no variance
    EXPECT_EQ(classifier.getClassicationSpaceDimension(), 2);
    EXPECT_EQ(classifier.getClassificationModel(0).getDimension(), 2);
    EXPECT_STREQ(classifier.getInfo().c_str(), "");
    EXPECT_QEL_THROW(classifier.isUsedFeature(5), BadIndex, "index <5> must be less than 5");
    EXPECT_QEL_THROW(classifier.isUsedFeature(-1), BadIndex, "index <-1> must be less than 5");
    for (long c = 0; c < 3; ++c)
        EXPECT_EQ(classifier.classify(vectorOf({c == 2 ? 2.5 : 0.5, 0.5 + 1.5 * static_cast<double>(c)})), c);
    EXPECT_EQ(classifier.classify(vectorOf({30, 30})), -1);
}

TEST(LDAClassifier, hasThePowerOfItsFormula)
{
    std::mt19937 random(3);
    std::vector<std::vector<VectorXd>> classes(3);
    LDAClassifier classifier;
    classifier.init(4, 3);
    for (unsigned long c = 0; c < 3; ++c)
        for (int n = 0; n < 50; ++n) {
            double const a = draw(random);
            classes[c].push_back(vectorOf({a, draw(random) + 0.3 * static_cast<double>(c), 0.5 * a + draw(random),
                                           2 * draw(random) - static_cast<double>(c)}));
            classifier.train(classes[c].back(), c);
        }
    classifier.finalize();
    for (std::vector<long> const& set :
         {std::vector<long>{0}, {1}, {2}, {3}, {0, 1}, {1, 3}, {0, 2, 3}, {0, 1, 2, 3}}) {
        EXPECT_NEAR(classifier.computeSeparationPower(set), plainPower(classes, set), 1e-9);
        std::vector<long> const reversed(set.rbegin(), set.rend());
        EXPECT_EQ(classifier.computeSeparationPower(set), classifier.computeSeparationPower(reversed));
    }
    for (long k = 0; k < 4; ++k)
        EXPECT_EQ(classifier.getPower(k), classifier.computeSeparationPower({k}));
    EXPECT_EQ(classifier.computeSeparationPower({}), 0.0);
}

TEST(LDAClassifier, keepsEachFeatureThatRaisesThePowerEnough)
{
    // The selection again, from powers alone.
    for (double const least : {0.0, 0.001, 0.02, 0.05, 0.5}) {
        LDAClassifier classifier;
        classifier.init(5, 3);
        trainThreeClasses(classifier, 5);
        classifier.setMinimumRelativeImprovement(least);
        classifier.finalize();
        std::vector<long> order{0, 1, 2, 3, 4};
        std::stable_sort(order.begin(), order.end(),
                         [&](long a, long b) { return classifier.getPower(a) > classifier.getPower(b); });
        std::vector<long> set{order[0]};
        double current = classifier.getPower(order[0]);
        for (std::size_t i = 1; i < order.size(); ++i) {
            if (classifier.getPower(order[i]) == -1.0)
                continue;
            set.push_back(order[i]);
            double const power = classifier.computeSeparationPower(set);
            if (power != -1.0 && (power - current) / current >= least)
                current = power;
            else
                set.pop_back();
        }
        EXPECT_EQ(classifier.getClassicationSpaceDimension(), static_cast<long>(set.size()));
        for (long k = 0; k < 5; ++k)
            EXPECT_EQ(classifier.isUsedFeature(k), std::find(set.begin(), set.end(), k) != set.end()) << least << k;
    }
}

TEST(LDAClassifier, takesTheFirstOfEqualFeatures)
{
    LDAClassifier classifier;
    classifier.init(3, 2);
    std::mt19937 random(1);
    for (int n = 0; n < 20; ++n)
        for (unsigned long c = 0; c < 2; ++c) {
            double const a = draw(random) + static_cast<double>(c);
            classifier.train(vectorOf({0.0, a, a}), c);
        }
    classifier.finalize();
    EXPECT_EQ(classifier.getPower(1), classifier.getPower(2));
    EXPECT_TRUE(classifier.isUsedFeature(1));
    EXPECT_FALSE(classifier.isUsedFeature(2)); // together they have no rank
}

TEST(LDAClassifier, takesTheFirstFeatureWhereNoneHasAnyPower)
{
    LDAClassifier classifier;
    classifier.init(3, 2);
    for (unsigned long c = 0; c < 2; ++c)
        for (int n = 0; n < 5; ++n)
            classifier.train(vectorOf({1, 2, 3}), c);
    classifier.finalize();
    EXPECT_EQ(classifier.getPower(0), -1.0);
    EXPECT_TRUE(classifier.isUsedFeature(0));
    EXPECT_FALSE(classifier.isUsedFeature(1));
    EXPECT_EQ(classifier.getClassicationSpaceDimension(), 1);
    EXPECT_EQ(classifier.classify(vectorOf({1})), -1);
}

TEST(LDAClassifier, keepsWhatFollowsAPowerOfZero)
{
    // Both classes are alike in both features, so that all powers are 0, and a gain is NaN.
    LDAClassifier classifier;
    classifier.init(2, 2);
    for (unsigned long c = 0; c < 2; ++c)
        for (double const a : {-1.0, 1.0})
            for (double const b : {-1.0, 1.0})
                classifier.train(vectorOf({a, b}), c);
    classifier.finalize();
    EXPECT_EQ(classifier.getPower(0), 0.0);
    EXPECT_EQ(classifier.getPower(1), 0.0);
    EXPECT_TRUE(classifier.isUsedFeature(0));
    EXPECT_TRUE(classifier.isUsedFeature(1));
}

TEST(LDAClassifier, countsADistanceThatRoundingMadeNegativeAsNone)
{
    // Classes that are alike: the distance is the logarithm of 1, or of what rounding makes of it.
    for (unsigned int seed = 0; seed < 50; ++seed) {
        LDAClassifier classifier;
        classifier.init(1, 2);
        std::mt19937 random(seed);
        for (int n = 0; n < 7; ++n) {
            VectorXd const sample = vectorOf({draw(random)});
            classifier.train(sample, 0);
            classifier.train(sample, 1);
        }
        classifier.finalize();
        EXPECT_GE(classifier.getPower(0), 0.0);
        EXPECT_LT(classifier.getPower(0), 1e-6);
    }
}

TEST(LDAClassifier, raisesTheVarianceOfAClassThatIsNearlyConstant)
{
    LDAClassifier classifier;
    classifier.init(1, 2);
    for (double const x : {1.0, 1.0, 1.0, 1.0})
        classifier.train(vectorOf({x}), 0);
    for (double const x : {-3.0, 5.0, -3.0, 5.0})
        classifier.train(vectorOf({x}), 1);
    classifier.finalize();
    // All samples: mean 1, variance 8.
    EXPECT_DOUBLE_EQ(classifier.getLearningModel(0).getCovarianceMatrix()(0, 0), 8e-4);
    EXPECT_DOUBLE_EQ(classifier.getLearningModel(0).getInverseCovarianceMatrix()(0, 0), 1 / 8e-4);
    EXPECT_DOUBLE_EQ(classifier.getLearningModel(0).getDeterminantTerm(), -std::log(8e-4));
    EXPECT_EQ(classifier.getLearningModel(1).getCovarianceMatrix()(0, 0), 16);
    // It stays where more samples come.
    classifier.startTraining();
    EXPECT_DOUBLE_EQ(classifier.getLearningModel(0).getCovarianceOrSum()(0, 0), 4 * (1 + 8e-4));
}

TEST(LDAClassifier, scoresByTheLogarithmOfTheDeterminantLessTheDistance)
{
    // Means -1 and 3, variances 1 and 4: the scores are 0 - (x + 1)^2 and log 4 - (x - 3)^2 / 4.
    auto const classifier = twoClasses(-1, 1, 3, 2);
    EXPECT_EQ(classifier->classify(vectorOf({-1.0})), 0);
    EXPECT_EQ(classifier->classify(vectorOf({0.0})), 1); // -1 and -0.86: with minus log 4 the first would win
    EXPECT_EQ(classifier->classify(vectorOf({2.0})), 1);
}

TEST(LDAClassifier, leavesATieToTheLowerClass)
{
    auto const classifier = twoClasses(-1, 1, 1, 1);
    EXPECT_EQ(classifier->classify(vectorOf({0.0})), 0);
    EXPECT_EQ(classifier->classify(vectorOf({0.25})), 1);
}

TEST(LDAClassifier, rejectsWhatIsTooFarFromEachClass)
{
    auto const classifier = twoClasses(-10, 1, 10, 1);
    EXPECT_EQ(classifier->classify(vectorOf({-13.0})), 0); // at the very distance
    EXPECT_EQ(classifier->classify(vectorOf({-13.01})), -1);
    EXPECT_EQ(classifier->classify(vectorOf({0.0})), -1);
    classifier->setSquaredRejectionDistance(1.0);
    EXPECT_EQ(classifier->classify(vectorOf({-11.0})), 0);
    EXPECT_EQ(classifier->classify(vectorOf({-11.01})), -1);
    EXPECT_EQ(classifier->classify(vectorOf({std::numeric_limits<double>::quiet_NaN()})), -1);
    EXPECT_EQ(classifier->classify(vectorOf({std::numeric_limits<double>::infinity()})), -1);
}

TEST(LDAClassifier, classifiesWithManyFeatures)
{
    // More than what the decision keeps on its stack. Two classes of variance 100 around 0 and 1.
    long const dimension = 150;
    auto const model = [](double mean) {
        std::string bytes = bytesOf(dimension) + bytesOf(dimension) + bytesOf(1l);
        for (long i = 0; i < dimension; ++i)
            bytes += bytesOf(mean);
        bytes += bytesOf(dimension) + bytesOf(dimension);
        for (long i = 0; i < dimension; ++i)
            for (long j = 0; j < dimension; ++j)
                bytes += bytesOf(i == j ? 100.0 : 0.0);
        return bytes + bytesOf(10ul) + '\1';
    };
    std::string bytes = '\2' + bytesOf(dimension) + bytesOf(2l) + bytesOf(dimension);
    for (double const mean : {0.0, 0.0, 1.0, 1.0, 0.5})
        bytes += model(mean);
    bytes += bytesOf(dimension);
    for (long i = 0; i < dimension; ++i)
        bytes += bytesOf(0.5) + '\1';
    LDAClassifier classifier;
    readFrom(bytes + bytesOf(0.01), classifier);
    EXPECT_EQ(classifier.classify(VectorXd::Constant(dimension, 0.25)), 0);
    EXPECT_EQ(classifier.classify(VectorXd::Constant(dimension, 0.75)), 1);
    VectorXd features = VectorXd::Zero(dimension);
    features(dimension - 1) = 29; // the last one counts too
    EXPECT_EQ(classifier.classify(features), 0);
    features(dimension - 1) = 31;
    EXPECT_EQ(classifier.classify(features), -1);
}

TEST(LDAClassifier, goesOnWithAClassThatHasNoSamples)
{
    LDAClassifier classifier;
    classifier.init(2, 3);
    std::mt19937 random(2);
    for (int n = 0; n < 20; ++n)
        for (unsigned long c : {0ul, 2ul})
            classifier.train(vectorOf({draw(random) + static_cast<double>(c), draw(random)}), c);
    classifier.finalize();
    EXPECT_TRUE(classifier.finalized());
    EXPECT_TRUE(std::isnan(classifier.getLearningModel(1).getMeanVector()(0)));
    EXPECT_EQ(classifier.getPower(0), -1.0);
    EXPECT_TRUE(classifier.isUsedFeature(0));
    EXPECT_EQ(classifier.classify(vectorOf({0.5})), 0);
    EXPECT_EQ(classifier.classify(vectorOf({2.5})), 2);
    // The sums of no samples were lost with the division by 0: a second pass does not bring the class back.
    classifier.startTraining();
    for (int n = 0; n < 20; ++n)
        for (unsigned long c : {0ul, 1ul, 2ul})
            classifier.train(vectorOf({draw(random) + static_cast<double>(c), draw(random)}), c);
    classifier.finalize();
    EXPECT_EQ(classifier.getLearningModel(1).getCount(), 20u);
    EXPECT_TRUE(std::isnan(classifier.getLearningModel(1).getMeanVector()(0)));
    EXPECT_EQ(classifier.getLearningModel(2).getCount(), 40u);
    EXPECT_EQ(classifier.getPower(0), -1.0);
    EXPECT_EQ(classifier.getClassicationSpaceDimension(), 1);
    EXPECT_TRUE(classifier.isUsedFeature(0));
    EXPECT_EQ(classifier.classify(vectorOf({0.5})), 0);
    EXPECT_EQ(classifier.classify(vectorOf({2.5})), 2);
}

TEST(LDAClassifier, goesOnWithoutAnySample)
{
    LDAClassifier classifier;
    classifier.init(2, 2);
    classifier.finalize();
    EXPECT_TRUE(classifier.finalized());
    EXPECT_EQ(classifier.getClassicationSpaceDimension(), 1);
    EXPECT_EQ(classifier.classify(vectorOf({0.0})), -1);
}

TEST(LDAClassifier, addsTheSamplesOfASecondTraining)
{
    LDAClassifier once;
    once.init(5, 3);
    trainThreeClasses(once, 1);
    trainThreeClasses(once, 2);
    once.finalize();
    LDAClassifier twice;
    twice.init(5, 3);
    twice.startTraining(); // nothing to reopen
    trainThreeClasses(twice, 1);
    twice.finalize();
    twice.startTraining();
    EXPECT_EQ(twice.getStatus(), LDAClassifier::IN_TRAINING);
    EXPECT_QEL_THROW(twice.getClassicationSpaceDimension(), InvalidCall,
                     "Call getClassicationSpaceDimension while the model is not finalized.");
    EXPECT_EQ(twice.getClassificationModel(0).getCount(), 0u);
    trainThreeClasses(twice, 2);
    twice.finalize();
    for (long c = 0; c < 3; ++c) {
        EXPECT_EQ(twice.getLearningModel(c).getCount(), 400u);
        EXPECT_TRUE(twice.getLearningModel(c).getMeanVector().isApprox(once.getLearningModel(c).getMeanVector()));
    }
    for (long k = 0; k < 5; ++k)
        EXPECT_EQ(twice.isUsedFeature(k), once.isUsedFeature(k));
}

TEST(LDAClassifier, choosesFeaturesAnewAfterASecondTraining)
{
    LDAClassifier classifier;
    classifier.init(2, 2);
    std::mt19937 random(4);
    auto const train = [&](int count, double first, double second) {
        for (int n = 0; n < count; ++n)
            for (unsigned long c = 0; c < 2; ++c)
                classifier.train(vectorOf({draw(random) + first * static_cast<double>(c),
                                           draw(random) + second * static_cast<double>(c)}),
                                 c);
    };
    classifier.setMinimumRelativeImprovement(0.5);
    train(20, 3, 0);
    classifier.finalize();
    EXPECT_TRUE(classifier.isUsedFeature(0));
    EXPECT_FALSE(classifier.isUsedFeature(1));
    classifier.startTraining();
    train(2000, 0, 3);
    classifier.finalize();
    EXPECT_FALSE(classifier.isUsedFeature(0));
    EXPECT_TRUE(classifier.isUsedFeature(1));
}

TEST(LDAClassifier, joinsPartners)
{
    LDAClassifier whole;
    whole.init(5, 3);
    whole.setMinimumRelativeImprovement(0.2);
    whole.setSquaredRejectionDistance(4.0);
    std::unique_ptr<LDAClassifier> const partner(whole.New(true));
    EXPECT_EQ(partner->getStatus(), LDAClassifier::IN_TRAINING);
    EXPECT_EQ(partner->getLearningSpaceDimension(), 5);
    EXPECT_EQ(partner->getNumOfClasses(), 3);
    EXPECT_EQ(partner->getMinimumRelativeImprovement(), 0.2);
    EXPECT_EQ(partner->getSquaredRejectionDistance(), 4.0);
    trainThreeClasses(whole, 1);
    trainThreeClasses(*partner, 2);
    whole.join(partner.get());
    EXPECT_EQ(whole.getLearningModel(0).getCount(), 400u);
    LDAClassifier plain;
    plain.init(5, 3);
    trainThreeClasses(plain, 1);
    trainThreeClasses(plain, 2);
    EXPECT_TRUE(
        whole.getLearningModel(1).getCovarianceOrSum().isApprox(plain.getLearningModel(1).getCovarianceOrSum()));

    std::unique_ptr<LDAClassifier> const fresh(whole.New(false));
    EXPECT_EQ(fresh->getStatus(), LDAClassifier::UNINITIALIZED);
    EXPECT_EQ(fresh->getMinimumRelativeImprovement(), 0.01);
}

TEST(LDAClassifier, refusesPartnersThatAreNone)
{
    LDAClassifier classifier;
    classifier.init(2, 2);
    EXPECT_QEL_THROW(classifier.join(nullptr), RuntimeError,
                     "AbstractSupervisedClassifier must be of type LDAClassifier");
    StrangeClassifier strange;
    EXPECT_QEL_THROW(classifier.join(&strange), RuntimeError,
                     "AbstractSupervisedClassifier must be of type LDAClassifier");
    LDAClassifier other;
    EXPECT_QEL_THROW(classifier.join(&other), RuntimeError, "cannot join 2 gaussian models finalized or uninitialized");
    EXPECT_QEL_THROW(other.join(&classifier), RuntimeError, "cannot join 2 gaussian models finalized or uninitialized");
    other.init(3, 2);
    EXPECT_QEL_THROW(classifier.join(&other), RuntimeError, "cannot join 2 gaussian models with different dimension");
    other.init(2, 3);
    EXPECT_QEL_THROW(classifier.join(&other), RuntimeError,
                     "cannot join 2 gaussian models with different number of classes");
    other.init(2, 2);
    other.finalize();
    EXPECT_QEL_THROW(classifier.join(&other), RuntimeError, "cannot join 2 gaussian models finalized or uninitialized");
}

TEST(LDAClassifier, clonesWithAllSamples)
{
    LDAClassifier classifier;
    classifier.init(5, 3);
    trainThreeClasses(classifier);
    classifier.setSquaredRejectionDistance(16.0);
    classifier.finalize();
    std::unique_ptr<LDAClassifier> const copy(classifier.clone());
    EXPECT_EQ(written(*copy), written(classifier));
    EXPECT_EQ(copy->getSquaredRejectionDistance(), 16.0);
    classifier.startTraining();
    EXPECT_TRUE(copy->finalized());
    EXPECT_EQ(copy->getLearningModel(0).getCount(), 200u);
    EXPECT_TRUE(copy->getLearningModel(0).isFinalized());
}

TEST(LDAClassifier, isWrittenFieldByField)
{
    auto const model = [](long dimension, std::initializer_list<double> mean, std::initializer_list<double> covariance,
                          unsigned long count, bool isFinalized) {
        std::string bytes = bytesOf(dimension) + bytesOf(dimension) + bytesOf(1l);
        for (double const value : mean)
            bytes += bytesOf(value);
        bytes += bytesOf(dimension) + bytesOf(dimension);
        for (double const value : covariance)
            bytes += bytesOf(value);
        return bytes + bytesOf(count) + bytesOf(isFinalized);
    };
    LDAClassifier fresh;
    EXPECT_EQ(written(fresh), '\0' + bytesOf(0l) + bytesOf(0l) + bytesOf(0l) + model(0, {}, {}, 0, false) +
                                  bytesOf(0ul) + bytesOf(0.01));
    auto const classifier = twoClasses(-1, 1, 1, 2);
    classifier->setMinimumRelativeImprovement(0.05);
    EXPECT_EQ(written(*classifier), '\2' + bytesOf(1l) + bytesOf(2l) + bytesOf(1l) +                  //
                                        model(1, {-1}, {1}, 2, true) + model(1, {-1}, {1}, 2, true) + //
                                        model(1, {1}, {4}, 2, true) + model(1, {1}, {4}, 2, true) +   //
                                        model(1, {0}, {3.5}, 4, true) +                               //
                                        bytesOf(1ul) + bytesOf(classifier->getPower(0)) + '\1' + bytesOf(0.05));
}

TEST(LDAClassifier, readsWhatItWrote)
{
    LDAClassifier classifier;
    LDAClassifier copy;
    readFrom(written(classifier), copy);
    EXPECT_EQ(copy.getStatus(), LDAClassifier::UNINITIALIZED);
    classifier.init(5, 3);
    trainThreeClasses(classifier);
    std::string const inTraining = written(classifier);
    readFrom(inTraining, copy);
    EXPECT_EQ(written(copy), inTraining);
    EXPECT_EQ(copy.getStatus(), LDAClassifier::IN_TRAINING);
    classifier.finalize();
    copy.finalize();
    EXPECT_EQ(written(copy), written(classifier));
    classifier.setSquaredRejectionDistance(25);
    LDAClassifier again;
    readFrom(written(classifier), again);
    EXPECT_EQ(written(again), written(classifier));
    EXPECT_EQ(again.getSquaredRejectionDistance(), 9.0); // it is not stored
    std::mt19937 random(11);
    classifier.setSquaredRejectionDistance(9);
    for (int n = 0; n < 100; ++n) {
        VectorXd features(classifier.getClassicationSpaceDimension());
        for (long i = 0; i < features.size(); ++i)
            features(i) = 5 * draw(random);
        EXPECT_EQ(again.classify(features), classifier.classify(features));
    }
    again.startTraining();
    std::string const reopened = written(again);
    readFrom(reopened, copy);
    EXPECT_EQ(written(copy), reopened);
}

TEST(LDAClassifier, refusesFilesThatDisagreeWithThemselves)
{
    auto const classifier = twoClasses(-1, 1, 1, 2);
    std::string const good = written(*classifier);
    auto const isRefused = [](std::string const& bytes) {
        LDAClassifier target;
        try {
            readFrom(bytes, target);
            return false;
        } catch (archive::Corrupted const&) {
            return true;
        }
    };
    auto const with = [&good](std::size_t place, std::string const& bytes) {
        std::string changed = good;
        return changed.replace(place, bytes.size(), bytes);
    };
    ASSERT_FALSE(isRefused(good));
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_TRUE(isRefused(good.substr(0, length))) << length;
    EXPECT_TRUE(isRefused(with(0, "\3")));              // status
    EXPECT_TRUE(isRefused(with(0, std::string(1, 0)))); // nothing was initialised
    for (long const value : {-1l, 0l, 2l, 1l << 40, -(1l << 40)})
        EXPECT_TRUE(isRefused(with(1, bytesOf(value)))) << value; // learning dimension
    for (long const value : {-1l, 0l, 1l, 3l, 1l << 40, std::numeric_limits<long>::min()})
        EXPECT_TRUE(isRefused(with(9, bytesOf(value)))) << value; // classes
    for (long const value : {-1l, 0l, 2l})
        EXPECT_TRUE(isRefused(with(17, bytesOf(value)))) << value; // classification dimension
    std::size_t const model = 6 * 8 + 1 + 2 * 8;
    std::size_t const features = 25 + 5 * model;
    for (unsigned long const value : {0ul, 2ul, ~0ul})
        EXPECT_TRUE(isRefused(with(features, bytesOf(value)))) << value;
    EXPECT_TRUE(isRefused(with(features + 16, std::string(1, 0)))); // no feature is used
    EXPECT_FALSE(isRefused(with(features + 16, "\x7f")));           // any byte but 0 is true
}
