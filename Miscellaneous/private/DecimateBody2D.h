#pragma once

#include "Core/private/Access/IteratorNeighborhood.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Helper/convertVoxel.h"

#include <qel/access/Block2d.h>

#include <cstddef>

namespace qel::miscellaneous {

struct tag_mean
{
    template <class T> static T reduce(T a, T b, T c, T d)
    {
        // The 0 makes the mean of four negative zeros a positive one.
        float const sum =
            0.0f + static_cast<float>(a) + static_cast<float>(b) + static_cast<float>(c) + static_cast<float>(d);
        return helper::convertVoxel<T>(sum * 0.25f);
    }
};
struct tag_min
{
    template <class T> static T smaller(T a, T b) { return b < a ? b : a; }
    template <class T> static T reduce(T a, T b, T c, T d) { return smaller(smaller(a, b), smaller(c, d)); }
};
struct tag_max
{
    template <class T> static T greater(T a, T b) { return a < b ? b : a; }
    template <class T> static T reduce(T a, T b, T c, T d) { return greater(greater(a, b), greater(c, d)); }
};
struct tag_first
{
    template <class T> static T reduce(T a, T, T, T) { return a; }
};

/// Reduces `count` squares of two rows.
template <class Tag, class T>
void decimateRow(T const* __restrict upper, T const* __restrict lower, T* __restrict out, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = Tag::reduce(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
}

/// Blocks are of the input. A square begins at even coordinates, and belongs to the block that it begins in.
template <class T> class DecimateBody2D
{
public:
    using Kernel = void (*)(T const*, T const*, T*, std::size_t);

    explicit DecimateBody2D(Kernel kernel)
        : m_kernel(kernel)
    {}

    template <class Filter> void run(access::Block2d const& block, Filter& filter) const
    {
        auto const even = [](unsigned long coordinate) { return coordinate + coordinate % 2; };
        access::Range const rows{even(block.rowsEnd()), even(block.rowsBegin()), 1};
        access::Range const cols{even(block.colsEnd()), even(block.colsBegin()), 1};
        auto const blockOf = [&](unsigned long divisor) {
            return access::Block2d({rows.end / divisor, rows.begin / divisor, 1},
                                   {cols.end / divisor, cols.begin / divisor, 1}, block.plansBegin(),
                                   block.timeSeriesBegin(), block.spectralSeriesBegin());
        };
        access::Block2d const squares = blockOf(1);
        access::Block2d const results = blockOf(2);
        if (squares.empty())
            return;

        access::IteratorNeighborhood2D_Square4ByBlock<typename Filter::template InputView<0>> in(
            filter.template getInputView<0>());
        access::IteratorPixelOutput<typename Filter::template OutputView<0>, 1> out(filter.template getOutputView<0>(),
                                                                                    false);
        in.init(squares, squares.getNbCols());
        out.init(results);
        for (long row = 0;;) {
            m_kernel(in.upperRow(), in.lowerRow(), out.rowData(), results.getNbCols());
            out.nextRow();
            if (out.atEnd())
                break;
            row += 2;
            in.fetchRows(row);
        }
    }

private:
    Kernel m_kernel;
};

} // namespace qel::miscellaneous
