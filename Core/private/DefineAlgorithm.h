#pragma once

#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Declare.h"
#include "Core/private/Runnable.h"

#include <boost/make_shared.hpp>

/// What QEL_ALGORITHM declares, and the entry in the registry. Used once, in the unit of the class.
#define QEL_DEFINE_ALGORITHM(Class)                                                                                    \
    Class::Class(::qel::algorithms::AbstractPrivateImplementation* parent)                                             \
        : ::qel::BaseAlgorithm(parent)                                                                                 \
    {}                                                                                                                 \
    Class::~Class() = default;                                                                                         \
    Class* Class::New(::qel::algorithms::AbstractPrivateImplementation* parent)                                        \
    {                                                                                                                  \
        Class* algorithm = new Class(parent);                                                                          \
        algorithm->init();                                                                                             \
        return algorithm;                                                                                              \
    }                                                                                                                  \
    ::qel::BaseAlgorithm* Class::NewBase() { return New(nullptr); }                                                    \
    ::qel::AlgoInfo* Class::getClassInfo()                                                                             \
    {                                                                                                                  \
        static ::qel::AlgoInfo info(#Class, "Quelide", &Class::NewBase);                                               \
        return &info;                                                                                                  \
    }                                                                                                                  \
    ::qel::AlgoInfo* Class::getInfo() const { return getClassInfo(); }                                                 \
    [[maybe_unused]] static bool const algorithmIsRegistered##Class =                                                  \
        (::qel::AlgoInfoPrivate::allAlgorithms().push_back(Class::getClassInfo()), true);

/// Puts a runner on the list of its algorithm. Used once, in the unit of the runner.
#define QEL_REGISTER_RUNNER(Class, Runner)                                                                             \
    [[maybe_unused]] static bool const runnerIsRegistered##Runner =                                                    \
        (::qel::AlgoInfoPrivate::getPrivate(Class::getClassInfo())                                                     \
             ->getAllRunner()                                                                                          \
             .push_back(::boost::make_shared<Runner>()),                                                               \
         true);
