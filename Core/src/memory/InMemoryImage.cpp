#include <qel/memory/InMemoryImage.h>

#include <qel/helper/copyBytes.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace qel::memory {

namespace {

/// Product of all factors; false if it does not fit. A factor of 0 makes it 0, however large the others are.
bool checkedProduct(std::initializer_list<unsigned long> factors, unsigned long& product)
{
    product = std::find(factors.begin(), factors.end(), 0ul) == factors.end() ? 1 : 0;
    for (unsigned long const factor : factors)
        if (product != 0 && __builtin_mul_overflow(product, factor, &product))
            return false;
    return true;
}

} // namespace

InMemoryImage::InMemoryImage()
    : voxelType(QEL_UINT8)
    , sizes{}
    , origins{}
    , spacings{}
    , interpretation(QEL_VALUE)
    , buffer(nullptr)
    , voxelSize(sizeOfVoxelType(QEL_UINT8))
    , isLarge(false)
{}

InMemoryImage::InMemoryImage(InMemoryImage const& other)
    : InMemoryImage()
{
    *this = other;
}

InMemoryImage& InMemoryImage::operator=(InMemoryImage const& other)
{
    if (this == &other)
        return *this;
    std::unique_ptr<unsigned char[]> copy;
    if (other.buffer != nullptr) {
        unsigned long const numOfBytes =
            other.sizes[0] * other.sizes[1] * other.sizes[2] * other.sizes[3] * other.sizes[4] * other.voxelSize;
        copy.reset(new unsigned char[numOfBytes]);
        std::memcpy(copy.get(), other.buffer, numOfBytes);
    }
    spatialUnitName = other.spatialUnitName;
    temporalUnitName = other.temporalUnitName;
    voxelType = other.voxelType;
    voxelSize = other.voxelSize;
    isLarge = other.isLarge;
    std::copy(other.sizes, other.sizes + 5, sizes);
    std::copy(other.origins, other.origins + 5, origins);
    std::copy(other.spacings, other.spacings + 5, spacings);
    interpretation = other.interpretation;
    delete[] buffer;
    buffer = copy.release();
    return *this;
}

InMemoryImage::~InMemoryImage() { delete[] buffer; }

void InMemoryImage::Init()
{
    std::fill(sizes, sizes + 5, 0ul);
    std::fill(origins, origins + 5, 0.0);
    std::fill(spacings, spacings + 5, 0.0);
    interpretation = QEL_VALUE;
}

unsigned char const* InMemoryImage::getInternalBuffer() const { return buffer; }

unsigned char* InMemoryImage::getInternalBuffer() { return buffer; }

// Through `unsigned`, because a host may hand over any integer as an axis.
static bool isAxis(Components const& component) { return static_cast<unsigned>(component) < 5; }

unsigned long InMemoryImage::getNumOf(Components const& component) const
{
    return isAxis(component) ? sizes[component] : 0;
}

VoxelTypes InMemoryImage::getVoxelType() const { return voxelType; }

bool InMemoryImage::setOriginOf(Components const& component, double origin)
{
    if (!isAxis(component))
        return false;
    origins[component] = origin;
    return true;
}

double InMemoryImage::getOriginOf(Components const& component) const
{
    return isAxis(component) ? origins[component] : 0.0;
}

bool InMemoryImage::setSpacingOf(Components const& component, double spacing)
{
    if (!isAxis(component))
        return false;
    spacings[component] = spacing;
    return true;
}

double InMemoryImage::getSpacingOf(Components const& component) const
{
    return isAxis(component) ? spacings[component] : 0.0;
}

bool InMemoryImage::setSpatialUnitName(String const& name)
{
    spatialUnitName = name;
    return true;
}

String InMemoryImage::getSpatialUnitName() const { return spatialUnitName; }

bool InMemoryImage::setTemporalUnitName(String const& name)
{
    temporalUnitName = name;
    return true;
}

String InMemoryImage::getTemporalUnitName() const { return temporalUnitName; }

Interpretations InMemoryImage::getInterpretation() const { return interpretation; }

bool InMemoryImage::setInterpretation(Interpretations const& newInterpretation)
{
    interpretation = newInterpretation;
    return true;
}

bool InMemoryImage::getPreferedSize(unsigned long&, unsigned long&, unsigned long&, unsigned long&, unsigned long&)
{
    return false;
}

bool InMemoryImage::readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                              unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) const
{
    unsigned char const* source = nullptr;
    if (!getConstRowAt(numOfVoxels, source, column, row, plan, time, spectral))
        return false;
    helper::copyBytes(destination, source, numOfVoxels * voxelSize);
    return true;
}

bool InMemoryImage::writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column,
                               unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral)
{
    unsigned char* destination = nullptr;
    if (!getRowAt(numOfVoxels, destination, column, row, plan, time, spectral))
        return false;
    // A caller may hand back the row that it got from this image.
    if (isLarge)
        helper::copyBytesPastCaches(destination, source, numOfVoxels * voxelSize);
    else
        helper::copyBytes(destination, source, numOfVoxels * voxelSize);
    return true;
}

bool InMemoryImage::getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column,
                             unsigned long rowIndex, unsigned long plan, unsigned long time,
                             unsigned long spectral) const
{
    // Written without the sum of column and count, which could wrap.
    if (sizes[COLUMNS] == 0 || numOfVoxels > sizes[COLUMNS] || column > sizes[COLUMNS] - numOfVoxels ||
        rowIndex >= sizes[ROWS] || plan >= sizes[PLANS] || time >= sizes[TIME_SERIES] ||
        spectral >= sizes[SPECTRAL_SERIES])
        return false;
    unsigned long const voxel =
        (((spectral * sizes[TIME_SERIES] + time) * sizes[PLANS] + plan) * sizes[ROWS] + rowIndex) * sizes[COLUMNS] +
        column;
    row = buffer + voxel * voxelSize;
    return true;
}

bool InMemoryImage::getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                                  unsigned long rowIndex, unsigned long plan, unsigned long time,
                                  unsigned long spectral) const
{
    unsigned char* writable = nullptr;
    if (!getRowAt(numOfVoxels, writable, column, rowIndex, plan, time, spectral))
        return false;
    row = writable;
    return true;
}

bool InMemoryImage::reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                            unsigned long timeSeries, unsigned long spectralSeries)
{
    unsigned long numOfBytes = 0;
    if (!checkedProduct({columns, rows, plans, timeSeries, spectralSeries, sizeOfVoxelType(type)}, numOfBytes))
        return false;
    // `type` may be a reference into this image, and stays valid; the sizes stand at 0 while there is no buffer.
    delete[] buffer;
    buffer = nullptr;
    std::fill(sizes, sizes + 5, 0ul);
    buffer = new unsigned char[numOfBytes];
    voxelType = type;
    voxelSize = sizeOfVoxelType(type);
    isLarge = numOfBytes >= helper::largeImage;
    sizes[COLUMNS] = columns;
    sizes[ROWS] = rows;
    sizes[PLANS] = plans;
    sizes[TIME_SERIES] = timeSeries;
    sizes[SPECTRAL_SERIES] = spectralSeries;
    return true;
}

} // namespace qel::memory
