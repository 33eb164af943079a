#pragma once

#include <cstddef>
#include <vector>

namespace qel::math {

/// A matrix of any size, kept row by row.
template <class T> class Matrix
{
public:
    Matrix() = default;
    /// Zeros.
    Matrix(std::size_t numOfRows, std::size_t numOfColumns)
        : m_numOfRows(numOfRows)
        , m_numOfColumns(numOfColumns)
        , m_elements(numOfRows * numOfColumns)
    {}

    std::size_t numOfRows() const { return m_numOfRows; }
    std::size_t numOfColumns() const { return m_numOfColumns; }

    /// Makes it a matrix of zeros; memory that is there is used again.
    void assign(std::size_t numOfRows, std::size_t numOfColumns)
    {
        m_numOfRows = numOfRows;
        m_numOfColumns = numOfColumns;
        m_elements.assign(numOfRows * numOfColumns, T(0));
    }

    /// The elements of a row. No index is checked.
    T* operator[](std::size_t row) { return m_elements.data() + row * m_numOfColumns; }
    T const* operator[](std::size_t row) const { return m_elements.data() + row * m_numOfColumns; }
    T& operator()(std::size_t row, std::size_t column) { return (*this)[row][column]; }
    T const& operator()(std::size_t row, std::size_t column) const { return (*this)[row][column]; }

private:
    std::size_t m_numOfRows = 0;
    std::size_t m_numOfColumns = 0;
    std::vector<T> m_elements;
};

/// A vector of any size.
template <class T> class Vector
{
public:
    Vector() = default;
    /// Zeros.
    explicit Vector(std::size_t size)
        : m_elements(size)
    {}

    std::size_t size() const { return m_elements.size(); }
    /// Makes it a vector of zeros; memory that is there is used again.
    void assign(std::size_t size) { m_elements.assign(size, T(0)); }

    /// The index is not checked.
    T& operator[](std::size_t index) { return m_elements[index]; }
    T const& operator[](std::size_t index) const { return m_elements[index]; }

private:
    std::vector<T> m_elements;
};

} // namespace qel::math
