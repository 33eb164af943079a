#include "Core/private/Kernel/OffsetCollections.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace qel::kernel {

namespace {

long stepsTowards(double component) { return component < 0 ? -1 : 1; }

long roundedDown(double value) { return static_cast<long>(std::floor(value)); }

double toRadians(double angle) { return angle * 3.141592653589793 / 180; }

void add(Offset2D& offset, Offset2D const& other)
{
    offset.x += other.x;
    offset.y += other.y;
}

void add(Offset3D& offset, Offset3D const& other)
{
    offset.x += other.x;
    offset.y += other.y;
    offset.z += other.z;
}

Offset2D negated(Offset2D const& offset) { return {-offset.x, -offset.y}; }
Offset3D negated(Offset3D const& offset) { return {-offset.x, -offset.y, -offset.z}; }

// An order for searches: a collection's own order means something else.
bool isBefore(Offset2D const& a, Offset2D const& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; }
bool isBefore(Offset3D const& a, Offset3D const& b)
{
    return a.x != b.x ? a.x < b.x : a.y != b.y ? a.y < b.y : a.z < b.z;
}
struct Before
{
    template <class Offset> bool operator()(Offset const& a, Offset const& b) const { return isBefore(a, b); }
};

template <class Offset> std::vector<Offset> sorted(std::vector<Offset> collection)
{
    std::sort(collection.begin(), collection.end(), Before());
    return collection;
}

/// Of the members of `collection`, the first ones go, as many of each as `removed`, which is sorted, has.
template <class Offset> void removeFirst(std::vector<Offset>& collection, std::vector<Offset> const& removed)
{
    std::vector<std::size_t> done(removed.size()); // at the first of equal ones: how many of them are gone
    auto const goes = [&](Offset const& member) {
        auto const [begin, end] = std::equal_range(removed.begin(), removed.end(), member, Before());
        if (begin == end)
            return false;
        std::size_t& gone = done[static_cast<std::size_t>(begin - removed.begin())];
        if (gone == static_cast<std::size_t>(end - begin))
            return false;
        ++gone;
        return true;
    };
    auto kept = collection.begin();
    for (Offset const& member : collection) {
        if (!goes(member))
            *kept++ = member;
    }
    collection.erase(kept, collection.end());
}

template <class Offset> void keepTranslated(std::vector<Offset>& collection, Offset const& translation)
{
    std::vector<Offset> const all = sorted(collection);
    std::vector<Offset> result;
    for (Offset source : collection) {
        add(source, negated(translation));
        if (std::binary_search(all.begin(), all.end(), source, Before()))
            result.push_back(source);
    }
    collection = std::move(result);
}

template <class Keep> std::vector<Offset2D> offsetsOfSquare(unsigned long radius, Keep keep)
{
    std::vector<Offset2D> collection;
    long const reach = static_cast<long>(radius);
    for (long x = -reach; x <= reach; ++x)
        for (long y = -reach; y <= reach; ++y)
            if (keep(x * x + y * y))
                collection.push_back({x, y});
    return collection;
}

template <class Keep> std::vector<Offset3D> offsetsOfCube(unsigned long radius, Keep keep)
{
    std::vector<Offset3D> collection;
    long const reach = static_cast<long>(radius);
    for (long x = -reach; x <= reach; ++x)
        for (long y = -reach; y <= reach; ++y)
            for (long z = -reach; z <= reach; ++z)
                if (keep(x * x + y * y + z * z))
                    collection.push_back({x, y, z});
    return collection;
}

auto everything()
{
    return [](long) { return true; };
}

auto within(unsigned long radius)
{
    return [limit = static_cast<long>(radius * radius)](long squaredLength) { return squaredLength <= limit; };
}

long limitOfMatrix(unsigned long radius)
{
    double const reach = static_cast<double>(radius) + 0.5;
    return static_cast<long>(reach * reach);
}

} // namespace

template <class Offset> void invert(std::vector<Offset>& collection)
{
    for (Offset& member : collection)
        member = negated(member);
}

template <class Offset> void shift(std::vector<Offset>& collection, std::type_identity_t<Offset> const& offset)
{
    Offset const step = offset; // which may be a member
    for (Offset& member : collection)
        add(member, step);
}

