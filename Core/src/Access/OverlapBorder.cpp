#include "Core/private/Access/OverlapBorder.h"
#include <qel/AlgoBorderInfluence.h>

namespace qel::access {

OverlapBorder::OverlapBorder(AlgoBorderInfluence const& influence)
    : rowsLower(influence.getNumOfVoxels(ROWS_POSITIVE))
    , rowsUpper(influence.getNumOfVoxels(ROWS_NEGATIVE))
    , colsLower(influence.getNumOfVoxels(COLUMNS_POSITIVE))
    , colsUpper(influence.getNumOfVoxels(COLUMNS_NEGATIVE))
    , plansLower(influence.getNumOfVoxels(PLANS_POSITIVE))
    , plansUpper(influence.getNumOfVoxels(PLANS_NEGATIVE))
{}

} // namespace qel::access
