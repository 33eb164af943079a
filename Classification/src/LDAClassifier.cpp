#include "Classification/private/LDAClassifier.h"

#include "Core/private/Serialization/BinaryArchive.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/devices/Cpu.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace qel::classification {

namespace {

/// What `computeSeparationPower` gives where a power cannot be told.
constexpr double NO_POWER = -1.0;

/// A global variance below this is no measure for the variances of the classes.
constexpr double SMALLEST_VARIANCE = 1e-30;

} // namespace

LDAClassifier::LDAClassifier()
    : m_status(UNINITIALIZED)
    , m_learningDimension(0)
    , m_numOfClasses(0)
    , m_globalModel(boost::make_shared<Estimator>())
    , m_classificationDimension(0)
    , m_minimumRelativeImprovement(0.01)
    , m_squaredRejectionDistance(9.0)
    , m_varianceFloorRatio(0.01)
{}

LDAClassifier::~LDAClassifier() = default;

LDAClassifier* LDAClassifier::New(bool copy) const
{
    auto classifier = std::make_unique<LDAClassifier>();
    if (copy) {
        classifier->init(m_learningDimension, m_numOfClasses);
        classifier->m_minimumRelativeImprovement = m_minimumRelativeImprovement;
        classifier->m_squaredRejectionDistance = m_squaredRejectionDistance;
        classifier->m_varianceFloorRatio = m_varianceFloorRatio;
    }
    return classifier.release();
}

LDAClassifier* LDAClassifier::clone() const
{
    auto classifier = std::make_unique<LDAClassifier>();
    auto const copyOf = [](Models const& models) {
        Models copies;
        for (auto const& model : models)
            copies.push_back(boost::make_shared<Estimator>(*model));
        return copies;
    };
    classifier->m_status = m_status;
    classifier->m_learningDimension = m_learningDimension;
    classifier->m_numOfClasses = m_numOfClasses;
    classifier->m_learningModels = copyOf(m_learningModels);
    classifier->m_classificationModels = copyOf(m_classificationModels);
    classifier->m_globalModel = boost::make_shared<Estimator>(*m_globalModel);
    classifier->m_features = m_features;
    classifier->m_classificationDimension = m_classificationDimension;
    classifier->m_minimumRelativeImprovement = m_minimumRelativeImprovement;
    classifier->m_squaredRejectionDistance = m_squaredRejectionDistance;
    classifier->m_varianceFloorRatio = m_varianceFloorRatio;
    return classifier.release();
}

void LDAClassifier::init(long learningDimension, long numClasses)
{
    if (learningDimension <= 0)
        QEL_THROW(RuntimeError, "The learning space dimension must be greater than 0");
    if (numClasses < 2)
        QEL_THROW(RuntimeError, "The number of classes must be greater than 1");
    // Each model has two square matrices. What the machine cannot hold is refused before it is touched.
    double const size = static_cast<double>(learningDimension);
    if ((2.0 * static_cast<double>(numClasses) + 1) * 2 * size * size * sizeof(double) >
        static_cast<double>(devices::Cpu::getDevice().getTotalMemory()))
        throw std::bad_alloc();
    auto const newModels = [&] {
        Models models;
        for (long i = 0; i < numClasses; ++i)
            models.push_back(boost::make_shared<Estimator>(learningDimension));
        return models;
    };
    m_learningModels = newModels();
    m_classificationModels = newModels();
    m_globalModel = boost::make_shared<Estimator>(learningDimension);
    m_features.assign(static_cast<std::size_t>(learningDimension), FeatureInfo());
    m_learningDimension = learningDimension;
    m_numOfClasses = numClasses;
    m_classificationDimension = 0;
    m_status = IN_TRAINING;
}

long LDAClassifier::getLearningSpaceDimension() const
{
    if (m_status == UNINITIALIZED)
        QEL_THROW(InvalidCall, "Call getLearningSpaceDimension while status is UNINITIALIZED.");
    return m_learningDimension;
}

void LDAClassifier::train(Eigen::VectorXd const& sample, unsigned long classIndex)
{
    if (m_status == UNINITIALIZED)
        return;
    m_status = IN_TRAINING;
    m_learningModels[classIndex]->add(sample);
}

void LDAClassifier::join(AbstractSupervisedClassifier* other)
{
    auto const* const partner = dynamic_cast<LDAClassifier const*>(other);
    if (partner == nullptr)
        QEL_THROW(RuntimeError, "AbstractSupervisedClassifier must be of type LDAClassifier");
    if (m_status != IN_TRAINING || partner->m_status != IN_TRAINING)
        QEL_THROW(RuntimeError, "cannot join 2 gaussian models finalized or uninitialized");
    if (m_learningDimension != partner->m_learningDimension)
        QEL_THROW(RuntimeError, "cannot join 2 gaussian models with different dimension");
    if (m_numOfClasses != partner->m_numOfClasses)
        QEL_THROW(RuntimeError, "cannot join 2 gaussian models with different number of classes");
    for (std::size_t i = 0; i < m_learningModels.size(); ++i)
        m_learningModels[i]->joinUnfinalized(*partner->m_learningModels[i]);
}

