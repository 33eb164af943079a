#include <qel/DirectionTypes.h>

namespace qel {

String helper::DirectionTypesToString(DirectionTypes const& direction)
{
    switch (direction) {
    case COLUMNS_NEGATIVE:
        return "columns - negative direction";
    case COLUMNS_POSITIVE:
        return "columns - positive direction";
    case ROWS_NEGATIVE:
        return "rows - negative direction";
    case ROWS_POSITIVE:
        return "rows - positive direction";
    case PLANS_NEGATIVE:
        return "plans - negative direction";
    case PLANS_POSITIVE:
        return "plans - positive direction";
    case TIME_SERIES_NEGATIVE:
        return "time series - negative direction";
    case TIME_SERIES_POSITIVE:
        return "time series - positive direction";
    case SPECTRAL_SERIES_NEGATIVE:
        return "spectral series - negative direction";
    case SPECTRAL_SERIES_POSITIVE:
        return "spectral series - positive direction";
    }
    return "";
}

} // namespace qel
