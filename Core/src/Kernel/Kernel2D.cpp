#include <qel/kernel/Kernel2D.h>

#include "Core/private/Kernel/KernelPrivate.h"

namespace qel::kernel {

Kernel2D::Kernel2D()
    : m_private(new Kernel2DPrivate)
{}
Kernel2D::Kernel2D(Kernel2D const& other)
    : m_private(new Kernel2DPrivate(*other.m_private))
{}
Kernel2D::~Kernel2D() { delete m_private; }

Kernel2D& Kernel2D::operator=(Kernel2D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

void Kernel2D::addPoint(long x, long y, double weight) { m_private->addPoint({x, y}, weight); }
void Kernel2D::clear() { m_private->clear(); }
void Kernel2D::applyScale(double factor) { m_private->applyScale(factor); }
void Kernel2D::normalize() { m_private->normalize(); }

unsigned long Kernel2D::getNumOfPoints() const { return m_private->offsets.size(); }
Offset2D Kernel2D::getOffset(unsigned long index) const { return m_private->offsets[index]; }
double Kernel2D::getWeight(unsigned long index) const { return m_private->weights[index]; }

bool Kernel2D::operator==(Kernel2D const& other) const { return *m_private == *other.m_private; }
bool Kernel2D::operator!=(Kernel2D const& other) const { return !(*this == other); }

} // namespace qel::kernel
