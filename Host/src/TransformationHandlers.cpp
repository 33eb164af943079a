#include "TransformationHandlers.h"

#include "TextForms.h"

#include <qel/Property.h>
#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/RigidTransformation3D.h>
#include <qel/geometry/Transformation2DHandler.h>
#include <qel/geometry/Transformation3DHandler.h>
#include <qel/geometry/Translation2D.h>
#include <qel/geometry/Translation3D.h>

namespace host {

namespace {

namespace geometry = qel::geometry;

/// By parameter index. False where the transformation is of another class.
template <class T> bool describe(geometry::Transformation2D const& transformation, char const* name, Json& json)
{
    auto const* const known = dynamic_cast<T const*>(&transformation);
    if (!known)
        return false;
    Json parameters = Json::array();
    for (unsigned int i = 0; i < T::getNumOfParameter(); ++i)
        parameters.push_back(jsonOf(known->getParam(i)));
    json = {{"class", name}, {"parameters", parameters}};
    return true;
}

/// The matrix row by row.
template <class T> bool describe(geometry::Transformation3D const& transformation, char const* name, Json& json)
{
    auto const* const known = dynamic_cast<T const*>(&transformation);
    if (!known)
        return false;
    qel::math::Matrix3<double> matrix(1, 0, 0, 0, 1, 0, 0, 0, 1);
    if constexpr (requires { known->getRotationMatrix(); })
        matrix = known->getRotationMatrix();
    Json elements = Json::array();
    for (int i = 0; i < 9; ++i)
        elements.push_back(jsonOf(matrix(i / 3, i % 3)));
    json = {{"class", name}, {"translation", jsonOf(known->getTranslation())}, {"matrix", elements}};
    return true;
}

#define HOST_DESCRIBE(Class) describe<geometry::Class>(transformation, #Class, json)

Json described(geometry::Transformation2D const& transformation)
{
    Json json;
    HOST_DESCRIBE(Translation2D) || HOST_DESCRIBE(RigidTransformation2D) || HOST_DESCRIBE(AffineTransformation2D) ||
        HOST_DESCRIBE(ProjectiveTransformation2D) || HOST_DESCRIBE(PolynomialOrder2Transformation2D) ||
        HOST_DESCRIBE(PolynomialOrder3Transformation2D);
    return json;
}

Json described(geometry::Transformation3D const& transformation)
{
    Json json;
    HOST_DESCRIBE(Translation3D) || HOST_DESCRIBE(RigidTransformation3D) || HOST_DESCRIBE(AffineTransformation3D);
    return json;
}

#undef HOST_DESCRIBE

/// The host owns the handler, which an output is always given; what it holds after the run is printed.
template <class Handler> class TransformationHandler : public PropertyHandler
{
public:
    TransformationHandler(qel::Property<Handler*>& property, std::string name, Direction direction, char const* kind)
        : PropertyHandler(std::move(name), direction)
        , m_property(property)
        , m_kind(kind)
    {}

    std::string kind() const override { return m_kind; }
    std::string text() const override
    {
        Handler const* const handler = m_property.get();
        return handler && handler->get() ? toText(described(*handler->get())) : "null";
    }

    void assign(std::string const& text) override
    {
        if (text != "null")
            refuse(text, "a transformation cannot be given");
    }

    void prepare() override
    {
        if (direction() == Direction::Output)
            m_property.set(&m_handler);
    }

    bool hasResult() const override { return direction() == Direction::Output; }
    Json json() const override { return m_handler.get() ? described(*m_handler.get()) : Json(); }

private:
    qel::Property<Handler*>& m_property;
    char const* m_kind;
    Handler m_handler;
};

template <class Handler>
std::unique_ptr<PropertyHandler> handlerFor(qel::BaseProperty& base, std::string const& name, Direction direction,
                                            char const* kind)
{
    auto* const property = dynamic_cast<qel::Property<Handler*>*>(&base);
    return property ? std::make_unique<TransformationHandler<Handler>>(*property, name, direction, kind) : nullptr;
}

} // namespace

std::unique_ptr<PropertyHandler> transformation(qel::BaseProperty& property, std::string const& name,
                                                Direction direction)
{
    if (auto handler = handlerFor<geometry::Transformation2DHandler>(property, name, direction, "Transformation2D"))
        return handler;
    return handlerFor<geometry::Transformation3DHandler>(property, name, direction, "Transformation3D");
}

} // namespace host
