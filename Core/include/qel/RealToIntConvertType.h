#pragma once

namespace qel {

/// How a real number is brought to a whole one.
enum RealToIntConvertType : int
{
    CEIL = 0,
    FLOOR,
    ROUND ///< floor of x plus 0.5
};

} // namespace qel
