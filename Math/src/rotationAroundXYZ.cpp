#include <qel/math/rotationAroundXYZ.h>

#include <cmath>

namespace qel::math {

void rotationAroundXYZ(double rx, double ry, double rz, Matrix3<double>& m)
{
    double const cx = std::cos(rx), sx = std::sin(rx);
    double const cy = std::cos(ry), sy = std::sin(ry);
    double const cz = std::cos(rz), sz = std::sin(rz);
    m = Matrix3<double>(cz * cy, cz * sy * sx - sz * cx, cz * sy * cx + sz * sx, //
                        sz * cy, sz * sy * sx + cz * cx, sz * sy * cx - cz * sx, //
                        -sy, cy * sx, cy * cx);
}

} // namespace qel::math
