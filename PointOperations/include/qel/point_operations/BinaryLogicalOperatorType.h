#pragma once

namespace qel::point_operations {

enum BinaryLogicalOperatorType
{
    LOGICAL_AND = 0,
    LOGICAL_OR,
    LOGICAL_XOR,
    LOGICAL_NAND,
    LOGICAL_NOR,
    LOGICAL_NXOR,
    LOGICAL_SUB
};

} // namespace qel::point_operations
