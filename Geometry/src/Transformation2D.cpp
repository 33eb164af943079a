#include <qel/geometry/Transformation2D.h>

namespace qel::geometry {

Transformation2D::~Transformation2D() = default;

} // namespace qel::geometry
