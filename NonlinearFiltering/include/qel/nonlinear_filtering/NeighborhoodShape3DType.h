#pragma once

#include <qel/filtering/smoothing/NeighborhoodShape3DType.h>

namespace qel::nonlinear_filtering {

// One enumeration for all windows: a host that uses both namespaces sees one of each name.
using filtering::smoothing::NeighborhoodShape3DType;
using filtering::smoothing::QEL_BALL;
using filtering::smoothing::QEL_CUBE;

} // namespace qel::nonlinear_filtering
