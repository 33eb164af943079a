#pragma once

#include <qel/Export.h>

namespace qel {

class ImageModel;

namespace helper {

/// Copies spacing and origin of columns, rows and plans, and nothing else: units and the calibration of time and
/// spectral series stay as they are.
QEL_API void copySpatialCalibration(ImageModel const* source, ImageModel* destination);

} // namespace helper
} // namespace qel
