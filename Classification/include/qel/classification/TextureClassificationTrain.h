#pragma once

#include <qel/Algorithm.h>

namespace qel::classification {

class TextureClassificationModel;

/// Teaches a model of texture classes from an image whose voxels are partly labelled.
///
/// `input`: any of the ten real voxel types, with one spectral series. `mask`: of an integer type, a label image of the
/// columns, rows, plans and time series of `input`; a label from 1 to the model's number of classes marks a voxel as a
/// sample of that class, 0 as none. In MODE_2D windows lie within plans, in MODE_3D in the volume; beyond the image
/// lies its mirror image.
///
/// `rejectionFeatureSelection` (0.05, at least 0): a feature is used if it raises the power to tell the classes by this
/// part; see the list of selected features in the model's report. `finalizeTraining` (true): kept for callers that set
/// it; a training is always completed.
///
/// `classificationModel`: the model; a second training adds its samples to those of the first, and chooses the features
/// anew. Where its minimum grey level is above the maximum, the range of `input` is used, and for a bin size of 0 or
/// less a 20th (co-occurrence) or a 256th (histogram) of the range, rounded up; the model keeps its own values, so that
/// such a model suits no application. A class without samples is no failure, but then no feature tells the classes, and
/// no later training brings the class back: its mean has become NaN. A run that fails or is cancelled leaves the model
/// as it was. A model has the same bits for every number of threads.
///
/// Throws RuleException on what is not allowed, InvalidCall on a model without measures or needed directions, on a
/// direction that is longer than the window and on a label that is negative or beyond the number of classes,
/// RuntimeError on a model that was not created.
///
/// Reference: R. M. Haralick, K. Shanmugam, I. Dinstein, "Textural features for image classification", IEEE Trans. SMC
/// 3(6):610-621, 1973.
class QEL_API TextureClassificationTrain : public BaseAlgorithm
{
    QEL_ALGORITHM(TextureClassificationTrain)

public:
    Property<ImageModel const*> input;
    Property<ImageModel const*> mask;
    Property<double> rejectionFeatureSelection;
    Property<bool> finalizeTraining;
    Property<TextureClassificationModel*> classificationModel;
};

} // namespace qel::classification
