#pragma once

#include "Core/private/ImageModelSizeProxy.h"

#include <initializer_list>
#include <memory>
#include <vector>

namespace qel {

/// Images for work on single voxels, which does not ask where a voxel stands: shown with several of their rows as one,
/// so that what a row costs is paid less often. That goes where all of them are `InMemoryImage`s of the same sizes,
/// whose rows are short and lie one behind the other; others are shown as they are. A series stays a series.
class LongRows
{
public:
    /// Not owned; an image may come twice.
    explicit LongRows(std::initializer_list<ImageModel const*> images);

    ImageModel* operator[](std::size_t index) const { return m_images[index]; }

private:
    std::vector<std::unique_ptr<ImageModelSizeProxy>> m_proxies;
    std::vector<ImageModel*> m_images;
};

} // namespace qel
