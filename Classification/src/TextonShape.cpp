#include <qel/classification/TextonShape.h>

#include <qel/EnumInfo.h>

namespace qel::classification {

EnumInfo& textonShapeInfo()
{
    static EnumInfo info("TextonShape", "CUBE = 0, SPHERE, BALL");
    return info;
}

} // namespace qel::classification
