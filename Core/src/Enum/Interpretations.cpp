#include <qel/Interpretations.h>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::interpretationsInfo()
{
    static EnumInfo info("Interpretations", "QEL_BINARY = 0, QEL_LABEL, QEL_VALUE");
    return info;
}

} // namespace qel
