#include "Core/tests/Support/Support.h"
#include "Morphology/private/MorphologicalLut2DPrivate.h"
#include "Morphology/private/MorphologicalLut3DPrivate.h"

#include <qel/morphology/MorphologicalLut2D.h>
#include <qel/morphology/MorphologicalLut3D.h>

#include <numeric>
#include <random>

namespace qel::test {
namespace {

using morphology::MorphologicalLut2D;
using morphology::MorphologicalLut3D;
using Kernel = container::Vector<unsigned char>;

Kernel kernelOf(std::vector<int> const& entries)
{
    Kernel kernel;
    for (int const entry : entries)
        kernel.push_back(static_cast<unsigned char>(entry));
    return kernel;
}

bool agrees(Kernel const& kernel, unsigned int pattern)
{
    for (unsigned long bit = 0; bit < kernel.size(); ++bit)
        if (kernel[bit] < 2 && kernel[bit] != (pattern >> bit & 1))
            return false;
    return true;
}

bool has(MorphologicalLut2D const& lut, unsigned int pattern) { return lut.getPrivate().patterns[pattern] != 0; }
bool has(MorphologicalLut3D const& lut, unsigned int pattern)
{
    return (lut.getPrivate().words[pattern / 32] >> pattern % 32 & 1) != 0;
}

TEST(MorphologicalLut2DTest, matchesNothingAtFirst)
{
    MorphologicalLut2D const lut;
    for (unsigned int pattern = 0; pattern < 512; ++pattern)
        EXPECT_FALSE(has(lut, pattern));
    EXPECT_EQ(lut.getPrivate().patterns.size(), 512u);
}

TEST(MorphologicalLut2DTest, takesThePatternsOfEachKernel)
{
    std::mt19937 random(1);
    for (int i = 0; i < 30; ++i) {
        Kernel first(9), second(9);
        for (unsigned long bit = 0; bit < 9; ++bit) {
            first[bit] = static_cast<unsigned char>(random() % 3);
            second[bit] = static_cast<unsigned char>(random() % 3);
        }
        MorphologicalLut2D lut;
        lut.addKernel(first);
        for (unsigned int pattern = 0; pattern < 512; ++pattern)
            ASSERT_EQ(has(lut, pattern), agrees(first, pattern)) << pattern;
        lut.addKernel(second);
        for (unsigned int pattern = 0; pattern < 512; ++pattern) {
            ASSERT_EQ(has(lut, pattern), agrees(first, pattern) || agrees(second, pattern)) << pattern;
            ASSERT_LE(lut.getPrivate().patterns[pattern], 1);
        }
    }
}

TEST(MorphologicalLut2DTest, aKernelOfFreeEntriesAloneTakesAllPatterns)
{
    MorphologicalLut2D lut;
    lut.addKernel(kernelOf({2, 2, 2, 2, 2, 2, 2, 2, 2}));
    for (unsigned int pattern = 0; pattern < 512; ++pattern)
        EXPECT_TRUE(has(lut, pattern));
    MorphologicalLut2D odd;
    odd.addKernel(kernelOf({2, 3, 255, 2, 2, 2, 2, 2, 2}));
    EXPECT_TRUE(lut == odd);
    lut.reset();
    EXPECT_TRUE(lut == MorphologicalLut2D());
    EXPECT_TRUE(lut != odd);
}

TEST(MorphologicalLut2DTest, isReplacedByAnArray)
{
    std::vector<int> numbers(512);
    std::iota(numbers.begin(), numbers.end(), 0);
    MorphologicalLut2D lut;
    lut.addKernel(kernelOf({2, 2, 2, 2, 2, 2, 2, 2, 2}));
    lut.buildFromLut(numbers.data(), 512);
    for (unsigned int pattern = 0; pattern < 512; ++pattern)
        EXPECT_EQ(lut.getPrivate().patterns[pattern], pattern % 256);
    std::vector<unsigned char> const bytes(numbers.begin(), numbers.end());
    MorphologicalLut2D ofBytes;
    ofBytes.buildFromLut(bytes.data(), 512);
    EXPECT_TRUE(ofBytes == lut);
}

TEST(MorphologicalLut2DTest, refusesArraysAndKernelsOfAnotherSize)
{
    std::string const text = "LUT array cannot be NULL and must have a size of 512 elements.";
    MorphologicalLut2D lut;
    std::vector<int> const numbers(513, 1);
    std::vector<unsigned char> const bytes(513, 1);
    for (unsigned long const size : {0ul, 511ul, 513ul}) {
        EXPECT_QEL_THROW(lut.buildFromLut(numbers.data(), size), InvalidCall, text);
        EXPECT_QEL_THROW(lut.buildFromLut(bytes.data(), size), InvalidCall, text);
    }
    EXPECT_QEL_THROW(lut.buildFromLut(static_cast<int const*>(nullptr), 512), InvalidCall, text);
    EXPECT_QEL_THROW(lut.buildFromLut(static_cast<unsigned char const*>(nullptr), 512), InvalidCall, text);
    for (unsigned long const size : {0ul, 8ul, 10ul, 27ul})
        EXPECT_QEL_THROW(lut.addKernel(Kernel(size)), InvalidCall, "The kernel must have a size of 9 elements.");
    EXPECT_TRUE(lut == MorphologicalLut2D());
}

TEST(MorphologicalLut2DTest, copiesItsTable)
{
    MorphologicalLut2D lut;
    lut.addKernel(kernelOf({1, 0, 0, 0, 0, 0, 0, 0, 0}));
    MorphologicalLut2D copy(lut), assigned;
    assigned = lut;
    lut.reset();
    EXPECT_TRUE(has(copy, 1));
    EXPECT_TRUE(copy == assigned);
    EXPECT_FALSE(copy == lut);
}

TEST(MorphologicalLut3DTest, takesThePatternsOfEachKernel)
{
    onOneAndFourThreads([] {
        std::mt19937 random(2);
        MorphologicalLut3D lut;
        std::vector<Kernel> kernels;
        for (unsigned int const free : {27u, 12u, 3u, 0u}) { // in 27: how likely an entry is free
            Kernel kernel(27);
            for (unsigned long bit = 0; bit < 27; ++bit)
                kernel[bit] = static_cast<unsigned char>(random() % 27 < free ? 2 : random() % 2);
            lut.reset();
            lut.addKernel(kernel);
            unsigned int numOfFree = 0, base = 0;
            for (unsigned int bit = 0; bit < 27; ++bit) {
                numOfFree += kernel[bit] == 2;
                base |= (kernel[bit] & 1u) << bit;
            }
            unsigned long number = 0;
            for (unsigned int const word : lut.getPrivate().words)
                number += static_cast<unsigned long>(__builtin_popcount(word));
            EXPECT_EQ(number, 1ul << numOfFree);
            EXPECT_TRUE(has(lut, base));
            for (int i = 0; i < 20000; ++i) {
                auto const pattern = static_cast<unsigned int>(random() % (1u << 27));
                ASSERT_EQ(has(lut, pattern), agrees(kernel, pattern)) << pattern;
            }
        }
    });
}

TEST(MorphologicalLut3DTest, keepsWhatEarlierKernelsTook)
{
    MorphologicalLut3D lut;
    Kernel lone(27), full(27);
    for (unsigned long bit = 0; bit < 27; ++bit)
        full[bit] = 1;
    lone[13] = 1;
    lut.addKernel(lone);
    lut.addKernel(full);
    EXPECT_TRUE(has(lut, 1u << 13));
    EXPECT_TRUE(has(lut, (1u << 27) - 1));
    EXPECT_FALSE(has(lut, 0));
    lut.reset();
    EXPECT_TRUE(lut == MorphologicalLut3D());
}

TEST(MorphologicalLut3DTest, isReplacedByAnArrayOfWords)
{
    std::vector<int> words(4194304);
    std::iota(words.begin(), words.end(), -7);
    MorphologicalLut3D lut;
    lut.buildFromLut(words.data(), words.size());
    for (std::size_t i = 0; i < words.size(); ++i)
        ASSERT_EQ(lut.getPrivate().words[i], static_cast<unsigned int>(words[i]));
    MorphologicalLut3D copy(lut), assigned;
    assigned = copy;
    EXPECT_TRUE(assigned == lut);
    EXPECT_TRUE(assigned != MorphologicalLut3D());
}

TEST(MorphologicalLut3DTest, refusesArraysAndKernelsOfAnotherSize)
{
    std::string const text = "LUT array cannot be NULL and must have a size of 4194304 elements.";
    MorphologicalLut3D lut;
    int const number = 1;
    for (unsigned long const size : {0ul, 1ul, 512ul, 4194303ul, 4194305ul})
        EXPECT_QEL_THROW(lut.buildFromLut(&number, size), InvalidCall, text);
    EXPECT_QEL_THROW(lut.buildFromLut(nullptr, 4194304), InvalidCall, text);
    EXPECT_QEL_THROW(lut.addKernel(Kernel(9)), InvalidCall, "The kernel must have a size of 27 elements.");
}

} // namespace
} // namespace qel::test
