#pragma once

#include "Core/private/AbstractPartitionerPolicy.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/TypeDispatch.h"
#include "Filtering/private/BoxKernels.h"

#include <qel/Property.h>

// What the dispatchers of the two box filters share.

namespace qel::filtering::smoothing {

/// The work types of a voxel type, over all areas.
template <class T> struct WorkTypesOf
{
    using type = boost::mpl::vector<float>;
};
template <> struct WorkTypesOf<unsigned char>
{
    using type = boost::mpl::vector<unsigned short, int, float>;
};
template <> struct WorkTypesOf<signed char>
{
    using type = boost::mpl::vector<short, int, float>;
};
template <> struct WorkTypesOf<unsigned short>
{
    using type = boost::mpl::vector<int, float>;
};
template <> struct WorkTypesOf<short>
{
    using type = boost::mpl::vector<int, float>;
};
template <> struct WorkTypesOf<double>
{
    using type = boost::mpl::vector<double>;
};

/// Throws InvalidCall where a side is 0.
void checkSides(std::initializer_list<unsigned int> sides);

/// Blocks as few as the threads can do with, for each of them starts with the sums of as many rows as the box has; and
/// narrow enough for the sums to stay in the cache. `boxRows` is the side across rows.
boost::shared_ptr<AbstractPartitionerPolicy> partitionFor(ImageModel const& image, unsigned long boxRows, Filter2dTag);
boost::shared_ptr<AbstractPartitionerPolicy> partitionFor(ImageModel const& image, unsigned long boxRows, Filter3dTag);

template <class T, class Out, class DimTag, class Body>
void runBox(BaseAlgorithm& box, ImageModel const* input, ImageModel* output, unsigned long boxRows, Body body)
{
    ImageToImageFilter<T, Out, SimdVec::arch_scalar_tag, Body, DimTag, FilterWithoutReductionTag> filter(&box, &body);
    filter.setPartitionerInformation(partitionFor(*input, boxRows, DimTag()));
    filter.setBlocksAreFixed(true);
    filter.setInput(input, access::MirrorBorderCondition<T>::New());
    filter.setOutput(output, access::FixedBorderCondition<Out>::New(Out(0)));
    filter.run();
}

} // namespace qel::filtering::smoothing
