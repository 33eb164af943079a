#include "Math/private/SingularValueDecomposition.h"

#include "Core/private/Throw.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace qel::math {

namespace {

double lengthOf(double a, double b)
{
    a = std::abs(a);
    b = std::abs(b);
    if (a < b)
        std::swap(a, b);
    if (a == 0)
        return 0;
    double const ratio = b / a;
    return a * std::sqrt(1 + ratio * ratio);
}

/// Turns two columns in their plane.
void rotate(double* __restrict a, double* __restrict b, std::size_t size, double c, double s)
{
    for (std::size_t i = 0; i < size; ++i) {
        double const x = a[i];
        double const y = b[i];
        a[i] = x * c + y * s;
        b[i] = y * c - x * s;
    }
}

double dot(double const* a, double const* b, std::size_t begin, std::size_t end)
{
    double sum = 0;
    for (std::size_t i = begin; i < end; ++i)
        sum += a[i] * b[i];
    return sum;
}

void add(double* __restrict a, double factor, double const* __restrict b, std::size_t begin, std::size_t end)
{
    for (std::size_t i = begin; i < end; ++i)
        a[i] += factor * b[i];
}

/// All loops run along columns, so these are rows here: m_u and m_v are the transposed matrices.
class Decomposition
{
public:
    Decomposition(Matrix<double>& u, Vector<double>& w, Matrix<double>& v)
        : m_u(u)
        , m_w(w)
        , m_v(v)
        , m_numOfRows(u.numOfColumns())
        , m_numOfColumns(u.numOfRows())
        , m_above(m_numOfColumns)
        , m_sums(m_numOfRows)
    {}

    void run()
    {
        reduce();
        accumulateRight();
        accumulateLeft();
        for (std::size_t k = m_numOfColumns; k-- > 0;)
            diagonalise(k);
    }

private:
    // Two diagonals remain: m_w and, above it, m_above.
    void reduce()
    {
        std::size_t const m = m_numOfRows;
        std::size_t const n = m_numOfColumns;
        double above = 0;
        for (std::size_t i = 0; i < n; ++i) {
            m_above[i] = above;
            m_w[i] = reflectColumn(i, m, n);
            above = i + 1 < n ? reflectRow(i, m, n) : 0;
            m_norm = std::max(m_norm, std::abs(m_w[i]) + std::abs(m_above[i]));
        }
    }

    double reflectColumn(std::size_t i, std::size_t m, std::size_t n)
    {
        double* const column = m_u[i];
        double scale = 0;
        for (std::size_t k = i; k < m; ++k)
            scale += std::abs(column[k]);
        if (scale == 0)
            return 0;
        for (std::size_t k = i; k < m; ++k)
            column[k] /= scale;
        double const s = dot(column, column, i, m);
        double const f = column[i];
        double const g = -std::copysign(std::sqrt(s), f);
        double const h = f * g - s;
        column[i] = f - g;
        for (std::size_t j = i + 1; j < n; ++j)
            add(m_u[j], dot(column, m_u[j], i, m) / h, column, i, m);
        for (std::size_t k = i; k < m; ++k)
            column[k] *= scale;
        return scale * g;
    }

    double reflectRow(std::size_t i, std::size_t m, std::size_t n)
    {
        std::size_t const l = i + 1;
        double scale = 0;
        for (std::size_t k = l; k < n; ++k)
            scale += std::abs(m_u[k][i]);
        if (scale == 0)
            return 0;
        double s = 0;
        for (std::size_t k = l; k < n; ++k) {
            m_u[k][i] /= scale;
            s += m_u[k][i] * m_u[k][i];
        }
        double const f = m_u[l][i];
        double const g = -std::copysign(std::sqrt(s), f);
        double const h = f * g - s;
        m_u[l][i] = f - g;
        std::fill(m_sums.begin(), m_sums.end(), 0);
        for (std::size_t k = l; k < n; ++k)
            add(m_sums.data(), m_u[k][i], m_u[k], l, m);
        for (std::size_t k = l; k < n; ++k) {
            add(m_u[k], m_u[k][i] / h, m_sums.data(), l, m);
            m_u[k][i] *= scale;
        }
        return scale * g;
    }

