#pragma once

#include <qel/container/Vector.h>
#include <qel/segmentation/TextureFeatureTypes.h>

namespace qel::segmentation {

/// A list of texture measures. Its text form has labels or numbers: "@v:COOC_Contrast#52".
using TextureFeatureGroup = container::Vector<TextureFeatureTypes>;

} // namespace qel::segmentation
