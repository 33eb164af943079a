#pragma once

#include <qel/Algorithm.h>

namespace qel::tools {

/// Loads an image from a raw image file, as SaveQelRawImage writes it.
///
/// `filePath`: which file. `output`: takes voxel type, interpretation, sizes, spacings and unit names of the file, and
/// keeps its origins.
///
/// Throws RuntimeError when the file cannot be opened, is no raw image, is shorter than its header promises (`output`
/// is then unchanged), or when `output` refuses its type and sizes. Cannot be cancelled.
class QEL_API LoadQelRawImage : public BaseAlgorithm
{
    QEL_ALGORITHM(LoadQelRawImage)

public:
    Property<String> filePath;
    Property<ImageModel*> output;
};

} // namespace qel::tools
