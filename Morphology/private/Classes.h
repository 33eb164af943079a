#pragma once

#include "Core/private/Declare.h"
#include "Morphology/private/StructuringElement.h"

#include <qel/AlgoPrecisionType.h>
#include <qel/ImageModel.h>
#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>
#include <qel/Property.h>
#include <qel/PropertyEnumeration.h>

// What the classes of a form have in common. A class differs from the others of its form by its operator alone.

class EnumInfo;

namespace qel::morphology {

/// Operator and form of a class, and the class of an operator and a form.
template <class C> struct TraitsOf;
template <Operator O, Form F> struct ClassOf;

/// A property between `input` and `output`.
template <class Value> struct Parameter
{
    char const* name;
    Value defaultValue;
    bool mustBePositive = false;
    EnumInfo* values = nullptr; // of an enumeration
};

/// Calls `visit(parameter, property of the first algorithm, property of the second...)` for each property between
/// `input` and `output`, in order. The algorithms are of one form.
template <class Visit, class First, class... Others>
void forEachParameter(Visit const& visit, First& first, Others&... others)
{
    constexpr Form form = TraitsOf<std::remove_const_t<First>>::form;
    if constexpr (form == Form::Of2D || form == Form::Of3D)
        visit(Parameter<unsigned int>{"nbIter", 3, true}, first.nbIter, others.nbIter...);
    if constexpr (form == Form::Of2D)
        visit(Parameter<int>{"neighborhood2D", QEL_NEIGHBORHOOD2D_8, false, &helper::neighborhood2DTypeInfo()},
              first.neighborhood2D, others.neighborhood2D...);
    if constexpr (form == Form::Of3D)
        visit(Parameter<int>{"neighborhood3D", QEL_NEIGHBORHOOD3D_26, false, &helper::neighborhood3DTypeInfo()},
              first.neighborhood3D, others.neighborhood3D...);
    if constexpr (form == Form::OfLine2D)
        visit(Parameter<double>{"orientationAngle", 10}, first.orientationAngle, others.orientationAngle...);
    if constexpr (form == Form::OfLine3D || form == Form::OfDisk3D) {
        visit(Parameter<double>{"thetaAngle", 0}, first.thetaAngle, others.thetaAngle...);
        visit(Parameter<double>{"phiAngle", 0}, first.phiAngle, others.phiAngle...);
    }
    if constexpr (form != Form::Of2D && form != Form::Of3D)
        visit(Parameter<unsigned int>{"elementSize", 3}, first.elementSize, others.elementSize...);
    if constexpr (form == Form::OfDisk2D || form == Form::OfBall3D)
        visit(Parameter<int>{"precision", QEL_ALGO_FAST, false, &helper::algoPrecisionTypeInfo()}, first.precision,
              others.precision...);
}

/// What the properties of an algorithm describe.
template <class C> StructuringElement elementOf(C const& algorithm)
{
    constexpr Form form = TraitsOf<C>::form;
    StructuringElement element;
    element.form = form;
    if constexpr (form == Form::Of2D || form == Form::Of3D)
        element.size = algorithm.nbIter;
    else
        element.size = algorithm.elementSize;
    if constexpr (form == Form::Of2D)
        element.choice = algorithm.neighborhood2D;
    if constexpr (form == Form::Of3D)
        element.choice = algorithm.neighborhood3D;
    if constexpr (form == Form::OfDisk2D || form == Form::OfBall3D)
        element.choice = algorithm.precision;
    if constexpr (form == Form::OfLine2D)
        element.angle = algorithm.orientationAngle;
    if constexpr (form == Form::OfLine3D || form == Form::OfDisk3D) {
        element.theta = algorithm.thetaAngle;
        element.phi = algorithm.phiAngle;
    }
    return element;
}

/// The declarations of init(), which are the same for all classes.
void declareInput(Property<ImageModel const*>& input);
void declareOutput(Property<ImageModel*>& output, Property<ImageModel const*>& input);
void declareParameter(Parameter<unsigned int> const& parameter, Property<unsigned int>& property);
void declareParameter(Parameter<double> const& parameter, Property<double>& property);
void declareParameter(Parameter<int> const& parameter, PropertyEnumeration& property);

} // namespace qel::morphology

/// The traits of the four classes of a form.
#define QEL_MORPHOLOGY_TRAITS(Form_)                                                                                   \
    QEL_MORPHOLOGY_TRAITS_OF(Erosion, Form_)                                                                           \
    QEL_MORPHOLOGY_TRAITS_OF(Dilation, Form_)                                                                          \
    QEL_MORPHOLOGY_TRAITS_OF(Opening, Form_)                                                                           \
    QEL_MORPHOLOGY_TRAITS_OF(Closing, Form_)
#define QEL_MORPHOLOGY_TRAITS_OF(Operator_, Form_)                                                                     \
    template <> struct TraitsOf<Operator_##Form_>                                                                      \
    {                                                                                                                  \
        static constexpr Operator operation = Operator::Operator_;                                                     \
        static constexpr Form form = Form::Of##Form_;                                                                  \
    };                                                                                                                 \
    template <> struct ClassOf<Operator::Operator_, Form::Of##Form_>                                                   \
    {                                                                                                                  \
        using type = Operator_##Form_;                                                                                 \
    };
