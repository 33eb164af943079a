#pragma once

class EnumInfo;

namespace qel::morphology {

EnumInfo& reconstructionTypeInfo();

} // namespace qel::morphology
