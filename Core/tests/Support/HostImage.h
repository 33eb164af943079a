#pragma once

#include "Core/private/VoxelTypeOf.h"
#include "Core/tests/Support/Picture.h"

#include <qel/ImageModel.h>

#include <array>
#include <atomic>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

namespace qel::test {

/// The operations of an image, to be counted, refused or broken.
enum Operation
{
    GET_NUM_OF,
    GET_VOXEL_TYPE,
    SET_ORIGIN,
    GET_ORIGIN,
    SET_SPACING,
    GET_SPACING,
    SET_SPATIAL_UNIT,
    GET_SPATIAL_UNIT,
    SET_TEMPORAL_UNIT,
    GET_TEMPORAL_UNIT,
    GET_INTERPRETATION,
    SET_INTERPRETATION,
    GET_PREFERED_SIZE,
    READ_ROW,
    WRITE_ROW,
    GET_ROW,
    GET_CONST_ROW,
    RESERVE,
    NUM_OF_OPERATIONS
};

/// What a HostImage throws when it is told to.
struct HostFailure : std::runtime_error
{
    HostFailure()
        : std::runtime_error("host failure")
    {}
};

/// An image as a host would bring it: voxels in a std::vector, no direct rows unless told. Each operation can be told
/// to return false (`failOn`) or to throw a HostFailure (`throwOn`), from its first call on or after some calls, and
/// counts its calls; safe to call from many threads. `reserve` fills the new voxels with 0xCD.
class HostImage : public ImageModel
{
public:
    HostImage() = default;
    HostImage(VoxelTypes itsType, Shape const& itsShape) { resize(itsType, itsShape); }
    template <class T> explicit HostImage(Picture<T> const& picture)
    {
        resize(VoxelTypeOf<T>::value, picture.shape);
        if (!bytes.empty())
            std::memcpy(bytes.data(), picture.voxels.data(), bytes.size());
    }

    /// Lets getRowAt and getConstRowAt give direct pointers.
    HostImage& giveRows(bool give = true)
    {
        givesRows = give;
        return *this;
    }
    HostImage& failOn(Operation operation, unsigned long afterCalls = 0)
    {
        failures[operation] = afterCalls;
        return *this;
    }
    HostImage& throwOn(Operation operation, unsigned long afterCalls = 0)
    {
        throws[operation] = afterCalls;
        return *this;
    }
    /// Forgets what failOn and throwOn said.
    HostImage& behave()
    {
        failures.fill(NEVER);
        throws.fill(NEVER);
        return *this;
    }
    void preferSize(Shape const& block)
    {
        preferred = block;
        hasPreferred = true;
    }

    unsigned long callsOf(Operation operation) const { return calls[operation]; }
    /// Calls that came from other threads than the one that made this image.
    unsigned long foreignCallsOf(Operation operation) const { return foreignCalls[operation]; }
    void forgetCalls()
    {
        for (auto& count : calls)
            count = 0;
        for (auto& count : foreignCalls)
            count = 0;
    }
    /// The voxels, in the order of a Picture.
    std::vector<unsigned char> const& content() const { return bytes; }
    Shape const& sizes() const { return shape; }

