#include <qel/morphology/ClosingDisk3D.h>
#include <qel/morphology/DilationDisk3D.h>
#include <qel/morphology/ErosionDisk3D.h>
#include <qel/morphology/OpeningDisk3D.h>

#include "Morphology/private/Runners.h"

namespace qel::morphology {

QEL_DEFINE_MORPHOLOGY(Disk3D)

} // namespace qel::morphology
