#include <qel/linear_filtering/kernel_factory.h>

#include "Core/private/ClassicText.h"
#include "Core/private/Kernel/KernelPrivate.h"
#include "Core/private/Kernel/OffsetCollections.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace qel::linear_filtering::kernel_factory {

namespace {

using kernel::Kernel2D;
using kernel::Kernel3D;
using kernel::Offset2D;
using kernel::Offset3D;

void add(Kernel2D& kernel, Offset2D const& offset, double weight) { kernel.addPoint(offset.x, offset.y, weight); }
void add(Kernel3D& kernel, Offset3D const& offset, double weight)
{
    kernel.addPoint(offset.x, offset.y, offset.z, weight);
}

std::vector<Offset2D> cubeOf(unsigned long radius, Kernel2D const&)
{
    return kernel::generateSquareOffset2DCollection(radius);
}
std::vector<Offset3D> cubeOf(unsigned long radius, Kernel3D const&)
{
    return kernel::generateCubeOffset3DCollection(radius);
}

long component(Offset2D const& offset, int axis) { return axis == 0 ? offset.x : offset.y; }
long component(Offset3D const& offset, int axis) { return axis == 0 ? offset.x : axis == 1 ? offset.y : offset.z; }

constexpr int axesOf(Offset2D const&) { return 2; }
constexpr int axesOf(Offset3D const&) { return 3; }

template <class Offset> double squaredLength(Offset const& offset)
{
    double sum = 0;
    for (int axis = 0; axis < axesOf(offset); ++axis)
        sum += static_cast<double>(component(offset, axis)) * static_cast<double>(component(offset, axis));
    return sum;
}

/// The neighbours whose coordinates differ in at most `differences`.
template <class Kernel> Kernel laplacian(int differences)
{
    Kernel neighbours;
    for (auto const& offset : cubeOf(1, neighbours)) {
        double const distance = squaredLength(offset);
        if (distance > 0 && distance <= differences)
            add(neighbours, offset, 1);
    }
    Kernel kernel;
    add(kernel, {}, -static_cast<double>(neighbours.getNumOfPoints()));
    for (unsigned long i = 0; i < neighbours.getNumOfPoints(); ++i)
        add(kernel, neighbours.getOffset(i), neighbours.getWeight(i));
    return kernel;
}

/// `middle`: the weight of 0 on each other axis, where -1 and 1 have 1.
template <class Kernel> Kernel derivative(int direction, double middle)
{
    Kernel kernel;
    for (auto const& offset : cubeOf(1, kernel)) {
        if (direction < 0 || direction >= axesOf(offset))
            break;
        double weight = static_cast<double>(component(offset, direction));
        for (int axis = 0; axis < axesOf(offset); ++axis)
            if (axis != direction && component(offset, axis) == 0)
                weight *= middle;
        if (weight != 0)
            add(kernel, offset, weight);
    }
    return kernel;
}

double bell(double squaredDistance, double sigma) { return std::exp(-squaredDistance / (2 * sigma * sigma)); }

template <class Kernel, class Offset> Kernel gaussianLine(unsigned long size, double sigma, long Offset::*axis)
{
    Kernel kernel;
    if (axis == nullptr || size % 2 == 0)
        return kernel;
    double const factor = 1 / (sigma * std::sqrt(2 * M_PI));
    long const half = static_cast<long>(size / 2);
    for (long i = -half; i <= half; ++i) {
        Offset offset;
        offset.*axis = i;
        add(kernel, offset, bell(squaredLength(offset), sigma) * factor);
    }
    return kernel;
}

template <class Kernel> Kernel gaussianCube(unsigned long size, double sigma, double divisor)
{
    Kernel kernel;
    if (size % 2 == 0)
        return kernel;
    for (auto const& offset : cubeOf(size / 2, kernel))
        add(kernel, offset, bell(squaredLength(offset), sigma) / divisor);
    return kernel;
}

template <class Kernel, class Offset> Kernel symmetricLine(std::vector<Offset> half)
{
    Kernel kernel;
    std::vector<Offset> opposite = half;
    kernel::invert(opposite);
    for (std::size_t i = 0; i < half.size(); ++i) {
        add(kernel, half[i], 1);
        if (half[i] != Offset())
            add(kernel, opposite[i], 1);
    }
    return kernel;
}

template <class Offset> String textOf(kernel::WeightedOffsets<Offset> const& kernel, std::string text)
{
    for (std::size_t i = 0; i < kernel.offsets.size(); ++i) {
        if (i > 0)
            text += '+';
        for (int axis = 0; axis < axesOf(kernel.offsets[i]); ++axis)
            text += std::to_string(component(kernel.offsets[i], axis)) + '_';
        char digits[32];
        char* const end = std::to_chars(digits, digits + sizeof digits, kernel.weights[i]).ptr;
        text.append(digits, std::remove(digits, end, '+'));
    }
    return toString(text);
}

} // namespace

