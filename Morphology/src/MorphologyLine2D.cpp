#include <qel/morphology/ClosingLine2D.h>
#include <qel/morphology/DilationLine2D.h>
#include <qel/morphology/ErosionLine2D.h>
#include <qel/morphology/OpeningLine2D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(Line2D)

} // namespace qel::morphology
