#pragma once

#include <qel/math/Vector2.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace qel::registration {

/// The points of a template and, in step, the gradient at each.
template <class T> struct Shape
{
    std::vector<math::Vector2<T>> points;
    std::vector<math::Vector2<T>> gradients;
};

/// Cosine and sine of an angle.
struct Direction
{
    double cosine;
    double sine;

    /// Exact for whole quarter turns.
    static Direction ofDegrees(double angle)
    {
        double const quarters = angle / 90;
        if (quarters == std::floor(quarters)) {
            double const turned = std::fmod(quarters, 4); // -3 to 3
            int const quarter = (static_cast<int>(turned) + 4) % 4;
            constexpr Direction exact[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
            return exact[quarter];
        }
        double const radians = angle * (M_PI / 180.0);
        return {std::cos(radians), std::sin(radians)};
    }

    template <class T> math::Vector2<T> turned(math::Vector2<T> const& v) const
    {
        return math::Vector2<T>(cosine * v[0] - sine * v[1], sine * v[0] + cosine * v[1]);
    }
};

namespace details {

/// The mean of the points; no number where there is none.
template <class T> math::Vector2<T> computeCenter(Shape<T> const& shape)
{
    T x = 0;
    T y = 0;
    for (math::Vector2<T> const& point : shape.points) {
        x += point[0];
        y += point[1];
    }
    T const count = static_cast<T>(shape.points.size());
    return math::Vector2<T>(x / count, y / count);
}

/// Moves `center` to the origin, turns points and gradients by an angle in degrees, and scales the points alone.
template <class T> void transformToCenter(Shape<T>& shape, math::Vector2<T> const& center, double angle, double scale)
{
    Direction const direction = Direction::ofDegrees(angle);
    for (math::Vector2<T>& point : shape.points)
        point = direction.turned(math::Vector2<T>(point[0] - center[0], point[1] - center[1])) * scale;
    for (math::Vector2<T>& gradient : shape.gradients)
        gradient = direction.turned(gradient);
}

} // namespace details

} // namespace qel::registration
