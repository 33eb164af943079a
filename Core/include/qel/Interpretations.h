#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel {

/// What the voxels of an image mean.
enum Interpretations : int
{
    QEL_BINARY = 0, ///< 0 is background, 1 object
    QEL_LABEL,      ///< 0 is unlabelled, labels run from 1
    QEL_VALUE       ///< measured values
};

namespace helper {

/// Describes Interpretations.
QEL_API EnumInfo& interpretationsInfo();

} // namespace helper
} // namespace qel
