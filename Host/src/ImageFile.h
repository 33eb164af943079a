#pragma once

#include "ImageArgument.h"

#include <qel/memory/InMemoryImage.h>

#include <optional>
#include <string>

namespace host {

// Image files by their extension: `.qeli` through the library's own algorithms, everything else through OpenImageIO.
// Both go row by row, so that the image is in memory once.

/// Fills `image` from a file; with `wanted` the voxels are cast to that type while they are read. Throws HostError, and
/// what the library throws.
void readImageFile(std::string const& path, std::optional<qel::VoxelTypes> wanted, qel::memory::InMemoryImage& image);

/// Reads what an argument names, with the interpretation and calibration that it gives.
void readImage(ImageArgument const& argument, qel::memory::InMemoryImage& image);

/// Throws UsageError where no format goes with the extension of `path`.
void checkWritable(std::string const& path);

/// Writes the image to the file `temporary`, in the format that the extension of `path` tells; with `type` the voxels
/// are cast while they are written. Throws HostError, and what the library throws.
void writeImageFile(qel::ImageModel& image, std::optional<qel::VoxelTypes> type, std::string const& path,
                    std::string const& temporary);

/// The five sizes, as `C_R_P_T_S`.
std::string sizesOf(qel::ImageModel const& image);

} // namespace host
