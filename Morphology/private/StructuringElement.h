#pragma once

#include "Morphology/private/ElementGraph.h"

#include <qel/AlgoBorderInfluence.h>

#include <vector>

namespace qel::morphology {

enum class Operator
{
    Erosion,
    Dilation,
    Opening,
    Closing
};

/// The second half of a class's name: Of2D is that of Erosion2D.
enum class Form
{
    Of2D,
    Of3D,
    OfDisk2D,
    OfDisk3D,
    OfLine2D,
    OfLine3D,
    OfBall3D
};

/// Whether a form works on volumes. All others work plan by plan.
bool isOfVolumes(Form form);

/// The element that the properties of an algorithm describe, whatever its form.
struct StructuringElement
{
    Form form;
    unsigned long size = 0;    // iterations, a radius or a number of voxels
    int choice = 0;            // neighbourhood or precision
    double angle = 0;          // of a line in a plan
    double theta = 0, phi = 0; // in space

    AlgoBorderInfluence influence() const;

    /// The graphs to go over an image of these sizes with, one after the other. What reaches beyond the image from
    /// everywhere in it is left out, so that time and memory follow the image and not the size of the element. Throws
    /// InvalidCall where the element has no voxel; there is none where it is to leave the output alone.
    std::vector<ElementGraph> passes(unsigned long cols, unsigned long rows, unsigned long plans) const;
};

} // namespace qel::morphology
