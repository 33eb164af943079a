#include <qel/EnumInfo.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include <qel/Exception.h>

#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/ForeignLocale.h"

using qel::BadIndex;
using qel::RuntimeError;
using qel::String;

namespace {

template <class Statement> std::string standardError(Statement&& statement)
{
    try {
        statement();
    } catch (std::out_of_range const& error) {
        return error.what();
    }
    return "nothing was thrown";
}

} // namespace

TEST(EnumInfo, countsLabelsAndDistinctValues)
{
    EnumInfo const info("Letters", "A = 0, B, C = 0");
    EXPECT_STREQ(info.getEnumName().c_str(), "Letters");
    EXPECT_EQ(info.getNumOfLabels(), 3u);
    EXPECT_EQ(info.getNumOfValues(), 2u);
    EXPECT_EQ(info.getNumOfLabelsAtValue(0), 2u);
    EXPECT_EQ(info.getNumOfLabelsAtValue(1), 1u);
    EXPECT_EQ(info.getValueFromValueIndex(0), 0);
    EXPECT_EQ(info.getValueFromValueIndex(1), 1);
    EXPECT_STREQ(info.getLabelFromValue(0, 0).c_str(), "A");
    EXPECT_STREQ(info.getLabelFromValue(0, 1).c_str(), "C");
    EXPECT_STREQ(info.getLabelFromValueIndex(0, 1).c_str(), "C");
    EXPECT_STREQ(info.getLabelFromValueIndex(1, 0).c_str(), "B");
    EXPECT_TRUE(info.exists(1));
    EXPECT_FALSE(info.exists(2));
    EXPECT_TRUE(info.exists("C"));
    EXPECT_FALSE(info.exists("D"));
    EXPECT_FALSE(info.exists("c"));
}

TEST(EnumInfo, walksValuesInAscendingOrderAndLabelsInDeclarationOrder)
{
    EnumInfo const info("Order", "Z = 7, A, M = -3, N");
    char const* const labels[] = {"Z", "A", "M", "N"};
    int const values[] = {7, 8, -3, -2};
    int const ascending[] = {-3, -2, 7, 8};
    for (unsigned long i = 0; i < 4; ++i) {
        EXPECT_STREQ(info.getLabelFromlabelIndex(i).c_str(), labels[i]);
        EXPECT_EQ(info.getValueFromLabelIndex(i), values[i]);
        EXPECT_EQ(info.getValueFromLabel(labels[i]), values[i]);
        EXPECT_EQ(info.getValueFromValueIndex(i), ascending[i]);
    }
}

TEST(EnumInfo, startsAtOneWithoutAValue)
{
    EnumInfo const info("Late", "A, B");
    EXPECT_EQ(info.getValueFromLabel("A"), 1);
    EXPECT_EQ(info.getValueFromLabel("B"), 2);
}

TEST(EnumInfo, takesEarlierLabelsAsValues)
{
    EnumInfo const info("Alias", "COOC_First = 4, COOC_Second, COOC_FirstMeasure = COOC_First, COOC_Next");
    EXPECT_EQ(info.getValueFromLabel("COOC_FirstMeasure"), 4);
    EXPECT_EQ(info.getValueFromLabel("COOC_Next"), 5);
    EXPECT_EQ(info.getNumOfLabelsAtValue(5), 2u);
}

TEST(EnumInfo, removesAllWhitespace)
{
    EnumInfo const info("Space", " \tA B\n= 1 2 ,\v C \r,\f D = A\tB ");
    EXPECT_EQ(info.getValueFromLabel("AB"), 12);
    EXPECT_EQ(info.getValueFromLabel("C"), 13);
    EXPECT_EQ(info.getValueFromLabel("D"), 12);
}

TEST(EnumInfo, readsSignedDecimalIntegers)
{
    EnumInfo const info("Signs", "A = -5, B, C = +3, D = 2147483647, E, F = -2147483648");
    EXPECT_EQ(info.getValueFromLabel("A"), -5);
    EXPECT_EQ(info.getValueFromLabel("B"), -4);
    EXPECT_EQ(info.getValueFromLabel("C"), 3);
    EXPECT_EQ(info.getValueFromLabel("D"), 2147483647);
    EXPECT_EQ(info.getValueFromLabel("E"), -2147483647 - 1);
    EXPECT_EQ(info.getValueFromLabel("F"), -2147483647 - 1);
}

TEST(EnumInfo, splitsAtTheFirstEqualsSignOnly)
{
    EXPECT_QEL_THROW(EnumInfo("Twice", "A = 0, B = A = 0"), RuntimeError,
                     "EnumInfo declaration error : A=0 does not correspond to possible item of enum Twice");
}

