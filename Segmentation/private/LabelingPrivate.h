#pragma once

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/View.h"
#include "Core/private/BaseTbbAlgorithm.h"
#include "Segmentation/private/BlockAnamorphosis.h"
#include "Segmentation/private/BlockLabeling.h"

#include <qel/ImageModel.h>

#include <limits>
#include <memory>

namespace qel::segmentation {

/// One run of the labelling, with labels of type L.
template <class L> class LabelingPrivate final : public BaseTbbAlgorithm
{
public:
    /// `stripes`: how many stripes a plane is cut into; some more where its rows do not divide so.
    LabelingPrivate(BaseAlgorithm* owningAlgorithm, ImageModel const* input, ImageModel* output, unsigned int stripes)
        : BaseTbbAlgorithm(owningAlgorithm)
        , m_input(Foreground::New(input))
        , m_output(access::View<L>::New(output, access::FixedBorderCondition<L>::New(L(0))))
        , m_stripes(stripes > 0 ? stripes : 1)
    {}

    void run();
    void writeTemporizedOutputs() override { m_output->writeAllTemporizedRows(); }

private:
    /// False if the run was cancelled.
    template <class Column> bool runPlane(access::Block2d const& plane);
    template <class Column> static void number(LabelBlocks<L, Column>& blocks);

    std::unique_ptr<Foreground> m_input;
    boost::shared_ptr<access::View<L>> m_output;
    unsigned long m_stripes;
};

template <class L> void LabelingPrivate<L>::run()
{
    unsigned long const columns = m_output->numOfCols();
    unsigned long const rows = m_output->numOfRows();
    setTotalWork(columns * rows * 2 * m_output->numOfPlans() * m_output->numOfTimeSeries());
    Publication const publication(*this);
    for (unsigned long series = 0; series < m_output->numOfSpectralSeries(); ++series)
        for (unsigned long time = 0; time < m_output->numOfTimeSeries(); ++time)
            for (unsigned long plan = 0; plan < m_output->numOfPlans(); ++plan) {
                access::Block2d const plane({rows, 0, rows / m_stripes}, {columns, 0, columns}, plan, time, series);
                bool const isWide = columns >= std::numeric_limits<unsigned int>::max();
                if (!(isWide ? runPlane<unsigned long>(plane) : runPlane<unsigned int>(plane)))
                    return;
            }
}

template <class L> template <class Column> bool LabelingPrivate<L>::runPlane(access::Block2d const& plane)
{
    BlockLabeling<L, Column> labeling(*m_input, *this);
    if (!plane.empty())
        reduceStripes(plane, labeling, getContext());
    if (isCancelled())
        return false;
    writeTemporizedOutputs();
    number(labeling.getBlocks());
    BlockAnamorphosis<L, Column> anamorphosis(*m_output, labeling.getBlocks(), *this);
    forEachStripe(plane, anamorphosis, getContext());
    if (isCancelled())
        return false;
    writeTemporizedOutputs();
    return true;
}

template <class L> template <class Column> void LabelingPrivate<L>::number(LabelBlocks<L, Column>& blocks)
{
    unsigned int count = 0;
    for (auto& [start, block] : blocks)
        for (details::LabelData<L>& entry : block.table)
            if (entry.label == 0)
                entry.label = static_cast<L>(++count);
}

} // namespace qel::segmentation
