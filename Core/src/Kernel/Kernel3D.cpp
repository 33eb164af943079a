#include <qel/kernel/Kernel3D.h>

#include "Core/private/Kernel/KernelPrivate.h"

namespace qel::kernel {

Kernel3D::Kernel3D()
    : m_private(new Kernel3DPrivate)
{}
Kernel3D::Kernel3D(Kernel3D const& other)
    : m_private(new Kernel3DPrivate(*other.m_private))
{}
Kernel3D::~Kernel3D() { delete m_private; }

Kernel3D& Kernel3D::operator=(Kernel3D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

void Kernel3D::addPoint(long x, long y, long z, double weight) { m_private->addPoint({x, y, z}, weight); }
void Kernel3D::clear() { m_private->clear(); }
void Kernel3D::applyScale(double factor) { m_private->applyScale(factor); }
void Kernel3D::normalize() { m_private->normalize(); }

unsigned long Kernel3D::getNumOfPoints() const { return m_private->offsets.size(); }
Offset3D Kernel3D::getOffset(unsigned long index) const { return m_private->offsets[index]; }
double Kernel3D::getWeight(unsigned long index) const { return m_private->weights[index]; }

bool Kernel3D::operator==(Kernel3D const& other) const { return *m_private == *other.m_private; }
bool Kernel3D::operator!=(Kernel3D const& other) const { return !(*this == other); }

} // namespace qel::kernel
