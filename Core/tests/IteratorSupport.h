#pragma once

// What the tests of the cursors share: blocks, and voxels as they stand around a picture.
#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Access/DirectionalMirrorBorderCondition.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/Access/View.h"
#include "Core/tests/Support/Support.h"

#include <qel/access/Block2d.h>
#include <qel/access/Block3d.h>

#include <algorithm>
#include <vector>

namespace qel::test {

inline access::Range rangeOf(unsigned long begin, unsigned long end) { return {end, begin, 1}; }

inline access::Block2d block2d(unsigned long colsBegin, unsigned long colsEnd, unsigned long rowsBegin,
                               unsigned long rowsEnd, unsigned long plan = 0, unsigned long time = 0,
                               unsigned long spectral = 0)
{
    return access::Block2d(rangeOf(rowsBegin, rowsEnd), rangeOf(colsBegin, colsEnd), plan, time, spectral);
}

inline access::Block3d block3d(unsigned long colsBegin, unsigned long colsEnd, unsigned long rowsBegin,
                               unsigned long rowsEnd, unsigned long plansBegin, unsigned long plansEnd,
                               unsigned long time = 0, unsigned long spectral = 0)
{
    return access::Block3d(rangeOf(plansBegin, plansEnd), rangeOf(rowsBegin, rowsEnd), rangeOf(colsBegin, colsEnd),
                           time, spectral);
}

/// Blocks of an image of 21 x 6 voxels at least: the whole, inner ones, corners, lines, single voxels.
inline std::vector<access::Block2d> blocksOfAPlan(Shape const& shape, unsigned long plan, unsigned long time,
                                                  unsigned long spectral)
{
    unsigned long const cols = shape.columns;
    unsigned long const rows = shape.rows;
    std::vector<access::Block2d> blocks;
    for (auto const& [left, right] : std::vector<std::pair<unsigned long, unsigned long>>{
             {0, cols}, {3, 8}, {0, 1}, {cols - 1, cols}, {4, 20}, {2, 19}})
        for (auto const& [top, bottom] :
             std::vector<std::pair<unsigned long, unsigned long>>{{0, rows}, {1, 4}, {rows - 1, rows}})
            blocks.push_back(block2d(left, right, top, bottom, plan, time, spectral));
    return blocks;
}

inline std::vector<access::Block3d> blocksOfAVolume(Shape const& shape, unsigned long time, unsigned long spectral)
{
    std::vector<access::Block3d> blocks;
    for (access::Block2d const& plane : blocksOfAPlan(shape, 0, time, spectral))
        for (auto const& [front, back] : std::vector<std::pair<unsigned long, unsigned long>>{
                 {0, shape.plans}, {1, 2}, {shape.plans - 1, shape.plans}})
            blocks.push_back(block3d(plane.colsBegin(), plane.colsEnd(), plane.rowsBegin(), plane.rowsEnd(), front,
                                     back, time, spectral));
    return blocks;
}

/// The voxel at coordinates that may lie outside: there stands `outside`.
template <class T>
T voxelAt(Picture<T> const& picture, long column, long row, long plan, long time, long spectral, T outside)
{
    Shape const& shape = picture.shape;
    auto const isIn = [](long index, unsigned long size) { return index >= 0 && index < static_cast<long>(size); };
    if (!isIn(column, shape.columns) || !isIn(row, shape.rows) || !isIn(plan, shape.plans) ||
        !isIn(time, shape.timeSeries) || !isIn(spectral, shape.spectralSeries))
        return outside;
    return picture.at(static_cast<unsigned long>(column), static_cast<unsigned long>(row),
                      static_cast<unsigned long>(plan), static_cast<unsigned long>(time),
                      static_cast<unsigned long>(spectral));
}

/// The four border conditions of a voxel type.
template <class T> std::vector<boost::shared_ptr<access::BorderCondition<T>>> allConditions()
{
    return {access::FixedBorderCondition<T>::New(T(77)), access::ContinueBorderCondition<T>::New(),
            access::MirrorBorderCondition<T>::New(), access::DirectionalMirrorBorderCondition<T>::New(0.6)};
}

/// Those that extend the plans too.
template <class T> std::vector<boost::shared_ptr<access::BorderCondition<T>>> conditionsOfVolumes()
{
    auto conditions = allConditions<T>();
    conditions.pop_back();
    return conditions;
}

/// One voxel as a border condition gives it.
template <class T>
T conditionAt(access::BorderCondition<T> const& condition, ImageModel const& image, long column, long row, long plan,
              long time, long spectral)
{
    T voxel;
    condition.getData(&image, &voxel, &voxel + 1, column, row, plan, time, spectral);
    return voxel;
}

/// The voxels of a block in row order, as absolute columns, rows and plans.
struct Place
{
    long column, row, plan;
    bool operator==(Place const&) const = default;
};
inline std::vector<Place> placesOf(access::Block const& block)
{
    std::vector<Place> places;
    for (unsigned long plan = block.plansBegin(); plan < block.plansEnd(); ++plan)
        for (unsigned long row = block.rowsBegin(); row < block.rowsEnd(); ++row)
            for (unsigned long column = block.colsBegin(); column < block.colsEnd(); ++column)
                places.push_back({static_cast<long>(column), static_cast<long>(row), static_cast<long>(plan)});
    return places;
}

/// Where a cursor stands, in absolute coordinates.
template <class Cursor> Place placeOf(Cursor const& cursor)
{
    access::Block const& block = cursor.block();
    return {static_cast<long>(block.colsBegin()) + cursor.column(), static_cast<long>(block.rowsBegin()) + cursor.row(),
            static_cast<long>(block.plansBegin()) + cursor.plan()};
}

/// Calls `[]<class V, int N>() {...}` for the ten plain views and the eight of packets.
template <class Callable> void forEachView(Callable&& callable)
{
    forEachVoxelType([&]<class T>() { callable.template operator()<access::View<T>, 1>(); });
#define QEL_CALL(T)                                                                                                    \
    {                                                                                                                  \
        SCOPED_TRACE(testing::Message() << "packets of " << voxelTypeName<T>());                                       \
        callable.template operator()<access::PacketView<T>, access::packetSizeOf<T>>();                                \
    }
    QEL_FOR_EACH_PACKET_TYPE(QEL_CALL)
#undef QEL_CALL
}

} // namespace qel::test
