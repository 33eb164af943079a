#pragma once

#include <cstddef>
#include <vector>

namespace qel::classification {

/// The nearest centre of voxels of one component, without distances: between two neighbouring centres there is a last
/// voxel value that is nearer to the lower one, so that a voxel's class is the number of such limits below it.
///
/// The limits are found by comparing squared distances in double, as they would be for the voxel itself. So the classes
/// are the same bits as by distances: those grow with every step away from a centre, rounded or not. But far away from
/// all centres, different distances are rounded to one; there, and for a NaN, `holds` is false.
template <class T> class NearestOnLine
{
public:
    /// One value for each class.
    explicit NearestOnLine(std::vector<double> const& centres);

    /// Whether all voxels lie where limits decide.
    bool holds(T const* row, std::size_t count) const;
    /// The index of the nearest centre; of equal ones, the first.
    void label(T const* row, int* labels, std::size_t count) const;

private:
    std::vector<int> m_classes; // by rising centre
    std::vector<T> m_limits;    // one less
    bool m_isInOrder;           // the classes are numbered by rising centre
    T m_lowest;
    T m_highest;
};

extern template class NearestOnLine<float>;
extern template class NearestOnLine<double>;

} // namespace qel::classification
