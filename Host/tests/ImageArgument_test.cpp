#include "Errors.h"
#include "ImageArgument.h"

#include <gtest/gtest.h>

using host::ImageArgument;
using host::UsageError;
using Role = ImageArgument::Role;

TEST(ImageArgumentTest, aPathAloneSaysNothingElse)
{
    ImageArgument const argument = ImageArgument::parse("folder/a.png", Role::Input);
    EXPECT_EQ("folder/a.png", argument.path);
    EXPECT_FALSE(argument.null || argument.type || argument.interpretation || argument.spacing || argument.origin ||
                 argument.unit);
    EXPECT_EQ("", argument.other);
}

TEST(ImageArgumentTest, keysMayStandInAnyOrder)
{
    ImageArgument const argument = ImageArgument::parse(
        "a.png,unit=mm,spacing=0.5_2_1e3,type=int64,origin=-1_0_1,interpretation=label", Role::Input);
    EXPECT_EQ("a.png", argument.path);
    EXPECT_EQ(qel::QEL_INT64, argument.type);
    EXPECT_EQ(qel::QEL_LABEL, argument.interpretation);
    EXPECT_EQ((std::array<double, 3>{0.5, 2, 1000}), argument.spacing);
    EXPECT_EQ((std::array<double, 3>{-1, 0, 1}), argument.origin);
    EXPECT_EQ("mm", argument.unit);
}

TEST(ImageArgumentTest, aPathMayHoldCommasAndEqualSigns)
{
    EXPECT_EQ("a,b,1=2.png", ImageArgument::parse("a,b,1=2.png,type=uint8", Role::Input).path);
    EXPECT_EQ("x=1.png", ImageArgument::parse("x=1.png", Role::Input).path);
    EXPECT_EQ("a,", ImageArgument::parse("a,", Role::Input).path);
}

TEST(ImageArgumentTest, anotherPropertyIsNamedByAnAtSign)
{
    ImageArgument const argument = ImageArgument::parse("@input,save=b.png", Role::Output);
    EXPECT_EQ("input", argument.other);
    EXPECT_EQ("b.png", argument.save);
    EXPECT_EQ("", argument.path);
    EXPECT_THROW(ImageArgument::parse("@input,type=uint8", Role::Output), UsageError);
    EXPECT_EQ("@file.png", ImageArgument::parse("./@file.png", Role::Input).path.substr(2));
}

TEST(ImageArgumentTest, nullIsNoImage)
{
    EXPECT_TRUE(ImageArgument::parse("null", Role::Input).null);
    EXPECT_EQ("./null", ImageArgument::parse("./null", Role::Input).path);
}

TEST(ImageArgumentTest, sizesAreFiveCounts)
{
    EXPECT_EQ((std::array<unsigned long, 5>{4, 3, 2, 1, 0}),
              ImageArgument::parse("a.png,size=4_3_2_1_0", Role::Output).size);
    for (char const* const wrong : {"4_3_2_1", "4_3_2_1_0_1", "4_3_2_1_x", "-4_3_2_1_1", "4 _3_2_1_1", "",
                                    "18446744073709551615_2_1_1_1", "18446744073709551616_1_1_1_1"}) {
        EXPECT_THROW(ImageArgument::parse(std::string("a.png,size=") + wrong, Role::Output), UsageError) << wrong;
    }
}

TEST(ImageArgumentTest, everyRoleHasItsKeys)
{
    EXPECT_THROW(ImageArgument::parse("a.png,size=1_1_1_1_1", Role::Input), UsageError);
    EXPECT_THROW(ImageArgument::parse("a.png,spacing=1_1_1", Role::Output), UsageError);
    EXPECT_THROW(ImageArgument::parse("a.png,save=b.png", Role::Output), UsageError);
    EXPECT_EQ("b.png", ImageArgument::parse("a.png,save=b.png", Role::InOut).save);
    EXPECT_THROW(ImageArgument::parse("a.png,save=", Role::InOut), UsageError);
    EXPECT_THROW(ImageArgument::parse("a.png,type=uint8,type=uint8", Role::Input), UsageError);
    EXPECT_THROW(ImageArgument::parse("a.png,spacing=1_nan_1", Role::Input), UsageError);
}

TEST(ImageArgumentTest, theTenTypesHaveNames)
{
    for (int i = 0; i < 10; ++i) {
        auto const type = static_cast<qel::VoxelTypes>(i);
        EXPECT_EQ(type, host::voxelTypeFromName(host::nameOf(type)));
    }
    EXPECT_THROW(host::voxelTypeFromName("complex float32"), UsageError);
}
