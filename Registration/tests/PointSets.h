#pragma once

#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>

#include <cmath>
#include <random>
#include <vector>

namespace qel::test {

using Points2D = std::vector<math::Vector2<double>>;
using Points3D = std::vector<math::Vector3<double>>;

/// Points whose coordinates lie within +-`reach`.
template <class Point> std::vector<Point> randomPoints(std::size_t count, double reach, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> draw(-reach, reach);
    std::vector<Point> points(count);
    for (Point& point : points)
        for (unsigned int axis = 0; axis < Point::dim(); ++axis)
            point[axis] = draw(generator);
    return points;
}

template <class Point, class Transformation>
std::vector<Point> images(Transformation const& transformation, std::vector<Point> points)
{
    transformation.map(points.data(), points.data() + points.size());
    return points;
}

template <class Point> double largestDistance(std::vector<Point> const& a, std::vector<Point> const& b)
{
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, (a[i] - b[i]).length());
    return largest;
}

} // namespace qel::test
