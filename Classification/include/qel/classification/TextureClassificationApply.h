#pragma once

#include <qel/Algorithm.h>

namespace qel::classification {

class TextureClassificationModel;

/// Labels each voxel with the class that its texture belongs to, by a trained model.
///
/// `input`: any of the ten real voxel types, with one spectral series. `classificationModel`: see
/// TextureClassificationTrain. `rejection` (3, greater than 1): a voxel that is further than this many standard
/// deviations from each class is labelled 0, the others from 1 on. `classifiedImage`: takes sizes, spacing and origin
/// of `input`, becomes a label image of QEL_UINT16, and may be `input` itself, if that has this type.
///
/// Only the measures that the training has chosen are computed. Grey levels and bins are those of the model.
///
/// Throws RuleException on what is not allowed, InvalidCall on a model that was not trained, and UnexpectedError
/// "Cooccurrence matrix used but not initialized" where its range of grey levels is empty.
class QEL_API TextureClassificationApply : public BaseAlgorithm
{
    QEL_ALGORITHM(TextureClassificationApply)

public:
    Property<ImageModel const*> input;
    Property<TextureClassificationModel const*> classificationModel;
    Property<double> rejection;
    Property<ImageModel*> classifiedImage;
};

} // namespace qel::classification