template <class Offset> void commonElementsDeletion(std::vector<Offset>& first, std::vector<Offset>& second)
{
    std::vector<Offset> const sortedFirst = sorted(first);
    std::vector<Offset> const sortedSecond = sorted(second);
    std::vector<Offset> common; // of equal members as many as both have
    std::set_intersection(sortedFirst.begin(), sortedFirst.end(), sortedSecond.begin(), sortedSecond.end(),
                          std::back_inserter(common), Before());
    removeFirst(first, common);
    removeFirst(second, common);
}

template void invert(std::vector<Offset2D>&);
template void invert(std::vector<Offset3D>&);
template void shift(std::vector<Offset2D>&, Offset2D const&);
template void shift(std::vector<Offset3D>&, Offset3D const&);
template void commonElementsDeletion(std::vector<Offset2D>&, std::vector<Offset2D>&);
template void commonElementsDeletion(std::vector<Offset3D>&, std::vector<Offset3D>&);

void buildMaskedOffset2DTrans(std::vector<Offset2D>& collection, long dx, long dy)
{
    keepTranslated(collection, {dx, dy});
}

void buildMaskedOffset3DTrans(std::vector<Offset3D>& collection, long dx, long dy, long dz)
{
    keepTranslated(collection, {dx, dy, dz});
}

double toConventionAngles(double angle)
{
    angle = std::fmod(angle, 360.0);
    if (angle >= 180)
        angle -= 360;
    if (angle < -180)
        angle += 360;
    return angle;
}

void toConventionAngles(double& phi, double& theta)
{
    theta = toConventionAngles(theta);
    phi = std::fmod(phi, 360.0);
    if (phi < 0)
        phi += 360;
    if (phi >= 180) {
        theta += theta >= 0 ? -180 : 180;
        phi = 360 - phi;
    }
}

std::vector<Offset2D> generateSquareOffset2DCollection(unsigned long radius)
{
    return offsetsOfSquare(radius, everything());
}

std::vector<Offset3D> generateCubeOffset3DCollection(unsigned long radius)
{
    return offsetsOfCube(radius, everything());
}

std::vector<Offset2D> generateDiskOffset2DCollection(unsigned long radius)
{
    return offsetsOfSquare(radius, within(radius));
}

std::vector<Offset3D> generateSphereOffset3DCollection(unsigned long radius)
{
    return offsetsOfCube(radius, within(radius));
}

std::vector<Offset2D> generateLineOffset2DCollection(double angle, unsigned long count)
{
    double const c = std::cos(toRadians(angle));
    double const s = std::sin(toRadians(angle));
    std::vector<Offset2D> line;
    for (unsigned long step = 0; step < count; ++step) {
        double const i = static_cast<double>(step);
        line.push_back({roundedDown(c * i + 0.5), roundedDown(s * i + 0.5)});
    }
    return line;
}

DigitalLine2D::DigitalLine2D(double angle, bool convention)
{
    angle = toConventionAngles(angle);
    m_isReversed = convention && angle < 0;
    if (m_isReversed)
        angle += 180;
    m_cos = std::cos(toRadians(angle));
    m_sin = std::sin(toRadians(angle));
}

Offset2D DigitalLine2D::operator()(unsigned long step) const
{
    long const whole = static_cast<long>(step);
    double const i = static_cast<double>(step);
    Offset2D const offset = std::abs(m_cos) > std::abs(m_sin)
                                ? Offset2D{whole * stepsTowards(m_cos), roundedDown(i * m_sin / std::abs(m_cos) + 0.5)}
                                : Offset2D{roundedDown(i * m_cos / std::abs(m_sin) + 0.5), whole * stepsTowards(m_sin)};
    return m_isReversed ? negated(offset) : offset;
}

DigitalLine3D::DigitalLine3D(double phi, double theta, bool convention)
{
    toConventionAngles(phi, theta);
    m_isReversed = convention && theta < 0;
    if (m_isReversed) {
        theta += 180;
        phi = 180 - phi;
    }
    m_x = std::sin(toRadians(phi)) * std::cos(toRadians(theta));
    m_y = std::sin(toRadians(phi)) * std::sin(toRadians(theta));
    m_z = std::cos(toRadians(phi));
}

