#pragma once

#include "PointOperations/private/OperatorRows.h"

#include <qel/point_operations/BinaryLogicalOperatorType.h>

namespace qel::point_operations {

inline constexpr char const binaryLogicalOperatorDeclaration[] =
    "LOGICAL_AND = 0, LOGICAL_OR , LOGICAL_XOR , LOGICAL_NAND , LOGICAL_NOR , LOGICAL_NXOR , LOGICAL_SUB";

struct BinaryLogicalOperator_AndTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(first & second); }
};

struct BinaryLogicalOperator_OrTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(first | second); }
};

struct BinaryLogicalOperator_XorTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(first ^ second); }
};

struct BinaryLogicalOperator_NAndTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(~(first & second)); }
};

struct BinaryLogicalOperator_NOrTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(~(first | second)); }
};

struct BinaryLogicalOperator_NXorTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(~(first ^ second)); }
};

struct BinaryLogicalOperator_SubTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second) { return static_cast<T>(first & ~second); }
};

/// Calls `visit` with the tag of the operator, which is one of the seven.
template <class Visit> void visitBinaryLogicalOperator(int logicalOperator, Visit const& visit)
{
    switch (logicalOperator) {
    case LOGICAL_AND:
        return visit(BinaryLogicalOperator_AndTag());
    case LOGICAL_OR:
        return visit(BinaryLogicalOperator_OrTag());
    case LOGICAL_XOR:
        return visit(BinaryLogicalOperator_XorTag());
    case LOGICAL_NAND:
        return visit(BinaryLogicalOperator_NAndTag());
    case LOGICAL_NOR:
        return visit(BinaryLogicalOperator_NOrTag());
    case LOGICAL_NXOR:
        return visit(BinaryLogicalOperator_NXorTag());
    case LOGICAL_SUB:
        return visit(BinaryLogicalOperator_SubTag());
    }
}

template <class Operator> using LogicalImageProcessingScalarGeneric = PairOperation<Operator>;
template <class Operator> using LogicalValueProcessingScalarGeneric = ValueOperation<Operator>;

} // namespace qel::point_operations
