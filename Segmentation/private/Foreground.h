#pragma once

#include "Core/private/Access/RowPosition.h"

#include <cstdint>
#include <memory>

namespace qel {

class ImageModel;

namespace segmentation {

/// Reads rows as bits, for one task.
class ForegroundReader
{
public:
    virtual ~ForegroundReader() = default;
    /// Bit x % 64 of word x / 64 is set where voxel x of the row differs from zero. The bits behind the row are 0, and
    /// there is at least one of them.
    virtual std::uint64_t const* read(access::RowPosition const& at, unsigned long count) = 0;
};

/// An image of any real voxel type of which only the foreground matters: so what works on it needs no type for it.
class Foreground
{
public:
    static std::unique_ptr<Foreground> New(ImageModel const* image);
    virtual ~Foreground() = default;
    /// Callable from any thread.
    virtual std::unique_ptr<ForegroundReader> createReader() const = 0;
};

} // namespace segmentation
} // namespace qel
