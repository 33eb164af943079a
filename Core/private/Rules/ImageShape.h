#pragma once

#include <qel/Components.h>
#include <qel/Interpretations.h>
#include <qel/String.h>
#include <qel/VoxelTypes.h>

#include <array>

namespace qel {

class ImageModel;

/// What the rules on images ask and change.
namespace rules {

inline constexpr Components allComponents[] = {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES};

/// The five sizes in the order of Components.
using Sizes = std::array<unsigned long, 5>;
Sizes sizesOf(ImageModel const& image);

/// Asks the image for this type and these sizes. False if it refuses.
bool reserve(ImageModel& image, VoxelTypes type, Sizes const& sizes);

/// True where spacing and origin of all five axes are exactly equal.
bool haveSameCalibration(ImageModel const& a, ImageModel const& b);
/// Sets the spacings and origins that differ. Unit names stay, and a refusal is no failure.
void copyCalibration(ImageModel const& from, ImageModel& to);

/// The label of a voxel type or an interpretation, such as "QEL_VALUE"; the number of a value that has none.
String labelOf(VoxelTypes type);
String labelOf(Interpretations interpretation);

bool exists(VoxelTypes type);
bool exists(Interpretations interpretation);

} // namespace rules
} // namespace qel
