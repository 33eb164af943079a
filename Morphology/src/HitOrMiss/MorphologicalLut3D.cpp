#include <qel/morphology/MorphologicalLut3D.h>

#include "Morphology/private/MorphologicalLut3DPrivate.h"
#include "Morphology/private/MorphologicalLutChecks.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <bit>

namespace qel::morphology {

namespace {

/// The bits of `number`, put one after the other where `places` has ones.
unsigned int spread(unsigned int number, unsigned int places)
{
    unsigned int result = 0;
    for (; places != 0; places &= places - 1, number >>= 1)
        if (number & 1)
            result |= places & -places;
    return result;
}

/// Adds a kernel word by word, so that no two tasks write the same one: the five lowest bits of a pattern choose a bit
/// of its word, and which of the bits agree is the same for all words.
class ParallelAddKernelMorphologicalLut3D
{
public:
    ParallelAddKernelMorphologicalLut3D(AskedPattern const& asked, unsigned int* words)
        : m_words(words + (asked.base >> 5))
        , m_freeInWord(asked.free >> 5)
    {
        for (unsigned int bit = 0; bit < 32; ++bit)
            if ((bit & ~asked.free) == (asked.base & 31))
                m_bits |= 1u << bit;
    }

    unsigned int numOfWords() const { return 1u << std::popcount(m_freeInWord); }

    void operator()(tbb::blocked_range<unsigned int> const& range) const
    {
        unsigned int word = spread(range.begin(), m_freeInWord);
        for (unsigned int i = range.begin(); i != range.end(); ++i) {
            m_words[word] |= m_bits;
            word = (word - m_freeInWord) & m_freeInWord; // counts up in the free bits alone
        }
    }

private:
    unsigned int* m_words;
    unsigned int m_freeInWord;
    unsigned int m_bits = 0;
};

} // namespace

MorphologicalLut3D::MorphologicalLut3D()
    : m_private(new MorphologicalLut3DPrivate)
{}
MorphologicalLut3D::MorphologicalLut3D(MorphologicalLut3D const& other)
    : m_private(new MorphologicalLut3DPrivate(*other.m_private))
{}
MorphologicalLut3D::~MorphologicalLut3D() { delete m_private; }

MorphologicalLut3D& MorphologicalLut3D::operator=(MorphologicalLut3D const& other)
{
    m_private->words = other.m_private->words;
    return *this;
}

void MorphologicalLut3D::reset() { std::fill(m_private->words.begin(), m_private->words.end(), 0u); }

void MorphologicalLut3D::addKernel(container::Vector<unsigned char> kernel)
{
    ParallelAddKernelMorphologicalLut3D const body(askedPattern(kernel, 27), m_private->words.data());
    constexpr unsigned int wordsOfTask = 65536;
    tbb::parallel_for(tbb::blocked_range<unsigned int>(0, body.numOfWords(), wordsOfTask), body);
}

void MorphologicalLut3D::buildFromLut(int const* lut, unsigned long size)
{
    checkLut(lut, size, MorphologicalLut3DPrivate::size);
    std::transform(lut, lut + size, m_private->words.begin(), [](int word) { return static_cast<unsigned int>(word); });
}

bool MorphologicalLut3D::operator==(MorphologicalLut3D const& other) const
{
    return m_private->words == other.m_private->words;
}

bool MorphologicalLut3D::operator!=(MorphologicalLut3D const& other) const { return !(*this == other); }

} // namespace qel::morphology
