#include "Filtering/private/GaussianFilter.h"

#include <cmath>
#include <limits>

namespace qel::filtering::smoothing {

EnumInfo& filteringTypeInfo()
{
    static EnumInfo info("FilteringType", "QEL_FIR = 0, QEL_IIR");
    return info;
}

EnumInfo& outputStrategyTypeInfo()
{
    static EnumInfo info("OutputStrategyType", "QEL_SAME_AS_INPUT = 0, QEL_FORCED_TO_FLOAT");
    return info;
}

unsigned long gaussianReach(double sigma, double factor)
{
    double const reach = std::ceil(sigma * factor);
    if (!(reach > 0))
        return 0;
    return reach < 0x1p63 ? static_cast<unsigned long>(reach) : std::numeric_limits<unsigned long>::max();
}

} // namespace qel::filtering::smoothing
