#pragma once

namespace qel::morphology {

/// How a reconstruction goes: the marker grows towards larger values under the image, or towards smaller ones over it.
enum ReconstructionType
{
    QEL_DILATION = 0,
    QEL_EROSION = 1
};

} // namespace qel::morphology
