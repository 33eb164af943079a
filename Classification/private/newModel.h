#pragma once

#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/classification/TextureClassificationModel.h>

#include <memory>
#include <new>

namespace qel::classification {

[[noreturn]] inline void refuseModelForMemory()
{
    QEL_THROW(MemoryError, "Impossible to allocate a new TextureClassificationModel.");
}

/// A new model. Throws MemoryError.
inline std::unique_ptr<TextureClassificationModel> newModel()
{
    try {
        return std::make_unique<TextureClassificationModel>();
    } catch (std::bad_alloc const&) {
        refuseModelForMemory();
    }
}

} // namespace qel::classification
