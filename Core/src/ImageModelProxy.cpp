#include "Core/private/ImageModelProxy.h"

#include <memory>

namespace qel {

namespace {

/// Bytes for one row: on the stack for a short one.
class RowBuffer
{
public:
    explicit RowBuffer(unsigned long numOfBytes)
        : heap(numOfBytes > sizeof(stack) ? new unsigned char[numOfBytes] : nullptr)
    {}
    unsigned char* data() { return heap ? heap.get() : stack; }

private:
    alignas(16) unsigned char stack[4096];
    std::unique_ptr<unsigned char[]> heap;
};

} // namespace

ImageModelProxy::ImageModelProxy(ImageModel* model, VoxelTypes shown)
    : wrapped(model)
    , shownType(shown)
    , shownSize(memory::sizeOfVoxelType(shown))
{
    lookAtWrapped();
}

void ImageModelProxy::lookAtWrapped()
{
    wrappedType = wrapped->getVoxelType();
    wrappedSize = memory::sizeOfVoxelType(wrappedType);
    toShown = helper::voxelConversion(wrappedType, shownType);
    toWrapped = helper::voxelConversion(shownType, wrappedType);
}

ImageModel* ImageModelProxy::getWrapped() const { return wrapped; }

unsigned long ImageModelProxy::getNumOf(Components const& component) const { return wrapped->getNumOf(component); }

VoxelTypes ImageModelProxy::getVoxelType() const { return shownType; }

bool ImageModelProxy::setOriginOf(Components const& component, double origin)
{
    return wrapped->setOriginOf(component, origin);
}

double ImageModelProxy::getOriginOf(Components const& component) const { return wrapped->getOriginOf(component); }

bool ImageModelProxy::setSpacingOf(Components const& component, double spacing)
{
    return wrapped->setSpacingOf(component, spacing);
}

double ImageModelProxy::getSpacingOf(Components const& component) const { return wrapped->getSpacingOf(component); }

bool ImageModelProxy::setSpatialUnitName(String const& name) { return wrapped->setSpatialUnitName(name); }

String ImageModelProxy::getSpatialUnitName() const { return wrapped->getSpatialUnitName(); }

bool ImageModelProxy::setTemporalUnitName(String const& name) { return wrapped->setTemporalUnitName(name); }

String ImageModelProxy::getTemporalUnitName() const { return wrapped->getTemporalUnitName(); }

Interpretations ImageModelProxy::getInterpretation() const { return wrapped->getInterpretation(); }

bool ImageModelProxy::setInterpretation(Interpretations const& interpretation)
{
    return wrapped->setInterpretation(interpretation);
}

bool ImageModelProxy::getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans,
                                      unsigned long& timeSeries, unsigned long& spectralSeries)
{
    return wrapped->getPreferedSize(columns, rows, plans, timeSeries, spectralSeries);
}

bool ImageModelProxy::readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                                unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) const
{
    if (wrappedType == shownType)
        return wrapped->readRowAt(numOfVoxels, destination, column, row, plan, time, spectral);
    unsigned long numOfBytes = 0;
    if (toShown == nullptr || __builtin_mul_overflow(numOfVoxels, wrappedSize, &numOfBytes))
        return false;
    if (shownSize >= wrappedSize) {
        // Into the tail of the caller's buffer, from where the row widens to the buffer's start.
        unsigned char* const tail = destination + numOfVoxels * (shownSize - wrappedSize);
        if (!wrapped->readRowAt(numOfVoxels, tail, column, row, plan, time, spectral))
            return false;
        unsigned char const* source = tail;
        toShown(source, destination, numOfVoxels);
        return true;
    }
    RowBuffer buffer(numOfBytes);
    if (!wrapped->readRowAt(numOfVoxels, buffer.data(), column, row, plan, time, spectral))
        return false;
    unsigned char const* source = buffer.data();
    toShown(source, destination, numOfVoxels);
    return true;
}

bool ImageModelProxy::writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column,
                                 unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral)
{
    if (wrappedType == shownType)
        return wrapped->writeRowAt(numOfVoxels, source, column, row, plan, time, spectral);
    unsigned long numOfBytes = 0;
    if (toWrapped == nullptr || __builtin_mul_overflow(numOfVoxels, wrappedSize, &numOfBytes))
        return false;
    RowBuffer buffer(numOfBytes);
    unsigned char* target = buffer.data();
    toWrapped(source, target, numOfVoxels);
    return wrapped->writeRowAt(numOfVoxels, buffer.data(), column, row, plan, time, spectral);
}

bool ImageModelProxy::getRowAt(unsigned long, unsigned char*&, unsigned long, unsigned long, unsigned long,
                               unsigned long, unsigned long) const
{
    return false;
}

bool ImageModelProxy::getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                                    unsigned long rowIndex, unsigned long plan, unsigned long time,
                                    unsigned long spectral) const
{
    unsigned char* writable = nullptr;
    if (!getRowAt(numOfVoxels, writable, column, rowIndex, plan, time, spectral))
        return false;
    row = writable;
    return true;
}

bool ImageModelProxy::reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                              unsigned long timeSeries, unsigned long spectralSeries)
{
    bool const reserved = wrapped->reserve(type, columns, rows, plans, timeSeries, spectralSeries);
    // Rows would otherwise be converted from a type that the wrapped image no longer has.
    lookAtWrapped();
    return reserved;
}

} // namespace qel
