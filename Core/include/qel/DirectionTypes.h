#pragma once

#include <qel/Export.h>
#include <qel/String.h>

namespace qel {

/// The two directions of each of the five axes.
enum DirectionTypes : int
{
    COLUMNS_NEGATIVE = 0,
    COLUMNS_POSITIVE,
    ROWS_NEGATIVE,
    ROWS_POSITIVE,
    PLANS_NEGATIVE,
    PLANS_POSITIVE,
    TIME_SERIES_NEGATIVE,
    TIME_SERIES_POSITIVE,
    SPECTRAL_SERIES_NEGATIVE,
    SPECTRAL_SERIES_POSITIVE
};

namespace helper {

/// "columns - negative direction", "columns - positive direction" and so on; empty for any other value.
QEL_API String DirectionTypesToString(DirectionTypes const& direction);

} // namespace helper
} // namespace qel
