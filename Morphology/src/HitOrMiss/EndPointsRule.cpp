#include "Morphology/private/EndPointsRule.h"

#include <algorithm>
#include <cstdlib>

namespace qel::morphology {

namespace {

// Pieces of a row that stay in the fastest cache.
constexpr long pieceLength = 1024;

template <class T> void addForeground(T const* __restrict row, unsigned char* __restrict counts, long count)
{
    for (long x = 0; x < count; ++x)
        counts[x] = static_cast<unsigned char>(counts[x] + (row[x] != 0));
}

/// `whole`: numbers of voxels in columns of which all rows count, from column -1 on; `single`: in those of which the
/// middle column does, from column 0 on. A voxel of the foreground is among them.
template <class T>
void keepEnds(unsigned char const* __restrict whole, unsigned char const* __restrict single, T const* __restrict in,
              T* __restrict out, long count)
{
    for (long x = 0; x < count; ++x) {
        auto const number = static_cast<unsigned char>(whole[x] + whole[x + 1] + whole[x + 2] + single[x]);
        out[x] = number == 2 ? in[x] : T(0);
    }
}

} // namespace

template <class T> EndPointsRule<T>::EndPointsRule(Connectivity const& connectivity)
{
    int const plans = connectivity.isPlanar ? 0 : 1;
    int index = 0;
    for (int z = -plans; z <= plans; ++z)
        for (int y = -1; y <= 1; ++y, ++index) {
            int const steps = std::abs(z) + std::abs(y);
            if (steps <= connectivity.axisSteps)
                m_rows[m_numOfRows++] = {index, steps < connectivity.axisSteps};
        }
    m_middle = index / 2;
}

template <class T> void EndPointsRule<T>::apply(T const* const* rows, T* out, long count) const
{
    unsigned char whole[pieceLength + 2], single[pieceLength];
    for (long first = 0; first < count; first += pieceLength) {
        long const length = std::min(pieceLength, count - first);
        std::fill_n(whole, length + 2, static_cast<unsigned char>(0));
        std::fill_n(single, length, static_cast<unsigned char>(0));
        for (int i = 0; i < m_numOfRows; ++i) {
            T const* const row = rows[m_rows[i].index] + first;
            if (m_rows[i].isWhole)
                addForeground(row - 1, whole, length + 2);
            else
                addForeground(row, single, length);
        }
        keepEnds(whole, single, rows[m_middle] + first, out + first, length);
    }
}

template class EndPointsRule<unsigned char>;
template class EndPointsRule<unsigned short>;

} // namespace qel::morphology
