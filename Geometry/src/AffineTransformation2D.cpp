#include <qel/geometry/AffineTransformation2D.h>

#include "Geometry/private/ProjectiveTransformation2DPrivate.h"

namespace qel::geometry {

AffineTransformation2D::AffineTransformation2D()
    : m_private(new ProjectiveTransformation2DPrivate)
{}

AffineTransformation2D::AffineTransformation2D(double tx, double ty, double m00, double m01, double m10, double m11)
    : AffineTransformation2D(math::Vector2<double>(tx, ty), math::Matrix2<double>(m00, m01, m10, m11))
{}

AffineTransformation2D::AffineTransformation2D(math::Vector2<double> const& translation,
                                               math::Matrix2<double> const& matrix)
    : AffineTransformation2D()
{
    setTranslation(translation);
    setRotationMatrix(matrix);
}

AffineTransformation2D::AffineTransformation2D(AffineTransformation2D const& other)
    : Transformation2D(other)
    , m_private(new ProjectiveTransformation2DPrivate(*other.m_private))
{}

AffineTransformation2D& AffineTransformation2D::operator=(AffineTransformation2D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

AffineTransformation2D::~AffineTransformation2D() { delete m_private; }

void AffineTransformation2D::map(math::Vector2<double>& point) const { m_private->map(point); }

void AffineTransformation2D::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int AffineTransformation2D::getNumOfParameter() { return 6; }

double AffineTransformation2D::getParam(unsigned int index) const { return m_private->element(index, 6); }

void AffineTransformation2D::setParam(unsigned int index, double value) { m_private->element(index, 6) = value; }

math::Vector2<double> AffineTransformation2D::getTranslation() const { return m_private->getTranslation(); }

void AffineTransformation2D::setTranslation(math::Vector2<double> const& translation)
{
    m_private->setTranslation(translation);
}

math::Matrix2<double> AffineTransformation2D::getRotationMatrix() const { return m_private->getRotationMatrix(); }

void AffineTransformation2D::setRotationMatrix(math::Matrix2<double> const& matrix)
{
    m_private->setRotationMatrix(matrix);
}

} // namespace qel::geometry
