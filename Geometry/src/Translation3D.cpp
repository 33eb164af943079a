#include <qel/geometry/Translation3D.h>

#include "Geometry/private/AffineTransformation3DPrivate.h"

namespace qel::geometry {

Translation3D::Translation3D()
    : m_private(new AffineTransformation3DPrivate)
{}

Translation3D::Translation3D(double tx, double ty, double tz)
    : Translation3D(math::Vector3<double>(tx, ty, tz))
{}

Translation3D::Translation3D(math::Vector3<double> const& translation)
    : Translation3D()
{
    setTranslation(translation);
}

Translation3D::Translation3D(Translation3D const& other)
    : Transformation3D(other)
    , m_private(new AffineTransformation3DPrivate(*other.m_private))
{}

Translation3D& Translation3D::operator=(Translation3D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

Translation3D::~Translation3D() { delete m_private; }

void Translation3D::map(math::Vector3<double>& point) const { m_private->map(&point, &point + 1); }

void Translation3D::map(math::Vector3<double>* begin, math::Vector3<double>* end) const { m_private->map(begin, end); }

unsigned int Translation3D::getNumOfParameter() { return 3; }

math::Vector3<double> Translation3D::getTranslation() const { return m_private->getTranslation(); }

void Translation3D::setTranslation(math::Vector3<double> const& translation) { m_private->setTranslation(translation); }

} // namespace qel::geometry
