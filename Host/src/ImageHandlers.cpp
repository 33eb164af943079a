#include "ImageHandlers.h"

#include "ImageFile.h"
#include "Outputs.h"
#include "Suggestion.h"

#include <cstring>
#include <new>

namespace host {

ImageHandler::ImageHandler(std::string name, Direction direction, ImageArgument::Role role)
    : PropertyHandler(std::move(name), direction)
    , m_role(role)
{}

std::string ImageHandler::kind() const
{
    switch (m_role) {
    case ImageArgument::Role::Input:
        return "input image";
    case ImageArgument::Role::InOut:
        return "input and output image";
    default:
        return "output image";
    }
}

void ImageHandler::assign(std::string const& text)
{
    m_argument = ImageArgument::parse(text, m_role);
    m_assigned = !m_argument.null;
    for (std::string const& target : targets())
        checkWritable(target);
}

void ImageHandler::connect(PropertyHandlers const& handlers)
{
    if (m_argument.other.empty())
        return;
    // A chain of names ends at an image, or nowhere.
    ImageHandler* end = this;
    for (std::size_t steps = 0; !end->m_argument.other.empty(); ++steps) {
        std::string const& other = end->m_argument.other;
        auto* const next = dynamic_cast<ImageHandler*>(findHandler(handlers, other));
        if (!next)
            throw UsageError(unknownName("image property", other, imageNamesOf(handlers)) + " (" + name() + "=@" +
                             m_argument.other + ")");
        if (steps > handlers.size() || next == this)
            throw UsageError(name() + "=@" + m_argument.other + " leads back to itself");
        end = next;
    }
    if (!end->m_assigned)
        throw UsageError(name() + "=@" + m_argument.other + ": " + end->name() + " has no image");
    m_shared = end;
}

std::vector<std::string> ImageHandler::targets() const
{
    std::vector<std::string> paths;
    if (m_role == ImageArgument::Role::Output && !m_argument.path.empty())
        paths.push_back(m_argument.path);
    if (!m_argument.save.empty())
        paths.push_back(m_argument.save);
    return paths;
}

void ImageHandler::expect(Outputs& outputs) const
{
    for (std::string const& target : targets())
        outputs.expect(target);
}

void ImageHandler::prepare()
{
    if (m_assigned && !m_shared) {
        if (m_role == ImageArgument::Role::Output) {
            auto const& [columns, rows, plans, times, spectra] = m_argument.size;
            qel::VoxelTypes const type = m_argument.type.value_or(qel::QEL_UINT8);
            if (!m_image.reserve(type, columns, rows, plans, times, spectra))
                throw std::bad_alloc();
            std::size_t const bytes = columns * rows * plans * times * spectra * qel::helper::getSizeOf(type);
            if (bytes > 0)
                std::memset(m_image.getInternalBuffer(), 0, bytes);
            m_image.setInterpretation(m_argument.interpretation.value_or(qel::QEL_VALUE));
        } else {
            readImage(m_argument, m_image);
        }
    }
    point(image());
}

qel::ImageModel* ImageHandler::image()
{
    if (m_shared)
        return m_shared->image();
    return m_assigned ? &m_image : nullptr;
}

void ImageHandler::store(Outputs& outputs)
{
    for (std::string const& target : targets()) {
        writeImageFile(*image(), std::nullopt, target, outputs.temporaryFor(target));
        if (!m_report.empty())
            m_report += '\n';
        m_report += name() + " = " + target + " " + nameOf(image()->getVoxelType()) + " " + sizesOf(*image());
    }
}

} // namespace host
