#pragma once

#include <qel/Algorithm.h>
#include <qel/geometry/LineSet3D.h>

namespace qel::geometry {

/// Gives the lines along the middle of each object: a tree of polylines.
///
/// A maximum spanning tree connects the voxels of an object by way of those that lie deepest in it, which the smoothed
/// distance map tells (EuclideanDistanceMap). The longest path of the tree is the first line; each further one runs
/// from the voxel that is farthest from all lines so far to the line that it branches from, with which it shares a
/// vertex.
///
/// `input`: an image of integers, with one time and one spectral series, in which either each label above 0 is an
/// object (QEL_LABEL), or all voxels other than 0 are one (QEL_BINARY). Of a binary image only the object of the first
/// voxel gets lines: where there are several, label them first. Labels that touch are one object to each of them. The
/// outer layer of the image belongs to no object.
///
/// `autoMode` (default true): whether a branch is taken as long as it is longer than the distance from its junction to
/// the object's surface, times `newBranchSensibility` (default 3, at least 1). Otherwise `numberOfBranches` (default 3)
/// says how many lines an object gets, the first one included, unless its voxels run out.
/// `euclideanDistanceMapSigmaSmoothing` (default 0.3, at least 0.01): deviation, in voxels, of the normal distribution
/// that smoothes the distance map. `smoothingIteration` (default 3): how many times each vertex between the ends of a
/// line gives way to the mean of itself and its two neighbours.
///
/// `outputImage`: another image than `input`. Takes its sizes, calibration and interpretation. From labels it also
/// takes the voxel type, and holds the labels of the voxels on lines; for a binary image it becomes QEL_UINT8, with 1
/// there. These are the voxels before smoothing. `outputLineSet`: what it held before goes. Vertices are in calibrated
/// coordinates: index times spacing, plus origin. Each line is followed by LineSet3D::stop. A line starts at the end
/// that is far away; a branch ends with the vertex of its junction. An object of one voxel has no line.
///
/// A cancelled run leaves in the line set the objects that were done, and the image as it was, unless that was being
/// written.
///
/// Throws RuleException when something is missing, of another type or interpretation, or out of range, and
/// UnexpectedError when the available memory does not hold the smoothing kernel.
///
/// Reference: R. C. Prim, "Shortest connection networks and some generalizations", Bell System Technical Journal
/// 36:1389-1401, 1957, for the tree.
class QEL_API CenterLine3D : public BaseAlgorithm
{
    QEL_ALGORITHM(CenterLine3D)

public:
    Property<ImageModel const*> input;
    Property<bool> autoMode;
    Property<unsigned int> numberOfBranches;
    Property<double> newBranchSensibility;
    Property<double> euclideanDistanceMapSigmaSmoothing;
    Property<unsigned int> smoothingIteration;
    Property<ImageModel*> outputImage;
    PropertyLineSet3D outputLineSet;
};

} // namespace qel::geometry
