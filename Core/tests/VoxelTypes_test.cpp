// All shared enumerations: literals, descriptors, names.
#include <qel/VoxelTypes.h>

#include <gtest/gtest.h>

#include <qel/AlgoPrecisionType.h>
#include <qel/Components.h>
#include <qel/DirectionTypes.h>
#include <qel/EnumInfo.h>
#include <qel/Exception.h>
#include <qel/Interpretations.h>
#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>
#include <qel/OptimLevelType.h>
#include <qel/RealToIntConvertType.h>
#include <qel/ScalarType.h>

#include "Core/tests/Support/Expect.h"

using namespace qel;

namespace {

struct VoxelTypeRow
{
    VoxelTypes type;
    char const* label;
    unsigned long bytes;
    char const* text;
};

VoxelTypeRow const voxelTypeRows[] = {
    {QEL_UINT8, "QEL_UINT8", 1, "uint8"},
    {QEL_UINT16, "QEL_UINT16", 2, "uint16"},
    {QEL_UINT32, "QEL_UINT32", 4, "uint32"},
    {QEL_UINT64, "QEL_UINT64", 8, "uint64"},
    {QEL_INT8, "QEL_INT8", 1, "int8"},
    {QEL_INT16, "QEL_INT16", 2, "int16"},
    {QEL_INT32, "QEL_INT32", 4, "int32"},
    {QEL_INT64, "QEL_INT64", 8, "int64"},
    {QEL_FLOAT32, "QEL_FLOAT32", 4, "float32"},
    {QEL_FLOAT64, "QEL_FLOAT64", 8, "float64"},
    {QEL_COMPLEX_FLOAT32, "QEL_COMPLEX_FLOAT32", 8, "complex float32"},
    {QEL_COMPLEX_FLOAT64, "QEL_COMPLEX_FLOAT64", 16, "complex float64"},
};

void expectDescribed(EnumInfo const& info, char const* name, std::initializer_list<char const*> labels)
{
    SCOPED_TRACE(name);
    EXPECT_STREQ(info.getEnumName().c_str(), name);
    EXPECT_EQ(info.getNumOfLabels(), labels.size());
    EXPECT_EQ(info.getNumOfValues(), labels.size());
    int value = 0;
    for (char const* label : labels) {
        EXPECT_STREQ(info.getLabelFromValue(value).c_str(), label);
        EXPECT_EQ(info.getValueFromLabel(label), value);
        ++value;
    }
}

} // namespace

TEST(VoxelTypes, haveTheirValueSizeAndName)
{
    int value = 0;
    for (VoxelTypeRow const& row : voxelTypeRows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(row.type, value);
        EXPECT_EQ(helper::getSizeOf(row.type), row.bytes);
        EXPECT_EQ(memory::sizeOfVoxelType(row.type), row.bytes);
        EXPECT_STREQ(helper::VoxelTypesToString(row.type).c_str(), row.text);
        EXPECT_STREQ(helper::voxelTypesInfo().getLabelFromValue(value).c_str(), row.label);
        ++value;
    }
    EXPECT_EQ(helper::voxelTypesInfo().getNumOfValues(), 12u);
}

TEST(VoxelTypes, haveNoSizeAndNoNameOutsideTheirRange)
{
    for (int value : {12, 13, 255, -1, 2147483647}) {
        auto const type = static_cast<VoxelTypes>(value);
        EXPECT_EQ(helper::getSizeOf(type), 0u);
        EXPECT_EQ(memory::sizeOfVoxelType(type), 0u);
        EXPECT_STREQ(helper::VoxelTypesToString(type).c_str(), "");
    }
}

TEST(VoxelTypes, haveTheirLesserCommonType)
{
    // Row a, column b.
    int const table[12][12] = {
        {0, 1, 2, 3, 5, 5, 6, 7, 8, 9, 10, 11},           {1, 1, 2, 3, 6, 6, 6, 7, 8, 9, 10, 11},
        {2, 2, 2, 3, 7, 7, 7, 7, 9, 9, 11, 11},           {3, 3, 3, 3, 9, 9, 9, 9, 9, 9, 11, 11},
        {5, 6, 7, 9, 4, 5, 6, 7, 8, 9, 10, 11},           {5, 6, 7, 9, 5, 5, 6, 7, 8, 9, 10, 11},
        {6, 6, 7, 9, 6, 6, 6, 7, 9, 9, 11, 11},           {7, 7, 7, 9, 7, 7, 7, 7, 9, 9, 11, 11},
        {8, 8, 9, 9, 8, 8, 9, 9, 8, 9, 10, 11},           {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 11, 11},
        {10, 10, 11, 11, 10, 10, 11, 11, 10, 11, 10, 11}, {11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11},
    };
    for (VoxelTypeRow const& a : voxelTypeRows)
        for (VoxelTypeRow const& b : voxelTypeRows) {
            EXPECT_EQ(helper::lesserCommonType(a.type, b.type), table[a.type][b.type]) << a.text << " and " << b.text;
            EXPECT_EQ(helper::lesserCommonType(a.type, b.type), helper::lesserCommonType(b.type, a.type));
        }
}

