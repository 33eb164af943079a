#include <qel/morphology/ClosingLine3D.h>
#include <qel/morphology/DilationLine3D.h>
#include <qel/morphology/ErosionLine3D.h>
#include <qel/morphology/OpeningLine3D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(Line3D)

} // namespace qel::morphology
