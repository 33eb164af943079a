#pragma once

#include "ImageArgument.h"
#include "PropertyHandler.h"

#include <qel/Property.h>
#include <qel/memory/InMemoryImage.h>

namespace host {

/// An image: read from a file before the run, or given to the run empty, or shared with another property.
class ImageHandler : public PropertyHandler
{
public:
    ImageHandler(std::string name, Direction direction, ImageArgument::Role role);

    std::string kind() const override;
    std::string text() const override { return "null"; }
    void assign(std::string const& text) override;
    void connect(PropertyHandlers const& handlers) override;
    void expect(Outputs& outputs) const override;
    void prepare() override;
    void store(Outputs& outputs) override;
    std::string report() const override { return m_report; }
    qel::ImageModel* image() override;
    bool isImage() const override { return true; }

private:
    virtual void point(qel::ImageModel* image) = 0;
    /// Where the image is stored after the run.
    std::vector<std::string> targets() const;

    ImageArgument::Role m_role;
    ImageArgument m_argument;
    bool m_assigned = false;
    ImageHandler* m_shared = nullptr;
    qel::memory::InMemoryImage m_image;
    std::string m_report;
};

/// For `ImageModel const*` and `ImageModel*`.
template <class Pointer> class ImageHandlerFor : public ImageHandler
{
public:
    ImageHandlerFor(qel::Property<Pointer>& property, std::string name, Direction direction, ImageArgument::Role role)
        : ImageHandler(std::move(name), direction, role)
        , m_property(property)
    {}

private:
    void point(qel::ImageModel* image) override { m_property.set(image); }

    qel::Property<Pointer>& m_property;
};

} // namespace host
