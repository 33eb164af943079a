#pragma once

#include "Core/private/VoxelTypeOf.h"
#include "Core/tests/Support/Picture.h"

#include <qel/memory/InMemoryImage.h>

#include <cstring>
#include <sstream>
#include <stdexcept>

namespace qel::test {

inline Shape shapeOf(ImageModel const& image)
{
    return Shape{image.getNumOf(COLUMNS), image.getNumOf(ROWS), image.getNumOf(PLANS), image.getNumOf(TIME_SERIES),
                 image.getNumOf(SPECTRAL_SERIES)};
}

template <class T> memory::InMemoryImage toImage(Picture<T> const& picture)
{
    memory::InMemoryImage image;
    Shape const& shape = picture.shape;
    image.reserve(VoxelTypeOf<T>::value, shape.columns, shape.rows, shape.plans, shape.timeSeries,
                  shape.spectralSeries);
    if (!picture.voxels.empty())
        std::memcpy(image.getInternalBuffer(), picture.voxels.data(), picture.voxels.size() * sizeof(T));
    return image;
}

/// The voxels of an image that has voxel type T, through readRowAt. Another type, or a row that cannot be read, throws
/// std::runtime_error.
template <class T> Picture<T> fromImage(ImageModel const& image)
{
    if (image.getVoxelType() != VoxelTypeOf<T>::value) {
        std::ostringstream text;
        text << "fromImage: the image has voxel type " << int(image.getVoxelType()) << " and not "
             << int(VoxelTypeOf<T>::value);
        throw std::runtime_error(text.str());
    }
    Picture<T> picture(shapeOf(image));
    Shape const& shape = picture.shape;
    if (picture.voxels.empty())
        return picture;
    forEachVoxel(Shape{1, shape.rows, shape.plans, shape.timeSeries, shape.spectralSeries},
                 [&](unsigned long, unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) {
                     if (!image.readRowAt(shape.columns,
                                          reinterpret_cast<unsigned char*>(&picture.at(0, row, plan, time, spectral)),
                                          0, row, plan, time, spectral))
                         throw std::runtime_error("fromImage: a row cannot be read");
                 });
    return picture;
}

} // namespace qel::test
