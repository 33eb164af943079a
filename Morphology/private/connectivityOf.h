#pragma once

#include "Morphology/private/GeodesicTiles.h"

namespace qel::morphology {

/// Of a Neighborhood2DType. Throws InvalidCall for any other value.
Connectivity connectivityOf2D(int neighborhood);
/// Of a Neighborhood3DType. Throws InvalidCall for any other value.
Connectivity connectivityOf3D(int neighborhood);

} // namespace qel::morphology
