#pragma once

namespace qel::point_operations {

enum ArithmeticOperatorType
{
    ARITHMETIC_ADD = 0,
    ARITHMETIC_SUBTRACT,
    ARITHMETIC_MULTIPLY,
    ARITHMETIC_DIVIDE,
    ARITHMETIC_MINIMUM,
    ARITHMETIC_MAXIMUM
};

} // namespace qel::point_operations
