#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/Helper/ImageModelCheckTypeEquivalence.h"
#include "Core/private/Throw.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <qel/ImageModel.h>

namespace qel::access {

namespace {

constexpr long lowestCoordinate = std::numeric_limits<long>::min();
constexpr long highestCoordinate = std::numeric_limits<long>::max();

long sizeOf(ImageModel const& image, Components component)
{
    return static_cast<long>(
        std::min(image.getNumOf(component), static_cast<unsigned long>(std::numeric_limits<long>::max())));
}

long addSaturated(long a, long b)
{
    long sum;
    if (__builtin_add_overflow(a, b, &sum))
        return b < 0 ? lowestCoordinate : highestCoordinate;
    return sum;
}

long subtractSaturated(long a, long b)
{
    long difference;
    if (__builtin_sub_overflow(a, b, &difference))
        return b < 0 ? highestCoordinate : lowestCoordinate;
    return difference;
}

} // namespace

ImageSizes::ImageSizes(ImageModel const& image)
    : cols(sizeOf(image, COLUMNS))
    , rows(sizeOf(image, ROWS))
    , plans(sizeOf(image, PLANS))
    , timeSeries(sizeOf(image, TIME_SERIES))
    , spectralSeries(sizeOf(image, SPECTRAL_SERIES))
{}

RowParts::RowParts(long col, long count, long numOfCols)
{
    // Unsigned differences of coordinates cannot overflow.
    unsigned long const n = static_cast<unsigned long>(count);
    unsigned long const start = static_cast<unsigned long>(col);
    unsigned long const toEnd = static_cast<unsigned long>(numOfCols) - start;
    before = col < 0 ? static_cast<long>(std::min(n, 0 - start)) : 0;
    after = col >= numOfCols ? count : static_cast<long>(n > toEnd ? n - toEnd : 0);
    inside = count - before - after;
}

bool readWhollyInside(ImageModel const& image, VoxelTypes type, unsigned char* destination, RowRequest const& request)
{
    helper::checkVoxelType(image, type);
    auto const outside = [&image](long coordinate, Components component) {
        return static_cast<unsigned long>(coordinate) >= image.getNumOf(component);
    };
    unsigned long const col = static_cast<unsigned long>(request.col);
    unsigned long const numOfCols = image.getNumOf(COLUMNS);
    // Minus one: so an empty request is not taken for a row inside, and needs no test of its own.
    if (col >= numOfCols || static_cast<unsigned long>(request.count) - 1 >= numOfCols - col ||
        outside(request.row, ROWS) || outside(request.plan, PLANS) || outside(request.timeSeries, TIME_SERIES) ||
        outside(request.spectralSeries, SPECTRAL_SERIES))
        return false;
    readRow(image, destination, request);
    return true;
}

void readRow(ImageModel const& image, unsigned char* destination, RowRequest const& request)
{
    if (!image.readRowAt(static_cast<unsigned long>(request.count), destination,
                         static_cast<unsigned long>(request.col), static_cast<unsigned long>(request.row),
                         static_cast<unsigned long>(request.plan), static_cast<unsigned long>(request.timeSeries),
                         static_cast<unsigned long>(request.spectralSeries)))
        throwReadError();
}

void throwReadError() { QEL_THROW(UnexpectedError, "Error in readRowAt implementation, return value is false"); }

void throwNotCompatible(char const* condition, char const* axis)
{
    QEL_THROW(UnexpectedError, condition << " border condition is not compatible with " << axis << " extrapolation");
}

long clampCoordinate(long coordinate, long size) { return std::clamp(coordinate, 0l, size - 1); }

long mirrorCoordinate(long coordinate, long size)
{
    unsigned long const period = 2 * static_cast<unsigned long>(size);
    unsigned long const reflected = static_cast<unsigned long>(coordinate < 0 ? ~coordinate : coordinate) % period;
    return static_cast<long>(std::min(reflected, period - 1 - reflected));
}

MirrorWalk::MirrorWalk(long col, long numOfCols)
    : m_size(static_cast<unsigned long>(numOfCols))
{
    unsigned long const period = 2 * m_size;
    m_phase =
        col < 0 ? period - 1 - static_cast<unsigned long>(~col) % period : static_cast<unsigned long>(col) % period;
}

MirrorWalk::Run MirrorWalk::next(long count)
{
    bool const ascending = m_phase < m_size;
    unsigned long const turn = ascending ? m_size : 2 * m_size;
    unsigned long const length = std::min(static_cast<unsigned long>(count), turn - m_phase);
    unsigned long const firstCol = ascending ? m_phase : turn - m_phase - length;
    m_phase += length;
    if (m_phase == 2 * m_size)
        m_phase = 0;
    return {static_cast<long>(firstCol), static_cast<long>(length), ascending};
}

DirectionalMirror::DirectionalMirror(double angle)
    : m_angle(angle)
    , m_cosine(std::cos(angle))
    , m_sine(std::sin(angle))
    , m_tangent(std::tan(angle))
{
    // The direction never points to negative columns.
    if (m_cosine < 0) {
        m_cosine = -m_cosine;
        m_sine = -m_sine;
    }
}

DirectionalMirror::Point DirectionalMirror::reflectOnce(ImageSizes const& sizes, Point point) const
{
    auto const [x, y] = point;
    double const c = m_cosine;
    double const s = m_sine;
    double const t = m_tangent;
    double const realX = static_cast<double>(x);
    double const realY = static_cast<double>(y);
    double const numOfCols = static_cast<double>(sizes.cols);
    double const numOfRows = static_cast<double>(sizes.rows);

    // Across the line of direction (c, s) through a corner of the image, along its normal. `side` is 1 for the line
    // below the image and -1 for the one above.
    auto const across = [&, x = x, y = y](double distance, int side) {
        auto const moved = [&](double length) {
            long const alongX = roundDoubleToCoord(s * length);
            long const alongY = roundDoubleToCoord(c * length);
            return side > 0 ? Point{addSaturated(x, alongX), subtractSaturated(y, alongY)}
                            : Point{subtractSaturated(x, alongX), addSaturated(y, alongY)};
        };
        double const twice = 2 * distance;
        Point const reflected = moved(twice);
        return reflected == Point{x, y} ? moved(twice + 1) : reflected;
    };

    if (t > 0) {
        double const below = (realY + 1 - numOfRows) * c - realX * s;
        if (below > 0)
            return across(below, 1);
        double const above = (realX + 1 - numOfCols) * s - realY * c;
        if (above > 0)
            return across(above, -1);
    } else {
        double const above = realX * s - realY * c;
        if (above > 0)
            return across(above, -1);
        double const below = (realY + 1 - numOfRows) * c + (numOfCols - realX - 1) * s;
        if (below > 0)
            return across(below, 1);
    }

    // Across the first edge that is crossed, along the direction. ~x is -x - 1 and cannot overflow.
    if (x < 0)
        return {~x, addSaturated(y, roundDoubleToCoord((-2 * realX - 1) * t))};
    if (x >= sizes.cols)
        return {sizes.cols - 1 - x + sizes.cols,
                subtractSaturated(y, roundDoubleToCoord((2 * (realX - numOfCols) + 1) * t))};
    if (y < 0)
        return {addSaturated(x, roundDoubleToCoord((-2 * realY - 1) / t)), ~y};
    return {subtractSaturated(x, roundDoubleToCoord((2 * (realY - numOfRows) + 1) / t)),
            sizes.rows - 1 - y + sizes.rows};
}

void DirectionalMirror::computeCoord(ImageSizes const& sizes, long x, long y, long& outX, long& outY) const
{
    // On images of one or two rows or columns the reflections may come back to where they were: such a circle is found
    // by comparing with a point that is left behind at each power of two (Brent). The bound is for points so far away
    // that their way back has no practical end.
    constexpr unsigned maxReflections = 1u << 16;
    Point point{x, y};
    Point milestone = point;
    unsigned nextMilestone = 1;
    for (unsigned reflections = 0; reflections < maxReflections; ++reflections) {
        if (ImageSizes::contains(sizes.cols, point.x) && ImageSizes::contains(sizes.rows, point.y))
            break;
        point = reflectOnce(sizes, point);
        if (point == milestone)
            break;
        if (reflections == nextMilestone) {
            milestone = point;
            nextMilestone *= 2;
        }
    }
    outX = clampCoordinate(point.x, sizes.cols);
    outY = clampCoordinate(point.y, sizes.rows);
}

long roundDoubleToCoord(double value)
{
    double const rounded = value < 0 ? value - 0.5 : value + 0.5;
    // The highest coordinate has no double of its own: 2^63 is the first value beyond.
    if (rounded >= 0x1p63)
        return highestCoordinate;
    if (rounded <= -0x1p63)
        return lowestCoordinate;
    return rounded == rounded ? static_cast<long>(rounded) : 0;
}

} // namespace qel::access
