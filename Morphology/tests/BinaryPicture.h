#pragma once

#include "Core/tests/Support/Algorithms.h"

#include <random>

namespace qel::test {

/// A binary image of a host's.
class BinaryImage : public HostImage
{
public:
    template <class T>
    explicit BinaryImage(Picture<T> const& picture)
        : HostImage(picture)
    {
        setInterpretation(QEL_BINARY);
    }
};

/// Calls a lambda `[]<class T>() {...}` for the types of binary images.
template <class Callable> void forEachBinaryType(Callable&& callable)
{
    forEachVoxelType([&]<class T>() {
        if constexpr (std::is_integral_v<T> && sizeof(T) <= 2)
            callable.template operator()<T>();
    });
}

/// Voxels of which as many as told are not 0; among those, one in eight is any other value than 1.
template <class T> Picture<T> binaryPicture(Shape const& shape, unsigned seed, unsigned percent)
{
    Picture<T> picture(shape);
    std::mt19937 random(seed);
    for (T& voxel : picture.voxels) {
        unsigned const bits = static_cast<unsigned>(random());
        voxel = bits % 100 >= percent ? T(0) : bits / 128 % 8 != 0 ? T(1) : static_cast<T>(random());
    }
    return picture;
}

} // namespace qel::test
