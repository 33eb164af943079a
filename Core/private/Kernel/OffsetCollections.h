#pragma once

#include <qel/kernel/Offset2D.h>
#include <qel/kernel/Offset3D.h>

#include <type_traits>
#include <vector>

// Collections of offsets, and what makes them from a shape and a size. All of it runs once, before an algorithm starts.
// The order of a collection is part of what each generator promises. No generator removes a duplicate or asks whether a
// size is sensible: who uses it does. Angles are in degrees.

namespace qel::kernel {

/// Negates every component.
template <class Offset> void invert(std::vector<Offset>& collection);

/// Adds `offset` to every member.
template <class Offset> void shift(std::vector<Offset>& collection, std::type_identity_t<Offset> const& offset);

/// Removes from both collections what they have in common, each a multiset: what stands twice in `first` and once in
/// `second` stays once in `first`. Of equal members the first ones go; the others keep their order.
template <class Offset> void commonElementsDeletion(std::vector<Offset>& first, std::vector<Offset>& second);

/// Keeps the part of the collection whose translate still lies inside the collection. The result has, for each member
/// that is such a translate, the member that it comes from, in the order of the translates.
void buildMaskedOffset2DTrans(std::vector<Offset2D>& collection, long dx, long dy);
void buildMaskedOffset3DTrans(std::vector<Offset3D>& collection, long dx, long dy, long dz);

/// The same angle in [-180, 180).
double toConventionAngles(double angle);

/// The same direction with the azimuth `theta` in [-180, 180) and the polar angle `phi` in [0, 180].
void toConventionAngles(double& phi, double& theta);

/// All offsets in [-radius, radius] on each axis, ascending, x outermost.
std::vector<Offset2D> generateSquareOffset2DCollection(unsigned long radius);
std::vector<Offset3D> generateCubeOffset3DCollection(unsigned long radius);

/// Those of them at most `radius` away from the origin.
std::vector<Offset2D> generateDiskOffset2DCollection(unsigned long radius);
std::vector<Offset3D> generateSphereOffset3DCollection(unsigned long radius);

/// `count` rounded unit steps from the origin in the direction of `angle`. Steps may fall together.
std::vector<Offset2D> generateLineOffset2DCollection(double angle, unsigned long count);

/// A line from the origin, of any length: its offset after so many steps along its dominant axis. With `convention`,
/// the lines of two opposite angles are exact mirror images of each other.
class DigitalLine2D
{
public:
    DigitalLine2D(double angle, bool convention);
    Offset2D operator()(unsigned long step) const;

private:
    double m_cos, m_sin;
    bool m_isReversed;
};
/// `phi` is the polar angle from the axis of plans, `theta` the azimuth.
class DigitalLine3D
{
public:
    DigitalLine3D(double phi, double theta, bool convention);
    Offset3D operator()(unsigned long step) const;

private:
    double m_x, m_y, m_z; // of the direction
    bool m_isReversed;
};

/// The first `count` offsets of such a line.
std::vector<Offset2D> generateLineOffset2DCollectionWithConstNumOfPixels(double angle, unsigned long count,
                                                                         bool convention);
std::vector<Offset3D> generateLineOffset3DCollectionWithConstNumOfPixels(double phi, double theta, unsigned long count,
                                                                         bool convention);

/// Turns a point of the plane of columns and rows into that which is normal to the line of the two angles, and rounds.
class PlaneInSpace
{
public:
    PlaneInSpace(double phi, double theta);
    Offset3D operator()(Offset2D const& point) const;

private:
    double m_cosPhi, m_sinPhi, m_cosTheta, m_sinTheta;
};

/// The rounded points of the disk that is normal to the line of the same two angles. Points that fall together stay.
std::vector<Offset3D> generateDiskOffset3DCollection(double phi, double theta, unsigned long radius);

/// The offsets less than (radius + 0.5)^2, cut to an integer, away from the origin in squares; none for radius 0. By
/// quadrants: each point with its mirror images behind it.
void buildMatrixCircle(unsigned long radius, std::vector<Offset2D>& collection);
/// The same in space, z outermost and x innermost, ascending.
void buildMatrixSphere(unsigned long radius, std::vector<Offset3D>& collection);

} // namespace qel::kernel
