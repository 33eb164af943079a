#pragma once

#include <qel/container/Vector.h>

namespace qel::morphology {

class MorphologicalLut2DPrivate
{
public:
    static constexpr unsigned long size = 512;

    container::Vector<unsigned char> patterns{size};
};

} // namespace qel::morphology
