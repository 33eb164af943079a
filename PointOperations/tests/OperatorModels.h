#pragma once

#include "Core/private/Rules/TypePromotion.h"
#include "Core/private/TypeDispatch.h"
#include "Core/tests/Support/Algorithms.h"

#include <qel/point_operations/ArithmeticOperatorType.h>
#include <qel/point_operations/BinaryLogicalOperatorType.h>

namespace qel::test {

/// The definitions of the operators, as slowly as they read: integers in 128 bits, and then cut.
template <class T> T arithmeticResult(int op, T a, T b)
{
    using namespace point_operations;
    if (op == ARITHMETIC_DIVIDE && b == 0)
        return 0;
    using Wide = std::conditional_t<std::is_floating_point_v<T>, T, __int128>;
    Wide const first = a;
    Wide const second = b;
    switch (op) {
    case ARITHMETIC_ADD:
        return T(first + second);
    case ARITHMETIC_SUBTRACT:
        return T(first - second);
    case ARITHMETIC_MULTIPLY:
        return T(static_cast<Wide>(first * second));
    case ARITHMETIC_DIVIDE:
        return T(first / second);
    case ARITHMETIC_MINIMUM:
        return b < a ? b : a;
    default:
        return a < b ? b : a;
    }
}

template <class T> T logicalResult(int op, T a, T b)
{
    using namespace point_operations;
    T result = 0;
    for (unsigned bit = 0; bit < 8 * sizeof(T); ++bit) {
        bool const first = (static_cast<unsigned long>(a) >> bit) % 2 != 0;
        bool const second = (static_cast<unsigned long>(b) >> bit) % 2 != 0;
        bool isSet = false;
        switch (op) {
        case LOGICAL_AND:
            isSet = first && second;
            break;
        case LOGICAL_OR:
            isSet = first || second;
            break;
        case LOGICAL_XOR:
            isSet = first != second;
            break;
        case LOGICAL_NAND:
            isSet = !(first && second);
            break;
        case LOGICAL_NOR:
            isSet = !(first || second);
            break;
        case LOGICAL_NXOR:
            isSet = first == second;
            break;
        case LOGICAL_SUB:
            isSet = first && !second;
            break;
        }
        if (isSet)
            result = static_cast<T>(static_cast<unsigned long>(result) | (1ul << bit));
    }
    return result;
}

/// 0 for add, subtract and divide, 1 for multiply, 2 for minimum, 3 for maximum.
inline unsigned int modeOf(int op)
{
    unsigned int const modes[] = {0, 0, 1, 0, 2, 3};
    return modes[op];
}

/// A plain cast of each voxel. Reals never become integers here.
template <class T, class Source> Picture<T> castPicture(Picture<Source> const& picture)
{
    static_assert(std::is_floating_point_v<T> || std::is_integral_v<Source>);
    Picture<T> result(picture.shape);
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        result.voxels[i] = static_cast<T>(picture.voxels[i]);
    return result;
}

template <class T, class Result> Picture<T> combined(Picture<T> first, Picture<T> const& second, Result const& result)
{
    for (std::size_t i = 0; i < first.voxels.size(); ++i)
        first.voxels[i] = result(first.voxels[i], second.voxels[i]);
    return first;
}

template <class T, class Result> Picture<T> combined(Picture<T> first, T second, Result const& result)
{
    for (T& voxel : first.voxels)
        voxel = result(voxel, second);
    return first;
}

/// Calls `visit.operator()<T>()` for the voxel type of an image.
template <class Visit> void visitVoxelType(ImageModel const& image, Visit const& visit)
{
    tmpl_dispatch::visitType<AllVoxelTypes>(image.getVoxelType(),
                                            [&]<class T>(std::type_identity<T>) { visit.template operator()<T>(); });
}

template <class Callable> void forEachIntegerVoxelType(Callable&& callable)
{
    forEachVoxelType([&]<class T>() {
        if constexpr (std::is_integral_v<T>)
            callable.template operator()<T>();
    });
}

template <class Algorithm> void expectRegistered(std::string const& className)
{
    char const* const name = className.c_str();
    EXPECT_EQ(Algorithm::getClassInfo()->getName(), String(name));
    EXPECT_EQ(Algorithm::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName(name), Algorithm::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName(name)->createInstance();
    EXPECT_NE(dynamic_cast<Algorithm*>(other.get()), nullptr);
    EXPECT_TRUE(hasNoBorder(*other));
    EXPECT_EQ(levelsOf(*other), std::vector<OptimLevelType>{SCALAR});
}

inline std::string invalidCallText(std::string const& message, std::string const& algorithm)
{
    return "Invalid call :\n#1 Error : " + message + " \n#2 From " + algorithm + " \n";
}

} // namespace qel::test
