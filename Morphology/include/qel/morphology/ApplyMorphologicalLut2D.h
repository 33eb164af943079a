#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/morphology/BinaryBorderConditionTypes.h>
#include <qel/morphology/MatchingActionTypes.h>
#include <qel/morphology/PropertyMorphologicalLut2D.h>

namespace qel::morphology {

/// Looks the 3 x 3 neighbourhood of each voxel up in a table, and sets the voxel as the answer says: any hit-or-miss
/// operation in one pass.
///
/// `input`: a binary image of 8- or 16-bit integers; the lowest bit of a voxel is its part of the pattern, which is
/// numbered as in MorphologicalLut2D. `morphologicalLut`: the table. `matchingFlag` (a MatchingActionTypes, default
/// SET_ONE): what a voxel becomes whose pattern matches; `noMatchingFlag` (default SET_ZERO): what any other becomes.
/// `borderCondition` (a BinaryBorderConditionTypes, default STOP_OBJECT): what lies beyond the image. `output`: takes
/// sizes, calibration and type of `input` and keeps its interpretation; it may be `input`.
/// Plans and series are taken each by itself.
///
/// Throws RuleException, before any voxel changes, when an image or the table is missing, `input` is of another type or
/// interpretation, or an enumeration has an unknown value.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", Academic Press, 1982, chapter XI.
class QEL_API ApplyMorphologicalLut2D : public BaseAlgorithm
{
    QEL_ALGORITHM(ApplyMorphologicalLut2D)

public:
    Property<ImageModel const*> input;
    PropertyMorphologicalLut2D morphologicalLut;
    PropertyEnumeration matchingFlag;
    PropertyEnumeration noMatchingFlag;
    PropertyEnumeration borderCondition;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
