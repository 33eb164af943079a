#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/classification/ComputeMode.h>
#include <qel/classification/TextonShape.h>

namespace qel::classification {

/// Learns classes of texture from labelled voxels of an image, and labels all its voxels, in one call.
///
/// `input`: any of the ten real voxel types, with one spectral series. `labelImg`: of an integer type, a label image of
/// the columns, rows, plans and time series of `input`. Its largest label is the number of classes, at least 2.
///
/// `computeMode` (a ComputeMode, default MODE_2D). `usedMeasures` (default 4), a sum: 1 for the co-occurrence measures
/// of each direction, 2 for their means, deviations and ranges over the directions, 4 for the histogram measures.
/// `radius` of the window (voxels, default 5). `textonShape` (a TextonShape, default CUBE) and `textonSize` (default
/// 1): the directions of co-occurrence. `rejectionFeatureSelection` (0.05) and `rejection` (3): see
/// TextureClassificationTrain and TextureClassificationApply. Grey levels are those of `input`, in 20 bins for
/// co-occurrence and 256 for histograms, of whole numbers.
///
/// `classifiedImage`: takes sizes, spacing and origin of `input`, and becomes a label image of QEL_UINT16. It may be
/// `labelImg` or `input`, if that has this type and one spectral series. `classificationDetails`: the report of the
/// model that was used.
///
/// Throws RuleException on what is not allowed, InvalidCall "No label defined in label image.", and what training and
/// application throw.
class QEL_API TextureClassificationStandalone : public BaseAlgorithm
{
    QEL_ALGORITHM(TextureClassificationStandalone)

public:
    Property<ImageModel const*> input;
    Property<ImageModel const*> labelImg;
    PropertyEnumeration computeMode;
    Property<unsigned int> usedMeasures;
    Property<unsigned int> radius;
    PropertyEnumeration textonShape;
    Property<unsigned int> textonSize;
    Property<double> rejectionFeatureSelection;
    Property<double> rejection;
    Property<ImageModel*> classifiedImage;
    Property<String> classificationDetails;
};

} // namespace qel::classification
