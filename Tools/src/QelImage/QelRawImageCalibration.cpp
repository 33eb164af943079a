#include "Tools/private/QelImage/QelRawImageCalibration.h"

#include "Core/private/Throw.h"
#include "Tools/private/QelImage/binaryStream.h"

#include <algorithm>

namespace qel::tools::details {

namespace {

constexpr unsigned int NAME_SIZE = 48;

} // namespace

QelRawImageCalibration::QelRawImageCalibration()
    : divisor(1)
    , value(1.0)
{}

QelRawImageCalibration::~QelRawImageCalibration() = default;

unsigned int QelRawImageCalibration::writeSize(unsigned int version)
{
    return version == 0 ? 0 : static_cast<unsigned int>(sizeof(unsigned int) + sizeof(double)) + NAME_SIZE;
}

void QelRawImageCalibration::resetClass(unsigned int newDivisor, double newValue, std::string const& newUnitName)
{
    divisor = newDivisor;
    value = newValue;
    unitName = newUnitName;
}

void QelRawImageCalibration::write(std::ostream& stream, unsigned int version) const
{
    if (version == 0)
        QEL_THROW(RuntimeError, "Invalid version: 0.");
    writeNumber(stream, divisor);
    writeNumber(stream, value);
    char name[NAME_SIZE] = {};
    std::copy_n(unitName.begin(), std::min<std::size_t>(unitName.size(), NAME_SIZE), name);
    stream.write(name, NAME_SIZE);
}

void QelRawImageCalibration::read(std::istream& stream, unsigned int version)
{
    if (version == 0)
        QEL_THROW(RuntimeError, "Invalid version: 0.");
    divisor = readNumber<unsigned int>(stream);
    value = readNumber<double>(stream);
    char name[NAME_SIZE] = {};
    stream.read(name, NAME_SIZE);
    unitName.assign(name, std::find(name, name + NAME_SIZE, '\0'));
}

} // namespace qel::tools::details
