#include <qel/Scalar.h>

#include <cmath>
#include <limits>

#include "Core/private/ScalarData.h"
#include "Core/private/Throw.h"

namespace qel {

class ScalarPrivate
{
public:
    ScalarPrivate(long value)
        : type(INTEGER)
    {
        data.integer = value;
    }
    ScalarPrivate(unsigned long value)
        : type(UNSIGNED_INTEGER)
    {
        data.unsignedInteger = value;
    }
    ScalarPrivate(double value)
        : type(REAL)
    {
        data.real = value;
    }

    ScalarType type;
    ScalarData data;
};

namespace {

constexpr double twoTo63 = 9223372036854775808.0;

// What C++ leaves open, a number outside the range, gives the smallest integer, as the processor's own conversion does.
long toSigned64(double whole)
{
    return whole >= -twoTo63 && whole < twoTo63 ? static_cast<long>(whole) : std::numeric_limits<long>::min();
}

unsigned long toUnsigned64(double whole)
{
    if (whole >= twoTo63 && whole < 2 * twoTo63)
        return static_cast<unsigned long>(whole);
    return static_cast<unsigned long>(toSigned64(whole));
}

double toWhole(double value, RealToIntConvertType conversion)
{
    switch (conversion) {
    case CEIL:
        return std::ceil(value);
    case FLOOR:
        return std::floor(value);
    case ROUND:
        return std::floor(value + 0.5);
    }
    return 0.0;
}

// The low 64 bits of the value: what all narrower types are cut from.
unsigned long bitsOf(ScalarPrivate const& scalar, RealToIntConvertType conversion)
{
    switch (scalar.type) {
    case INTEGER:
        return static_cast<unsigned long>(scalar.data.integer);
    case UNSIGNED_INTEGER:
        return scalar.data.unsignedInteger;
    case REAL:
        break;
    }
    return toUnsigned64(toWhole(scalar.data.real, conversion));
}

VoxelTypes smallestSigned(long value)
{
    if (value == static_cast<signed char>(value))
        return QEL_INT8;
    if (value == static_cast<short>(value))
        return QEL_INT16;
    if (value == static_cast<int>(value))
        return QEL_INT32;
    return QEL_INT64;
}

VoxelTypes smallestUnsigned(unsigned long value, bool preferSigned)
{
    if (value <= std::numeric_limits<unsigned char>::max())
        return preferSigned && value <= 127ul ? QEL_INT8 : QEL_UINT8;
    if (value <= std::numeric_limits<unsigned short>::max())
        return preferSigned && value <= 32767ul ? QEL_INT16 : QEL_UINT16;
    if (value <= std::numeric_limits<unsigned int>::max())
        return preferSigned && value <= 2147483647ul ? QEL_INT32 : QEL_UINT32;
    return preferSigned && value <= 9223372036854775807ul ? QEL_INT64 : QEL_UINT64;
}

} // namespace

Scalar::Scalar()
    : Scalar(0l)
{}
Scalar::Scalar(double value)
    : m_private(new ScalarPrivate(value))
{}
Scalar::Scalar(float value)
    : Scalar(static_cast<double>(value))
{}
Scalar::Scalar(unsigned long value)
    : m_private(new ScalarPrivate(value))
{}
Scalar::Scalar(unsigned int value)
    : Scalar(static_cast<unsigned long>(value))
{}
Scalar::Scalar(unsigned short value)
    : Scalar(static_cast<unsigned long>(value))
{}
Scalar::Scalar(unsigned char value)
    : Scalar(static_cast<unsigned long>(value))
{}
Scalar::Scalar(long value)
    : m_private(new ScalarPrivate(value))
{}
Scalar::Scalar(int value)
    : Scalar(static_cast<long>(value))
{}
Scalar::Scalar(short value)
    : Scalar(static_cast<long>(value))
{}
Scalar::Scalar(signed char value)
    : Scalar(static_cast<long>(value))
{}
Scalar::Scalar(Scalar const& other)
    : m_private(new ScalarPrivate(*other.m_private))
{}

Scalar::~Scalar() { delete m_private; }

Scalar& Scalar::operator=(Scalar const& other)
{
    *m_private = *other.m_private;
    return *this;
}

Scalar& Scalar::operator=(long value)
{
    *m_private = ScalarPrivate(value);
    return *this;
}

Scalar& Scalar::operator=(unsigned long value)
{
    *m_private = ScalarPrivate(value);
    return *this;
}

Scalar& Scalar::operator=(double value)
{
    *m_private = ScalarPrivate(value);
    return *this;
}

Scalar& Scalar::operator=(int value) { return *this = static_cast<long>(value); }

Scalar& Scalar::operator=(unsigned int value) { return *this = static_cast<unsigned long>(value); }

Scalar& Scalar::operator=(float value) { return *this = static_cast<double>(value); }

ScalarType Scalar::getType() const { return m_private->type; }

long Scalar::getIntValue() const
{
    if (m_private->type != INTEGER)
        QEL_THROW(InvalidCall, "The Scalar isn't of INTEGER type.");
    return m_private->data.integer;
}

unsigned long Scalar::getUIntValue() const
{
    if (m_private->type != UNSIGNED_INTEGER)
        QEL_THROW(InvalidCall, "The Scalar isn't of UNSIGNED_INTEGER type.");
    return m_private->data.unsignedInteger;
}

double Scalar::getRealValue() const
{
    if (m_private->type != REAL)
        QEL_THROW(InvalidCall, "The Scalar isn't of REAL type.");
    return m_private->data.real;
}

double Scalar::asDouble() const
{
    switch (m_private->type) {
    case INTEGER:
        return static_cast<double>(m_private->data.integer);
    case UNSIGNED_INTEGER:
        return static_cast<double>(m_private->data.unsignedInteger);
    case REAL:
        break;
    }
    return m_private->data.real;
}

float Scalar::asFloat() const
{
    // Not by way of double, which would round an integer twice.
    switch (m_private->type) {
    case INTEGER:
        return static_cast<float>(m_private->data.integer);
    case UNSIGNED_INTEGER:
        return static_cast<float>(m_private->data.unsignedInteger);
    case REAL:
        break;
    }
    return static_cast<float>(m_private->data.real);
}

signed char Scalar::asInt8(RealToIntConvertType const& conversion) const
{
    return static_cast<signed char>(bitsOf(*m_private, conversion));
}

short Scalar::asInt16(RealToIntConvertType const& conversion) const
{
    return static_cast<short>(bitsOf(*m_private, conversion));
}

int Scalar::asInt32(RealToIntConvertType const& conversion) const
{
    return static_cast<int>(bitsOf(*m_private, conversion));
}

long Scalar::asInt64(RealToIntConvertType const& conversion) const
{
    if (m_private->type == REAL)
        return toSigned64(toWhole(m_private->data.real, conversion));
    return static_cast<long>(bitsOf(*m_private, conversion));
}

unsigned char Scalar::asUInt8(RealToIntConvertType const& conversion) const
{
    return static_cast<unsigned char>(bitsOf(*m_private, conversion));
}

unsigned short Scalar::asUInt16(RealToIntConvertType const& conversion) const
{
    return static_cast<unsigned short>(bitsOf(*m_private, conversion));
}

unsigned int Scalar::asUInt32(RealToIntConvertType const& conversion) const
{
    return static_cast<unsigned int>(bitsOf(*m_private, conversion));
}

unsigned long Scalar::asUInt64(RealToIntConvertType const& conversion) const { return bitsOf(*m_private, conversion); }

bool Scalar::operator==(Scalar const& other) const
{
    if (m_private->type != other.m_private->type)
        return false;
    if (m_private->type == REAL)
        return m_private->data.real == other.m_private->data.real;
    return m_private->data.unsignedInteger == other.m_private->data.unsignedInteger;
}

bool Scalar::operator!=(Scalar const& other) const { return !(*this == other); }

VoxelTypes Scalar::smallestContainingType(bool preferSigned) const
{
    ScalarType kind = m_private->type;
    if (kind == REAL) {
        double const value = m_private->data.real;
        if (value == static_cast<double>(asInt64(ROUND)))
            kind = INTEGER;
        else if (value == static_cast<double>(asUInt64(ROUND)))
            kind = UNSIGNED_INTEGER;
        else
            return value == static_cast<double>(static_cast<float>(value)) ? QEL_FLOAT32 : QEL_FLOAT64;
    }
    switch (kind) {
    case INTEGER: {
        long const value = asInt64(ROUND);
        return value < 0 ? smallestSigned(value) : smallestUnsigned(static_cast<unsigned long>(value), preferSigned);
    }
    case UNSIGNED_INTEGER:
        return smallestUnsigned(asUInt64(ROUND), preferSigned);
    default:
        QEL_THROW(InvalidCall, "Error in smallestContainingType function : unsupported case.");
    }
}

} // namespace qel