int LDAClassifier::forceUseFeature(long index, bool use)
{
    static_cast<void>(use);
    if (m_status == UNINITIALIZED)
        QEL_THROW(InvalidCall, "Call getLearningSpaceDimension while status is UNINITIALIZED.");
    if (index < 0 || index >= m_learningDimension)
        QEL_THROW(BadIndex, "index must be less than " << m_learningDimension);
    return 0;
}

void LDAClassifier::finalize()
{
    if (m_status == UNINITIALIZED)
        QEL_THROW(InvalidCall, "Call finalize while status is UNINITIALIZED.");
    m_globalModel->clearToFinalized();
    for (auto const& model : m_learningModels)
        model->finalize();
    for (auto const& model : m_learningModels)
        m_globalModel->join(*model);
    raiseSmallVariances();
    selectFeatures();
    m_status = FINALIZED;
}

/// A class that is nearly constant in a feature would win nothing that differs by a trace.
void LDAClassifier::raiseSmallVariances()
{
    double const floorFactor = m_varianceFloorRatio * m_varianceFloorRatio;
    auto const& globalCovariance = m_globalModel->getCovarianceMatrix();
    for (auto const& model : m_learningModels) {
        bool isRaised = false;
        for (long k = 0; k < m_learningDimension; ++k) {
            double const floor = floorFactor * globalCovariance(k, k);
            if (floor > SMALLEST_VARIANCE && model->getCovarianceMatrix()(k, k) < floor) {
                model->setVariance(k, floor);
                isRaised = true;
            }
        }
        if (isRaised)
            model->inverseCovarianceMatrix();
    }
}

void LDAClassifier::selectFeatures()
{
    std::vector<std::pair<double, long>> candidates;
    for (long k = 0; k < m_learningDimension; ++k) {
        double const power = computeSeparationPower({k});
        candidates.emplace_back(power, k);
        m_features[static_cast<std::size_t>(k)] = FeatureInfo{power, false};
    }
    // Of equal powers the lower index comes first.
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](auto const& left, auto const& right) { return left.first > right.first; });

    std::vector<long> selected{candidates.front().second};
    double current = candidates.front().first;
    for (std::size_t i = 1; i < candidates.size(); ++i) {
        auto const [power, index] = candidates[i];
        if (power == NO_POWER)
            continue;
        selected.push_back(index);
        double const together = computeSeparationPower(selected);
        // A gain over a power of 0 is infinite or NaN: neither is too small.
        bool const isTooSmall = (together - current) / current < m_minimumRelativeImprovement;
        if (together != NO_POWER && !isTooSmall)
            current = together;
        else
            selected.pop_back();
    }
    for (long const index : selected)
        m_features[static_cast<std::size_t>(index)].isUsed = true;
    m_classificationDimension = static_cast<long>(selected.size());
    for (std::size_t i = 0; i < m_learningModels.size(); ++i)
        m_classificationModels[i] = boost::make_shared<Estimator>(m_learningModels[i]->reduce(selected));
}

double LDAClassifier::computeSeparationPower(std::vector<long> const& indices) const
{
    auto const& allMeans = m_globalModel->getMeanVector();
    auto const& allCovariances = m_globalModel->getCovarianceMatrix();
    // In ascending order, as a reduced model has them.
    std::vector<long> sorted(indices);
    std::sort(sorted.begin(), sorted.end());
    Eigen::VectorXd const mean = allMeans(sorted);
    Eigen::MatrixXd const covariance = allCovariances(sorted, sorted);
    double const globalDeterminant = math::determinant(covariance);

    double power = 0;
    for (auto const& model : m_learningModels) {
        Eigen::MatrixXd const classCovariance = model->getCovarianceMatrix()(sorted, sorted);
        Eigen::MatrixXd const average = (covariance + classCovariance) * 0.5;
        if (math::rank(average) < static_cast<long>(sorted.size()))
            return NO_POWER;
        Eigen::VectorXd const difference = mean - model->getMeanVector()(sorted);
        double const squaredDistance = difference.dot(math::inverse(average) * difference);
        double const ratio =
            math::determinant(average) / std::sqrt(globalDeterminant * math::determinant(classCovariance));
        double const distance = squaredDistance * 0.125 + std::log(ratio) * 0.5;
        if (std::isnan(distance))
            return NO_POWER;
        // It is no less than 0, but rounding is.
        power += std::sqrt(1 - std::exp(-std::max(distance, 0.0)));
    }
    return power;
}

bool LDAClassifier::isUsedFeature(long index) const
{
    if (m_status != FINALIZED)
        QEL_THROW(InvalidCall, "Call isUsedFeature while the model is not finalized.");
    if (index < 0 || index >= m_learningDimension)
        QEL_THROW(BadIndex, "index <" << index << "> must be less than " << m_learningDimension);
    return m_features[static_cast<std::size_t>(index)].isUsed;
}

