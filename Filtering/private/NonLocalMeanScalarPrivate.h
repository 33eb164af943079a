#pragma once

#include "Core/private/AbstractPrivateImplementation.h"

#include <atomic>

namespace qel {
class ImageModel;
}

namespace qel::filtering::smoothing {

/// The running side of both non-local means.
class NonLocalMeanScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    struct Settings
    {
        ImageModel const* input;
        ImageModel* output;
        unsigned long patchSize;
        unsigned long windowSize;
        double similarity;
        bool isRound;
        bool isVolume;
    };

    NonLocalMeanScalarPrivate(BaseAlgorithm& itsOwner, Settings const& settings)
        : AbstractPrivateImplementation(&itsOwner)
        , m_settings(settings)
    {}

    void run();

    /// Takes note that one offset has been added to so many voxels. Callable from any thread.
    void addWork(unsigned long voxels);

private:
    Settings m_settings;
    double m_stepsPerVoxel = 0;
    std::atomic<unsigned long> m_voxels{0}; // over all offsets
};

} // namespace qel::filtering::smoothing
