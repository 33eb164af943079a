#pragma once

// What the point operations share: a row kernel, run over the rows of every block.
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/ImagePairToImageFilter.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/LongRows.h"

#include <qel/ImageModelAdapter.h>

namespace qel {

/// `kernel(in, out, count)` on each row.
template <class Kernel> class PointBody
{
public:
    explicit PointBody(Kernel const& kernel)
        : m_kernel(kernel)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorPixelInput<typename Filter::InputView, 1> in(filter.getInputView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(filter.getOutputView(), false);
        for (in.init(block), out.init(block); !in.atEnd(); in.nextRow(), out.nextRow())
            m_kernel(in.rowData(), out.rowData(), in.rowLength());
    }

private:
    Kernel m_kernel;
};

/// `kernel(first, second, out, count)` on each row.
template <class Kernel> class PairPointBody
{
public:
    explicit PairPointBody(Kernel const& kernel)
        : m_kernel(kernel)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorPixelInput<typename Filter::FirstView, 1> first(filter.getFirstView());
        access::IteratorPixelInput<typename Filter::SecondView, 1> second(filter.getSecondView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(filter.getOutputView(), false);
        first.init(block);
        second.init(block);
        out.init(block);
        for (; !first.atEnd(); first.nextRow(), second.nextRow(), out.nextRow())
            m_kernel(first.rowData(), second.rowData(), out.rowData(), first.rowLength());
    }

private:
    Kernel m_kernel;
};

/// Runs a body that sees single voxels from `In` to `Out` over whole images, whatever their voxel types: where they
/// differ, rows are cast on their way.
template <class In, class Out, class Body>
void runBody(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output, Body body)
{
    LongRows const images({input, output});
    ImageModelAdapter const in(images[0], VoxelTypeOf<In>::value);
    ImageModelAdapter const out(images[1], VoxelTypeOf<Out>::value);
    ImageToImageFilter3d<In, Out, SimdVec::arch_scalar_tag, Body> filter(&owner, &body);
    filter.setInput(in.getImage(), access::FixedBorderCondition<In>::New(In(0)));
    filter.setOutput(out.getImage(), access::FixedBorderCondition<Out>::New(Out(0)));
    filter.run();
}

/// The same for a row kernel.
template <class In, class Out, class Kernel>
void runPointwise(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output, Kernel const& kernel)
{
    runBody<In, Out>(owner, input, output, PointBody<Kernel>(kernel));
}

/// The same for a kernel of two inputs.
template <class In1, class In2, class Out, class Kernel>
void runPairPointwise(BaseAlgorithm& owner, ImageModel const* firstInput, ImageModel const* secondInput,
                      ImageModel* output, Kernel const& kernel)
{
    using Body = PairPointBody<Kernel>;
    LongRows const images({firstInput, secondInput, output});
    ImageModelAdapter const first(images[0], VoxelTypeOf<In1>::value);
    ImageModelAdapter const second(images[1], VoxelTypeOf<In2>::value);
    ImageModelAdapter const out(images[2], VoxelTypeOf<Out>::value);
    Body body(kernel);
    ImagePairToImageFilter3d<In1, In2, Out, SimdVec::arch_scalar_tag, Body> filter(&owner, &body);
    filter.setFirstInput(first.getImage(), access::FixedBorderCondition<In1>::New(In1(0)));
    filter.setSecondInput(second.getImage(), access::FixedBorderCondition<In2>::New(In2(0)));
    filter.setOutput(out.getImage(), access::FixedBorderCondition<Out>::New(Out(0)));
    filter.run();
}

} // namespace qel
