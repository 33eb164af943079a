#include "Registration/private/ShapeBasedMatching/ShapeTerms.h"

#include <algorithm>
#include <numeric>

namespace qel::registration {

void ShapeTerms::assign(Shape<double> const& shape, Window const& window, long stride, bool keepZeros)
{
    m_points.clear();
    long lowestRow = 0, highestRow = -1, lowestCol = 0, highestCol = -1;
    for (std::size_t i = 0; i < shape.points.size(); ++i) {
        long const row = static_cast<long>(shape.points[i][1]);
        long const col = static_cast<long>(shape.points[i][0]);
        if (row < window.lowestRow() || row > window.highestRow() || col < window.lowestCol() ||
            col > window.highestCol())
            continue;
        if (m_points.empty()) {
            lowestRow = highestRow = row;
            lowestCol = highestCol = col;
        }
        lowestRow = std::min(lowestRow, row);
        highestRow = std::max(highestRow, row);
        lowestCol = std::min(lowestCol, col);
        highestCol = std::max(highestCol, col);
        m_points.push_back({row, col, shape.gradients[i]});
    }
    m_cells.clear();
    std::size_t const numOfCells =
        static_cast<std::size_t>(highestRow - lowestRow + 1) * static_cast<std::size_t>(highestCol - lowestCol + 1);
    if (numOfCells <= 16 * m_points.size())
        addCellsByGrid(lowestRow, highestRow, lowestCol, highestCol);
    else
        addCellsBySorting();
    addTerms(stride, keepZeros);
    computeReachable(m_terms, m_reachable);
    double total = 0;
    for (Term const& term : m_terms)
        total += term.weight;
    m_margin = total * (1e-9 + static_cast<double>(m_terms.size()) * 1e-15);
}

void ShapeTerms::addCellsByGrid(long lowestRow, long highestRow, long lowestCol, long highestCol)
{
    long const width = highestCol - lowestCol + 1;
    std::size_t const size = static_cast<std::size_t>((highestRow - lowestRow + 1) * width);
    m_grid.assign(size, math::Vector2<double>());
    m_isTaken.assign(size, 0);
    for (Cell const& point : m_points) {
        std::size_t const place = static_cast<std::size_t>((point.row - lowestRow) * width + point.col - lowestCol);
        m_grid[place].setValue(m_grid[place][0] + point.gradient[0], m_grid[place][1] + point.gradient[1]);
        m_isTaken[place] = 1;
    }
    std::size_t place = 0;
    for (long row = lowestRow; row <= highestRow; ++row)
        for (long col = lowestCol; col <= highestCol; ++col, ++place)
            if (m_isTaken[place])
                m_cells.push_back({row, col, m_grid[place]});
}

// For a few points far apart.
void ShapeTerms::addCellsBySorting()
{
    std::stable_sort(m_points.begin(), m_points.end(),
                     [](Cell const& a, Cell const& b) { return a.row != b.row ? a.row < b.row : a.col < b.col; });
    for (Cell const& point : m_points) {
        if (m_cells.empty() || m_cells.back().row != point.row || m_cells.back().col != point.col) {
            // As in the grid, where each sum begins with 0.
            m_cells.push_back({point.row, point.col, math::Vector2<double>()});
        }
        math::Vector2<double>& sum = m_cells.back().gradient;
        sum.setValue(sum[0] + point.gradient[0], sum[1] + point.gradient[1]);
    }
}

void ShapeTerms::addTerms(long stride, bool keepZeros)
{
    std::vector<Row>& rows = m_rows;
    rows.clear();
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        if (rows.empty() || rows.back().offset != m_cells[i].row)
            rows.push_back({m_cells[i].row, i, i});
        rows.back().end = i + 1;
    }
    // Steps of about the golden section visit all rows, far ones first, where they share no factor with their number.
    std::size_t const numOfRows = rows.size();
    std::size_t step = std::max<std::size_t>(1, static_cast<std::size_t>(static_cast<double>(numOfRows) * 0.618));
    while (numOfRows > 0 && std::gcd(step, numOfRows) != 1)
        ++step;
    m_terms.clear();
    std::vector<Row> ordered;
    ordered.reserve(numOfRows);
    for (std::size_t i = 0, at = 0; i < numOfRows; ++i, at = (at + step) % numOfRows) {
        std::size_t const begin = m_terms.size();
        for (std::size_t cell = rows[at].begin; cell < rows[at].end; ++cell) {
            Cell const& c = m_cells[cell];
            double const weight = c.gradient.length();
            if (weight != 0 || keepZeros)
                m_terms.push_back({c.row * stride + c.col, c.gradient[0], c.gradient[1], weight});
        }
        if (m_terms.size() > begin)
            ordered.push_back({rows[at].offset, begin, m_terms.size()});
    }
    rows = ordered;
}

void ShapeTerms::computeReachable(std::vector<Term> const& terms, std::vector<double>& reachable)
{
    reachable.assign((terms.size() + termsAtOnce - 1) / termsAtOnce, 0);
    double sum = 0;
    for (std::size_t i = terms.size(); i-- > 0;) {
        if (i % termsAtOnce == termsAtOnce - 1)
            reachable[i / termsAtOnce] = sum;
        sum += terms[i].weight;
    }
}

ShapeTerms::List ShapeTerms::at(long row, long rowsBegin, long rowsEnd)
{
    auto const isInside = [&](Row const& r) { return row + r.offset >= rowsBegin && row + r.offset < rowsEnd; };
    if (std::all_of(m_rows.begin(), m_rows.end(), isInside))
        return {m_terms.data(), m_terms.size(), m_reachable.data()};
    m_some.clear();
    for (Row const& r : m_rows)
        if (isInside(r))
            m_some.insert(m_some.end(), m_terms.begin() + static_cast<long>(r.begin),
                          m_terms.begin() + static_cast<long>(r.end));
    computeReachable(m_some, m_someReachable);
    return {m_some.data(), m_some.size(), m_someReachable.data()};
}

} // namespace qel::registration