long LDAClassifier::getClassicationSpaceDimension() const
{
    if (m_status != FINALIZED)
        QEL_THROW(InvalidCall, "Call getClassicationSpaceDimension while the model is not finalized.");
    return m_classificationDimension;
}

long LDAClassifier::classify(Eigen::VectorXd const& features) const
{
    long const size = features.size();
    // Asked for each voxel: most vectors are short, and take no memory.
    std::array<double, 128> few;
    std::vector<double> many;
    double* difference = few.data();
    if (size > static_cast<long>(few.size())) {
        many.resize(static_cast<std::size_t>(size));
        difference = many.data();
    }

    double bestScore = std::numeric_limits<double>::lowest();
    long bestClass = -1;
    for (long c = 0; c < m_numOfClasses; ++c) {
        Estimator const& model = *m_classificationModels[static_cast<std::size_t>(c)];
        double const* const mean = model.getMeanOrSum().data();
        for (long i = 0; i < size; ++i)
            difference[i] = features(i) - mean[i];
        double squaredDistance = 0;
        double const* column = model.getInverseCovarianceMatrix().data();
        for (long j = 0; j < size; ++j, column += size) {
            double sum = 0;
            for (long i = 0; i < size; ++i)
                sum += difference[i] * column[i];
            squaredDistance += sum * difference[j];
        }
        double const score = -model.getDeterminantTerm() - squaredDistance;
        if (score > bestScore && !(squaredDistance > m_squaredRejectionDistance)) {
            bestScore = score;
            bestClass = c;
        }
    }
    return bestClass;
}

String LDAClassifier::getInfo() const
{
    if (m_status != FINALIZED)
        QEL_THROW(InvalidCall, "Call getInfo while the model is not finalized.");
    return String();
}

void LDAClassifier::startTraining()
{
    if (m_status == UNINITIALIZED)
        QEL_THROW(RuntimeError, "Cannot start a training on an uninitialized classification");
    if (m_status != FINALIZED)
        return;
    for (auto const& model : m_learningModels)
        model->reopen();
    for (auto const& model : m_classificationModels)
        model->clear();
    m_globalModel->clear();
    m_classificationDimension = 0;
    m_status = IN_TRAINING;
}

template <class Archive> void LDAClassifier::serialize(Archive& archive)
{
    constexpr unsigned long leastModelSize = 6 * sizeof(long) + 1;
    auto const check = []([[maybe_unused]] bool isRight) {
        if constexpr (Archive::isReading)
            if (!isRight)
                throw archive::Corrupted();
    };

    unsigned char status = static_cast<unsigned char>(m_status);
    serialization::serialize(archive, status);
    check(status <= FINALIZED);
    serialization::serialize(archive, m_learningDimension);
    serialization::serialize(archive, m_numOfClasses);
    serialization::serialize(archive, m_classificationDimension);
    // What init leaves and what the constructor leaves.
    check(status == UNINITIALIZED ? m_learningDimension == 0 && m_numOfClasses == 0
                                  : m_learningDimension > 0 && m_numOfClasses > 1);
    check(m_classificationDimension >= (status == FINALIZED ? 1 : 0));
    check(m_classificationDimension <= m_learningDimension);
    if constexpr (Archive::isReading) {
        archive.checkRoomFor(static_cast<unsigned long>(m_numOfClasses), 2 * leastModelSize);
        m_status = static_cast<Status>(status);
        m_learningModels.clear();
        m_classificationModels.clear();
        m_features.clear();
    }

    auto const serializeModel = [&](Models& models, long index) -> Estimator& {
        if constexpr (Archive::isReading)
            models.push_back(boost::make_shared<Estimator>());
        Estimator& model = *models[static_cast<std::size_t>(index)];
        model.serialize(archive);
        return model;
    };
    for (long c = 0; c < m_numOfClasses; ++c) {
        check(serializeModel(m_learningModels, c).getDimension() == m_learningDimension);
        long const dimension = serializeModel(m_classificationModels, c).getDimension();
        check(status != FINALIZED || dimension == m_classificationDimension);
    }
    m_globalModel->serialize(archive);
    check(m_globalModel->getDimension() == m_learningDimension);

    unsigned long numOfFeatures = m_features.size();
    serialization::serialize(archive, numOfFeatures);
    check(numOfFeatures == static_cast<unsigned long>(m_learningDimension));
    if constexpr (Archive::isReading) {
        archive.checkRoomFor(numOfFeatures, sizeof(double) + 1);
        m_features.resize(numOfFeatures);
    }
    long numOfUsed = 0;
    for (FeatureInfo& feature : m_features) {
        serialization::serialize(archive, feature.power);
        serialization::serialize(archive, feature.isUsed);
        numOfUsed += feature.isUsed;
    }
    check(status != FINALIZED || numOfUsed == m_classificationDimension);
    serialization::serialize(archive, m_minimumRelativeImprovement);
}

template void LDAClassifier::serialize(archive::BinaryInputArchive& archive);
template void LDAClassifier::serialize(archive::BinaryOutputArchive& archive);

} // namespace qel::classification