    unsigned long getNumOf(Components const& component) const override
    {
        note(GET_NUM_OF);
        unsigned long const all[] = {shape.columns, shape.rows, shape.plans, shape.timeSeries, shape.spectralSeries};
        return all[component];
    }
    VoxelTypes getVoxelType() const override
    {
        note(GET_VOXEL_TYPE);
        return type;
    }
    bool setOriginOf(Components const& component, double origin) override
    {
        return note(SET_ORIGIN) && (origins[component] = origin, true);
    }
    double getOriginOf(Components const& component) const override
    {
        note(GET_ORIGIN);
        return origins[component];
    }
    bool setSpacingOf(Components const& component, double spacing) override
    {
        return note(SET_SPACING) && (spacings[component] = spacing, true);
    }
    double getSpacingOf(Components const& component) const override
    {
        note(GET_SPACING);
        return spacings[component];
    }
    bool setSpatialUnitName(String const& name) override
    {
        return note(SET_SPATIAL_UNIT) && (spatialUnit = name, true);
    }
    String getSpatialUnitName() const override
    {
        note(GET_SPATIAL_UNIT);
        return spatialUnit;
    }
    bool setTemporalUnitName(String const& name) override
    {
        return note(SET_TEMPORAL_UNIT) && (temporalUnit = name, true);
    }
    String getTemporalUnitName() const override
    {
        note(GET_TEMPORAL_UNIT);
        return temporalUnit;
    }
    Interpretations getInterpretation() const override
    {
        note(GET_INTERPRETATION);
        return interpretation;
    }
    bool setInterpretation(Interpretations const& value) override
    {
        return note(SET_INTERPRETATION) && (interpretation = value, true);
    }
    bool getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans, unsigned long& timeSeries,
                         unsigned long& spectralSeries) override
    {
        if (!note(GET_PREFERED_SIZE) || !hasPreferred)
            return false;
        columns = preferred.columns;
        rows = preferred.rows;
        plans = preferred.plans;
        timeSeries = preferred.timeSeries;
        spectralSeries = preferred.spectralSeries;
        return true;
    }
    bool readRowAt(unsigned long count, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (!note(READ_ROW) || !holds(count, column, row, plan, time, spectral))
            return false;
        if (count != 0)
            std::memcpy(destination, place(column, row, plan, time, spectral), count * voxelSize);
        return true;
    }
    bool writeRowAt(unsigned long count, unsigned char const* source, unsigned long column, unsigned long row,
                    unsigned long plan, unsigned long time, unsigned long spectral) override
    {
        if (!note(WRITE_ROW) || !holds(count, column, row, plan, time, spectral))
            return false;
        if (count != 0)
            std::memcpy(place(column, row, plan, time, spectral), source, count * voxelSize);
        return true;
    }
    bool getRowAt(unsigned long count, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                  unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (!note(GET_ROW) || !givesRows || !holds(count, column, rowIndex, plan, time, spectral))
            return false;
        row = place(column, rowIndex, plan, time, spectral);
        return true;
    }
    bool getConstRowAt(unsigned long count, unsigned char const*& row, unsigned long column, unsigned long rowIndex,
                       unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (!note(GET_CONST_ROW) || !givesRows || !holds(count, column, rowIndex, plan, time, spectral))
            return false;
        row = place(column, rowIndex, plan, time, spectral);
        return true;
    }
    bool reserve(VoxelTypes const& newType, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override
    {
        if (!note(RESERVE))
            return false;
        resize(newType, Shape{columns, rows, plans, timeSeries, spectralSeries});
        return true;
    }

private:
    static constexpr unsigned long NEVER = ~0ul;
    using Counters = std::array<std::atomic<unsigned long>, NUM_OF_OPERATIONS>;

    static std::array<unsigned long, NUM_OF_OPERATIONS> allNever()
    {
        std::array<unsigned long, NUM_OF_OPERATIONS> all;
        all.fill(NEVER);
        return all;
    }
    /// Counts the call. False if it is to be refused.
    bool note(Operation operation) const
    {
        unsigned long const before = calls[operation].fetch_add(1);
        if (std::this_thread::get_id() != home)
            ++foreignCalls[operation];
        if (before >= throws[operation] && throws[operation] != NEVER)
            throw HostFailure();
        return before < failures[operation] || failures[operation] == NEVER;
    }
    void resize(VoxelTypes newType, Shape const& newShape)
    {
        type = newType;
        shape = newShape;
        voxelSize = memory::sizeOfVoxelType(newType);
        bytes.assign(shape.count() * voxelSize, 0xCD);
    }
    bool holds(unsigned long count, unsigned long column, unsigned long row, unsigned long plan, unsigned long time,
               unsigned long spectral) const
    {
        return count <= shape.columns && column <= shape.columns - count && row < shape.rows && plan < shape.plans &&
               time < shape.timeSeries && spectral < shape.spectralSeries;
    }
    unsigned char* place(unsigned long column, unsigned long row, unsigned long plan, unsigned long time,
                         unsigned long spectral) const
    {
        unsigned long const voxel =
            (((spectral * shape.timeSeries + time) * shape.plans + plan) * shape.rows + row) * shape.columns + column;
        return const_cast<unsigned char*>(bytes.data()) + voxel * voxelSize;
    }

    VoxelTypes type = QEL_UINT8;
    Shape shape{0, 0, 0, 0, 0};
    unsigned long voxelSize = 1;
    std::vector<unsigned char> bytes;
    double origins[5] = {};
    double spacings[5] = {1, 1, 1, 1, 1};
    String spatialUnit;
    String temporalUnit;
    Interpretations interpretation = QEL_VALUE;
    bool givesRows = false;
    bool hasPreferred = false;
    Shape preferred;
    std::thread::id const home = std::this_thread::get_id();
    std::array<unsigned long, NUM_OF_OPERATIONS> failures = allNever();
    std::array<unsigned long, NUM_OF_OPERATIONS> throws = allNever();
    mutable Counters calls{};
    mutable Counters foreignCalls{};
};

} // namespace qel::test
