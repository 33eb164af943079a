#include "Core/tests/Support/Expect.h"
#include "Math/private/SingularValueDecomposition.h"

#include <gtest/gtest.h>

#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace qel;
using math::Matrix;

namespace {

constexpr char const* noConvergence = "no convergence in 30 Singular Value Decomposition iterations";

Matrix<double> randomMatrix(std::size_t rows, std::size_t columns, unsigned seed, double scale = 1)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> draw(-scale, scale);
    Matrix<double> matrix(rows, columns);
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j)
            matrix(i, j) = draw(generator);
    return matrix;
}

Eigen::MatrixXd toEigen(Matrix<double> const& matrix)
{
    Eigen::MatrixXd copy(matrix.numOfRows(), matrix.numOfColumns());
    for (std::size_t i = 0; i < matrix.numOfRows(); ++i)
        for (std::size_t j = 0; j < matrix.numOfColumns(); ++j)
            copy(i, j) = matrix(i, j);
    return copy;
}

Eigen::VectorXd toEigen(math::Vector<double> const& vector)
{
    Eigen::VectorXd copy(vector.size());
    for (std::size_t i = 0; i < vector.size(); ++i)
        copy(i) = vector[i];
    return copy;
}

// The factors are orthonormal, their product is the matrix, and the values are those of another library.
void expectDecomposed(Matrix<double> const& matrix)
{
    Matrix<double> u = matrix;
    math::Vector<double> w;
    Matrix<double> v;
    math::singularValueDecomposition(u, w, v);
    Eigen::MatrixXd const a = toEigen(matrix);
    double const tolerance = 1e-13 * std::max(1.0, a.norm()) * std::max(a.rows(), a.cols());
    Eigen::MatrixXd const left = toEigen(u);
    Eigen::MatrixXd const right = toEigen(v);
    Eigen::VectorXd values = toEigen(w);
    Eigen::MatrixXd const one = Eigen::MatrixXd::Identity(a.cols(), a.cols());
    EXPECT_LT((left.transpose() * left - one).norm(), 1e-12);
    EXPECT_LT((right.transpose() * right - one).norm(), 1e-12);
    EXPECT_LT((left * values.asDiagonal() * right.transpose() - a).norm(), tolerance);
    EXPECT_GE(values.minCoeff(), 0);
    std::sort(values.data(), values.data() + values.size(), std::greater<>());
    EXPECT_LT((values - Eigen::JacobiSVD<Eigen::MatrixXd>(a).singularValues()).norm(), tolerance);
}

} // namespace

TEST(SingularValueDecomposition, givesFactorsOfMatricesOfAllShapes)
{
    for (std::size_t columns : {1, 2, 3, 4, 9, 10, 20}) {
        for (std::size_t extra : {0, 1, 7, 40}) {
            for (unsigned seed = 1; seed <= 4; ++seed) {
                SCOPED_TRACE(testing::Message() << columns + extra << " x " << columns << ", seed " << seed);
                expectDecomposed(randomMatrix(columns + extra, columns, seed, std::pow(10.0, seed)));
            }
        }
    }
}

TEST(SingularValueDecomposition, givesOrthonormalFactorsOfMatricesWithoutFullRank)
{
    expectDecomposed(Matrix<double>(3, 3));
    expectDecomposed(Matrix<double>(5, 2));
    for (std::size_t rank : {1, 2, 3}) {
        for (unsigned seed = 1; seed <= 20; ++seed) {
            SCOPED_TRACE(testing::Message() << "rank " << rank << ", seed " << seed);
            Matrix<double> const a = randomMatrix(7, rank, seed);
            Matrix<double> const b = randomMatrix(rank, 4, seed + 100);
            Matrix<double> product(7, 4);
            for (std::size_t i = 0; i < 7; ++i)
                for (std::size_t j = 0; j < 4; ++j)
                    for (std::size_t k = 0; k < rank; ++k)
                        product(i, j) += a(i, k) * b(k, j);
            expectDecomposed(product);
        }
    }
    // Columns of zeros, at each place, and columns twice.
    for (std::size_t zero = 0; zero < 4; ++zero) {
        Matrix<double> matrix = randomMatrix(6, 4, 7);
        for (std::size_t i = 0; i < 6; ++i)
            matrix(i, zero) = 0;
        expectDecomposed(matrix);
        for (std::size_t i = 0; i < 6; ++i)
            matrix(i, zero) = matrix(i, (zero + 1) % 4);
        expectDecomposed(matrix);
    }
}

TEST(SingularValueDecomposition, givesFactorsOfDiagonalAndOfFarScaledMatrices)
{
    Matrix<double> diagonal(4, 4);
    for (std::size_t i = 0; i < 4; ++i)
        diagonal(i, i) = i % 2 ? -1.0 * i : 3;
    expectDecomposed(diagonal);
    Matrix<double> scaled = randomMatrix(8, 5, 3);
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t j = 0; j < 5; ++j)
            scaled(i, j) *= std::pow(10.0, 3.0 * j);
    expectDecomposed(scaled);
    expectDecomposed(randomMatrix(5, 5, 4, 1e-160));
}

