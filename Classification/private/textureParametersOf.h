#pragma once

#include "Classification/private/TextureClassificationModelPrivate.h"
#include "Segmentation/private/Texture/TextureParameters.h"

#include <qel/AlgoBorderInfluence.h>

namespace qel::classification {

class TextureClassificationModel;

/// How the textures of a model are measured: a copy, for a run to settle.
segmentation::details::TextureParameters textureParametersOf(TextureClassificationModelPrivate const& model);

/// Its radius on the axes of its mode; nothing without a model.
AlgoBorderInfluence borderInfluenceOf(TextureClassificationModel const* model);

/// What a run needs at least. Throws RuntimeError without a classifier, InvalidCall without measures.
void requireUsable(TextureClassificationModelPrivate const& model);

} // namespace qel::classification
