#pragma once

#include <qel/Algorithm.h>
#include <qel/math/Vector3.h>

namespace qel::filtering::smoothing {

/// Replaces each voxel by the mean, or the sum, of a box around it in three dimensions. The time for a voxel does
/// not depend on the size of the box.
///
/// `input`: any of the ten real voxel types, binary or of values. `boxSize` (voxels, default 3 by 3 by 3): the sides
/// along columns, rows and plans. A box of odd side is centred; one of even side n has exactly n voxels, from n/2
/// before the voxel to n/2 - 1 behind it. Outside of the image, voxels are those of its mirror image, the edge
/// repeated. `normalize` (default true): the mean, of the type of `input`; integers are cut towards zero. Without it
/// the sum, of a type that holds it (for uint8 input: uint16 up to 256 voxels in the box, int32 up to 8388608, float32
/// above). `output`: takes sizes and calibration of `input` and becomes an image of values; may be `input` itself where
/// it keeps its type, at the cost of a copy of a volume.
///
/// Sums of 8- and 16-bit integers whose type is an integer are exact. All others are made in double, in an order that
/// depends on a voxel's position alone: neither the number of threads nor a far voxel changes a result.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or
/// `output` is `input` and would have to become another type; and InvalidCall when a
/// side is 0.
class QEL_API BoxFilter3D : public BaseAlgorithm
{
    QEL_ALGORITHM(BoxFilter3D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    Property<math::Vector3<unsigned int>> boxSize;
    Property<bool> normalize;
    Property<ImageModel*> output;
};

} // namespace qel::filtering::smoothing
