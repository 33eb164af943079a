#pragma once

#include <qel/classification/TextonShape.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>

namespace qel::classification {

/// The steps between two voxels that a shape and a size stand for, of each two opposite ones one. Where the size
/// exceeds the diameter of the window no step beyond it is of use: then the first such step stands alone, for the
/// training to refuse.
container::Vector<math::Vector2<int>> textonDirections2D(TextonShape shape, unsigned int size, unsigned int radius);
container::Vector<math::Vector3<int>> textonDirections3D(TextonShape shape, unsigned int size, unsigned int radius);

} // namespace qel::classification
