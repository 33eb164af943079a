#pragma once

#include <Eigen/Core>

#include <qel/String.h>

namespace qel::classification {

/// A classifier that learns from samples of known classes.
///
/// It learns in a space of all features, may choose some of them when it is finalised, and classifies vectors of those.
/// Classes are counted from 0.
class AbstractSupervisedClassifier
{
public:
    virtual ~AbstractSupervisedClassifier();

    /// A new classifier of the same kind, owned by the caller. With `copy` it is an empty partner of this one: of the
    /// same dimension, classes and settings, without its samples.
    virtual AbstractSupervisedClassifier* New(bool copy) const = 0;
    /// A deep copy, owned by the caller.
    virtual AbstractSupervisedClassifier* clone() const = 0;
    virtual void init(long learningDimension, long numClasses) = 0;
    virtual long getLearningSpaceDimension() const = 0;
    /// Adds a sample of a class to what was learned.
    virtual void train(Eigen::VectorXd const& sample, unsigned long classIndex) = 0;
    /// Takes in what a partner has learned.
    virtual void join(AbstractSupervisedClassifier* other) = 0;
    virtual int forceUseFeature(long index, bool use) = 0;
    /// Ends the training: chooses the features and makes the classifier ready to classify.
    virtual void finalize() = 0;
    virtual bool finalized() const = 0;
    /// Whether a feature of the learning space was chosen.
    virtual bool isUsedFeature(long index) const = 0;
    /// How many features were chosen.
    virtual long getClassicationSpaceDimension() const = 0;
    /// The class of a vector of the chosen features, in the order of the learning space; -1 where no class suits. Safe
    /// from several threads at once.
    virtual long classify(Eigen::VectorXd const& features) const = 0;
    /// A report for people.
    virtual String getInfo() const = 0;
    /// To be called before samples are added. A finalised classifier goes on with the samples that it has.
    virtual void startTraining() = 0;
    virtual long getNumOfClasses() const = 0;
};

} // namespace qel::classification
