#include <qel/morphology/Closing3D.h>
#include <qel/morphology/Dilation3D.h>
#include <qel/morphology/Erosion3D.h>
#include <qel/morphology/Opening3D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(3D)

} // namespace qel::morphology
