#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/morphology/BinaryBorderConditionTypes.h>

namespace qel::morphology {

/// Keeps the ends of lines: the voxels of the foreground that have exactly one neighbour in it.
///
/// A voxel without any neighbour is no end. `input`: a binary image of 8- or 16-bit integers, where all voxels but 0
/// are foreground. `borderCondition` (a BinaryBorderConditionTypes, default STOP_OBJECT): what lies beyond the image;
/// with CONTINUE_OBJECT a line that meets the border goes on there, and has no end. `neighborhood2D` (a
/// Neighborhood2DType, default QEL_NEIGHBORHOOD2D_8): which voxels are neighbours. `output`: takes sizes, calibration,
/// type and interpretation of `input`; an end keeps its value, all else is 0. It may be `input`.
/// Plans and series are taken each by itself.
///
/// Throws RuleException, before any voxel changes, when an image is missing, `input` is of another type or
/// interpretation, or an enumeration has an unknown value.
class QEL_API EndPoints2D : public BaseAlgorithm
{
    QEL_ALGORITHM(EndPoints2D)

public:
    Property<ImageModel const*> input;
    PropertyEnumeration borderCondition;
    PropertyEnumeration neighborhood2D;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
