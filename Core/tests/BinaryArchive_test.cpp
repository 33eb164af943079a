#include "Core/private/Serialization/BinaryArchive.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>

#include "Core/private/ClassicText.h"

using namespace qel;
using archive::BinaryInputArchive;
using archive::BinaryOutputArchive;

namespace {

template <class... T> std::string written(T const&... values)
{
    std::ostringstream stream;
    BinaryOutputArchive archive(stream);
    (serialization::serialize(archive, values), ...);
    return stream.str();
}

template <class T> T readBack(std::string const& bytes)
{
    std::istringstream stream(bytes);
    BinaryInputArchive archive(stream);
    T value{};
    serialization::serialize(archive, value);
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(bytes.size()));
    return value;
}

template <class T> bool isRefused(std::string const& bytes, T value = {})
{
    std::istringstream stream(bytes);
    try {
        BinaryInputArchive archive(stream);
        serialization::serialize(archive, value);
        return false;
    } catch (archive::Corrupted const&) {
        return true;
    }
}

std::string bytes(std::initializer_list<int> values) { return std::string(values.begin(), values.end()); }

/// A class with one body for both directions.
struct Sample
{
    unsigned short version = 0;
    String name;
    container::Vector<double> values;
    std::vector<math::Vector3<int>> points;
    bool isDone = false;

    template <class Archive> void serialize(Archive& archive)
    {
        serialization::serialize(archive, version);
        serialization::serialize(archive, name);
        serialization::serialize(archive, values);
        serialization::serialize(archive, points);
        serialization::serialize(archive, isDone);
    }
};

} // namespace

TEST(BinaryArchive, writesNumbersAtTheirOwnWidth)
{
    EXPECT_EQ(written(static_cast<unsigned char>(0x12), static_cast<short>(-2), 0x01020304, 0x05060708l, true),
              bytes({0x12, 0xfe, 0xff, 0x04, 0x03, 0x02, 0x01, 0x08, 0x07, 0x06, 0x05, 0, 0, 0, 0, 1}));
    EXPECT_EQ(written(1.0, -2.0f), bytes({0, 0, 0, 0, 0, 0, 0xf0, 0x3f, 0, 0, 0, 0xc0}));
}

