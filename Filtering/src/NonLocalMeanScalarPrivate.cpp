#include "Filtering/private/NonLocalMeanScalarPrivate.h"

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Filtering/private/NonLocalMeanScalarGeneric.h"

#include <qel/ImageModelAdapter.h>

#include <boost/make_shared.hpp>

namespace qel::filtering::smoothing {

void NonLocalMeanScalarPrivate::run()
{
    Publication const publication(*this);
    unsigned long const width = 2 * m_settings.windowSize + 1;
    setNumOfSteps((4 * m_settings.windowSize + 4) * width * (m_settings.isVolume ? width : 1) + 5);

    long const window = static_cast<long>(m_settings.windowSize);
    long const patch = static_cast<long>(m_settings.patchSize);
    double const side = static_cast<double>(2 * patch + 1);
    NonLocalMeanScalarGeneric::Parameters const parameters{m_settings.isVolume,
                                                           m_settings.isRound,
                                                           {window, window, m_settings.isVolume ? window : 0},
                                                           {patch, patch, m_settings.isVolume ? patch : 0},
                                                           m_settings.similarity * m_settings.similarity * side * side *
                                                               (m_settings.isVolume ? side : 1)};

    // All is computed in double: rows are cast on their way from and to images of another type.
    ImageModelAdapter const input(const_cast<ImageModel*>(m_settings.input), QEL_FLOAT64);
    ImageModelAdapter const output(m_settings.output, QEL_FLOAT64);
    NonLocalMeanScalarGeneric body(*this, parameters);
    ImageToImageFilter3d<double, double, SimdVec::arch_scalar_tag, NonLocalMeanScalarGeneric> filter(nullptr, &body);
    // What a block computes beyond its edge should be little, and what it keeps should stay in the cache.
    filter.setPartitionerInformation(m_settings.isVolume ? boost::make_shared<PartitionerInfoFixed>(128, 64, 32)
                                                         : boost::make_shared<PartitionerInfoFixed>(256, 64, 1));
    filter.setBlocksAreFixed(true);
    filter.setInput(input.getImage(), access::MirrorBorderCondition<double>::New());
    filter.setOutput(output.getImage(), access::FixedBorderCondition<double>::New(0.0));
    // Four steps for each offset: they pass as voxels are done with offsets.
    double const voxels = static_cast<double>(filter.getProcessingRegion().getNumOfVoxels());
    m_stepsPerVoxel = voxels > 0 ? 4 / voxels : 0;
    filter.run();
    // The centre's weight, the centre's voxel, and the quotient.
    for (int step = 0; step < 3 && !isCancelled(); ++step)
        nextStep();
}

void NonLocalMeanScalarPrivate::addWork(unsigned long voxels)
{
    unsigned long const before = m_voxels.fetch_add(voxels);
    auto const stepsAt = [&](unsigned long done) {
        // Half a voxel more: the last one of a step ends it, however the product is rounded.
        return static_cast<unsigned long>((static_cast<double>(done) + 0.5) * m_stepsPerVoxel);
    };
    for (unsigned long step = stepsAt(before); step < stepsAt(before + voxels); ++step)
        nextStep();
}

} // namespace qel::filtering::smoothing
