#pragma once

#include <qel/VoxelTypes.h>

// What the border conditions do that needs no voxel type.

namespace qel {

class ImageModel;

namespace access {

// One request: `count` voxels of a row from column `col` on. Coordinates are absolute and may lie anywhere.
struct RowRequest
{
    long count;
    long col;
    long row;
    long plan;
    long timeSeries;
    long spectralSeries;
};

// The five sizes of an image, as signed counts so that coordinates compare with them.
struct ImageSizes
{
    explicit ImageSizes(ImageModel const& image);

    // Whether a coordinate on this axis is one of the image's.
    static bool contains(long size, long coordinate)
    {
        return static_cast<unsigned long>(coordinate) < static_cast<unsigned long>(size);
    }

    bool isAnyZero() const { return cols == 0 || rows == 0 || plans == 0 || timeSeries == 0 || spectralSeries == 0; }

    long cols;
    long rows;
    long plans;
    long timeSeries;
    long spectralSeries;
};

// How a request falls on the columns of an image. The three counts add up to the request's.
struct RowParts
{
    RowParts(long col, long count, long numOfCols);

    long before; // voxels before column 0
    long inside;
    long after; // voxels behind the last column
};

// Checks the voxel type, then reads the request if it lies wholly inside the image, and says whether it did: the one
// thing to do for most rows.
bool readWhollyInside(ImageModel const& image, VoxelTypes type, unsigned char* destination, RowRequest const& request);

// Reads one piece of a row, which must lie in the image. Throws UnexpectedError if the image refuses.
void readRow(ImageModel const& image, unsigned char* destination, RowRequest const& request);

[[noreturn]] void throwReadError();
[[noreturn]] void throwNotCompatible(char const* condition, char const* axis);

// `coordinate`, or the nearest one in the image.
long clampCoordinate(long coordinate, long size);

// Reflection with the edge voxel repeated: for a size of 4, the coordinates from -4 to 7 give 3 2 1 0 0 1 2 3 3 2 1 0.
long mirrorCoordinate(long coordinate, long size);

// Walks along the columns that successive voxels of a mirrored row come from, one run without a turn after the other.
class MirrorWalk
{
public:
    struct Run
    {
        long firstCol; // the lowest column of the run
        long count;
        bool ascending;
    };

    MirrorWalk(long col, long numOfCols);

    // The next run, of at most `count` voxels.
    Run next(long count);

private:
    unsigned long m_size;
    unsigned long m_phase; // position in one period of twice the size: ascending columns, then descending ones
};

// Reflects points outside a plan back into it along a fixed direction.
class DirectionalMirror
{
public:
    // `angle` in radians.
    explicit DirectionalMirror(double angle);

    // The point of the image that (x, y) stands for. The image must have a voxel in each axis.
    void computeCoord(ImageSizes const& sizes, long x, long y, long& outX, long& outY) const;

    double angle() const { return m_angle; }
    double cosine() const { return m_cosine; }
    double sine() const { return m_sine; }
    double tangent() const { return m_tangent; }

private:
    struct Point
    {
        long x;
        long y;
        bool operator==(Point const&) const = default;
    };

    Point reflectOnce(ImageSizes const& sizes, Point point) const;

    double m_angle;
    double m_cosine;
    double m_sine;
    double m_tangent;
};

// Adds 0.5 to a non-negative value, subtracts it from a negative one, and truncates. A value that no coordinate can
// hold becomes the nearest coordinate, and NaN becomes 0.
long roundDoubleToCoord(double value);

} // namespace access
} // namespace qel
