#include "NonlinearFiltering/private/MedianFilter/MedianComputerInfo.h"

#include "Core/private/Throw.h"
#include "Core/private/TypeDispatch.h"

#include <qel/EnumInfo.h>
#include <qel/Exception.h>
#include <qel/ImageModel.h>
#include <qel/nonlinear_filtering/MedianComputationType.h>

namespace qel::nonlinear_filtering::details {

EnumInfo& medianComputationTypeInfo()
{
    static EnumInfo info("MedianComputationType", "AUTOMATIC = 1, HISTOGRAM, SELECTION");
    return info;
}

void checkSearchMode(ImageModel const& input, int searchMode)
{
    if (searchMode == HISTOGRAM && !tmpl_dispatch::isInList<IntegerVoxelTypes>(input.getVoxelType()))
        QEL_THROW(RuleException, "The image data type isn't compatible with Histogram computation mode.");
}

unsigned long rangeOf(Scalar const& minimum, Scalar const& maximum)
{
    return maximum.asUInt64(FLOOR) - minimum.asUInt64(FLOOR);
}

} // namespace qel::nonlinear_filtering::details
