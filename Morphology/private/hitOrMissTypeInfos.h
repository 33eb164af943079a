#pragma once

class EnumInfo;

namespace qel::morphology {

EnumInfo& matchingActionTypesInfo();
EnumInfo& binaryBorderConditionTypesInfo();

} // namespace qel::morphology
