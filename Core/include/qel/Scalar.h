#pragma once

#include <qel/Export.h>
#include <qel/RealToIntConvertType.h>
#include <qel/ScalarType.h>
#include <qel/VoxelTypes.h>

namespace qel {

class ScalarPrivate;

/// A number whose kind is known at run time: a signed or an unsigned 64-bit integer, or a 64-bit float.
class QEL_API Scalar
{
public:
    /// The signed integer 0.
    Scalar();
    Scalar(double value);
    /// Kept as a double.
    Scalar(float value);
    Scalar(unsigned long value);
    Scalar(unsigned int value);
    Scalar(unsigned short value);
    Scalar(unsigned char value);
    Scalar(long value);
    Scalar(int value);
    Scalar(short value);
    Scalar(signed char value);
    Scalar(Scalar const& other);
    ~Scalar();

    Scalar& operator=(Scalar const& other);
    Scalar& operator=(long value);
    Scalar& operator=(unsigned long value);
    Scalar& operator=(double value);
    Scalar& operator=(int value);
    Scalar& operator=(unsigned int value);
    Scalar& operator=(float value);

    ScalarType getType() const;

    /// Throws InvalidCall unless the type is INTEGER.
    long getIntValue() const;
    /// Throws InvalidCall unless the type is UNSIGNED_INTEGER.
    unsigned long getUIntValue() const;
    /// Throws InvalidCall unless the type is REAL.
    double getRealValue() const;

    double asDouble() const;
    float asFloat() const;

    /// The `as` conversions keep the low bits of the value, with no check of the range. A REAL is first brought to a
    /// whole number as `conversion` tells (an unknown one gives 0). A whole number that 64 bits cannot hold, or NaN,
    /// counts as the smallest signed 64-bit integer.
    signed char asInt8(RealToIntConvertType const& conversion) const;
    short asInt16(RealToIntConvertType const& conversion) const;
    int asInt32(RealToIntConvertType const& conversion) const;
    long asInt64(RealToIntConvertType const& conversion) const;
    unsigned char asUInt8(RealToIntConvertType const& conversion) const;
    unsigned short asUInt16(RealToIntConvertType const& conversion) const;
    unsigned int asUInt32(RealToIntConvertType const& conversion) const;
    unsigned long asUInt64(RealToIntConvertType const& conversion) const;

    /// True only between equal types with equal values.
    bool operator==(Scalar const& other) const;
    bool operator!=(Scalar const& other) const;

    /// The narrowest voxel type that holds the value; a whole REAL counts as an integer. With `preferSigned`, a value
    /// that is not negative takes the signed type of its width where that holds it.
    VoxelTypes smallestContainingType(bool preferSigned) const;

private:
    ScalarPrivate* m_private;
};

} // namespace qel
