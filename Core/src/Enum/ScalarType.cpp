#include <qel/ScalarType.h>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::scalarTypeInfo()
{
    static EnumInfo info("ScalarType", "INTEGER = 0, UNSIGNED_INTEGER, REAL");
    return info;
}

} // namespace qel
