#pragma once

#include <qel/filtering/smoothing/NeighborhoodShape2DType.h>

namespace qel::nonlinear_filtering {

// One enumeration for all windows: a host that uses both namespaces sees one of each name.
using filtering::smoothing::NeighborhoodShape2DType;
using filtering::smoothing::QEL_DISK;
using filtering::smoothing::QEL_SQUARE;

} // namespace qel::nonlinear_filtering
