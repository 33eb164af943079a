#pragma once

#include <qel/ImageModel.h>

#include <string>
#include <vector>

namespace host {

// Image files through OpenImageIO. Channels are spectral series; subimages and the slices of a volume are plans. On
// writing, the time series follow each other: all plans of the first, all plans of the second, and so on.
//
// Voxels keep the type that they have in the file (half floats become float32); depths between them, such as 1 or 12
// bits, become the next larger type, scaled to its range, as OpenImageIO does it. Alpha is a channel like any other.

/// Reserves `image` for what the file holds, and writes its rows into it.
void readPicture(std::string const& path, qel::ImageModel& image);

/// Writes the rows of `image`. The format follows the extension of `path`, the file is `temporary`. A voxel type or a
/// number of channels or pages that the format cannot hold is refused with HostError.
void writePicture(qel::ImageModel const& image, std::string const& path, std::string const& temporary);

/// Whether there is a writer for the extension of `path`.
bool canWritePicture(std::string const& path);

/// All extensions that OpenImageIO knows.
std::vector<std::string> pictureExtensions();

} // namespace host
