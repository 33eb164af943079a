#pragma once

#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>

#include <vector>

namespace qel::kernel {

/// The points of a kernel: entry `i` of the weights belongs to entry `i` of the offsets.
template <class Offset> struct WeightedOffsets
{
    std::vector<Offset> offsets;
    std::vector<double> weights;

    void addPoint(Offset const& offset, double weight);
    void clear();
    void applyScale(double factor);
    void normalize();
    bool operator==(WeightedOffsets const& other) const = default;
};

class Kernel2DPrivate : public WeightedOffsets<Offset2D>
{};
class Kernel3DPrivate : public WeightedOffsets<Offset3D>
{};

extern template struct WeightedOffsets<Offset2D>;
extern template struct WeightedOffsets<Offset3D>;

} // namespace qel::kernel
