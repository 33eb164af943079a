#pragma once

#include <qel/container/Vector.h>

namespace qel::morphology {

class MorphologicalLut3DPrivate
{
public:
    static constexpr unsigned long size = 4194304;

    container::Vector<unsigned int> words{size};
};

} // namespace qel::morphology
