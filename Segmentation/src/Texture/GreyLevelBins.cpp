#include "Segmentation/private/Texture/GreyLevelBins.h"

#include "Core/private/Throw.h"

#include <cmath>

namespace qel::segmentation::details {

GreyLevelBins::GreyLevelBins(double min, double max, double binSize)
    : m_min(min)
    , m_max(max)
    , m_binSize(binSize)
{
    if (max < min)
        return;
    if (!(binSize > 0))
        QEL_THROW(InvalidCall, "The bin size must be greater than 0.");
    double const size = std::ceil((max - min + 1.0) / binSize);
    if (!std::isfinite(size))
        QEL_THROW(InvalidCall, "The grey levels from " << min << " to " << max << " cannot be put into bins.");
    if (size > static_cast<double>(mostBins))
        QEL_THROW(MemoryError, "A cooccurrence matrix has " << mostBins << " bins at most. The grey levels from " << min
                                                            << " to " << max << " make " << size << ".");
    // A quotient may be so small that it rounds to 0.
    m_size = size < 1 ? 1 : static_cast<unsigned long>(size);
}

} // namespace qel::segmentation::details
