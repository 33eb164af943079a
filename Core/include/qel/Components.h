#pragma once

#include <qel/Export.h>
#include <qel/String.h>

namespace qel {

/// The five axes of an image.
enum Components : int
{
    COLUMNS = 0,
    ROWS,
    PLANS,
    TIME_SERIES,
    SPECTRAL_SERIES
};

namespace helper {

/// "columns", "rows", "plans", "time series", "spectral series"; empty for any other value.
QEL_API String ComponentToString(Components const& component);

} // namespace helper
} // namespace qel
