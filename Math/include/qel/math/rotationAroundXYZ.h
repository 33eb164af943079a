#pragma once

#include <qel/Export.h>
#include <qel/math/Matrix3.h>

namespace qel::math {

/// Sets `m` to Rz Ry Rx: the rotation by `rx` around the X axis, then by `ry` around Y, then by `rz` around Z. Angles
/// in radians; each axis's rotation takes the next axis towards the one after it.
QEL_API void rotationAroundXYZ(double rx, double ry, double rz, Matrix3<double>& m);

} // namespace qel::math
