#include "Geometry/private/ProjectiveTransformation2DPrivate.h"

#include "Core/private/Throw.h"

#include <cmath>

namespace qel::geometry {

namespace {

// Row and column of each parameter.
constexpr unsigned int places[8][2] = {{0, 2}, {1, 2}, {0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {2, 1}};

} // namespace

ProjectiveTransformation2DPrivate::ProjectiveTransformation2DPrivate()
    : matrix(1, 0, 0, 0, 1, 0, 0, 0, 1)
{}

void ProjectiveTransformation2DPrivate::map(math::Vector2<double>& point) const
{
    double const x = point[0];
    double const y = point[1];
    double const u = matrix(0, 0) * x + matrix(0, 1) * y + matrix(0, 2);
    double const v = matrix(1, 0) * x + matrix(1, 1) * y + matrix(1, 2);
    double const w = matrix(2, 0) * x + matrix(2, 1) * y + matrix(2, 2);
    if (std::abs(w) < 1e-8)
        QEL_THROW(RuntimeError, "bad precision.");
    point.setValue(u / w, v / w);
}

void ProjectiveTransformation2DPrivate::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    for (; begin != end; ++begin)
        map(*begin);
}

double ProjectiveTransformation2DPrivate::element(unsigned int index, unsigned int count) const
{
    if (index >= count)
        QEL_THROW(BadIndex, "The transformation has no parameter " << index << ".");
    return matrix(places[index][0], places[index][1]);
}

double& ProjectiveTransformation2DPrivate::element(unsigned int index, unsigned int count)
{
    if (index >= count)
        QEL_THROW(BadIndex, "The transformation has no parameter " << index << ".");
    return matrix(places[index][0], places[index][1]);
}

math::Vector2<double> ProjectiveTransformation2DPrivate::getTranslation() const
{
    return math::Vector2<double>(matrix(0, 2), matrix(1, 2));
}

void ProjectiveTransformation2DPrivate::setTranslation(math::Vector2<double> const& translation)
{
    matrix(0, 2) = translation[0];
    matrix(1, 2) = translation[1];
}

math::Matrix2<double> ProjectiveTransformation2DPrivate::getRotationMatrix() const
{
    return math::Matrix2<double>(matrix(0, 0), matrix(0, 1), matrix(1, 0), matrix(1, 1));
}

void ProjectiveTransformation2DPrivate::setRotationMatrix(math::Matrix2<double> const& rotation)
{
    for (unsigned int row = 0; row < 2; ++row)
        for (unsigned int column = 0; column < 2; ++column)
            matrix(row, column) = rotation(row, column);
}

} // namespace qel::geometry
