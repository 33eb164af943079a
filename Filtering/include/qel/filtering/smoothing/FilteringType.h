#pragma once

namespace qel::filtering::smoothing {

/// How a smoothing filter is computed.
enum FilteringType
{
    QEL_FIR = 0, ///< by a weighted sum over a finite neighbourhood
    QEL_IIR      ///< recursively; accepted, but nothing is computed
};

} // namespace qel::filtering::smoothing
