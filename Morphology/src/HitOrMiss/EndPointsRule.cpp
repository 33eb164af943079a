#include "Morphology/private/EndPointsRule.h"

#include <cstdlib>

namespace qel::morphology {

template <class T>
EndPointsRule<T>::EndPointsRule(Connectivity const& connectivity)
    : m_kernels(bestHitOrMissKernels<T>())
{
    int const plans = connectivity.isPlanar ? 0 : 1;
    int index = 0;
    for (int z = -plans; z <= plans; ++z)
        for (int y = -1; y <= 1; ++y, ++index) {
            int const steps = std::abs(z) + std::abs(y);
            if (steps < connectivity.axisSteps)
                m_neighbors.whole[m_neighbors.numOfWhole++] = index;
            else if (steps == connectivity.axisSteps)
                m_neighbors.single[m_neighbors.numOfSingle++] = index;
        }
    m_neighbors.middle = index / 2;
}

template <class T> void EndPointsRule<T>::apply(T const* const* rows, T* out, long count) const
{
    m_kernels.keepEnds(rows, out, count, m_neighbors);
}

template class EndPointsRule<unsigned char>;
template class EndPointsRule<unsigned short>;

} // namespace qel::morphology