    void accumulateRight()
    {
        std::size_t const n = m_numOfColumns;
        for (std::size_t i = n; i-- > 0;) {
            std::size_t const l = i + 1;
            double* const column = m_v[i];
            if (l < n && m_above[l] != 0) {
                for (std::size_t j = l; j < n; ++j)
                    column[j] = m_u[j][i] / m_u[l][i] / m_above[l]; // twice, so that nothing overflows
                for (std::size_t j = l; j < n; ++j) {
                    double s = 0;
                    for (std::size_t k = l; k < n; ++k)
                        s += m_u[k][i] * m_v[j][k];
                    add(m_v[j], s, column, l, n);
                }
                std::fill(column + l, column + n, 0);
            }
            column[i] = 1;
        }
    }

    void accumulateLeft()
    {
        std::size_t const m = m_numOfRows;
        std::size_t const n = m_numOfColumns;
        for (std::size_t i = n; i-- > 0;) {
            double* const column = m_u[i];
            double const g = m_w[i];
            for (std::size_t j = i + 1; j < n; ++j)
                m_u[j][i] = 0;
            if (g != 0) {
                for (std::size_t j = i + 1; j < n; ++j)
                    add(m_u[j], dot(column, m_u[j], i + 1, m) / column[i] / g, column, i, m);
                for (std::size_t k = i; k < m; ++k)
                    column[k] /= g;
            } else {
                std::fill(column + i, column + m, 0);
            }
            column[i] += 1;
        }
    }

    bool isNegligible(double value) const { return std::abs(value) + m_norm == m_norm; }

    // The QR steps that find singular value k.
    void diagonalise(std::size_t k)
    {
        constexpr int maxNumOfIterations = 30;
        for (int iteration = 1;; ++iteration) {
            std::size_t const l = splitBelow(k);
            if (l == k) {
                if (m_w[k] < 0) {
                    m_w[k] = -m_w[k];
                    for (std::size_t i = 0; i < m_numOfColumns; ++i)
                        m_v[k][i] = -m_v[k][i];
                }
                return;
            }
            if (iteration == maxNumOfIterations)
                QEL_THROW(RuntimeError, "no convergence in 30 Singular Value Decomposition iterations");
            step(l, k);
        }
    }

    // The part of the diagonals from the result to k stands alone.
    std::size_t splitBelow(std::size_t k)
    {
        std::size_t l = k;
        while (l > 0 && !isNegligible(m_above[l])) {
            if (isNegligible(m_w[l - 1])) {
                cancel(l, k);
                break;
            }
            --l;
        }
        return l;
    }

    // A diagonal element before l is 0: what stands above l goes, too.
    void cancel(std::size_t l, std::size_t k)
    {
        double c = 0;
        double s = 1;
        for (std::size_t i = l; i <= k; ++i) {
            double const f = s * m_above[i];
            m_above[i] = c * m_above[i];
            if (isNegligible(f))
                break;
            double const g = m_w[i];
            double const h = lengthOf(f, g);
            m_w[i] = h;
            c = g / h;
            s = -f / h;
            rotate(m_u[l - 1], m_u[i], m_numOfRows, c, s);
        }
    }

    void step(std::size_t l, std::size_t k)
    {
        // The shift comes from the last 2 by 2 minor.
        double x = m_w[l];
        double y = m_w[k - 1];
        double z = m_w[k];
        double g = m_above[k - 1];
        double h = m_above[k];
        double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
        g = lengthOf(f, 1);
        f = ((x - z) * (x + z) + h * (y / (f + std::copysign(g, f)) - h)) / x;
        double c = 1;
        double s = 1;
        for (std::size_t j = l; j < k; ++j) {
            std::size_t const i = j + 1;
            g = m_above[i];
            y = m_w[i];
            h = s * g;
            g = c * g;
            z = lengthOf(f, h);
            m_above[j] = z;
            turnOnto(f, h, z, c, s);
            f = x * c + g * s;
            g = g * c - x * s;
            h = y * s;
            y = y * c;
            rotate(m_v[j], m_v[i], m_numOfColumns, c, s);
            z = lengthOf(f, h);
            m_w[j] = z;
            turnOnto(f, h, z, c, s);
            f = c * g + s * y;
            x = c * y - s * g;
            rotate(m_u[j], m_u[i], m_numOfRows, c, s);
        }
        m_above[l] = 0;
        m_above[k] = f;
        m_w[k] = x;
    }

