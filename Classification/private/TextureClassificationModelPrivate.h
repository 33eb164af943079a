#pragma once

#include <memory>

#include <qel/String.h>
#include <qel/classification/ComputeMode.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/segmentation/TextureFeatureGroup.h>

#include "Classification/private/AbstractSupervisedClassifier.h"

namespace qel::classification {

/// What a model holds. Only the directions of its mode are in use.
class TextureClassificationModelPrivate
{
public:
    TextureClassificationModelPrivate();
    virtual ~TextureClassificationModelPrivate();

    /// Whether a measure is taken for each direction by itself.
    static bool isPerDirection(segmentation::TextureFeatureTypes measure);

    unsigned long getNumOfDirections() const;
    /// How many features there are: one for each measure, or one for each of its directions.
    unsigned long getLearningSpaceDimension() const;
    /// The report of the model.
    String getInfo() const;

    /// Writes it to, or reads it from, an archive, as the version of the file has it: all that stands behind the
    /// version. Throws SerializationException on what a version cannot hold and on another classifier, and
    /// archive::Corrupted.
    template <class Archive> void serialize(Archive& archive, unsigned short version);

    ComputeMode computeMode = MODE_2D;
    int numOfClasses = 2;
    unsigned int radius = 5;
    segmentation::TextureFeatureGroup measures;
    double minGreyLevelCooccurrence = 0;
    double maxGreyLevelCooccurrence = 255;
    double binSizeCooccurrence = 16;
    container::Vector<math::Vector2<int>> directions2D;
    container::Vector<math::Vector3<int>> directions3D;
    double minGreyLevelHistogram = 0;
    double maxGreyLevelHistogram = 255;
    double binSizeHistogram = 1;
    container::Vector<double> userQuantileRatios;
    std::unique_ptr<AbstractSupervisedClassifier> classifier; // none after a file that could not be read
};

} // namespace qel::classification
