#include "ModelHandlers.h"

#include "Outputs.h"
#include "TextForms.h"

#include <qel/classification/TextureClassificationModel.h>

namespace host {

namespace {

using Model = qel::classification::TextureClassificationModel;

void writeModel(Model const& model, std::string const& path, Outputs& outputs)
{
    model.write(toQelString(outputs.temporaryFor(path)), qel::BINARY, true);
}

} // namespace

ModelHandler::ModelHandler(std::string name, Direction direction)
    : PropertyHandler(std::move(name), direction)
{}

ModelHandler::~ModelHandler() = default;

void ModelHandler::assign(std::string const& text)
{
    std::string const key = ",save=";
    std::size_t const comma = text.rfind(key);
    m_path = text.substr(0, comma);
    if (comma != std::string::npos) {
        m_save = text.substr(comma + key.size());
        if (m_save.empty())
            refuse(text, "save= needs a path");
    }
    if (m_path == "null" && m_save.empty())
        m_path.clear();
    else if (m_path.empty())
        refuse(text, "it takes the path of a model's file");
}

void ModelHandler::expect(Outputs& outputs) const
{
    if (!m_save.empty())
        outputs.expect(m_save);
}

void ModelHandler::prepare()
{
    if (m_path.empty())
        return;
    m_model = std::make_unique<Model>();
    m_model->read(toQelString(m_path));
    point(m_model.get());
}

void ModelHandler::store(Outputs& outputs)
{
    if (!m_save.empty())
        writeModel(*m_model, m_save, outputs);
}

std::string ModelHandler::report() const { return m_save.empty() ? "" : name() + " = " + m_save; }

NewModelHandler::NewModelHandler(qel::Property<Model**>& property, std::string name, Direction direction)
    : PropertyHandler(std::move(name), direction)
    , m_property(property)
{}

NewModelHandler::~NewModelHandler() { delete m_model; }

void NewModelHandler::assign(std::string const& text)
{
    if (text.empty())
        refuse(text, "it takes the path where to store the model");
    m_path = text == "null" ? "" : text;
}

void NewModelHandler::expect(Outputs& outputs) const
{
    if (!m_path.empty())
        outputs.expect(m_path);
}

void NewModelHandler::prepare()
{
    if (!m_path.empty())
        m_property.set(&m_model);
}

void NewModelHandler::store(Outputs& outputs)
{
    if (m_model)
        writeModel(*m_model, m_path, outputs);
}

std::string NewModelHandler::report() const { return m_path.empty() ? "" : name() + " = " + m_path; }

} // namespace host
