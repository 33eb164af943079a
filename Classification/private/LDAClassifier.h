#pragma once

#include <boost/shared_ptr.hpp>

#include <vector>

#include "Classification/private/AbstractSupervisedClassifier.h"
#include "Math/private/GaussianModelEstimator.h"

namespace qel::classification {

/// One Gaussian for each class, over the features that tell the classes best from all the data.
///
/// Features are chosen greedily: in the order of their power, each one that raises the power of the set by the least
/// relative improvement stays. The power of a set is the sum over the classes of sqrt(1 - exp(-B)), with B the
/// Bhattacharyya distance (A. Bhattacharyya, On a measure of divergence between two statistical populations, 1943)
/// between the class and the data of all classes.
class LDAClassifier : public AbstractSupervisedClassifier
{
public:
    using Estimator = math::GaussianModelEstimator<double>;

    enum Status : int
    {
        UNINITIALIZED = 0,
        IN_TRAINING = 1,
        FINALIZED = 2
    };

    LDAClassifier();
    LDAClassifier(LDAClassifier const& other) = delete;
    LDAClassifier& operator=(LDAClassifier const& other) = delete;
    ~LDAClassifier() override;

    LDAClassifier* New(bool copy) const override;
    LDAClassifier* clone() const override;
    /// Throws RuntimeError on a dimension of 0 and on fewer than 2 classes.
    void init(long learningDimension, long numClasses) override;
    /// Throws InvalidCall without init.
    long getLearningSpaceDimension() const override;
    void train(Eigen::VectorXd const& sample, unsigned long classIndex) override;
    /// Throws RuntimeError where `other` is no partner, and where either is not in training.
    void join(AbstractSupervisedClassifier* other) override;
    /// Checks the index, and changes nothing: the choice of features is the classifier's alone.
    int forceUseFeature(long index, bool use) override;
    /// Throws InvalidCall without init.
    void finalize() override;
    bool finalized() const override { return m_status == FINALIZED; }
    bool isUsedFeature(long index) const override;
    long getClassicationSpaceDimension() const override;
    long classify(Eigen::VectorXd const& features) const override;
    /// Empty.
    String getInfo() const override;
    /// Throws RuntimeError without init.
    void startTraining() override;
    long getNumOfClasses() const override { return m_numOfClasses; }

    Status getStatus() const { return m_status; }
    double getMinimumRelativeImprovement() const { return m_minimumRelativeImprovement; }
    void setMinimumRelativeImprovement(double improvement) { m_minimumRelativeImprovement = improvement; }
    double getSquaredRejectionDistance() const { return m_squaredRejectionDistance; }
    void setSquaredRejectionDistance(double distance) { m_squaredRejectionDistance = distance; }
    Estimator const& getLearningModel(long classIndex) const { return *m_learningModels[classIndex]; }
    Estimator const& getClassificationModel(long classIndex) const { return *m_classificationModels[classIndex]; }
    /// Of a feature alone, or -1 where it has none.
    double getPower(long index) const { return m_features[index].power; }

    /// How well a set of features tells the classes from all the data; -1.0 where it cannot be told. Throws InvalidCall
    /// where a model is not finalised.
    double computeSeparationPower(std::vector<long> const& indices) const;

    /// Writes it to, or reads it from, an archive, all but its version. Reading throws archive::Corrupted.
    template <class Archive> void serialize(Archive& archive);

private:
    using Models = std::vector<boost::shared_ptr<Estimator>>;

    struct FeatureInfo
    {
        double power = -1.0;
        bool isUsed = false;
    };

    void raiseSmallVariances();
    void selectFeatures();

    Status m_status;
    long m_learningDimension;
    long m_numOfClasses;
    Models m_learningModels;
    Models m_classificationModels;
    boost::shared_ptr<Estimator> m_globalModel;
    std::vector<FeatureInfo> m_features;
    long m_classificationDimension;
    double m_minimumRelativeImprovement;
    double m_squaredRejectionDistance;
    double m_varianceFloorRatio;
};

} // namespace qel::classification
