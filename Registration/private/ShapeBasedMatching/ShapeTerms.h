#pragma once

#include "Registration/private/ShapeBasedMatching/ScoreKernel.h"
#include "Registration/private/ShapeBasedMatching/Shape.h"

#include <cmath>
#include <vector>

namespace qel::registration {

/// The positions of a search, and the image around them. Ends are exclusive.
struct Window
{
    long colsBegin;
    long colsEnd;
    long rowsBegin;
    long rowsEnd;
    long numOfCols; ///< of the image
    long numOfRows;

    bool isEmpty() const { return colsBegin >= colsEnd || rowsBegin >= rowsEnd; }
    /// The offsets from any position to any voxel of the image lie between these, both of them included.
    long lowestCol() const { return 1 - colsEnd; }
    long highestCol() const { return numOfCols - 1 - colsBegin; }
    long lowestRow() const { return 1 - rowsEnd; }
    long highestRow() const { return numOfRows - 1 - rowsBegin; }
};

/// A turned and scaled shape as the kernel walks it.
///
/// Points are cut to whole offsets. Those that fall on one voxel become one term; those that lie outside of the image
/// at all positions are none. Terms of one row follow each other from left to right, so that reads run along rows. The
/// rows come in an order that jumps over the shape: so the first terms tell much about the whole sum.
class ShapeTerms
{
public:
    /// Terms for fields with this distance of rows. Gradients without a length are left out, unless `keepZeros`.
    void assign(Shape<double> const& shape, Window const& window, long stride, bool keepZeros);

    struct List
    {
        Term const* terms;
        std::size_t count;
        double const* reachable; ///< for each termsAtOnce
    };

    /// The terms that meet rows from `rowsBegin` to before `rowsEnd` from positions in a row. Valid up to the next
    /// call.
    List at(long row, long rowsBegin, long rowsEnd);

    /// More than the roundings of a sum can amount to.
    double margin() const { return m_margin; }
    /// Whether a term is infinite or no number.
    bool areOdd() const { return !std::isfinite(m_margin); }

private:
    struct Row
    {
        long offset;
        std::size_t begin;
        std::size_t end;
    };
    struct Cell
    {
        long row;
        long col;
        math::Vector2<double> gradient;
    };

    void addCellsByGrid(long lowestRow, long highestRow, long lowestCol, long highestCol);
    void addCellsBySorting();
    void addTerms(long stride, bool keepZeros);
    static void computeReachable(std::vector<Term> const& terms, std::vector<double>& reachable);

    std::vector<Cell> m_points; // one for each point
    std::vector<Cell> m_cells;  // one for each offset, by row and column
    std::vector<Row> m_rows;
    std::vector<Term> m_terms;
    std::vector<double> m_reachable;
    std::vector<Term> m_some; // of the last incomplete list
    std::vector<double> m_someReachable;
    std::vector<math::Vector2<double>> m_grid;
    std::vector<unsigned char> m_isTaken;
    double m_margin = 0;
};

} // namespace qel::registration
