#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/FilterTags.h"
#include "NonlinearFiltering/private/MedianFilter/MedianComputerInfo.h"

namespace qel {
class BaseTbbAlgorithm;
class ImageModel;
} // namespace qel

namespace qel::nonlinear_filtering {

/// The properties of one run.
struct MedianSettings
{
    ImageModel const* input;
    ImageModel* output;
    unsigned int radius;
    bool isRound;
    int searchMode;
};

/// The running side of both median filters: the extrema of the image, where a histogram is asked for or may be used,
/// and then the median. A constant image is its own median.
class MedianFilterScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    void run();

    MedianSettings const& settings() const { return m_settings; }
    details::MedianComputerInfo const& info() const { return m_info; }
    /// Whether the extrema are known, and 8 bits hold what lies between them.
    bool hasNarrowRange() const { return m_isComposite && details::rangeOf(m_info.minimum, m_info.maximum) <= 255; }
    /// The frame's owner: the algorithm where the median is all that there is to do, and none where it is one step.
    BaseAlgorithm* frameOwner() const { return m_isComposite ? nullptr : owner; }
    /// Makes a frame the current step.
    void follow(BaseTbbAlgorithm& frame);

protected:
    MedianFilterScalarPrivate(BaseAlgorithm& itsOwner, MedianSettings const& settings)
        : AbstractPrivateImplementation(&itsOwner)
        , m_settings(settings)
    {}

    virtual bool shouldUseHistogram(unsigned int radius, unsigned int range, bool isFirstShape) const = 0;
    virtual void runOnVoxels() = 0;
    /// How many voxels are under the window at most, and how many rows a block needs at least, as long as they can be.
    virtual double voxelsOfWindow() const = 0;

private:
    /// False where nothing is left to do.
    bool prepareHistogram();
    void checkMemory() const;
    void checkHistogram() const;

    MedianSettings m_settings;
    details::MedianComputerInfo m_info;
    bool m_isComposite = false;
};

class MedianFilter2DScalarPrivate final : public MedianFilterScalarPrivate
{
public:
    MedianFilter2DScalarPrivate(BaseAlgorithm& itsOwner, MedianSettings const& settings)
        : MedianFilterScalarPrivate(itsOwner, settings)
    {}

private:
    bool shouldUseHistogram(unsigned int radius, unsigned int range, bool isFirstShape) const override;
    void runOnVoxels() override;
    double voxelsOfWindow() const override;
};

class MedianFilter3DScalarPrivate final : public MedianFilterScalarPrivate
{
public:
    MedianFilter3DScalarPrivate(BaseAlgorithm& itsOwner, MedianSettings const& settings)
        : MedianFilterScalarPrivate(itsOwner, settings)
    {}

private:
    bool shouldUseHistogram(unsigned int radius, unsigned int range, bool isFirstShape) const override;
    void runOnVoxels() override;
    double voxelsOfWindow() const override;
};

} // namespace qel::nonlinear_filtering