TEST(BinaryArchive, writesStringsAndVectorsBehindACount)
{
    EXPECT_EQ(written(std::string("ab\0c", 4)), bytes({4, 0, 0, 0, 0, 0, 0, 0, 'a', 'b', 0, 'c'}));
    EXPECT_EQ(written(String("ab\0c", 4)), bytes({4, 0, 0, 0, 0, 0, 0, 0, 'a', 'b', 0, 'c'}));
    EXPECT_EQ(written(std::string()), bytes({0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(written(std::vector<unsigned short>{1, 0x203}), bytes({2, 0, 0, 0, 0, 0, 0, 0, 1, 0, 3, 2}));
    container::Vector<int> vector;
    vector.push_back(-1);
    EXPECT_EQ(written(vector), bytes({1, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_EQ(written(container::Vector<double>()), bytes({0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(BinaryArchive, writesPointsComponentByComponent)
{
    EXPECT_EQ(written(math::Vector2<int>(1, -1)), bytes({1, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_EQ(written(math::Vector3<unsigned int>(1, 2, 3)), bytes({1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_EQ(written(std::vector<math::Vector2<int>>{{1, 2}}),
              bytes({1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0}));
}

TEST(BinaryArchive, readsWhatItWrote)
{
    EXPECT_EQ(readBack<int>(written(-5)), -5);
    EXPECT_EQ(readBack<unsigned char>(written(static_cast<unsigned char>(200))), 200);
    EXPECT_EQ(readBack<double>(written(0.1)), 0.1);
    EXPECT_EQ(readBack<std::string>(written(std::string("a\0b", 3))), std::string("a\0b", 3));
    EXPECT_EQ(readBack<String>(written(String("a\0b", 3))), String("a\0b", 3));
    EXPECT_EQ(readBack<std::vector<std::string>>(written(std::vector<std::string>{"a", "", "bc"})),
              (std::vector<std::string>{"a", "", "bc"}));
    math::Vector3<double> const point(1, 0.5, -3);
    EXPECT_EQ(readBack<math::Vector3<double>>(written(point)), point);
    container::Vector<math::Vector2<int>> points;
    points.push_back(math::Vector2<int>(1, -7));
    points.push_back(math::Vector2<int>(0, 9));
    EXPECT_EQ(readBack<container::Vector<math::Vector2<int>>>(written(points)), points);
}

TEST(BinaryArchive, readingReplacesTheContainersContent)
{
    std::istringstream stream(written(std::vector<int>{7}));
    BinaryInputArchive archive(stream);
    std::vector<int> values{1, 2, 3};
    serialization::serialize(archive, values);
    EXPECT_EQ(values, std::vector<int>{7});
}

TEST(BinaryArchive, oneBodyServesBothDirections)
{
    Sample sample{2, "name", {}, {{1, 2, 3}, {4, 5, 6}}, true};
    sample.values.push_back(0.25);
    std::stringstream stream;
    BinaryOutputArchive output(stream);
    sample.serialize(output);
    Sample copy;
    BinaryInputArchive input(stream);
    copy.serialize(input);
    EXPECT_EQ(copy.version, 2);
    EXPECT_EQ(copy.name, sample.name);
    EXPECT_EQ(copy.values, sample.values);
    EXPECT_EQ(copy.points, sample.points);
    EXPECT_TRUE(copy.isDone);
}

TEST(BinaryArchive, takesEachByteButZeroForTrue)
{
    EXPECT_TRUE(readBack<bool>(bytes({0x80})));
    EXPECT_TRUE(readBack<bool>(bytes({1})));
    EXPECT_FALSE(readBack<bool>(bytes({0})));
}

TEST(BinaryArchive, refusesAStreamThatEndsTooEarly)
{
    EXPECT_TRUE(isRefused<int>(""));
    EXPECT_TRUE(isRefused<int>("abc"));
    EXPECT_TRUE(isRefused<bool>(""));
    EXPECT_TRUE((isRefused<math::Vector2<int>>("1234567")));
    EXPECT_TRUE(isRefused<std::string>(bytes({1, 0, 0, 0, 0, 0, 0})));
    EXPECT_TRUE(isRefused<std::string>(bytes({2, 0, 0, 0, 0, 0, 0, 0, 'a'})));
    EXPECT_TRUE(isRefused<String>(bytes({2, 0, 0, 0, 0, 0, 0, 0, 'a'})));
    EXPECT_FALSE(isRefused<String>(bytes({1, 0, 0, 0, 0, 0, 0, 0, 'a'})));
    std::string const oneString = bytes({1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_TRUE(isRefused<std::vector<std::string>>(oneString));
    EXPECT_FALSE(isRefused<std::vector<std::string>>(oneString + "a"));
}

// Were memory taken first, these would end in bad_alloc or in a killed test.
TEST(BinaryArchive, refusesACountBeyondTheStreamBeforeItTakesMemory)
{
    for (unsigned long const count : {3ul, 1ul << 40, 1ul << 61, ~0ul, ~0ul / 8 + 1}) {
        std::string const file = written(count) + std::string(16, '\1');
        EXPECT_TRUE(isRefused<std::vector<double>>(file)) << count;
        EXPECT_TRUE(isRefused<container::Vector<double>>(file)) << count;
        EXPECT_TRUE((isRefused<container::Vector<math::Vector2<double>>>(file))) << count;
        if (count > 16) {
            EXPECT_TRUE(isRefused<std::string>(file)) << count;
            EXPECT_TRUE(isRefused<String>(file)) << count;
            EXPECT_TRUE(isRefused<std::vector<char>>(file)) << count;
        }
    }
    EXPECT_FALSE(isRefused<std::vector<double>>(written(2ul) + std::string(16, '\1')));
}

TEST(BinaryArchive, leavesTheValueOfARefusedCountAlone)
{
    std::vector<double> const before{1, 2};
    std::istringstream stream(written(~0ul));
    BinaryInputArchive archive(stream);
    std::vector<double> values = before;
    EXPECT_THROW(serialization::serialize(archive, values), archive::Corrupted);
    EXPECT_EQ(values, before);
}
