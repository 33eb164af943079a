#pragma once

#include "PointOperations/tests/OperatorModels.h"

#include <cmath>
#include <limits>

namespace qel::test {

/// The magnitude of the components of one voxel, as slowly as it reads.
template <class T> T magnitudeOf(int mode, std::vector<T> const& components)
{
    if (mode == 1) {
        T largest = components[0];
        for (T const component : components)
            largest = largest < component ? component : largest;
        return largest;
    }
    using namespace point_operations;
    T sum = 0;
    bool isFirst = true;
    for (T const component : components) {
        T const square = arithmeticResult(ARITHMETIC_MULTIPLY, component, component);
        sum = isFirst ? square : arithmeticResult(ARITHMETIC_ADD, sum, square);
        isFirst = false;
    }
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(std::sqrt(sum));
    } else {
        if (sum < 0) // the machine's cast of a NaN, of which narrow types keep the low bits
            return sizeof(T) < 4 ? T(0) : std::numeric_limits<T>::min();
        return static_cast<T>(std::sqrt(static_cast<double>(sum)));
    }
}

} // namespace qel::test
