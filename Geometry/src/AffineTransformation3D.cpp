#include <qel/geometry/AffineTransformation3D.h>

#include "Geometry/private/AffineTransformation3DPrivate.h"

namespace qel::geometry {

AffineTransformation3D::AffineTransformation3D()
    : m_private(new AffineTransformation3DPrivate)
{}

AffineTransformation3D::AffineTransformation3D(math::Vector3<double> const& translation,
                                               math::Matrix3<double> const& matrix)
    : AffineTransformation3D()
{
    setTranslation(translation);
    setRotationMatrix(matrix);
}

AffineTransformation3D::AffineTransformation3D(AffineTransformation3D const& other)
    : Transformation3D(other)
    , m_private(new AffineTransformation3DPrivate(*other.m_private))
{}

AffineTransformation3D& AffineTransformation3D::operator=(AffineTransformation3D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

AffineTransformation3D::~AffineTransformation3D() { delete m_private; }

void AffineTransformation3D::map(math::Vector3<double>& point) const { m_private->map(&point, &point + 1); }

void AffineTransformation3D::map(math::Vector3<double>* begin, math::Vector3<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int AffineTransformation3D::getNumOfParameter() { return 12; }

math::Vector3<double> AffineTransformation3D::getTranslation() const { return m_private->getTranslation(); }

void AffineTransformation3D::setTranslation(math::Vector3<double> const& translation)
{
    m_private->setTranslation(translation);
}

math::Matrix3<double> AffineTransformation3D::getRotationMatrix() const { return m_private->getMatrix(); }

void AffineTransformation3D::setRotationMatrix(math::Matrix3<double> const& matrix) { m_private->setMatrix(matrix); }

} // namespace qel::geometry
