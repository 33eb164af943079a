#pragma once

#include "Core/private/Deserialization.h"

#include <qel/segmentation/TextureFeatureGroup.h>

namespace qel {

/// "@v:COOC_Contrast#52": each element is a label or the number of a measure. "@v:" is an empty list.
template <>
bool Deserialization<segmentation::TextureFeatureGroup>::doIt(String const& text,
                                                              segmentation::TextureFeatureGroup& value, String& rest);

} // namespace qel
