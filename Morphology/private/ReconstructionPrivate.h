#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Morphology/private/GeodesicTiles.h"

namespace qel {
class ImageModel;
}

namespace qel::morphology {

/// The running side of both binary reconstructions.
class ReconstructionPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    struct Settings
    {
        ImageModel const* input;
        ImageModel const* marker;
        ImageModel* output;
        Connectivity connectivity;
    };

    ReconstructionPrivate(BaseAlgorithm& itsOwner, Settings const& settings)
        : AbstractPrivateImplementation(&itsOwner)
        , m_settings(settings)
    {}

    void run();

private:
    Settings m_settings;
};

/// The running side of both grey reconstructions.
class GrayScaleReconstructionPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    struct Settings
    {
        ImageModel const* input;
        ImageModel const* marker;
        ImageModel* output;
        bool isErosion;
        Connectivity connectivity;
    };

    GrayScaleReconstructionPrivate(BaseAlgorithm& itsOwner, Settings const& settings)
        : AbstractPrivateImplementation(&itsOwner)
        , m_settings(settings)
    {}

    void run();
    /// The dispatcher's: with voxels of the marker's type.
    template <class M> void runAs();

private:
    template <class M, class Order> void propagate(ImageModel const* limit);

    Settings m_settings;
};

} // namespace qel::morphology
