#include <qel/morphology/ClosingDisk2D.h>
#include <qel/morphology/DilationDisk2D.h>
#include <qel/morphology/ErosionDisk2D.h>
#include <qel/morphology/OpeningDisk2D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(Disk2D)

} // namespace qel::morphology
