#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/safe_cast.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Morphology/private/Classes.h"
#include "Morphology/private/runElement.h"

#include <qel/Ref.h>
#include <qel/devices/Cpu.h>

#include <cmath>

namespace qel::morphology {

/// An erosion or a dilation on one voxel type.
template <class C, bool WithPackets> struct ElementDispatcher
{
    template <class T> static void run(C* algorithm)
    {
        runElement<T>(*algorithm, TraitsOf<C>::operation == Operator::Erosion, elementOf(*algorithm), algorithm->input,
                      algorithm->output, WithPackets);
    }
};

/// Runs a dispatcher on the voxel type of the input.
template <class C, class Dispatcher> class ScalarOneTypeRunner : public ScalarRunner<C>
{
    void runOn(C& algorithm) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, Dispatcher, C*>()(algorithm.input.get()->getVoxelType(), &algorithm);
    }
};

/// The same with packets, where the processor and the type have an extremum of them.
template <class C, class Dispatcher> class SSE41OneTypeMinMaxRunner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override
    {
        C* const concrete = helper::safe_cast<C*>(algorithm);
        tmpl_dispatch::Visitor1Args<PacketVoxelTypes, Dispatcher, C*>()(concrete->input.get()->getVoxelType(),
                                                                        concrete);
    }
    bool isRunnable(BaseAlgorithm* algorithm) const override
    {
        C const* const concrete = helper::safe_cast<C*>(algorithm);
        VoxelTypes const type = concrete->input.get()->getVoxelType();
        devices::Cpu const& cpu = devices::Cpu::getDevice();
        return concrete->output.get()->getVoxelType() == type && cpu.hasSSE() && hasPacketForm(type) &&
               cpu.getSSELevel() > 64;
    }
    OptimLevelType getOptimType() const override { return VEC_SSE; }
};

/// The running side of an opening or a closing: two children, the second one in place.
template <class C> class ChainScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    explicit ChainScalarPrivate(C& algorithm)
        : AbstractPrivateImplementation(&algorithm)
        , m_algorithm(algorithm)
    {}

    void run()
    {
        constexpr bool isOpening = TraitsOf<C>::operation == Operator::Opening;
        Publication const publication(*this);
        setNumOfSteps(2);
        runChild<isOpening ? Operator::Erosion : Operator::Dilation>(m_algorithm.input, false);
        if (isCancelled())
            return;
        nextStep();
        runChild<isOpening ? Operator::Dilation : Operator::Erosion>(m_algorithm.output.get(), true);
        if (!isCancelled())
            nextStep();
    }

private:
    template <Operator O> void runChild(ImageModel const* input, bool isSecond)
    {
        constexpr Form form = TraitsOf<C>::form;
        using Child = typename ClassOf<O, form>::type;
        Ref<Child> const child = Child::New(this);
        child->setMaximumExtraMemoryUsage(m_algorithm.getMaximumExtraMemoryUsage());
        child->input = input;
        child->output = m_algorithm.output.get();
        forEachParameter([](auto const&, auto& target, auto const& source) { target = source.get(); }, *child,
                         m_algorithm);
        // A line begins at its voxel and goes one way. Without its mirror image the result would be shifted.
        if constexpr (form == Form::OfLine2D)
            if (isSecond)
                child->orientationAngle = std::fmod(m_algorithm.orientationAngle.get() + 180, 360);
        if constexpr (form == Form::OfLine3D)
            if (isSecond) {
                child->thetaAngle = std::fmod(m_algorithm.thetaAngle.get() + 180, 360);
                child->phiAngle = 180 - m_algorithm.phiAngle.get();
            }
        child->run();
    }

    C& m_algorithm;
};

template <class C> class ChainScalarRunner : public ScalarRunner<C>
{
    void runOn(C& algorithm) const override { ChainScalarPrivate<C>(algorithm).run(); }
};

} // namespace qel::morphology

/// All of a form: classes, registration, runners. Used once, in the unit of the form.
#define QEL_DEFINE_MORPHOLOGY(Form_)                                                                                   \
    QEL_MORPHOLOGY_TRAITS(Form_)                                                                                       \
    QEL_DEFINE_MORPHOLOGY_CLASS(Erosion##Form_)                                                                        \
    QEL_DEFINE_MORPHOLOGY_CLASS(Dilation##Form_)                                                                       \
    QEL_DEFINE_MORPHOLOGY_CLASS(Opening##Form_)                                                                        \
    QEL_DEFINE_MORPHOLOGY_CLASS(Closing##Form_)                                                                        \
    QEL_DEFINE_ELEMENT_RUNNERS(Erosion##Form_)                                                                         \
    QEL_DEFINE_ELEMENT_RUNNERS(Dilation##Form_)                                                                        \
    QEL_DEFINE_CHAIN_RUNNER(Opening##Form_)                                                                            \
    QEL_DEFINE_CHAIN_RUNNER(Closing##Form_)
#define QEL_DEFINE_MORPHOLOGY_CLASS(Class)                                                                             \
    QEL_DEFINE_ALGORITHM(Class)                                                                                        \
    void Class::init()                                                                                                 \
    {                                                                                                                  \
        addInput(&input);                                                                                              \
        declareInput(input);                                                                                           \
        auto const add = [this](auto const& parameter, auto& property) {                                               \
            addInput(&property);                                                                                       \
            declareParameter(parameter, property);                                                                     \
        };                                                                                                             \
        forEachParameter(add, *this);                                                                                  \
        addOutput(&output);                                                                                            \
        declareOutput(output, input);                                                                                  \
    }                                                                                                                  \
    AlgoBorderInfluence Class::getAlgoBorderInfluence() const { return elementOf(*this).influence(); }
#define QEL_DEFINE_ELEMENT_RUNNERS(Class)                                                                              \
    using Class##ScalarDispatcher = ElementDispatcher<Class, false>;                                                   \
    using Class##SSE41Dispatcher = ElementDispatcher<Class, true>;                                                     \
    using Class##ScalarRunner = ScalarOneTypeRunner<Class, Class##ScalarDispatcher>;                                   \
    using Class##SSE41Runner = SSE41OneTypeMinMaxRunner<Class, Class##SSE41Dispatcher>;                                \
    QEL_REGISTER_RUNNER(Class, Class##ScalarRunner)                                                                    \
    QEL_REGISTER_RUNNER(Class, Class##SSE41Runner)
#define QEL_DEFINE_CHAIN_RUNNER(Class)                                                                                 \
    using Class##ScalarPrivate = ChainScalarPrivate<Class>;                                                            \
    using Class##ScalarRunner = ChainScalarRunner<Class>;                                                              \
    QEL_REGISTER_RUNNER(Class, Class##ScalarRunner)
