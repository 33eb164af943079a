#pragma once

#include <qel/Data.h>
#include <qel/Export.h>
#include <qel/Property.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector3.h>

namespace qel::geometry {

class LineSet3DPrivate;

/// Polylines in space: vertices, and runs of vertex indices, which are separated by `stop`.
///
/// Two lines may share a vertex. Nothing checks that indices have a vertex, except where a file is read.
///
/// An object file holds behind its header: the number of vertices (64 bits), three doubles for each, the number of
/// indices (64 bits), and 64 bits for each, in the machine's byte order.
class QEL_API LineSet3D : public Data
{
public:
    /// Stands between the runs of indices, and behind each run that an algorithm writes.
    static constexpr unsigned long stop = static_cast<unsigned long>(-1);

    /// An empty line set.
    LineSet3D();
    LineSet3D(LineSet3D const& other);
    LineSet3D& operator=(LineSet3D const& other);
    ~LineSet3D() noexcept override;

    /// An empty line set on the heap. Put it into a Ref, or call destroy() on it.
    static LineSet3D* New();
    /// The same for whoever knows the class by name alone.
    static Object* BaseNew();

    /// The vertices.
    container::Vector<math::Vector3<double>> const& getCoords() const;
    void setCoords(container::Vector<math::Vector3<double>> const& coords);
    /// The lines, as runs of indices into the vertices.
    container::Vector<unsigned long> const& getIndices() const;
    void setIndices(container::Vector<unsigned long> const& indices);

    /// Throws SerializationException "The file ", the path, " already exists." where it does and `overwrite` is false,
    /// "Only binary format is supported" where `mode` is another than BINARY, "Cannot open the <", the path, "> file."
    /// and "Cannot write the <", the path, "> file."
    void write(String const& path, WriteMode const& mode, bool overwrite) const override;
    /// Takes the vertices and lines of a file. What this object held stays where the file cannot be read.
    ///
    /// Throws SerializationException "The file ", the path, " does not exists.", "Cannot open the <", the path, ">
    /// file.", "Invalid magic number: <", its first bytes, ">.", "The <", the name of a class, "> LineSet3D isn't
    /// supported.", and "The <", the path, "> file is corrupted." where it is too short for what it promises, or an
    /// index has no vertex.
    void read(String const& path) override;

    /// Writes a text file that mesh viewers read, over any file that is there. A vertex has six significant digits, the
    /// separator of lines is written as -1. Throws SerializationException "Cannot open the <", the path, "> file."
    void exportAsKesraMesh(String const& path) const;

    /// True where `other` is a line set with the same vertices and indices.
    bool operator==(Data const& other) const override;
    bool operator==(LineSet3D const& other) const;
    bool operator!=(LineSet3D const& other) const { return !(*this == other); }

private:
    LineSet3DPrivate* m_private;
};

} // namespace qel::geometry

namespace qel {

/// What a host gives an algorithm to put its lines into.
using PropertyLineSet3D = Property<geometry::LineSet3D*>;

} // namespace qel
