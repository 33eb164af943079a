#pragma once

#include <iosfwd>
#include <string>

namespace qel::tools::details {

/// The calibration of one axis in a raw image file: the spacing is value / divisor.
class QelRawImageCalibration
{
public:
    QelRawImageCalibration();
    virtual ~QelRawImageCalibration();

    /// Bytes in a file of this version: 60, and 0 for version 0.
    static unsigned int writeSize(unsigned int version);

    void resetClass(unsigned int divisor, double value, std::string const& unitName);

    /// Both leave failures in the state of the stream. A version of 0 throws RuntimeError.
    void write(std::ostream& stream, unsigned int version) const;
    void read(std::istream& stream, unsigned int version);

    unsigned int getDivisor() const { return divisor; }
    double getValue() const { return value; }
    /// At most 48 characters after a read; a write cuts it to 48.
    std::string const& getUnitName() const { return unitName; }
    double getSpacing() const { return value / divisor; }

private:
    unsigned int divisor;
    double value;
    std::string unitName;
};

} // namespace qel::tools::details
