#include <qel/classification/TextureClassificationModel.h>

#include "Classification/private/TextureClassificationModelPrivate.h"
#include "Core/private/Property.impl.h"
#include "Core/private/Serialization/ObjectFile.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/filesystem/path.hpp>

namespace qel {

namespace classification {

namespace {

constexpr char CLASS_NAME[] = "TextureClassificationModel";
constexpr unsigned short VERSION = 2;

/// The modes of writing that make an empty file, and the extensions of files of which nothing is read: other forms than
/// the binary one have their places, but no content.
constexpr int FIRST_EMPTY_MODE = 1;
constexpr int LAST_EMPTY_MODE = 2;

bool hasTextExtension(String const& path)
{
    std::string const extension =
        boost::algorithm::to_lower_copy(boost::filesystem::path(path.c_str()).extension().string());
    return extension == ".xml" || extension == ".txt";
}

} // namespace

TextureClassificationModel::TextureClassificationModel()
    : m_private(new TextureClassificationModelPrivate)
{}

TextureClassificationModel::~TextureClassificationModel() { delete m_private; }

TextureClassificationModelPrivate* TextureClassificationModel::getPrivate() const { return m_private; }

String TextureClassificationModel::getInfo() const { return m_private->getInfo(); }

void TextureClassificationModel::write(String const& path, WriteMode const& mode, bool overwrite) const
{
    if (!m_private->classifier)
        QEL_THROW(SerializationException, "No classifier defined.");
    if (!overwrite && serialization::fileExists(path))
        QEL_THROW(SerializationException, "The <" << path << "> file already exists.");
    int const number = mode;
    serialization::writeFile(path, [&](std::ostream& stream) {
        if (number >= FIRST_EMPTY_MODE && number <= LAST_EMPTY_MODE)
            return;
        if (number != BINARY)
            QEL_THROW(SerializationException, "The write mode (" << number << ") is unknown.");
        serialization::writeObjectHeader(stream, CLASS_NAME);
        archive::BinaryOutputArchive archive(stream);
        serialization::serialize(archive, VERSION);
        m_private->serialize(archive, VERSION);
    });
}

void TextureClassificationModel::read(String const& path)
{
    if (!m_private->classifier)
        QEL_THROW(SerializationException, "No classifier defined.");
    if (!serialization::fileExists(path))
        QEL_THROW(SerializationException, "The <" << path << "> file does not exists.");
    std::ifstream stream = serialization::openForReading(path);
    if (hasTextExtension(path))
        return;
    serialization::readingFrom(path, [&] {
        std::string const name = serialization::readObjectHeader(stream);
        if (name != CLASS_NAME)
            QEL_THROW(SerializationException, "The <" << name << "> classifier isn't supported.");
        archive::BinaryInputArchive archive(stream);
        unsigned short version = 0;
        serialization::serialize(archive, version);
        if (version < 1 || version > VERSION)
            throw archive::Corrupted();
        m_private->serialize(archive, version);
    });
}

} // namespace classification

template class QEL_API Property<classification::TextureClassificationModel*>;
template class QEL_API Property<classification::TextureClassificationModel const*>;
template class QEL_API Property<classification::TextureClassificationModel**>;

} // namespace qel