Offset3D DigitalLine3D::operator()(unsigned long step) const
{
    long const whole = static_cast<long>(step);
    double const i = static_cast<double>(step);
    double const lengthX = std::abs(m_x);
    double const lengthY = std::abs(m_y);
    double const lengthZ = std::abs(m_z);
    Offset3D offset;
    if (lengthX > lengthY && lengthX > lengthZ)
        offset = {whole * stepsTowards(m_x), roundedDown(m_y * i / lengthX + 0.5),
                  roundedDown(m_z * i / lengthX + 0.5)};
    else if (lengthY > lengthZ)
        offset = {roundedDown(m_x * i / lengthY + 0.5), whole * stepsTowards(m_y),
                  roundedDown(m_z * i / lengthY + 0.5)};
    else
        offset = {roundedDown(m_x * i / lengthZ + 0.5), roundedDown(m_y * i / lengthZ + 0.5),
                  whole * stepsTowards(m_z)};
    return m_isReversed ? negated(offset) : offset;
}

std::vector<Offset2D> generateLineOffset2DCollectionWithConstNumOfPixels(double angle, unsigned long count,
                                                                         bool convention)
{
    DigitalLine2D const line(angle, convention);
    std::vector<Offset2D> collection;
    for (unsigned long step = 0; step < count; ++step)
        collection.push_back(line(step));
    return collection;
}

std::vector<Offset3D> generateLineOffset3DCollectionWithConstNumOfPixels(double phi, double theta, unsigned long count,
                                                                         bool convention)
{
    DigitalLine3D const line(phi, theta, convention);
    std::vector<Offset3D> collection;
    for (unsigned long step = 0; step < count; ++step)
        collection.push_back(line(step));
    return collection;
}

PlaneInSpace::PlaneInSpace(double phi, double theta)
    : m_cosPhi(std::cos(toRadians(phi)))
    , m_sinPhi(std::sin(toRadians(phi)))
    , m_cosTheta(std::cos(toRadians(theta)))
    , m_sinTheta(std::sin(toRadians(theta)))
{}

Offset3D PlaneInSpace::operator()(Offset2D const& point) const
{
    double const i = static_cast<double>(point.x);
    double const j = static_cast<double>(point.y);
    return {roundedDown(m_cosTheta * m_cosPhi * i + 0.5 - m_sinTheta * j),
            roundedDown(m_sinTheta * m_cosPhi * i + 0.5 + m_cosTheta * j), roundedDown(0.5 - m_sinPhi * i)};
}

std::vector<Offset3D> generateDiskOffset3DCollection(double phi, double theta, unsigned long radius)
{
    PlaneInSpace const plane(phi, theta);
    std::vector<Offset3D> disk;
    for (Offset2D const& point : generateDiskOffset2DCollection(radius))
        disk.push_back(plane(point));
    return disk;
}

void buildMatrixCircle(unsigned long radius, std::vector<Offset2D>& collection)
{
    collection.clear();
    long const limit = limitOfMatrix(radius);
    long const reach = static_cast<long>(radius);
    for (long j = 0; j <= reach; ++j) {
        for (long i = 0; i <= reach; ++i) {
            if (limit <= i * i + j * j)
                continue;
            collection.push_back({i, j});
            if (i != 0)
                collection.push_back({-i, j});
            if (j != 0)
                collection.push_back({i, -j});
            if (i != 0 && j != 0)
                collection.push_back({-i, -j});
        }
    }
}

void buildMatrixSphere(unsigned long radius, std::vector<Offset3D>& collection)
{
    collection.clear();
    long const limit = limitOfMatrix(radius);
    long const reach = static_cast<long>(radius);
    for (long z = -reach; z <= reach; ++z)
        for (long y = -reach; y <= reach; ++y)
            for (long x = -reach; x <= reach; ++x)
                if (limit > x * x + y * y + z * z)
                    collection.push_back({x, y, z});
}

} // namespace qel::kernel
