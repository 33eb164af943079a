#include <qel/geometry/ProjectiveTransformation2D.h>

#include "Geometry/private/ProjectiveTransformation2DPrivate.h"

namespace qel::geometry {

ProjectiveTransformation2D::ProjectiveTransformation2D()
    : m_private(new ProjectiveTransformation2DPrivate)
{}

ProjectiveTransformation2D::ProjectiveTransformation2D(double tx, double ty, double m00, double m01, double m10,
                                                       double m11, double m20, double m21)
    : ProjectiveTransformation2D(math::Vector2<double>(tx, ty), math::Matrix2<double>(m00, m01, m10, m11),
                                 math::Vector2<double>(m20, m21))
{}

ProjectiveTransformation2D::ProjectiveTransformation2D(math::Vector2<double> const& translation,
                                                       math::Matrix2<double> const& matrix,
                                                       math::Vector2<double> const& projection)
    : ProjectiveTransformation2D()
{
    setTranslation(translation);
    setRotationMatrix(matrix);
    setParam(6, projection[0]);
    setParam(7, projection[1]);
}

ProjectiveTransformation2D::ProjectiveTransformation2D(ProjectiveTransformation2D const& other)
    : Transformation2D(other)
    , m_private(new ProjectiveTransformation2DPrivate(*other.m_private))
{}

ProjectiveTransformation2D& ProjectiveTransformation2D::operator=(ProjectiveTransformation2D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

ProjectiveTransformation2D::~ProjectiveTransformation2D() { delete m_private; }

void ProjectiveTransformation2D::map(math::Vector2<double>& point) const { m_private->map(point); }

void ProjectiveTransformation2D::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int ProjectiveTransformation2D::getNumOfParameter() { return 8; }

double ProjectiveTransformation2D::getParam(unsigned int index) const { return m_private->element(index, 8); }

void ProjectiveTransformation2D::setParam(unsigned int index, double value) { m_private->element(index, 8) = value; }

math::Vector2<double> ProjectiveTransformation2D::getTranslation() const { return m_private->getTranslation(); }

void ProjectiveTransformation2D::setTranslation(math::Vector2<double> const& translation)
{
    m_private->setTranslation(translation);
}

math::Matrix2<double> ProjectiveTransformation2D::getRotationMatrix() const { return m_private->getRotationMatrix(); }

void ProjectiveTransformation2D::setRotationMatrix(math::Matrix2<double> const& matrix)
{
    m_private->setRotationMatrix(matrix);
}

math::Vector2<double> ProjectiveTransformation2D::getProjectionVector() const
{
    return math::Vector2<double>(getParam(6), getParam(7));
}

} // namespace qel::geometry
