#include "Core/private/declareEnumeration.h"

#include "Core/private/Declare.h"
#include "Core/private/Rules/Asserts.h"

namespace qel {

void declareEnumeration(PropertyEnumeration& property, char const* name, int defaultValue, EnumInfo& info,
                        std::initializer_list<int> excluded)
{
    property.setEnumInfo(&info);
    declare(property, name, defaultValue, AddRuleIsAnEnumOfType(&info, excluded));
}

} // namespace qel
