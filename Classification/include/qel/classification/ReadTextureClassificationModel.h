#pragma once

#include <qel/Algorithm.h>

namespace qel::classification {

class TextureClassificationModel;

/// Loads a model from the file that TextureClassificationModel::write has made.
///
/// `pathClassificationFile`: which file. `newClassification`: where the new model is put, which the caller deletes; it
/// is set to null first, and stays so where the file cannot be read.
///
/// Throws InvalidCall on an empty path, SerializationException as TextureClassificationModel::read does.
class QEL_API ReadTextureClassificationModel : public BaseAlgorithm
{
    QEL_ALGORITHM(ReadTextureClassificationModel)

public:
    Property<String> pathClassificationFile;
    Property<TextureClassificationModel**> newClassification;
};

} // namespace qel::classification
