#include "Core/private/LongRows.h"

#include <qel/helper/copyBytes.h>
#include <qel/memory/InMemoryImage.h>

#include <algorithm>
#include <typeinfo>

namespace qel {

namespace {

/// Longer ones gain nothing, and a task should keep its rows in the first cache.
constexpr unsigned long longRow = 4096;

/// An `InMemoryImage` with `joined` of its rows in each row, and one plan.
class LongRowImage final : public ImageModelSizeProxy
{
public:
    LongRowImage(memory::InMemoryImage* image, unsigned long joined)
        : ImageModelSizeProxy(image, 0, image->getNumOf(COLUMNS) * joined, 0,
                              image->getNumOf(ROWS) * image->getNumOf(PLANS) / joined, 0, 1, 0,
                              image->getNumOf(TIME_SERIES), 0, image->getNumOf(SPECTRAL_SERIES))
        , m_buffer(image->getInternalBuffer())
        , m_columns(getNumOf(COLUMNS))
        , m_rows(getNumOf(ROWS))
        , m_timeSeries(getNumOf(TIME_SERIES))
        , m_voxelSize(memory::sizeOfVoxelType(image->getVoxelType()))
        , m_isLarge(m_columns * m_rows * m_timeSeries * getNumOf(SPECTRAL_SERIES) * m_voxelSize >= helper::largeImage)
    {}

    bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (!holds(numOfVoxels, column, row, plan, time, spectral))
            return false;
        helper::copyBytes(destination, at(column, row, time, spectral), numOfVoxels * m_voxelSize);
        return true;
    }
    bool writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column, unsigned long row,
                    unsigned long plan, unsigned long time, unsigned long spectral) override
    {
        if (!holds(numOfVoxels, column, row, plan, time, spectral))
            return false;
        auto* const copy = m_isLarge ? &helper::copyBytesPastCaches : &helper::copyBytes;
        copy(at(column, row, time, spectral), source, numOfVoxels * m_voxelSize);
        return true;
    }
    bool getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                  unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (!holds(numOfVoxels, column, rowIndex, plan, time, spectral))
            return false;
        row = at(column, rowIndex, time, spectral);
        return true;
    }
    bool getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                       unsigned long rowIndex, unsigned long plan, unsigned long time,
                       unsigned long spectral) const override
    {
        if (!holds(numOfVoxels, column, rowIndex, plan, time, spectral))
            return false;
        row = at(column, rowIndex, time, spectral);
        return true;
    }

private:
    unsigned char* at(unsigned long column, unsigned long row, unsigned long time, unsigned long spectral) const
    {
        return m_buffer + (((spectral * m_timeSeries + time) * m_rows + row) * m_columns + column) * m_voxelSize;
    }

    unsigned char* m_buffer;
    unsigned long m_columns;
    unsigned long m_rows;
    unsigned long m_timeSeries;
    unsigned long m_voxelSize;
    bool m_isLarge;
};

/// How many rows of each image become one.
unsigned long numOfJoined(std::vector<ImageModel*> const& images)
{
    auto const isPlain = [](ImageModel const* image) { return typeid(*image) == typeid(memory::InMemoryImage); };
    auto const hasSizesOfFirst = [&](ImageModel const* image) {
        return std::ranges::all_of(
            std::initializer_list<Components>{COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES},
            [&](Components axis) { return image->getNumOf(axis) == images.front()->getNumOf(axis); });
    };
    if (!std::ranges::all_of(images, isPlain) || !std::ranges::all_of(images, hasSizesOfFirst))
        return 1;
    unsigned long const columns = images.front()->getNumOf(COLUMNS);
    unsigned long const rows = images.front()->getNumOf(ROWS) * images.front()->getNumOf(PLANS);
    if (columns == 0 || rows == 0)
        return 1;
    unsigned long joined = std::clamp(longRow / columns, 1ul, rows);
    while (rows % joined != 0)
        --joined;
    return joined;
}

} // namespace

LongRows::LongRows(std::initializer_list<ImageModel const*> images)
{
    // One class serves both directions; for an image that is read it calls nothing that writes.
    for (ImageModel const* const image : images)
        m_images.push_back(const_cast<ImageModel*>(image));
    unsigned long const joined = numOfJoined(m_images);
    if (joined == 1)
        return;
    for (ImageModel*& image : m_images) {
        m_proxies.push_back(std::make_unique<LongRowImage>(static_cast<memory::InMemoryImage*>(image), joined));
        image = m_proxies.back().get();
    }
}

} // namespace qel