TEST(SingularValueDecomposition, givesFactorsWhereSquaresOverflowOrVanish)
{
    // A power of two changes no digit.
    Matrix<double> const matrix = randomMatrix(7, 5, 9);
    Matrix<double> u = matrix, v;
    math::Vector<double> w;
    math::singularValueDecomposition(u, w, v);
    for (int exponent : {-600, -900, -301, 299, 305, 600, 1020}) {
        SCOPED_TRACE(exponent);
        Matrix<double> scaledU = matrix, scaledV;
        math::Vector<double> scaledW;
        for (std::size_t i = 0; i < 7; ++i)
            for (std::size_t j = 0; j < 5; ++j)
                scaledU(i, j) = std::scalbn(matrix(i, j), exponent);
        math::singularValueDecomposition(scaledU, scaledW, scaledV);
        EXPECT_EQ(toEigen(scaledU), toEigen(u));
        EXPECT_EQ(toEigen(scaledV), toEigen(v));
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_EQ(scaledW[i], std::scalbn(w[i], exponent));
    }
    // Numbers of few digits, and numbers beside which others are nothing.
    expectDecomposed(randomMatrix(4, 3, 5, 1e-320));
    Matrix<double> mixed = randomMatrix(8, 3, 6);
    for (double const small : {1e-310, 1e-320, 5e-324}) {
        for (std::size_t i = 0; i < 8; ++i)
            mixed(i, 1) = small * static_cast<double>(1 + i % 3);
        expectDecomposed(mixed);
    }
}

TEST(SingularValueDecomposition, refusesWideMatricesAndElementsThatAreNoNumbers)
{
    math::Vector<double> w;
    Matrix<double> v;
    Matrix<double> wide(2, 3);
    EXPECT_QEL_THROW(math::singularValueDecomposition(wide, w, v), InvalidCall,
                     "A matrix with fewer rows than columns cannot be decomposed.");
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Matrix<double> matrix = randomMatrix(4, 3, 1);
        matrix(2, 1) = bad;
        EXPECT_QEL_THROW(math::singularValueDecomposition(matrix, w, v), RuntimeError, noConvergence);
        Matrix<double> column(2, 1);
        column(1, 0) = bad;
        EXPECT_QEL_THROW(math::singularValueDecomposition(column, w, v), RuntimeError, noConvergence);
    }
}

TEST(FitSVD, givesTheLeastSquaresSolution)
{
    for (std::size_t columns : {1, 3, 6, 12}) {
        for (std::size_t extra : {0, 1, 30}) {
            SCOPED_TRACE(testing::Message() << columns + extra << " x " << columns);
            Matrix<double> const a = randomMatrix(columns + extra, columns, 5);
            Matrix<double> const sides = randomMatrix(columns + extra, 1, 6);
            math::Vector<double> b(columns + extra);
            for (std::size_t i = 0; i < b.size(); ++i)
                b[i] = sides(i, 0);
            math::Vector<double> x;
            math::fitSVD(a, b, x);
            Eigen::VectorXd const expected = toEigen(a).colPivHouseholderQr().solve(toEigen(b));
            EXPECT_LT((toEigen(x) - expected).norm(), 1e-10 * std::max(1.0, expected.norm()));
        }
    }
}

TEST(FitSVD, takesSmallSingularValuesForNothingByAnAbsoluteLimit)
{
    for (auto [value, solution] :
         {std::pair(1.01e-5, 1 / 1.01e-5), std::pair(1e-5, 0.0), std::pair(-2e-5, -1 / 2e-5)}) {
        Matrix<double> a(2, 2);
        a(0, 0) = 4;
        a(1, 1) = value;
        math::Vector<double> b(2);
        b[0] = 2;
        b[1] = 1;
        math::Vector<double> x;
        math::fitSVD(a, b, x);
        EXPECT_DOUBLE_EQ(x[0], 0.5);
        EXPECT_DOUBLE_EQ(x[1], solution);
    }
}

TEST(FitSVD, givesTheShortestSolutionOfSystemsThatLeaveAChoice)
{
    // x + y = 2 alone, with a row less than columns, and twice.
    for (std::size_t rows : {1, 2, 3}) {
        Matrix<double> a(rows, 2);
        math::Vector<double> b(rows);
        for (std::size_t i = 0; i < rows; ++i) {
            a(i, 0) = a(i, 1) = 1;
            b[i] = 2;
        }
        math::Vector<double> x;
        math::fitSVD(a, b, x);
        EXPECT_NEAR(x[0], 1, 1e-14);
        EXPECT_NEAR(x[1], 1, 1e-14);
    }
}

TEST(FitSVD, solvesForSeveralRightSidesAsForEach)
{
    Matrix<double> const a = randomMatrix(9, 4, 11);
    Matrix<double> const sides = randomMatrix(9, 3, 12);
    Matrix<double> all;
    math::fitSVD(a, sides, all);
    for (std::size_t side = 0; side < 3; ++side) {
        math::Vector<double> b(9);
        for (std::size_t i = 0; i < 9; ++i)
            b[i] = sides(i, side);
        math::Vector<double> x;
        math::fitSVD(a, b, x);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(x[i], all(i, side));
    }
}
