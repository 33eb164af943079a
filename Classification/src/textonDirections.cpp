#include "Classification/private/textonDirections.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel::classification {

namespace {

/// Whether a shape other than CUBE has a step of this squared length.
bool hasStep(TextonShape shape, long squaredLength, long size)
{
    long const length = static_cast<long>(std::sqrt(static_cast<double>(squaredLength)));
    return length == size || (shape == BALL && length < size);
}

/// Half of a plane, or of a space within which it is the middle plane: of two opposite steps one.
template <class Visit> void forEachOfHalfPlane(long size, long z, Visit const& visit)
{
    for (long a = 0; a <= size; ++a)
        for (long b = -size; b <= size; ++b)
            if (a > 0 || b > 0 || (b == 0 && z > 0))
                visit(static_cast<int>(a), static_cast<int>(b), a * a + b * b + z * z);
}

bool exceedsWindow(unsigned int size, unsigned int radius) { return size > 2ul * radius; }

int asInt(unsigned long size)
{
    return static_cast<int>(std::min<unsigned long>(size, std::numeric_limits<int>::max()));
}

} // namespace

container::Vector<math::Vector2<int>> textonDirections2D(TextonShape shape, unsigned int size, unsigned int radius)
{
    container::Vector<math::Vector2<int>> directions;
    auto const add = [&](int x, int y) { directions.push_back(math::Vector2<int>(x, y)); };
    if (exceedsWindow(size, radius)) {
        // With a BALL shorter steps come before it, which are in order.
        add(0, shape == BALL ? asInt(2ul * radius + 1) : asInt(size));
        return directions;
    }
    int const s = asInt(size);
    if (shape == CUBE) {
        add(0, s);
        add(s, s);
        add(s, 0);
        add(-s, s);
        return directions;
    }
    forEachOfHalfPlane(s, 0, [&](int a, int b, long squaredLength) {
        if (hasStep(shape, squaredLength, s))
            add(a, b);
    });
    return directions;
}

container::Vector<math::Vector3<int>> textonDirections3D(TextonShape shape, unsigned int size, unsigned int radius)
{
    container::Vector<math::Vector3<int>> directions;
    auto const add = [&](int x, int y, int z) { directions.push_back(math::Vector3<int>(x, y, z)); };
    int const s = asInt(size);
    if (exceedsWindow(size, radius)) {
        add(0, shape == CUBE ? s : 1, -s);
        return directions;
    }
    for (int z = -s; z <= s; ++z) {
        if (shape == CUBE) {
            add(0, s, z);
            add(s, s, z);
            add(s, 0, z);
            add(-s, s, z);
            continue;
        }
        forEachOfHalfPlane(s, z, [&](int a, int b, long squaredLength) {
            if (hasStep(shape, squaredLength, s))
                add(a, b, z);
        });
    }
    if (shape == CUBE)
        add(0, 0, s);
    return directions;
}

} // namespace qel::classification
