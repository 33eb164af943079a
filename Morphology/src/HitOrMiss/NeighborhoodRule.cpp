#include "Morphology/private/NeighborhoodRule.h"

#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/Iterators.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/Throw.h"

#include <qel/AlgoBorderInfluence.h>
#include <qel/ImageModelAdapter.h>
#include <qel/morphology/BinaryBorderConditionTypes.h>

#include <array>

namespace qel::morphology {

namespace {

template <class T, template <class View, int N> class Neighborhood> class NeighborhoodBody
{
public:
    NeighborhoodBody(NeighborhoodRule<T> const& rule, AlgoBorderInfluence const& influence)
        : m_rule(rule)
        , m_influence(influence)
    {}

    template <class Filter, class Block> void run(Block const& block, Filter& filter)
    {
        using Input = Neighborhood<typename Filter::InputView, 1>;
        auto const& outputView = filter.getOutputView();
        Input in(filter.getInputView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(
            outputView, false, overlapBetween(*filter.getInputView(), *outputView, m_influence));
        std::array<T const*, Input::size / 3> rows;
        for (in.init(block), out.init(block); !in.atEnd(); in.nextRow(), out.nextRow()) {
            for (std::size_t row = 0; row < rows.size(); ++row)
                rows[row] = in.pointer(static_cast<int>(3 * row + 1));
            m_rule.apply(rows.data(), out.rowData(), static_cast<long>(in.rowLength()));
        }
    }

private:
    NeighborhoodRule<T> const& m_rule;
    AlgoBorderInfluence m_influence;
};

template <class Body, template <class In, class Out, class Arch, class Body_> class Frame, class T>
void runFrame(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output, ConditionOf<T> condition, Body body)
{
    Frame<T, T, SimdVec::arch_scalar_tag, Body> filter(&owner, &body);
    filter.setInput(input, condition);
    filter.setOutput(output, condition);
    filter.run();
}

} // namespace

bool continuesObjects(int borderCondition)
{
    switch (borderCondition) {
    case STOP_OBJECT:
        return false;
    case CONTINUE_OBJECT:
        return true;
    }
    QEL_THROW(InvalidCall, "Invalid border condition.");
}

template <class T>
void runNeighborhoodRule(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output, bool isPlanar,
                         int borderCondition, NeighborhoodRule<T> const& rule)
{
    ConditionOf<T> const condition = continuesObjects(borderCondition) ? access::ContinueBorderCondition<T>::New()
                                                                       : access::FixedBorderCondition<T>::New(T(0));
    ImageModelAdapter const in(const_cast<ImageModel*>(input), VoxelTypeOf<T>::value);
    ImageModelAdapter const out(output, VoxelTypeOf<T>::value);
    if (isPlanar) {
        using Body = NeighborhoodBody<T, access::IteratorNeighborhood2D_8>;
        runFrame<Body, ImageToImageFilter2d>(owner, in.getImage(), out.getImage(), condition,
                                             Body(rule, AlgoBorderInfluence(1, 1, 0, 0, 0)));
    } else {
        using Body = NeighborhoodBody<T, access::IteratorNeighborhood3D_26>;
        runFrame<Body, ImageToImageFilter3d>(owner, in.getImage(), out.getImage(), condition,
                                             Body(rule, AlgoBorderInfluence(1, 1, 1, 0, 0)));
    }
}

template void runNeighborhoodRule(BaseAlgorithm&, ImageModel const*, ImageModel*, bool, int,
                                  NeighborhoodRule<unsigned char> const&);
template void runNeighborhoodRule(BaseAlgorithm&, ImageModel const*, ImageModel*, bool, int,
                                  NeighborhoodRule<unsigned short> const&);

} // namespace qel::morphology
