#include <qel/Components.h>

namespace qel {

String helper::ComponentToString(Components const& component)
{
    switch (component) {
    case COLUMNS:
        return "columns";
    case ROWS:
        return "rows";
    case PLANS:
        return "plans";
    case TIME_SERIES:
        return "time series";
    case SPECTRAL_SERIES:
        return "spectral series";
    }
    return "";
}

} // namespace qel