    // Any turn will do for a vector without a length: it keeps the last one.
    static void turnOnto(double f, double h, double length, double& c, double& s)
    {
        if (length != 0) {
            c = f / length;
            s = h / length;
        }
    }

    Matrix<double>& m_u;
    Vector<double>& m_w;
    Matrix<double>& m_v;
    std::size_t m_numOfRows;
    std::size_t m_numOfColumns;
    std::vector<double> m_above;
    std::vector<double> m_sums;
    double m_norm = 0;
};

void transpose(Matrix<double> const& from, Matrix<double>& to)
{
    for (std::size_t row = 0; row < from.numOfRows(); ++row)
        for (std::size_t column = 0; column < from.numOfColumns(); ++column)
            to(column, row) = from(row, column);
}

/// The algorithm squares elements. Where squares would overflow or vanish, divides all by a power of two, which changes
/// no digit, and gives its exponent. What is below any rounding of the greatest element by far becomes 0. Throws where
/// an element is no finite number.
int makeSquarable(Matrix<double>& u)
{
    constexpr double tiny = 0x1p-300;
    double largest = 0;
    double smallest = std::numeric_limits<double>::max();
    auto const forEach = [&u](auto const& function) {
        for (std::size_t i = 0; i < u.numOfRows(); ++i)
            std::for_each(u[i], u[i] + u.numOfColumns(), function);
    };
    forEach([&](double element) {
        if (!std::isfinite(element))
            QEL_THROW(RuntimeError, "no convergence in 30 Singular Value Decomposition iterations");
        largest = std::max(largest, std::abs(element));
        if (element != 0)
            smallest = std::min(smallest, std::abs(element));
    });
    if (largest < 1 / tiny && smallest > tiny)
        return 0;
    int const exponent = largest > 0 ? std::ilogb(largest) : 0;
    forEach([exponent](double& element) {
        element = std::scalbn(element, -exponent);
        if (std::abs(element) < tiny)
            element = 0;
    });
    return exponent;
}

/// U and V are left transposed.
void decomposeTransposed(Matrix<double>& u, Vector<double>& w, Matrix<double>& v)
{
    std::size_t const n = u.numOfRows();
    int const exponent = makeSquarable(u);
    w.assign(n);
    v.assign(n, n);
    Decomposition(u, w, v).run();
    if (exponent != 0)
        for (std::size_t i = 0; i < n; ++i)
            w[i] = std::scalbn(w[i], exponent);
}

} // namespace

void singularValueDecomposition(Matrix<double>& a, Vector<double>& w, Matrix<double>& v)
{
    if (a.numOfRows() < a.numOfColumns())
        QEL_THROW(InvalidCall, "A matrix with fewer rows than columns cannot be decomposed.");
    Matrix<double> u(a.numOfColumns(), a.numOfRows());
    transpose(a, u);
    Matrix<double> rightTransposed;
    decomposeTransposed(u, w, rightTransposed);
    transpose(u, a);
    v.assign(w.size(), w.size());
    transpose(rightTransposed, v);
}

void fitSVD(Matrix<double> const& a, Matrix<double> const& b, Matrix<double>& x)
{
    constexpr double smallest = 1e-5;
    std::size_t const n = a.numOfColumns();
    Matrix<double> u(n, std::max(a.numOfRows(), n));
    transpose(a, u);
    Vector<double> w;
    Matrix<double> v;
    decomposeTransposed(u, w, v);
    x.assign(n, b.numOfColumns());
    for (std::size_t i = 0; i < n; ++i) {
        if (!(std::abs(w[i]) > smallest))
            continue;
        for (std::size_t side = 0; side < b.numOfColumns(); ++side) {
            double sum = 0;
            for (std::size_t row = 0; row < b.numOfRows(); ++row)
                sum += u[i][row] * b(row, side);
            double const along = sum / w[i];
            for (std::size_t j = 0; j < n; ++j)
                x(j, side) += v[i][j] * along;
        }
    }
}

void fitSVD(Matrix<double> const& a, Vector<double> const& b, Vector<double>& x)
{
    Matrix<double> sides(b.size(), 1);
    for (std::size_t row = 0; row < b.size(); ++row)
        sides(row, 0) = b[row];
    Matrix<double> solution;
    fitSVD(a, sides, solution);
    x.assign(solution.numOfRows());
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = solution(i, 0);
}

} // namespace qel::math
