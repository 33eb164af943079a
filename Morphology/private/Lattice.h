#pragma once

#include <qel/ImageModel.h>

#include <cstddef>

namespace qel::morphology {

/// Sizes and spacings of a volume. Coordinates are floats, as the points are that the distance map carries.
struct Lattice
{
    unsigned long size[3];
    double spacing[3];

    static Lattice of(ImageModel const& image)
    {
        Lattice lattice{};
        for (int axis = 0; axis < 3; ++axis) {
            Components const component = static_cast<Components>(axis);
            lattice.size[axis] = image.getNumOf(component);
            lattice.spacing[axis] = static_cast<float>(image.getSpacingOf(component));
        }
        return lattice;
    }

    unsigned long numOfVoxels() const { return size[0] * size[1] * size[2]; }
    unsigned long indexOf(unsigned long column, unsigned long row, unsigned long plan) const
    {
        return (plan * size[1] + row) * size[0] + column;
    }
    float coordinate(int axis, unsigned long position) const
    {
        return static_cast<float>(static_cast<double>(position) * spacing[axis]);
    }
};

} // namespace qel::morphology
