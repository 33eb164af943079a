#pragma once

#include <qel/Export.h>
#include <qel/Scalar.h>
#include <qel/ScalarType.h>

namespace qel {

class ScalarArrayPrivate;

/// A growable array of numbers of one kind, which is known at run time. Indices are not checked.
class QEL_API ScalarArray
{
public:
    /// Empty, of type INTEGER.
    ScalarArray();
    /// `count` zeros of `type`.
    ScalarArray(unsigned long count, ScalarType type);
    ScalarArray(unsigned long count, long const* values);
    ScalarArray(unsigned long count, unsigned long const* values);
    ScalarArray(unsigned long count, double const* values);
    ScalarArray(ScalarArray const& other);
    ~ScalarArray();

    ScalarArray& operator=(ScalarArray const& other);

    /// Replaces content and type.
    void setData(unsigned long count, long const* values);
    void setData(unsigned long count, unsigned long const* values);
    void setData(unsigned long count, double const* values);

    ScalarType getType() const;
    unsigned long size() const;
    bool empty() const;
    /// Drops all elements and keeps the type.
    void clear();
    void reserve(unsigned long count);
    /// New elements are 0.
    void resize(unsigned long count);

    /// The element as a Scalar of the array's type.
    Scalar getScalarValueAt(unsigned long index) const;
    /// Throws InvalidCall unless the type is INTEGER.
    long getIntValueAt(unsigned long index) const;
    /// Throws InvalidCall unless the type is UNSIGNED_INTEGER.
    unsigned long getUIntValueAt(unsigned long index) const;
    /// Throws InvalidCall unless the type is REAL.
    double getRealValueAt(unsigned long index) const;

    /// The setters and `pushBack` throw InvalidCall where the value is not of the array's type.
    void setIntValueAt(unsigned long index, long value);
    void setUIntValueAt(unsigned long index, unsigned long value);
    void setRealValueAt(unsigned long index, double value);
    void setScalarValueAt(unsigned long index, Scalar const& value);

    void pushBack(long value);
    void pushBack(unsigned long value);
    void pushBack(double value);
    void pushBack(Scalar const& value);

    /// True between arrays of the same type, size and elements.
    bool operator==(ScalarArray const& other) const;
    bool operator!=(ScalarArray const& other) const;

private:
    ScalarArrayPrivate* m_private;
};

} // namespace qel
