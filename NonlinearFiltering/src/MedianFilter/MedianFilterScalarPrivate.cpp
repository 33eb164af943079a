#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

#include "Core/private/BaseTbbAlgorithm.h"
#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/Throw.h"
#include "Core/private/TypeDispatch.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarDispatcher.h"
#include "NonlinearFiltering/private/MedianFilter/shouldUseHistogram.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>
#include <qel/Ref.h>
#include <qel/analysis/IntensityExtrema.h>
#include <qel/devices/Cpu.h>
#include <qel/nonlinear_filtering/MedianComputationType.h>
#include <qel/point_operations/CopyImage.h>

#include <tbb/task_arena.h>

#include <algorithm>

namespace qel::nonlinear_filtering {

namespace {

/// Every block under way holds a window and its rows, or a histogram, of its own.
double numOfBlocksAtOnce() { return std::max(tbb::this_task_arena::max_concurrency(), 1); }

/// Memory that is not known does not stop anything.
bool fitsMemory(double bytes)
{
    unsigned long const available = devices::Cpu::getDevice().getAvailableMemory();
    return available == 0 || bytes < static_cast<double>(available);
}

} // namespace

void MedianFilterScalarPrivate::run()
{
    checkMemory();
    bool const isInteger = tmpl_dispatch::isInList<IntegerVoxelTypes>(m_settings.input->getVoxelType());
    m_isComposite = m_settings.searchMode == HISTOGRAM || (m_settings.searchMode == AUTOMATIC && isInteger);
    if (!m_isComposite)
        return runOnVoxels();

    Publication const publication(*this);
    setNumOfSteps(2);
    if (prepareHistogram())
        runOnVoxels();
    if (!isCancelled())
        nextStep();
}

bool MedianFilterScalarPrivate::prepareHistogram()
{
    {
        Ref<analysis::IntensityExtrema> const extrema(analysis::IntensityExtrema::New(this));
        extrema->input = m_settings.input;
        extrema->run();
        if (isCancelled())
            return false;
        m_info.minimum = extrema->outputMinimum;
        m_info.maximum = extrema->outputMaximum;
    }
    nextStep();
    if (m_info.minimum == m_info.maximum) {
        if (helper::underlyingImage(m_settings.input) != helper::underlyingImage(m_settings.output)) {
            Ref<point_operations::CopyImage> const copy(point_operations::CopyImage::New(this));
            copy->input = m_settings.input;
            copy->output = m_settings.output;
            copy->run();
        }
        return false;
    }

    bool const isEmpty = m_settings.input->getNumOf(COLUMNS) == 0 || m_settings.input->getNumOf(ROWS) == 0 ||
                         m_settings.input->getNumOf(PLANS) == 0 || m_settings.input->getNumOf(TIME_SERIES) == 0 ||
                         m_settings.input->getNumOf(SPECTRAL_SERIES) == 0;
    if (isEmpty)
        return false; // the extrema are the wrong way round
    if (m_settings.searchMode == HISTOGRAM) {
        checkHistogram();
        m_info.useHistogram = true;
    } else {
        // 64 bits, before anything is cut down to what the tables take.
        unsigned long const range = details::rangeOf(m_info.minimum, m_info.maximum);
        m_info.useHistogram =
            range <= 0xfffff &&
            shouldUseHistogram(m_settings.radius, static_cast<unsigned int>(range), !m_settings.isRound);
    }
    return true;
}

void MedianFilterScalarPrivate::checkMemory() const
{
    // The list of offsets is made, copied and sorted; a block has a row for each row of the window.
    double const offsets = voxelsOfWindow();
    double const side = 2.0 * m_settings.radius + 1;
    double const columns = side + static_cast<double>(std::min(m_settings.input->getNumOf(COLUMNS), 1024ul));
    double const voxels = offsets / side * columns;
    double const voxelSize = static_cast<double>(helper::getSizeOf(m_settings.input->getVoxelType()));
    if (!fitsMemory(6 * 24 * offsets + numOfBlocksAtOnce() * (voxels * voxelSize + 16 * offsets / side)))
        QEL_THROW(UnexpectedError,
                  "The available memory does not hold a window of radius " << m_settings.radius << ".");
}

void MedianFilterScalarPrivate::checkHistogram() const
{
    unsigned long const range = details::rangeOf(m_info.minimum, m_info.maximum);
    if (!fitsMemory((static_cast<double>(range) + 1) * sizeof(unsigned int) * numOfBlocksAtOnce()))
        QEL_THROW(UnexpectedError, "The available memory does not hold a histogram of the range " << range << ".");
}

void MedianFilterScalarPrivate::follow(BaseTbbAlgorithm& frame)
{
    if (m_isComposite)
        setCurrentChild(&frame);
}

bool MedianFilter2DScalarPrivate::shouldUseHistogram(unsigned int radius, unsigned int range, bool isSquare) const
{
    return shouldUse2DHistogram(radius, range, isSquare);
}

bool MedianFilter3DScalarPrivate::shouldUseHistogram(unsigned int radius, unsigned int range, bool isCube) const
{
    return shouldUse3DHistogram(radius, range, isCube);
}

void MedianFilter2DScalarPrivate::runOnVoxels()
{
    tmpl_dispatch::Visitor1Args<AllVoxelTypes, MedianFilter2DScalarDispatcher, MedianFilterScalarPrivate*>()(
        settings().input->getVoxelType(), this);
}

void MedianFilter3DScalarPrivate::runOnVoxels()
{
    tmpl_dispatch::Visitor1Args<AllVoxelTypes, MedianFilter3DScalarDispatcher, MedianFilterScalarPrivate*>()(
        settings().input->getVoxelType(), this);
}

double MedianFilter2DScalarPrivate::voxelsOfWindow() const
{
    double const side = 2.0 * settings().radius + 1;
    return side * side;
}

double MedianFilter3DScalarPrivate::voxelsOfWindow() const
{
    double const side = 2.0 * settings().radius + 1;
    return side * side * side;
}

} // namespace qel::nonlinear_filtering
