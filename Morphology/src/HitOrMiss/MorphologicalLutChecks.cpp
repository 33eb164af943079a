#include "Morphology/private/MorphologicalLutChecks.h"

#include "Core/private/Throw.h"

namespace qel::morphology {

AskedPattern askedPattern(container::Vector<unsigned char> const& kernel, unsigned int size)
{
    if (kernel.size() != size)
        QEL_THROW(InvalidCall, "The kernel must have a size of " << size << " elements.");
    AskedPattern asked{0, 0};
    for (unsigned int bit = 0; bit < size; ++bit) {
        if (kernel[bit] < 2)
            asked.base |= static_cast<unsigned int>(kernel[bit]) << bit;
        else
            asked.free |= 1u << bit;
    }
    return asked;
}

void checkLut(void const* lut, unsigned long size, unsigned long wanted)
{
    if (!lut || size != wanted)
        QEL_THROW(InvalidCall, "LUT array cannot be NULL and must have a size of " << wanted << " elements.");
}

} // namespace qel::morphology
