#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/classification/ComputeMode.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/segmentation/TextureFeatureGroup.h>

namespace qel::classification {

class TextureClassificationModel;

/// Makes a model that tells classes of texture, ready to be trained.
///
/// `computeMode` (a ComputeMode, default MODE_2D). `numOfClasses` (default 2, at least that). `radius` of the window
/// around a voxel (voxels, default 5). `textureFeaturesGroup`: the measures, at least one.
///
/// For co-occurrence measures: `minGreyLevelCooccurrence` (0) to `maxGreyLevelCooccurrence` (255), the range of the
/// grey levels, cut into bins of `binSizeCooccurrence` (16); values outside go to the first and last bin.
/// `direction2DCollection` or `direction3DCollection`: the steps between the two voxels of a pair, at least one.
///
/// For histogram measures: `minGreyLevelHistogram` (0) to `maxGreyLevelHistogram` (255), cut into bins of
/// `binSizeHistogram` (1); values outside do not count. `userQuantileRatioHistogram`: the ratios of HISTO_QuantileR1 to
/// HISTO_QuantileR6; those not above 0 become 0.2, 0.3, 0.4, 0.6, 0.7, 0.8.
///
/// In both a minimum above the maximum asks the training for the range of its image, and a bin size of 0 or less for a
/// size that suits the range; see TextureClassificationTrain.
///
/// `classificationModel`: where the new model is put, which the caller deletes; left alone by a run that fails.
///
/// Throws RuleException on a value that is not allowed, RuntimeError "The learning space dimension must be greater than
/// 0" where all measures are taken for each direction and there is none, MemoryError where the model is too large.
class QEL_API TextureClassificationCreate : public BaseAlgorithm
{
    QEL_ALGORITHM(TextureClassificationCreate)

public:
    PropertyEnumeration computeMode;
    Property<unsigned int> numOfClasses;
    Property<unsigned int> radius;
    Property<segmentation::TextureFeatureGroup> textureFeaturesGroup;
    Property<double> minGreyLevelCooccurrence;
    Property<double> maxGreyLevelCooccurrence;
    Property<double> binSizeCooccurrence;
    Property<container::Vector<math::Vector2<int>>> direction2DCollection;
    Property<container::Vector<math::Vector3<int>>> direction3DCollection;
    Property<double> minGreyLevelHistogram;
    Property<double> maxGreyLevelHistogram;
    Property<double> binSizeHistogram;
    Property<container::Vector<double>> userQuantileRatioHistogram;
    Property<TextureClassificationModel**> classificationModel;
};

} // namespace qel::classification
