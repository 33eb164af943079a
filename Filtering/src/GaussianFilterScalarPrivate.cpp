#include "Filtering/private/GaussianFilterScalarPrivate.h"

#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/Kernel/KernelPrivate.h"
#include "Core/private/Throw.h"
#include "Filtering/private/GaussianFilter.h"
#include "LinearFiltering/private/RowFilteredImage.h"

#include <qel/BaseAlgorithm.h>
#include <qel/Exception.h>
#include <qel/Ref.h>
#include <qel/devices/Cpu.h>
#include <qel/linear_filtering/kernel_factory.h>
#include <qel/memory/InMemoryImage.h>

#include <cmath>
#include <memory>

namespace qel::filtering::smoothing {

namespace {

using linear_filtering::FiniteImpulseResponseFilter2D;
using linear_filtering::FiniteImpulseResponseFilter3D;

/// How many points a kernel has: an odd number.
unsigned long kernelSize(double sigma, double factor)
{
    double const size = std::ceil(2 * sigma * factor);
    // A point has its offset and weight, in the kernel, in the copies that its property makes, and in the filter.
    constexpr double bytesOfAPoint = 200;
    double const available = static_cast<double>(devices::Cpu::getDevice().getAvailableMemory());
    bool const isKnown = available > 0;
    if (!(size < 0x1p62) || (isKnown && size * bytesOfAPoint > available))
        QEL_THROW(InvalidCall, "The available memory does not hold a kernel of sigma " << sigma << " and size factor "
                                                                                       << factor << ".");
    unsigned long const points = static_cast<unsigned long>(size);
    return points + (points % 2 == 0);
}

template <class Direction> auto kernelAlong(std::size_t axis, unsigned long size, double sigma)
{
    auto kernel = linear_filtering::kernel_factory::createGaussian1D(size, sigma, static_cast<Direction>(axis));
    kernel.normalize();
    return kernel;
}

void setKernel(FiniteImpulseResponseFilter2D& pass, std::size_t axis, unsigned long size, double sigma)
{
    pass.kernel2D = kernelAlong<linear_filtering::KernelDirection2D>(axis, size, sigma);
}

void setKernel(FiniteImpulseResponseFilter3D& pass, std::size_t axis, unsigned long size, double sigma)
{
    pass.kernel3D = kernelAlong<linear_filtering::KernelDirection3D>(axis, size, sigma);
}

} // namespace

template <class Pass> void GaussianFilterScalarPrivate<Pass>::run()
{
    if (m_settings.mode != QEL_FIR)
        return;
    std::vector<unsigned long> sizes;
    for (Axis const& axis : m_settings.axes)
        sizes.push_back(kernelSize(axis.sigma, axis.factor));

    Publication const publication(*this);
    setNumOfSteps(sizes.size());
    VoxelTypes const outputType = typeOfOutput(*m_settings.input, m_settings.outputStrategy);
    VoxelTypes const typeBetween = m_settings.accurate ? QEL_FLOAT32 : m_settings.input->getVoxelType();
    memory::InMemoryImage temporary;
    ImageModel* const between = typeBetween == outputType ? m_settings.output : &temporary;
    ImageModel const* from = m_settings.input;
    std::unique_ptr<linear_filtering::RowFilteredImage const> filteredRows;
    std::size_t axis = 0;
    if (helper::underlyingImage(m_settings.input) != helper::underlyingImage(m_settings.output)) {
        // The pass of the second axis takes the rows as the first axis makes them: both steps in one.
        filteredRows = std::make_unique<linear_filtering::RowFilteredImage const>(
            m_settings.input, typeBetween,
            kernelAlong<linear_filtering::KernelDirection2D>(0, sizes[0], m_settings.axes[0].sigma)
                .getPrivate()
                .weights);
        from = filteredRows.get();
        axis = 1;
    }
    for (; axis < sizes.size(); ++axis) {
        bool const isLast = axis + 1 == sizes.size();
        ImageModel* const to = isLast ? m_settings.output : between;
        // A filter by a kernel may work in place, and does so on all images but the first.
        if (!runPass(axis, sizes[axis], from, to, isLast ? outputType : typeBetween))
            return;
        if (from == filteredRows.get())
            nextStep();
        from = to;
    }
}

template <class Pass>
bool GaussianFilterScalarPrivate<Pass>::runPass(std::size_t axis, unsigned long size, ImageModel const* from,
                                                ImageModel* to, VoxelTypes type)
{
    Ref<Pass> const pass(Pass::New(this));
    pass->setMaximumExtraMemoryUsage(getOwner()->getMaximumExtraMemoryUsage());
    pass->input = from;
    setKernel(*pass, axis, size, m_settings.axes[axis].sigma);
    pass->outputMode = linear_filtering::QEL_OUTPUT_MODE_CUSTOM;
    pass->outputCustomType = type;
    pass->output = to;
    pass->run();
    if (isCancelled())
        return false;
    removeChild();
    nextStep();
    return true;
}

template class GaussianFilterScalarPrivate<FiniteImpulseResponseFilter2D>;
template class GaussianFilterScalarPrivate<FiniteImpulseResponseFilter3D>;

} // namespace qel::filtering::smoothing
