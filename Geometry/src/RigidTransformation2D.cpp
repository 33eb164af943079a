#include <qel/geometry/RigidTransformation2D.h>

#include "Geometry/private/ProjectiveTransformation2DPrivate.h"

#include <cmath>

namespace qel::geometry {

RigidTransformation2D::RigidTransformation2D()
    : m_private(new ProjectiveTransformation2DPrivate)
    , m_angle(0)
{}

RigidTransformation2D::RigidTransformation2D(double tx, double ty, double angle)
    : RigidTransformation2D(math::Vector2<double>(tx, ty), angle)
{}

RigidTransformation2D::RigidTransformation2D(math::Vector2<double> const& translation, double angle)
    : RigidTransformation2D()
{
    setTranslation(translation);
    setRotation(angle);
}

RigidTransformation2D::RigidTransformation2D(RigidTransformation2D const& other)
    : Transformation2D(other)
    , m_private(new ProjectiveTransformation2DPrivate(*other.m_private))
    , m_angle(other.m_angle)
{}

RigidTransformation2D& RigidTransformation2D::operator=(RigidTransformation2D const& other)
{
    *m_private = *other.m_private;
    m_angle = other.m_angle;
    return *this;
}

RigidTransformation2D::~RigidTransformation2D() { delete m_private; }

void RigidTransformation2D::map(math::Vector2<double>& point) const { m_private->map(point); }

void RigidTransformation2D::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int RigidTransformation2D::getNumOfParameter() { return 3; }

// All eight elements can be reached, but 2 stands for the angle.
double RigidTransformation2D::getParam(unsigned int index) const
{
    return index == 2 ? m_angle : m_private->element(index, 8);
}

void RigidTransformation2D::setParam(unsigned int index, double value)
{
    if (index == 2)
        setRotation(value);
    else
        m_private->element(index, 8) = value;
}

math::Vector2<double> RigidTransformation2D::getTranslation() const { return m_private->getTranslation(); }

void RigidTransformation2D::setTranslation(math::Vector2<double> const& translation)
{
    m_private->setTranslation(translation);
}

double RigidTransformation2D::getRotation() const { return m_angle; }

void RigidTransformation2D::setRotation(double angle)
{
    m_angle = angle;
    double const c = std::cos(angle);
    double const s = std::sin(angle);
    m_private->setRotationMatrix(math::Matrix2<double>(c, -s, s, c));
}

math::Matrix2<double> RigidTransformation2D::getRotationMatrix() const { return m_private->getRotationMatrix(); }

} // namespace qel::geometry
