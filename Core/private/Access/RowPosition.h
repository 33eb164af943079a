#pragma once

namespace qel::access {

/// Absolute coordinates of the first voxel of a row. They may lie outside the image.
struct RowPosition
{
    long column = 0;
    long row = 0;
    long plan = 0;
    long timeSeries = 0;
    long spectralSeries = 0;
};

} // namespace qel::access
