#pragma once

#include "Core/private/Access/BorderGeometry.h"

#include <algorithm>
#include <vector>

namespace qel::filtering::smoothing {

/// Part of an axis: the least run of coordinates in the image that holds a range of mirrored ones.
struct MirroredRange
{
    MirroredRange() = default;
    MirroredRange(long rangeBegin, long rangeEnd, long imageSize)
        : image(imageSize)
        , begin(imageSize - 1)
        , end(0)
    {
        // After two reflections all of the image has been seen.
        for (long x = rangeBegin; x < std::min(rangeEnd, rangeBegin + 2 * imageSize); ++x)
            include(x);
    }

    void include(long coordinate)
    {
        long const inside = access::mirrorCoordinate(coordinate, image);
        begin = std::min(begin, inside);
        end = std::max(end, inside + 1);
    }
    unsigned long count() const { return static_cast<unsigned long>(end - begin); }

    long image = 1; // how many coordinates there are in the image
    long begin = 0;
    long end = 0;
};

/// A box of an image as doubles, with the image's coordinates; outside of the image they are mirrored.
class MirroredVolume
{
public:
    void resize(MirroredRange const& plans, MirroredRange const& rows, MirroredRange const& columns)
    {
        m_plans = plans;
        m_rows = rows;
        m_columns = columns;
        m_voxels.resize(plans.count() * rows.count() * columns.count());
    }

    MirroredRange const& plans() const { return m_plans; }
    MirroredRange const& rows() const { return m_rows; }
    MirroredRange const& columns() const { return m_columns; }

    /// From the first column on; plan and row are in the box.
    double* rowAt(long plan, long row)
    {
        return m_voxels.data() + static_cast<unsigned long>(
                                     row - m_rows.begin + (plan - m_plans.begin) * static_cast<long>(m_rows.count())) *
                                     m_columns.count();
    }

    /// `count` voxels from mirrored coordinates: in the box itself where they are in the image, and else in `room`.
    double const* read(long plan, long row, long column, unsigned long count, std::vector<double>& room)
    {
        double const* const source =
            rowAt(access::mirrorCoordinate(plan, m_plans.image), access::mirrorCoordinate(row, m_rows.image)) -
            m_columns.begin;
        long const end = column + static_cast<long>(count);
        if (column >= 0 && end <= m_columns.image)
            return source + column;
        room.resize(count);
        long const insideBegin = std::clamp(column, 0l, m_columns.image);
        long const insideEnd = std::clamp(end, insideBegin, m_columns.image);
        auto const mirror = [&](long from, long to) {
            for (long x = from; x < to; ++x)
                room[static_cast<unsigned long>(x - column)] = source[access::mirrorCoordinate(x, m_columns.image)];
        };
        mirror(column, std::min(insideBegin, end));
        std::copy(source + insideBegin, source + insideEnd, room.data() + (insideBegin - column));
        mirror(std::max(insideEnd, column), end);
        return room.data();
    }

private:
    MirroredRange m_plans;
    MirroredRange m_rows;
    MirroredRange m_columns;
    std::vector<double> m_voxels;
};

} // namespace qel::filtering::smoothing
