#include "Morphology/private/connectivityOf.h"

#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>

namespace qel::morphology {

namespace {

[[noreturn]] void refuse(int neighborhood)
{
    QEL_THROW(InvalidCall, "The provided neighborhoord is unknown (value=" << neighborhood << ").");
}

} // namespace

Connectivity connectivityOf2D(int neighborhood)
{
    switch (neighborhood) {
    case QEL_NEIGHBORHOOD2D_4:
        return {true, 1};
    case QEL_NEIGHBORHOOD2D_8:
        return {true, 2};
    }
    refuse(neighborhood);
}

Connectivity connectivityOf3D(int neighborhood)
{
    switch (neighborhood) {
    case QEL_NEIGHBORHOOD3D_6:
        return {false, 1};
    case QEL_NEIGHBORHOOD3D_18:
        return {false, 2};
    case QEL_NEIGHBORHOOD3D_26:
        return {false, 3};
    }
    refuse(neighborhood);
}

} // namespace qel::morphology