Kernel2D createNeighborhoodLaplacian2D(Neighborhood2DType type)
{
    switch (type) {
    case QEL_NEIGHBORHOOD2D_4:
        return laplacian<Kernel2D>(1);
    case QEL_NEIGHBORHOOD2D_8:
        return laplacian<Kernel2D>(2);
    }
    return {};
}

Kernel3D createNeighborhoodLaplacian3D(Neighborhood3DType type)
{
    switch (type) {
    case QEL_NEIGHBORHOOD3D_6:
        return laplacian<Kernel3D>(1);
    case QEL_NEIGHBORHOOD3D_18:
        return laplacian<Kernel3D>(2);
    case QEL_NEIGHBORHOOD3D_26:
        return laplacian<Kernel3D>(3);
    }
    return {};
}

Kernel2D createPrewitt2D(KernelDirection2D direction) { return derivative<Kernel2D>(direction, 1); }
Kernel3D createPrewitt3D(KernelDirection3D direction) { return derivative<Kernel3D>(direction, 1); }
Kernel2D createSobel2D(KernelDirection2D direction) { return derivative<Kernel2D>(direction, 2); }
Kernel3D createSobel3D(KernelDirection3D direction) { return derivative<Kernel3D>(direction, 2); }

Kernel2D createGaussian1D(unsigned long size, double sigma, KernelDirection2D direction)
{
    return gaussianLine<Kernel2D>(size, sigma,
                                  direction == QEL_KERNEL_DIRECTION2D_X   ? &Offset2D::x
                                  : direction == QEL_KERNEL_DIRECTION2D_Y ? &Offset2D::y
                                                                          : nullptr);
}

Kernel3D createGaussian1D(unsigned long size, double sigma, KernelDirection3D direction)
{
    return gaussianLine<Kernel3D>(size, sigma,
                                  direction == QEL_KERNEL_DIRECTION3D_X   ? &Offset3D::x
                                  : direction == QEL_KERNEL_DIRECTION3D_Y ? &Offset3D::y
                                  : direction == QEL_KERNEL_DIRECTION3D_Z ? &Offset3D::z
                                                                          : nullptr);
}

Kernel2D createGaussian2D(unsigned long size, double sigma)
{
    return gaussianCube<Kernel2D>(size, sigma, 2 * M_PI * sigma * sigma);
}

Kernel3D createGaussian3D(unsigned long size, double sigma)
{
    return gaussianCube<Kernel3D>(size, sigma, std::pow(2 * M_PI * sigma * sigma, 1.5));
}

Kernel2D createLinearBoxFilter2D(double angle, unsigned long size)
{
    if (size % 2 == 0)
        return {};
    return symmetricLine<Kernel2D>(
        kernel::generateLineOffset2DCollectionWithConstNumOfPixels(angle, size / 2 + 1, true));
}

Kernel3D createLinearBoxFilter3D(double theta, double phi, unsigned long size)
{
    if (size % 2 == 0)
        return {};
    return symmetricLine<Kernel3D>(
        kernel::generateLineOffset3DCollectionWithConstNumOfPixels(phi, theta, size / 2 + 1, true));
}

String kernel2DToString(Kernel2D const& kernel) { return textOf(kernel.getPrivate(), "@kernel2D:"); }
String kernel3DToString(Kernel3D const& kernel) { return textOf(kernel.getPrivate(), "@kernel3D:"); }

} // namespace qel::linear_filtering::kernel_factory
