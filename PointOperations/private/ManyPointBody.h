#pragma once

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/LongRows.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/private/VoxelTypeOf.h"

#include <cstddef>
#include <tuple>
#include <utility>

namespace qel::point_operations {

/// `kernel(in1, ..., inN, out, count)` on each row, with the indices of the inputs as `Is`.
template <class Kernel, std::size_t... Is> class ManyPointBody
{
public:
    explicit ManyPointBody(Kernel const& kernel)
        : m_kernel(kernel)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        std::tuple<access::IteratorPixelInput<typename Filter::template InputView<Is>, 1>...> ins(
            filter.template getInputView<Is>()...);
        access::IteratorPixelOutput<typename Filter::template OutputView<0>, 1> out(filter.template getOutputView<0>(),
                                                                                    false);
        (std::get<Is>(ins).init(block), ...);
        out.init(block);
        for (; !out.atEnd(); (std::get<Is>(ins).nextRow(), ...), out.nextRow())
            m_kernel(std::get<Is>(ins).rowData()..., out.rowData(), out.rowLength());
    }

private:
    Kernel m_kernel;
};

template <class T, class Kernel, std::size_t... Is, class... Inputs>
void runManyPointwise(BaseAlgorithm& owner, Kernel const& kernel, std::index_sequence<Is...>, ImageModel* output,
                      Inputs... inputs)
{
    using Body = ManyPointBody<Kernel, Is...>;
    using InList = boost::mpl::vector<std::conditional_t<Is == Is, T, void>...>;
    Body body(kernel);
    ManyToManyImageFilter3d<InList, boost::mpl::vector<T>, SimdVec::arch_scalar_tag, Body> filter(&owner, &body);
    auto const condition = access::FixedBorderCondition<T>::New(T(0));
    LongRows const images({inputs..., output});
    (filter.template setInput<Is>(images[Is], condition), ...);
    filter.template setOutput<0>(images[sizeof...(Is)], condition);
    filter.run();
}

/// Runs a row kernel over any number of images of the type `T` into one of them.
template <class T, class Kernel, class... Inputs>
void runManyPointwise(BaseAlgorithm& owner, Kernel const& kernel, ImageModel* output, Inputs... inputs)
{
    runManyPointwise<T>(owner, kernel, std::index_sequence_for<Inputs...>(), output,
                        static_cast<ImageModel const*>(inputs)...);
}

} // namespace qel::point_operations
