#include <qel/ScalarArray.h>

#include <vector>

#include <qel/EnumInfo.h>

#include "Core/private/ScalarData.h"
#include "Core/private/Throw.h"

namespace qel {

class ScalarArrayPrivate
{
public:
    ScalarArrayPrivate(unsigned long count, ScalarType type_)
        : type(type_)
        , values(count, zero())
    {}
    ScalarArrayPrivate(unsigned long count, long const* source)
        : type(INTEGER)
        , values(count)
    {
        for (unsigned long i = 0; i < count; ++i)
            values[i].integer = source[i];
    }
    ScalarArrayPrivate(unsigned long count, unsigned long const* source)
        : type(UNSIGNED_INTEGER)
        , values(count)
    {
        for (unsigned long i = 0; i < count; ++i)
            values[i].unsignedInteger = source[i];
    }
    ScalarArrayPrivate(unsigned long count, double const* source)
        : type(REAL)
        , values(count)
    {
        for (unsigned long i = 0; i < count; ++i)
            values[i].real = source[i];
    }

    // All bits 0, which is the number 0 of every type.
    static ScalarData zero()
    {
        ScalarData data;
        data.unsignedInteger = 0;
        return data;
    }

    ScalarType type;
    std::vector<ScalarData> values;
};

ScalarArray::ScalarArray()
    : ScalarArray(0ul, INTEGER)
{}
ScalarArray::ScalarArray(unsigned long count, ScalarType type)
    : m_private(new ScalarArrayPrivate(count, type))
{}
ScalarArray::ScalarArray(unsigned long count, long const* values)
    : m_private(new ScalarArrayPrivate(count, values))
{}
ScalarArray::ScalarArray(unsigned long count, unsigned long const* values)
    : m_private(new ScalarArrayPrivate(count, values))
{}
ScalarArray::ScalarArray(unsigned long count, double const* values)
    : m_private(new ScalarArrayPrivate(count, values))
{}
ScalarArray::ScalarArray(ScalarArray const& other)
    : m_private(new ScalarArrayPrivate(*other.m_private))
{}

ScalarArray::~ScalarArray() { delete m_private; }

ScalarArray& ScalarArray::operator=(ScalarArray const& other)
{
    *m_private = ScalarArrayPrivate(*other.m_private);
    return *this;
}

void ScalarArray::setData(unsigned long count, long const* values) { *m_private = ScalarArrayPrivate(count, values); }

void ScalarArray::setData(unsigned long count, unsigned long const* values)
{
    *m_private = ScalarArrayPrivate(count, values);
}

void ScalarArray::setData(unsigned long count, double const* values) { *m_private = ScalarArrayPrivate(count, values); }

ScalarType ScalarArray::getType() const { return m_private->type; }

unsigned long ScalarArray::size() const { return m_private->values.size(); }

bool ScalarArray::empty() const { return m_private->values.empty(); }

void ScalarArray::clear() { m_private->values.clear(); }

void ScalarArray::reserve(unsigned long count) { m_private->values.reserve(count); }

void ScalarArray::resize(unsigned long count) { m_private->values.resize(count, ScalarArrayPrivate::zero()); }

Scalar ScalarArray::getScalarValueAt(unsigned long index) const
{
    ScalarData const data = m_private->values[index];
    switch (m_private->type) {
    case UNSIGNED_INTEGER:
        return Scalar(data.unsignedInteger);
    case REAL:
        return Scalar(data.real);
    case INTEGER:
        break;
    }
    return Scalar(data.integer);
}

long ScalarArray::getIntValueAt(unsigned long index) const
{
    if (m_private->type != INTEGER)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of INTEGER type.");
    return m_private->values[index].integer;
}

unsigned long ScalarArray::getUIntValueAt(unsigned long index) const
{
    if (m_private->type != UNSIGNED_INTEGER)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of UNSIGNED_INTEGER type.");
    return m_private->values[index].unsignedInteger;
}

double ScalarArray::getRealValueAt(unsigned long index) const
{
    if (m_private->type != REAL)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of REAL type.");
    return m_private->values[index].real;
}

void ScalarArray::setIntValueAt(unsigned long index, long value)
{
    if (m_private->type != INTEGER)
        QEL_THROW(InvalidCall, "The ScalarVector isn't of INTEGER type.");
    m_private->values[index].integer = value;
}

void ScalarArray::setUIntValueAt(unsigned long index, unsigned long value)
{
    if (m_private->type != UNSIGNED_INTEGER)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of UNSIGNED_INTEGER type.");
    m_private->values[index].unsignedInteger = value;
}

void ScalarArray::setRealValueAt(unsigned long index, double value)
{
    if (m_private->type != REAL)
        QEL_THROW(InvalidCall, "The ScalarVector isn't of REAL type.");
    m_private->values[index].real = value;
}

namespace {

ScalarData dataOf(Scalar const& scalar)
{
    ScalarData data = ScalarArrayPrivate::zero();
    switch (scalar.getType()) {
    case INTEGER:
        data.integer = scalar.getIntValue();
        break;
    case UNSIGNED_INTEGER:
        data.unsignedInteger = scalar.getUIntValue();
        break;
    case REAL:
        data.real = scalar.getRealValue();
        break;
    }
    return data;
}

} // namespace

void ScalarArray::setScalarValueAt(unsigned long index, Scalar const& value)
{
    if (m_private->type != value.getType())
        QEL_THROW(InvalidCall, "The ScalarArray hasn't the same type of the Scalar.");
    m_private->values[index] = dataOf(value);
}

void ScalarArray::pushBack(long value)
{
    if (m_private->type != INTEGER)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of INTEGER type.");
    m_private->values.push_back(dataOf(value));
}

void ScalarArray::pushBack(unsigned long value)
{
    if (m_private->type != UNSIGNED_INTEGER)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of UNSIGNED_INTEGER type.");
    m_private->values.push_back(dataOf(value));
}

void ScalarArray::pushBack(double value)
{
    if (m_private->type != REAL)
        QEL_THROW(InvalidCall, "The ScalarArray isn't of REAL type.");
    m_private->values.push_back(dataOf(value));
}

void ScalarArray::pushBack(Scalar const& value)
{
    if (m_private->type != value.getType()) {
        EnumInfo const& types = helper::scalarTypeInfo();
        QEL_THROW(InvalidCall, "The ScalarArray hasn't the same type ("
                                   << types.getLabelFromValue(m_private->type) << ") as the Scalar ("
                                   << types.getLabelFromValue(value.getType()) << ").");
    }
    m_private->values.push_back(dataOf(value));
}

bool ScalarArray::operator==(ScalarArray const& other) const
{
    if (m_private->type != other.m_private->type || size() != other.size())
        return false;
    for (unsigned long i = 0; i < size(); ++i)
        if (getScalarValueAt(i) != other.getScalarValueAt(i))
            return false;
    return true;
}

bool ScalarArray::operator!=(ScalarArray const& other) const { return !(*this == other); }

} // namespace qel
