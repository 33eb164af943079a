#pragma once

#include "Core/private/AbstractPrivateImplementation.h"

#include <qel/morphology/EuclideanDistanceMap.h>

#include <functional>

namespace qel::morphology {

struct Lattice;

/// The running side of the distance map.
class EuclideanDistanceMapScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    explicit EuclideanDistanceMapScalarPrivate(EuclideanDistanceMap& map)
        : AbstractPrivateImplementation(&map)
        , m_map(map)
    {}

    void run();

    /// The dispatcher's: the boundary, and the distances from there.
    template <class T> void runOn(Lattice const& lattice, float* map);

private:
    EuclideanDistanceMap& m_map;
};

} // namespace qel::morphology
