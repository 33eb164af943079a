#pragma once

#include "PropertyHandler.h"

#include <qel/Property.h>

#include <memory>

namespace qel::classification {
class TextureClassificationModel;
}

namespace host {

/// A classification model: read from a file before the run, and stored after it where `save=` says so.
class ModelHandler : public PropertyHandler
{
public:
    ModelHandler(std::string name, Direction direction);
    ~ModelHandler() override;

    std::string kind() const override { return "classification model"; }
    std::string text() const override { return "null"; }
    void assign(std::string const& text) override;
    void expect(Outputs& outputs) const override;
    void prepare() override;
    void store(Outputs& outputs) override;
    std::string report() const override;

private:
    virtual void point(qel::classification::TextureClassificationModel* model) = 0;

    std::string m_path; // empty for none
    std::string m_save;
    std::unique_ptr<qel::classification::TextureClassificationModel> m_model;
};

/// For `TextureClassificationModel*` and `TextureClassificationModel const*`.
template <class Pointer> class ModelHandlerFor : public ModelHandler
{
public:
    ModelHandlerFor(qel::Property<Pointer>& property, std::string name, Direction direction)
        : ModelHandler(std::move(name), direction)
        , m_property(property)
    {}

private:
    void point(qel::classification::TextureClassificationModel* model) override { m_property.set(model); }

    qel::Property<Pointer>& m_property;
};

/// A classification model that the run makes, and that is stored at a path.
class NewModelHandler : public PropertyHandler
{
public:
    using Model = qel::classification::TextureClassificationModel;

    NewModelHandler(qel::Property<Model**>& property, std::string name, Direction direction);
    ~NewModelHandler() override;

    std::string kind() const override { return "new classification model"; }
    std::string text() const override { return "null"; }
    void assign(std::string const& text) override;
    void expect(Outputs& outputs) const override;
    void prepare() override;
    void store(Outputs& outputs) override;
    std::string report() const override;

private:
    qel::Property<Model**>& m_property;
    std::string m_path; // empty for none
    Model* m_model = nullptr;
};

} // namespace host
