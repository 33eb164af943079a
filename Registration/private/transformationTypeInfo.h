#pragma once

class EnumInfo;

namespace qel::registration {

/// The types of transformations that landmark registration finds.
EnumInfo& transformationTypeInfo();

} // namespace qel::registration
