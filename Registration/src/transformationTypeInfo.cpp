#include "Registration/private/transformationTypeInfo.h"

#include <qel/EnumInfo.h>

namespace qel::registration {

EnumInfo& transformationTypeInfo()
{
    static EnumInfo info("TransformationType",
                         "TRANSLATION = 0, RIGID, AFFINE, PROJECTIVE, POLYNOMIAL_2, POLYNOMIAL_3");
    return info;
}

} // namespace qel::registration
