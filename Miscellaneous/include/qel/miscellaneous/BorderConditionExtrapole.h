#pragma once

#include <qel/Algorithm.h>

namespace qel::miscellaneous {

/// Shows what the border conditions make of an image beyond its edges: writes the image with a margin around it, or,
/// where the output is the smaller one, its middle.
///
/// `input`: any of the ten real voxel types, any five sizes. `bctype` (default 0): 0 the value everywhere; 1 the
/// nearest voxel of the image; 2 the image mirrored at its edges; 3 the image mirrored along a direction. `value`
/// (default 0): an intensity for 0, cut to the voxel type; the angle in radians for 3. `zoomFactor` (default 0, which
/// writes nothing): how many times the columns and the rows of `input` the whole is; 1 copies. `output`: takes type and
/// interpretation of `input`, and has to have its sizes before the run: columns and rows of `input` times `zoomFactor`,
/// cut, and its other sizes. As many rows are written as it has, and rows as wide as the zoom says; what does not fit
/// is dropped, and what is not reached stays. It may be `input` only for a zoom of 1.
///
/// Throws RuleException when an image is missing or cannot take the type, and InvalidCall on any other `bctype`, before
/// any voxel changes. Runs on the calling thread.
class QEL_API BorderConditionExtrapole : public BaseAlgorithm
{
    QEL_ALGORITHM(BorderConditionExtrapole)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> bctype;
    Property<double> value;
    Property<double> zoomFactor;
    Property<ImageModel*> output;
};

} // namespace qel::miscellaneous
