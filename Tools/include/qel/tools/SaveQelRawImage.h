#pragma once

#include <qel/Algorithm.h>

namespace qel::tools {

/// Saves an image as a raw image file: a fixed header of 338 bytes, then all voxels in the machine's byte order, by
/// time series, plans, spectral series, rows. Voxel type, interpretation, sizes, spacings and unit names (of which 48
/// characters) are kept; origins are not.
///
/// `input`: any voxel type and sizes, each below 2^32. `filePath`: where to. `overwrite` (default false): whether a
/// file that is there already may be replaced; it must be a regular file.
///
/// Throws RuntimeError when the file is there and must not be replaced, cannot be created or cannot be written to the
/// end, and when the image refuses a row. A file that was partly written stays. Cannot be cancelled.
class QEL_API SaveQelRawImage : public BaseAlgorithm
{
    QEL_ALGORITHM(SaveQelRawImage)

public:
    Property<ImageModel const*> input;
    Property<String> filePath;
    Property<bool> overwrite;
};

} // namespace qel::tools
