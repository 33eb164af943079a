#include <qel/geometry/Transformation3D.h>

namespace qel::geometry {

Transformation3D::~Transformation3D() = default;

} // namespace qel::geometry
