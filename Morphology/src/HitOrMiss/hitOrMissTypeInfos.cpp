#include "Morphology/private/hitOrMissTypeInfos.h"

#include <qel/EnumInfo.h>

namespace qel::morphology {

EnumInfo& matchingActionTypesInfo()
{
    static EnumInfo info("MatchingActionTypes", "SET_ZERO = 0, SET_ONE, SET_CHANGE, SET_UNCHANGE");
    return info;
}

EnumInfo& binaryBorderConditionTypesInfo()
{
    static EnumInfo info("BinaryBorderConditionTypes", "STOP_OBJECT = 0, CONTINUE_OBJECT");
    return info;
}

} // namespace qel::morphology
