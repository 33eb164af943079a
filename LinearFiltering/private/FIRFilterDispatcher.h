#pragma once

#include "LinearFiltering/private/FIRFilterGeneric.h"
#include "LinearFiltering/private/typeOfSums.h"

#include <qel/ImageModel.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter2D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>

namespace qel::linear_filtering {

/// The points of the filter's kernel in space, and what a slice of its images is.
template <class DimTag> struct FIRFilterOf;

template <> struct FIRFilterOf<Filter2dTag>
{
    using type = FiniteImpulseResponseFilter2D;
    static kernel::WeightedOffsets<kernel::Offset3D> kernelOf(type const& filter)
    {
        kernel::Kernel2D const kernel = filter.kernel2D;
        kernel::WeightedOffsets<kernel::Offset3D> points;
        for (kernel::Offset2D const& offset : kernel.getPrivate().offsets)
            points.offsets.push_back({offset.x, offset.y, 0});
        points.weights = kernel.getPrivate().weights;
        return points;
    }
};

template <> struct FIRFilterOf<Filter3dTag>
{
    using type = FiniteImpulseResponseFilter3D;
    static kernel::WeightedOffsets<kernel::Offset3D> kernelOf(type const& filter)
    {
        return filter.kernel3D.get().getPrivate();
    }
};

/// `Arch` has the row kernels: `template <class T> static WeightedSum<T> weightedSum()`.
template <class DimTag, class Arch> struct FIRFilterDispatcher
{
    using Filter = typename FIRFilterOf<DimTag>::type;

    template <class T> static void run(Filter* filter)
    {
        filterByKernel<T, DimTag>(*filter, filter->input, filter->output, FIRFilterOf<DimTag>::kernelOf(*filter),
                                  Arch::template weightedSum<T>());
    }

    static void run(Filter& filter)
    {
        visitTypeOfSums(filter.output.get()->getVoxelType(), [&]<class T>(std::type_identity<T>) { run<T>(&filter); });
    }
};

} // namespace qel::linear_filtering
