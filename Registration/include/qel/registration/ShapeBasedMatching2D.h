#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::registration {

/// Finds where a template lies in an image, how it is turned and how it is scaled, by the directions of gradients.
///
/// `inputGradientX`, `inputGradientY`: the gradients of the image to search, of one size; `templateGradientX`,
/// `templateGradientY`: those of the template, of one size; all of any of the ten real voxel types. `mask`: an integer
/// image of the template's size; the voxels above 0 are the points of the shape.
///
/// The score of a position, a rotation and a scale is the sum, over the points of the turned and scaled shape, of the
/// scalar product of the template's gradient with the image's gradient of length 1 there; outside of the image that is
/// 0. `similarityMeasure` (default NORMALIZED): the sum itself, or NORMALIZED_ABS its absolute value, which finds
/// templates of inverted contrast, too. The first of equal scores wins: lower scales, lower rotations, then the order
/// of voxels.
///
/// A gradient of the image that is no number counts as none. Where an infinite one lies under a point, or where a
/// point's own gradient is no number and meets one, the position has no score.
///
/// `rotationBegin` (default 0), `rotationEnd` (360), `rotationStep` (10): degrees, from the X axis towards the Y axis.
/// `scaleBegin` (0.5), `scaleEnd` (1.8), `scaleStep` (0.1). `numOfLevel` (0 to 10, default 4): levels of a pyramid, of
/// which the coarsest is searched whole, and each further one within 5 voxels of what was found; all rotations and
/// scales are tried at each. With 0 there is no search, and the outputs keep their defaults.
///
/// `outputTx`, `outputTy`: where the template's first voxel goes; `outputScale`, `outputRotation` (degrees). An empty
/// mask has no centre, and gives no numbers (NaN) there.
///
/// Throws RuleException before the work starts where an image is missing or does not fit, or a value is out of range;
/// InvalidCall where a range cannot be walked in its steps, being infinite or far too fine.
/// Cost: at the coarsest level one multiplication of two gradients for each voxel, point, rotation and scale, less what
/// cannot win any more.
/// Reference: C. Steger, "Similarity Measures for Occlusion, Clutter, and Illumination Invariant Object Recognition",
/// Pattern Recognition (DAGM), 148-154, 2001.
class QEL_API ShapeBasedMatching2D : public BaseAlgorithm
{
    QEL_ALGORITHM(ShapeBasedMatching2D)

public:
    enum SIMILARITY_MEASURE
    {
        NORMALIZED = 0,
        NORMALIZED_ABS
    };

    Property<ImageModel const*> inputGradientX;
    Property<ImageModel const*> inputGradientY;
    Property<ImageModel const*> templateGradientX;
    Property<ImageModel const*> templateGradientY;
    Property<ImageModel const*> mask;
    Property<unsigned int> numOfLevel;
    PropertyEnumeration similarityMeasure;
    Property<double> rotationBegin;
    Property<double> rotationEnd;
    Property<double> rotationStep;
    Property<double> scaleBegin;
    Property<double> scaleEnd;
    Property<double> scaleStep;
    Property<double> outputTx;
    Property<double> outputTy;
    Property<double> outputScale;
    Property<double> outputRotation;
};

} // namespace qel::registration
