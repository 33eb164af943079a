#pragma once

#include <qel/AlgoBorderInfluence.h>
#include <qel/AlgoInfo.h>
#include <qel/BaseAlgorithm.h>
#include <qel/Export.h>
#include <qel/ImageModel.h>
#include <qel/Property.h>

/// Opens the class of an algorithm: what all of them have in common.
///
/// - `New` makes one; hosts leave the argument out. Put the result into a Ref, or call destroy() on it.
/// - `NewBase` is the same for whoever knows the class by name alone.
/// - `getClassInfo` is the record under which the class is registered.
#define QEL_ALGORITHM(Class)                                                                                           \
public:                                                                                                                \
    static Class* New(::qel::algorithms::AbstractPrivateImplementation* parent = nullptr);                             \
    static ::qel::BaseAlgorithm* NewBase();                                                                            \
    static ::qel::AlgoInfo* getClassInfo();                                                                            \
    ::qel::AlgoInfo* getInfo() const override;                                                                         \
    ::qel::AlgoBorderInfluence getAlgoBorderInfluence() const override;                                                \
    ~Class() override;                                                                                                 \
                                                                                                                       \
protected:                                                                                                             \
    explicit Class(::qel::algorithms::AbstractPrivateImplementation* parent);                                          \
    void init();                                                                                                       \
                                                                                                                       \
private:
