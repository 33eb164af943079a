#pragma once

#include "Core/private/AbstractPrivateImplementation.h"

#include <qel/ImageModel.h>
#include <qel/filtering/smoothing/FilteringType.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter2D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>

#include <vector>

namespace qel::filtering::smoothing {

/// The running side of both filters: `Pass`, a filter by a kernel, runs once for each axis.
template <class Pass> class GaussianFilterScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    struct Axis
    {
        double sigma;
        double factor;
    };

    struct Settings
    {
        ImageModel const* input;
        int mode;
        std::vector<Axis> axes; // columns, rows, plans
        int outputStrategy;
        bool accurate;
        ImageModel* output;
    };

    GaussianFilterScalarPrivate(BaseAlgorithm& itsOwner, Settings const& settings)
        : AbstractPrivateImplementation(&itsOwner)
        , m_settings(settings)
    {}

    void run();

private:
    /// False if the run was cancelled.
    bool runPass(std::size_t axis, unsigned long size, ImageModel const* from, ImageModel* to, VoxelTypes type);

    Settings m_settings;
};

using GaussianFilter2DScalarPrivate = GaussianFilterScalarPrivate<linear_filtering::FiniteImpulseResponseFilter2D>;
using GaussianFilter3DScalarPrivate = GaussianFilterScalarPrivate<linear_filtering::FiniteImpulseResponseFilter3D>;

extern template class GaussianFilterScalarPrivate<linear_filtering::FiniteImpulseResponseFilter2D>;
extern template class GaussianFilterScalarPrivate<linear_filtering::FiniteImpulseResponseFilter3D>;

} // namespace qel::filtering::smoothing