TEST(EnumInfo, overwritesTheValueOfALabelUsedAgain)
{
    EnumInfo const info("Again", "A = 0, B, A = 9");
    EXPECT_EQ(info.getValueFromLabel("A"), 9);
    EXPECT_EQ(info.getNumOfLabels(), 3u);
    EXPECT_EQ(info.getNumOfValues(), 3u);
    EXPECT_EQ(info.getValueFromLabelIndex(0), 0);
    EXPECT_STREQ(info.getLabelFromValue(0, 0).c_str(), "A");
}

TEST(EnumInfo, refusesARightSideThatIsNeitherNumberNorLabel)
{
    for (char const* right : {"B", "1x", "0x10", "2147483648", "", "--1", "+-1", "+", "1.0", "a"}) {
        SCOPED_TRACE(right);
        std::string const declaration = std::string("A = ") + right;
        EXPECT_QEL_WHAT(EnumInfo("Wrong", declaration.c_str()), RuntimeError,
                        std::string("Runtime error :\n#1 Error : EnumInfo declaration error : ") + right +
                            " does not correspond to possible item of enum Wrong \n");
    }
    // A label is known only behind its own declaration.
    EXPECT_QEL_THROW(EnumInfo("Wrong", "A = B, B = 0"), RuntimeError,
                     "EnumInfo declaration error : B does not correspond to possible item of enum Wrong");
    EXPECT_QEL_THROW(EnumInfo("Wrong", "A = A"), RuntimeError,
                     "EnumInfo declaration error : A does not correspond to possible item of enum Wrong");
}

TEST(EnumInfo, recordsItsSourcePath)
{
    try {
        EnumInfo("Wrong", "A = x");
        FAIL();
    } catch (RuntimeError const& error) {
        EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "Core/src/Enum/EnumInfo");
    }
    try {
        EnumInfo("Right", "A = 0").getValueFromValueIndex(1);
        FAIL();
    } catch (BadIndex const& error) {
        EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "Core/src/Enum/EnumInfo");
    }
}

TEST(EnumInfo, reportsAnIndexThatIsTooHigh)
{
    EnumInfo const info("Letters", "A = 0, B, C = 0");
    EXPECT_QEL_THROW(info.getValueFromValueIndex(info.getNumOfValues()), BadIndex,
                     "Enum Letters contains 2 values. Can not access to value index 2.");
    EXPECT_QEL_THROW(info.getLabelFromValueIndex(2, 0), BadIndex,
                     "Enum Letters contains 2 values. Can not access to value index 2.");
    EXPECT_QEL_THROW(info.getLabelFromlabelIndex(3), BadIndex,
                     "Enum Letters contains 3 labels. Can not access to label index 3.");
    EXPECT_QEL_THROW(info.getValueFromLabelIndex(4), BadIndex,
                     "Enum Letters contains 3 labels. Can not access to label index 4.");
    EXPECT_QEL_THROW(info.getLabelFromValue(0, 2), BadIndex,
                     "Value 0 of enum Letters is associated to 2 labels. Can not access to label index 2.");
    EXPECT_QEL_THROW(info.getLabelFromValueIndex(1, 1), BadIndex,
                     "Value index 1 of enum Letters is associated to 1 labels. Can not access to label index 1.");
    EXPECT_QEL_THROW(info.getLabelFromValue(-8, 0), BadIndex,
                     "Value -8 of enum Letters is associated to 0 labels. Can not access to label index 0.");
}

TEST(EnumInfo, printsIndicesAsUnsignedNumbersInEveryLocale)
{
    qel::test::ForeignLocale const locale;
    EnumInfo const info("Letters", "A = 0");
    EXPECT_QEL_THROW(info.getValueFromValueIndex(static_cast<unsigned long>(-1)), BadIndex,
                     "Enum Letters contains 1 values. Can not access to value index 18446744073709551615.");
}

TEST(EnumInfo, failsAsTheStandardMapDoesOnUnknownLabelsAndValues)
{
    EnumInfo const info("Letters", "A = 0");
    EXPECT_EQ(standardError([&] { info.getValueFromLabel("B"); }), "map::at");
    EXPECT_EQ(standardError([&] { info.getNumOfLabelsAtValue(1); }), "map::at");
}

TEST(EnumInfo, copiesItsTables)
{
    EnumInfo assigned("Other", "X = 5");
    {
        EnumInfo const info("Letters", "A = 0, B");
        EnumInfo const copy(info);
        EXPECT_EQ(copy.getValueFromLabel("B"), 1);
        assigned = copy;
    }
    EXPECT_STREQ(assigned.getEnumName().c_str(), "Letters");
    EXPECT_EQ(assigned.getValueFromLabel("B"), 1);
    EXPECT_FALSE(assigned.exists("X"));
    EnumInfo const& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned.getNumOfLabels(), 2u);
}