TEST(VoxelTypes, haveNoLesserCommonTypeOutsideTheirRange)
{
    EXPECT_QEL_THROW(helper::lesserCommonType(static_cast<VoxelTypes>(12), QEL_UINT8), BadIndex,
                     "Value 12 of enum VoxelTypes is associated to 0 labels. Can not access to label index 0.");
    EXPECT_QEL_THROW(helper::lesserCommonType(QEL_UINT8, static_cast<VoxelTypes>(-1)), BadIndex,
                     "Value -1 of enum VoxelTypes is associated to 0 labels. Can not access to label index 0.");
}

TEST(Interpretations, areDescribed)
{
    expectDescribed(helper::interpretationsInfo(), "Interpretations", {"QEL_BINARY", "QEL_LABEL", "QEL_VALUE"});
    EXPECT_EQ(QEL_BINARY, 0);
    EXPECT_EQ(QEL_LABEL, 1);
    EXPECT_EQ(QEL_VALUE, 2);
}

TEST(OptimLevelType, isDescribed)
{
    expectDescribed(helper::optimLevelTypeInfo(), "OptimLevelType", {"SCALAR", "VEC_SSE", "VEC_AVX", "GPU"});
    EXPECT_EQ(SCALAR, 0);
    EXPECT_EQ(VEC_SSE, 1);
    EXPECT_EQ(VEC_AVX, 2);
    EXPECT_EQ(GPU, 3);
}

TEST(Neighborhoods, areDescribed)
{
    expectDescribed(helper::neighborhood2DTypeInfo(), "Neighborhood2DType",
                    {"QEL_NEIGHBORHOOD2D_4", "QEL_NEIGHBORHOOD2D_8"});
    expectDescribed(helper::neighborhood3DTypeInfo(), "Neighborhood3DType",
                    {"QEL_NEIGHBORHOOD3D_6", "QEL_NEIGHBORHOOD3D_18", "QEL_NEIGHBORHOOD3D_26"});
}

TEST(AlgoPrecisionType, isDescribed)
{
    expectDescribed(helper::algoPrecisionTypeInfo(), "AlgoPrecisionType", {"QEL_ALGO_FAST", "QEL_ALGO_PRECISE"});
}

TEST(ScalarType, isDescribed)
{
    expectDescribed(helper::scalarTypeInfo(), "ScalarType", {"INTEGER", "UNSIGNED_INTEGER", "REAL"});
    EXPECT_EQ(INTEGER, 0);
    EXPECT_EQ(UNSIGNED_INTEGER, 1);
    EXPECT_EQ(REAL, 2);
}

TEST(VoxelTypes, areDescribed)
{
    EXPECT_STREQ(helper::voxelTypesInfo().getEnumName().c_str(), "VoxelTypes");
    EXPECT_EQ(&helper::voxelTypesInfo(), &helper::voxelTypesInfo());
}

TEST(Components, haveTheirNames)
{
    char const* const names[] = {"columns", "rows", "plans", "time series", "spectral series"};
    Components const components[] = {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES};
    for (int value = 0; value < 5; ++value) {
        EXPECT_EQ(components[value], value);
        EXPECT_STREQ(helper::ComponentToString(components[value]).c_str(), names[value]);
    }
    EXPECT_STREQ(helper::ComponentToString(static_cast<Components>(5)).c_str(), "");
    EXPECT_STREQ(helper::ComponentToString(static_cast<Components>(-1)).c_str(), "");
}

TEST(DirectionTypes, haveTheirNames)
{
    char const* const names[] = {"columns - negative direction",
                                 "columns - positive direction",
                                 "rows - negative direction",
                                 "rows - positive direction",
                                 "plans - negative direction",
                                 "plans - positive direction",
                                 "time series - negative direction",
                                 "time series - positive direction",
                                 "spectral series - negative direction",
                                 "spectral series - positive direction"};
    DirectionTypes const directions[] = {COLUMNS_NEGATIVE,        COLUMNS_POSITIVE,     ROWS_NEGATIVE,
                                         ROWS_POSITIVE,           PLANS_NEGATIVE,       PLANS_POSITIVE,
                                         TIME_SERIES_NEGATIVE,    TIME_SERIES_POSITIVE, SPECTRAL_SERIES_NEGATIVE,
                                         SPECTRAL_SERIES_POSITIVE};
    for (int value = 0; value < 10; ++value) {
        EXPECT_EQ(directions[value], value);
        EXPECT_STREQ(helper::DirectionTypesToString(directions[value]).c_str(), names[value]);
    }
    for (int value : {10, 11, -1})
        EXPECT_STREQ(helper::DirectionTypesToString(static_cast<DirectionTypes>(value)).c_str(), "");
}

TEST(RealToIntConvertType, hasItsValues)
{
    EXPECT_EQ(CEIL, 0);
    EXPECT_EQ(FLOOR, 1);
    EXPECT_EQ(ROUND, 2);
}
