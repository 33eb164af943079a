#include <qel/morphology/MorphologicalLut2D.h>

#include "Morphology/private/MorphologicalLut2DPrivate.h"
#include "Morphology/private/MorphologicalLutChecks.h"

#include <algorithm>

namespace qel::morphology {

MorphologicalLut2D::MorphologicalLut2D()
    : m_private(new MorphologicalLut2DPrivate)
{}
MorphologicalLut2D::MorphologicalLut2D(MorphologicalLut2D const& other)
    : m_private(new MorphologicalLut2DPrivate(*other.m_private))
{}
MorphologicalLut2D::~MorphologicalLut2D() { delete m_private; }

MorphologicalLut2D& MorphologicalLut2D::operator=(MorphologicalLut2D const& other)
{
    m_private->patterns = other.m_private->patterns;
    return *this;
}

void MorphologicalLut2D::reset()
{
    std::fill(m_private->patterns.begin(), m_private->patterns.end(), static_cast<unsigned char>(0));
}

void MorphologicalLut2D::addKernel(container::Vector<unsigned char> kernel)
{
    AskedPattern const asked = askedPattern(kernel, 9);
    for (unsigned int pattern = 0; pattern < MorphologicalLut2DPrivate::size; ++pattern)
        if ((pattern & ~asked.free) == asked.base)
            m_private->patterns[pattern] = 1;
}

void MorphologicalLut2D::buildFromLut(int const* lut, unsigned long size)
{
    checkLut(lut, size, MorphologicalLut2DPrivate::size);
    std::transform(lut, lut + size, m_private->patterns.begin(),
                   [](int entry) { return static_cast<unsigned char>(entry); });
}

void MorphologicalLut2D::buildFromLut(unsigned char const* lut, unsigned long size)
{
    checkLut(lut, size, MorphologicalLut2DPrivate::size);
    std::copy_n(lut, size, m_private->patterns.begin());
}

bool MorphologicalLut2D::operator==(MorphologicalLut2D const& other) const
{
    return m_private->patterns == other.m_private->patterns;
}

bool MorphologicalLut2D::operator!=(MorphologicalLut2D const& other) const { return !(*this == other); }

} // namespace qel::morphology
