#include "Core/private/Kernel/KernelPrivate.h"

#include <cmath>

namespace qel::kernel {

template <class Offset> void WeightedOffsets<Offset>::addPoint(Offset const& offset, double weight)
{
    offsets.push_back(offset);
    weights.push_back(weight);
}

template <class Offset> void WeightedOffsets<Offset>::clear()
{
    offsets.clear();
    weights.clear();
}

template <class Offset> void WeightedOffsets<Offset>::applyScale(double factor)
{
    for (double& weight : weights)
        weight *= factor;
}

template <class Offset> void WeightedOffsets<Offset>::normalize()
{
    double sum = 0;
    for (double const weight : weights)
        sum += std::abs(weight);
    for (double& weight : weights)
        weight /= sum;
}

template struct WeightedOffsets<Offset2D>;
template struct WeightedOffsets<Offset3D>;

} // namespace qel::kernel
