#pragma once

#include <qel/Algorithm.h>

namespace qel::classification {

/// Partitions the voxels of an image into classes of similar intensity, by the iteration of Lloyd.
///
/// `input`: a value image of any of the ten real voxel types; its spectral series are the components of a voxel.
/// `numClasses` (default 2): how many classes. `preComputingDataPercent` (percent, default 100): the share of the
/// voxels, a random one, that the centres are learned from; above 99 all of them. `classifiedImage`: of an integer
/// voxel type; takes columns, rows, plans and time series of `input` with one spectral series, and becomes a label
/// image of the classes, from 1 on.
///
/// The first centres are drawn at random within four deviations around the mean of each component. At most ten
/// iterations follow, fewer when no centre moves by more than 20 intensities. A nearly empty class is pulled towards
/// the largest one; an image with fewer distinct values than classes leaves labels unused. The generator has a fixed
/// seed: the same image gives the same labels on every run and for every number of threads.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or interpretation, or a
/// number is 0; RuntimeError when `classifiedImage` refuses its sizes.
/// Cost: a pass over the sample for each iteration, of one distance a voxel and class.
/// Reference: S. P. Lloyd, "Least squares quantization in PCM", IEEE Transactions on Information Theory 28(2):129-137,
/// 1982.
class QEL_API KMeansClassification : public BaseAlgorithm
{
    QEL_ALGORITHM(KMeansClassification)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> numClasses;
    Property<unsigned int> preComputingDataPercent;
    Property<ImageModel*> classifiedImage;
};

} // namespace qel::classification
