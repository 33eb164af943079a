#include <qel/geometry/LineSet3D.h>

#include "Core/private/ObjectInfoPrivate.h"
#include "Core/private/Property.impl.h"
#include "Core/private/Serialization/MagicNumberObjectFile.h"
#include "Core/private/Serialization/ObjectFile.h"
#include "Core/private/Throw.h"
#include "Geometry/private/LineSet3DPrivate.h"

#include <locale>

namespace qel {

template class QEL_API Property<geometry::LineSet3D*>;
template class QEL_API Property<geometry::LineSet3D const*>;

namespace geometry {

QEL_REGISTER_OBJECT(LineSet3D)

static char const className[] = "LineSet3D";

LineSet3D::LineSet3D()
    : m_private(new LineSet3DPrivate)
{}

LineSet3D::LineSet3D(LineSet3D const& other)
    : Data(other)
    , m_private(new LineSet3DPrivate(*other.m_private))
{}

LineSet3D& LineSet3D::operator=(LineSet3D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

LineSet3D::~LineSet3D() noexcept { delete m_private; }

LineSet3D* LineSet3D::New() { return new LineSet3D; }
Object* LineSet3D::BaseNew() { return New(); }

container::Vector<math::Vector3<double>> const& LineSet3D::getCoords() const { return m_private->coords; }
void LineSet3D::setCoords(container::Vector<math::Vector3<double>> const& coords) { m_private->coords = coords; }
container::Vector<unsigned long> const& LineSet3D::getIndices() const { return m_private->indices; }
void LineSet3D::setIndices(container::Vector<unsigned long> const& indices) { m_private->indices = indices; }

void LineSet3D::write(String const& path, WriteMode const& mode, bool overwrite) const
{
    if (!overwrite && serialization::fileExists(path))
        QEL_THROW(SerializationException, "The file " << path << " already exists.");
    if (mode != BINARY)
        QEL_THROW(SerializationException, "Only binary format is supported");
    serialization::writeFile(path, [&](std::ostream& stream) {
        serialization::writeObjectHeader(stream, className);
        archive::BinaryOutputArchive archive(stream);
        LineSet3DPrivate::serialize(archive, std::as_const(*m_private));
    });
}

void LineSet3D::read(String const& path)
{
    if (!serialization::fileExists(path))
        QEL_THROW(SerializationException, "The file " << path << " does not exists.");
    std::ifstream stream = serialization::openForReading(path);
    LineSet3DPrivate lines;
    serialization::readingFrom(path, [&] {
        std::string const name = serialization::readObjectHeader(stream);
        if (name != className)
            QEL_THROW(SerializationException, "The <" << name << "> LineSet3D isn't supported.");
        archive::BinaryInputArchive archive(stream);
        LineSet3DPrivate::serialize(archive, lines);
    });
    for (unsigned long index : lines.indices)
        if (index != stop && index >= lines.coords.size())
            serialization::refuseCorrupted(path);
    *m_private = lines;
}

void LineSet3D::exportAsKesraMesh(String const& path) const
{
    serialization::writeFile(path, [&](std::ostream& stream) {
        stream.imbue(std::locale::classic());
        stream << "# Zolva 3D ASCII 2.0\n"
                  "\n"
                  "define Lines "
               << m_private->indices.size() << "\ndefine Vertices " << m_private->coords.size()
               << "\n"
                  "\n"
                  "Vertices { float[3] Coordinates } = @1\n"
                  "Lines { int LineIdx } = @2\n"
                  "\n"
                  "Parameters {\n"
                  "  ContentType \"ZvLineSet\"\n"
                  "}\n"
                  "\n"
                  "@1\n";
        for (math::Vector3<double> const& vertex : m_private->coords)
            stream << vertex[0] << ' ' << vertex[1] << ' ' << vertex[2] << '\n';
        stream << "\n@2\n";
        for (unsigned long index : m_private->indices) {
            if (index == stop)
                stream << "-1 ";
            else
                stream << index << ' ';
        }
        stream << '\n';
    });
}

bool LineSet3D::operator==(Data const& other) const
{
    auto const* const lines = dynamic_cast<LineSet3D const*>(&other);
    return lines && *this == *lines;
}

bool LineSet3D::operator==(LineSet3D const& other) const
{
    return m_private->coords == other.m_private->coords && m_private->indices == other.m_private->indices;
}

} // namespace geometry
} // namespace qel
