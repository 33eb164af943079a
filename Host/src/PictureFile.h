#pragma once

#include <qel/ImageModel.h>

#include <string>
#include <vector>

namespace host {

/// Image files through OpenImageIO.
///
/// Channels are spectral series; subimages and the slices of a volume are plans. On writing, the time series follow
/// each other as pages: all plans of the first, all plans of the second, and so on.
///
/// Voxels keep the type that they have in the file (half floats become float32); depths between them, such as 1 or 12
/// bits, become the next larger type, scaled to its range, as OpenImageIO does it. Alpha is a channel like any other.
struct PictureFunctions
{
    /// Reserves `image` for what the file holds, and writes its rows into it. Throws HostError.
    void (*read)(std::string const& path, qel::ImageModel& image);

    /// Writes the rows of `image`. The format follows the extension of `path`, the file is `temporary`. A voxel type
    /// or a number of channels or pages that the format cannot hold is refused with HostError.
    void (*write)(qel::ImageModel const& image, std::string const& path, std::string const& temporary);

    /// Whether there is a writer for the extension of `path`.
    bool (*canWrite)(std::string const& path);

    /// All extensions that OpenImageIO knows.
    std::vector<std::string> (*extensions)();
};

/// The functions, from a module that is loaded at the first call: OpenImageIO brings some two hundred libraries, which
/// take a third of a second to start, and most commands need none of them. Throws HostError.
PictureFunctions const& pictures();

} // namespace host
