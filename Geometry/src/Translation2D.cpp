#include <qel/geometry/Translation2D.h>

#include "Geometry/private/ProjectiveTransformation2DPrivate.h"

namespace qel::geometry {

Translation2D::Translation2D()
    : m_private(new ProjectiveTransformation2DPrivate)
{}

Translation2D::Translation2D(double tx, double ty)
    : Translation2D(math::Vector2<double>(tx, ty))
{}

Translation2D::Translation2D(math::Vector2<double> const& translation)
    : Translation2D()
{
    setTranslation(translation);
}

Translation2D::Translation2D(Translation2D const& other)
    : Transformation2D(other)
    , m_private(new ProjectiveTransformation2DPrivate(*other.m_private))
{}

Translation2D& Translation2D::operator=(Translation2D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

Translation2D::~Translation2D() { delete m_private; }

void Translation2D::map(math::Vector2<double>& point) const { m_private->map(point); }

void Translation2D::map(math::Vector2<double>* begin, math::Vector2<double>* end) const { m_private->map(begin, end); }

unsigned int Translation2D::getNumOfParameter() { return 2; }

double Translation2D::getParam(unsigned int index) const { return m_private->element(index, 2); }

void Translation2D::setParam(unsigned int index, double value) { m_private->element(index, 2) = value; }

math::Vector2<double> Translation2D::getTranslation() const { return m_private->getTranslation(); }

void Translation2D::setTranslation(math::Vector2<double> const& translation) { m_private->setTranslation(translation); }

} // namespace qel::geometry
