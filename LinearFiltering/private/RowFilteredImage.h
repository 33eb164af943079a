#pragma once

#include "Core/private/ImageModelProxy.h"

#include <memory>
#include <vector>

namespace qel::linear_filtering {

/// Shows an image as a filter along its rows would leave it: each row is summed when it is read. Outside of the image
/// stands its mirror image. Nothing can be written to it.
class RowFilteredImage final : public ImageModelProxy
{
public:
    /// `weights`: an odd number of them, the middle one for the voxel itself. `shown`: the voxel type of the sums,
    /// which also decides what they are computed in. `image` is not owned, and must outlive this one.
    RowFilteredImage(ImageModel const* image, VoxelTypes shown, std::vector<double> const& weights);
    ~RowFilteredImage() override;

    bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override;
    bool writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column, unsigned long row,
                    unsigned long plan, unsigned long time, unsigned long spectral) override;
    bool reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override;

    class Rows;

private:
    std::unique_ptr<Rows const> m_rows;
};

} // namespace qel::linear_filtering
