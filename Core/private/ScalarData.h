#pragma once

namespace qel {

/// The eight bytes of a Scalar; which member counts is told by a ScalarType beside it.
union ScalarData {
    long integer;
    unsigned long unsignedInteger;
    double real;
};

} // namespace qel
