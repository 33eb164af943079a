#pragma once

#include "Core/private/Access/Rows.h"
#include "Filtering/private/MirroredVolume.h"
#include "Filtering/private/NonLocalMeanKernels.h"
#include "Filtering/private/NonLocalMeanScalarPrivate.h"
#include "Filtering/private/RowSums.h"

#include <qel/access/Block3d.h>

#include <vector>

namespace qel::filtering::smoothing {

struct WindowOffset
{
    long columns;
    long rows;
    long plans;
};

/// Calls `visit(offset)` for those before the centre, row by row, until one says false; the others come by symmetry.
template <class Visit> bool forEachOffset(long window, bool isVolume, bool isRound, Visit const& visit)
{
    for (long plans = isVolume ? -window : 0; plans <= 0; ++plans)
        for (long rows = -window; rows <= (plans < 0 ? window : 0); ++rows)
            for (long columns = -window; columns <= (plans < 0 || rows < 0 ? window : -1); ++columns) {
                bool const isIn = !isRound || columns * columns + rows * rows + plans * plans <= window * window;
                if (isIn && !visit(WindowOffset{columns, rows, plans}))
                    return false;
            }
    return true;
}

/// For each offset of half the window: squared differences, their sums over the patch, the weights, and their part in
/// the result. All that stays in the cache, as one block goes through all offsets before the next one begins.
class NonLocalMeanScalarGeneric
{
public:
    struct Parameters
    {
        bool isVolume;
        bool isRound;
        long window[3]; // half-widths along columns, rows and plans
        long patch[3];
        double divisor;
    };

    NonLocalMeanScalarGeneric(NonLocalMeanScalarPrivate& owner, Parameters const& parameters)
        : m_owner(owner)
        , m_parameters(parameters)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        Tile tile(*this, block, *filter.getInputView());
        auto const addOffset = [&](WindowOffset const& offset) {
            if (m_owner.isCancelled())
                return false;
            tile.add(offset);
            m_owner.addWork(block.getNumOfVoxels());
            return true;
        };
        if (forEachOffset(m_parameters.window[0], m_parameters.isVolume, m_parameters.isRound, addOffset))
            tile.write(filter);
    }

private:
    class Tile
    {
    public:
        template <class View>
        Tile(NonLocalMeanScalarGeneric const& body, access::Block3d const& block, View const& view)
            : m_body(body)
            , m_block(block)
            , m_begin{long(block.colsBegin()), long(block.rowsBegin()), long(block.plansBegin())}
            , m_end{long(block.colsEnd()), long(block.rowsEnd()), long(block.plansEnd())}
            , m_size{long(view.numOfCols()), long(view.numOfRows()), long(view.numOfPlans())}
            , m_weighted(block.getNumOfVoxels())
            , m_weightSums(block.getNumOfVoxels())
        {
            // The weights reach a window beyond the block, and what they are made of a patch and a window beyond that.
            auto const around = [&](int axis) {
                long const reach = 2 * body.m_parameters.window[axis] + body.m_parameters.patch[axis];
                return MirroredRange(m_begin[axis] - reach, m_end[axis] + reach, m_size[axis]);
            };
            m_image.resize(around(2), around(1), around(0));
            for (long plan = m_image.plans().begin; plan < m_image.plans().end; ++plan)
                for (long row = m_image.rows().begin; row < m_image.rows().end; ++row)
                    view.read(m_image.rowAt(plan, row), m_image.columns().count(), m_image.columns().begin, row, plan,
                              static_cast<long>(block.timeSeriesBegin()),
                              static_cast<long>(block.spectralSeriesBegin()));
        }

        void add(WindowOffset const& offset)
        {
            computeWeights(offset);
            forEachRow([&](long plan, long row, unsigned long at) {
                long const column = m_begin[0];
                unsigned long const count = m_block.getNbCols();
                accumulateRow(
                    m_weights.read(plan, row, column, count, m_room[0]),
                    m_image.read(plan + offset.plans, row + offset.rows, column + offset.columns, count, m_room[1]),
                    m_weights.read(plan - offset.plans, row - offset.rows, column - offset.columns, count, m_room[2]),
                    m_image.read(plan - offset.plans, row - offset.rows, column - offset.columns, count, m_room[3]),
                    m_weighted.data() + at, m_weightSums.data() + at, count);
            });
        }

