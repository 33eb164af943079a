#include <qel/helper/copyBytes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace qel::test {
namespace {

using Copy = void (*)(unsigned char*, unsigned char const*, unsigned long);

class CopyBytesTest : public testing::TestWithParam<Copy>
{
protected:
    static std::vector<unsigned char> noise(std::size_t count)
    {
        std::vector<unsigned char> bytes(count);
        unsigned int state = 1;
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>((state = state * 1664525u + 1013904223u) >> 24);
        return bytes;
    }
};

TEST_P(CopyBytesTest, copiesThatManyBytesFromAndToAnyAddress)
{
    std::vector<unsigned char> const source = noise(10000);
    for (std::size_t const count : {0, 1, 15, 16, 63, 64, 1023, 1024, 1025, 1087, 2047, 2048, 2049, 2115, 4096, 9000})
        for (std::size_t const from : {0, 1, 16, 33})
            for (std::size_t const to : {0, 1, 15, 16, 40}) {
                std::vector<unsigned char> target(to + count + 100, 7);
                GetParam()(target.data() + to, source.data() + from, count);
                std::vector<unsigned char> expected(target.size(), 7);
                std::copy_n(source.data() + from, count, expected.data() + to);
                ASSERT_EQ(target, expected) << count << " from " << from << " to " << to;
            }
}

TEST_P(CopyBytesTest, takesRangesThatOverlap)
{
    for (std::size_t const count : {100, 1500, 5000})
        for (std::size_t const from : {0, 1, 8, 16, 70, 99, 1600})
            for (std::size_t const to : {0, 1, 8, 16, 70, 99, 1600}) {
                std::vector<unsigned char> const before = noise(7000);
                std::vector<unsigned char> bytes = before;
                GetParam()(bytes.data() + to, bytes.data() + from, count);
                std::vector<unsigned char> expected = before;
                std::copy_n(before.data() + from, count, expected.data() + to);
                ASSERT_EQ(bytes, expected) << count << " from " << from << " to " << to;
            }
}

INSTANTIATE_TEST_SUITE_P(Both, CopyBytesTest, testing::Values(&helper::copyBytes, &helper::copyBytesPastCaches));

} // namespace
} // namespace qel::test
