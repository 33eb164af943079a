#include <qel/morphology/Closing2D.h>
#include <qel/morphology/Dilation2D.h>
#include <qel/morphology/Erosion2D.h>
#include <qel/morphology/Opening2D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(2D)

} // namespace qel::morphology
