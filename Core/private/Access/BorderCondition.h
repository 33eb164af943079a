#pragma once

namespace qel {

class ImageModel;

namespace access {

// Decides what a read outside the image returns. Every read of the library passes through one. Holds no mutable state:
// one object serves all threads.
template <class T> class BorderCondition
{
public:
    virtual ~BorderCondition() = default;

    // Fills [first, last) with the voxels of a row, beginning at column `col`. Coordinates are absolute and may lie
    // anywhere. Inside the image this is one readRowAt. Throws UnexpectedError if the image's voxel type is not T, if
    // readRowAt fails, or if the condition does not extend an axis that is left.
    virtual void getData(ImageModel const* image, T* first, T* last, long col, long row, long plan, long timeSeries,
                         long spectralSeries) const = 0;
};

} // namespace access
} // namespace qel
