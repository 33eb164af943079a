#include <qel/morphology/ClosingBall3D.h>
#include <qel/morphology/DilationBall3D.h>
#include <qel/morphology/ErosionBall3D.h>
#include <qel/morphology/OpeningBall3D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(Ball3D)

} // namespace qel::morphology
