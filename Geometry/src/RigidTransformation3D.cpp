#include <qel/geometry/RigidTransformation3D.h>

#include "Geometry/private/AffineTransformation3DPrivate.h"

#include <qel/math/rotationAroundXYZ.h>

#include <cmath>

namespace qel::geometry {

RigidTransformation3D::RigidTransformation3D()
    : m_private(new AffineTransformation3DPrivate)
{}

RigidTransformation3D::RigidTransformation3D(math::Vector3<double> const& translation, double rx, double ry, double rz)
    : RigidTransformation3D()
{
    setTranslation(translation);
    setRotations(rx, ry, rz);
}

RigidTransformation3D::RigidTransformation3D(RigidTransformation3D const& other)
    : Transformation3D(other)
    , m_private(new AffineTransformation3DPrivate(*other.m_private))
{}

RigidTransformation3D& RigidTransformation3D::operator=(RigidTransformation3D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

RigidTransformation3D::~RigidTransformation3D() { delete m_private; }

void RigidTransformation3D::map(math::Vector3<double>& point) const { m_private->map(&point, &point + 1); }

void RigidTransformation3D::map(math::Vector3<double>* begin, math::Vector3<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int RigidTransformation3D::getNumOfParameter() { return 5; }

math::Vector3<double> RigidTransformation3D::getTranslation() const { return m_private->getTranslation(); }

void RigidTransformation3D::setTranslation(math::Vector3<double> const& translation)
{
    m_private->setTranslation(translation);
}

void RigidTransformation3D::setRotations(double rx, double ry, double rz)
{
    constexpr double radians = M_PI / 180.0;
    math::Matrix3<double> rotation;
    math::rotationAroundXYZ(rx * radians, ry * radians, rz * radians, rotation);
    m_private->setMatrix(rotation);
}

math::Matrix3<double> RigidTransformation3D::getRotationMatrix() const { return m_private->getMatrix(); }

AffineTransformation3DPrivate* RigidTransformation3D::getPrivate() const { return m_private; }

} // namespace qel::geometry