        template <class Filter> void write(Filter& filter)
        {
            bool const isInPlace =
                access::areOnOneImage(filter.getInputView()->getInterface(), filter.getOutputView()->getInterface());
            auto const cache = filter.getOutputView()->createRowCacheReadWrite(1);
            forEachRow([&](long plan, long row, unsigned long at) {
                auto& out =
                    cache->getRowInBlock(0, m_block.getNbCols(), m_block, 0, row - m_begin[1], plan - m_begin[2], 0, 0);
                closeRow(m_weighted.data() + at, m_weightSums.data() + at,
                         m_image.read(plan, row, m_begin[0], m_block.getNbCols(), m_room[0]), out.data(),
                         m_block.getNbCols());
                out.writeRow(isInPlace, 0, 0, 0, 0, 0, 0);
            });
        }

    private:
        /// Makes weights of the sums over patches.
        class Weights final : public RowSums<double>::Sink
        {
        public:
            Weights(MirroredVolume& volume, double divisor)
                : m_volume(volume)
                , m_divisor(divisor)
            {}
            void take(unsigned long plan, unsigned long row, double const* patches) override
            {
                unsigned long const count = m_volume.columns().count();
                double* const weights =
                    m_volume.rowAt(static_cast<long>(plan), m_volume.rows().begin + static_cast<long>(row));
                std::copy_n(patches, count, weights);
                weightRow(weights, m_divisor, count);
            }
            bool isCancelled() const override { return false; }

        private:
            MirroredVolume& m_volume;
            double m_divisor;
        };

        template <class Visit> void forEachRow(Visit const& visit) const
        {
            unsigned long at = 0;
            for (long plan = m_begin[2]; plan < m_end[2]; ++plan)
                for (long row = m_begin[1]; row < m_end[1]; ++row, at += m_block.getNbCols())
                    visit(plan, row, at);
        }

        /// Of the block's voxels and of those that lie opposite to the offset.
        void computeWeights(WindowOffset const& offset)
        {
            long const offsets[] = {offset.columns, offset.rows, offset.plans};
            auto const needed = [&](int axis) {
                MirroredRange range(m_begin[axis], m_end[axis], m_size[axis]);
                for (long x = m_begin[axis]; x < m_end[axis]; ++x)
                    range.include(x - offsets[axis]);
                return range;
            };
            m_weights.resize(needed(2), needed(1), needed(0));
            auto const boxes = [&](MirroredRange const& range, int axis) {
                return BoxRange(static_cast<unsigned long>(range.begin), static_cast<unsigned long>(range.end),
                                static_cast<unsigned long>(2 * m_body.m_parameters.patch[axis] + 1),
                                static_cast<unsigned long>(m_size[axis]));
            };
            BoxRange const plans = boxes(m_weights.plans(), 2);
            BoxRange const rows = boxes(m_weights.rows(), 1);
            BoxRange const columns = boxes(m_weights.columns(), 0);

            unsigned long const length = columns.inside();
            m_difference.resize(length);
            auto const fetchDifference = [&](long plan, unsigned long index) -> double const* {
                long const inside = access::mirrorCoordinate(plan, plans.image);
                long const row = rows.insideBegin + static_cast<long>(index);
                squaredDifferenceRow(m_image.read(inside, row, columns.insideBegin, length, m_room[0]),
                                     m_image.read(inside + offset.plans, row + offset.rows,
                                                  columns.insideBegin + offset.columns, length, m_room[1]),
                                     m_difference.data(), length);
                return m_difference.data();
            };
            m_planSums.resize(length * rows.inside());
            SlidingSums<double> across(plans.side, length, rows.inside());
            RowSums<double> sums(rows, columns);
            Weights weights(m_weights, m_body.m_parameters.divisor);
            across.start(plans.first, fetchDifference);
            for (long plan = m_weights.plans().begin; plan < m_weights.plans().end; ++plan) {
                across.next(fetchDifference, [&](unsigned long row) { return m_planSums.data() + row * length; });
                sums.run(PlanRows<double>{m_planSums.data(), rows, length}, static_cast<unsigned long>(plan), weights);
            }
        }

        NonLocalMeanScalarGeneric const& m_body;
        access::Block3d const& m_block;
        long m_begin[3]; // columns, rows, plans
        long m_end[3];
        long m_size[3]; // of the image
        MirroredVolume m_image;
        MirroredVolume m_weights;
        std::vector<double> m_weighted;
        std::vector<double> m_weightSums;
        std::vector<double> m_planSums;
        std::vector<double> m_difference;
        std::vector<double> m_room[4];
    };

    NonLocalMeanScalarPrivate& m_owner;
    Parameters m_parameters;
};

} // namespace qel::filtering::smoothing
