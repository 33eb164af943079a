#pragma once

#include <qel/container/Vector.h>

namespace qel::morphology {

/// What a kernel asks of a pattern: these bits, but for those that are free.
struct AskedPattern
{
    unsigned int base;
    unsigned int free;
};

/// Throws InvalidCall where the kernel has another size.
AskedPattern askedPattern(container::Vector<unsigned char> const& kernel, unsigned int size);

/// Throws InvalidCall where there is no array, or one of another size.
void checkLut(void const* lut, unsigned long size, unsigned long wanted);

} // namespace qel::morphology
