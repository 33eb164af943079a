#pragma once

#include "Math/private/Matrix.h"

namespace qel::math {

/// Decomposes `a`, of m rows and n columns with m >= n, into U W V^T. `a` becomes U, of m by n, `w` the n singular
/// values, in no order, none below 0, and `v` the n by n matrix V. The columns of V are orthonormal, and so are those
/// of U, also where singular values are 0.
///
/// Householder reductions to two diagonals, then implicit QR steps on these. Throws RuntimeError "no convergence in 30
/// Singular Value Decomposition iterations" where a singular value is not found in as many, which happens for elements
/// that are no finite numbers; InvalidCall where m < n.
/// Reference: G. H. Golub, C. Reinsch, "Singular value decomposition and least squares solutions", Numerische
/// Mathematik 14:403-420, 1970.
void singularValueDecomposition(Matrix<double>& a, Vector<double>& w, Matrix<double>& v);

/// The least-squares solution of a x = b with the smallest norm. A singular value whose absolute value is at most 1e-5
/// counts as 0. A matrix with fewer rows than columns is as if it had rows of zeros below. Throws what
/// singularValueDecomposition() throws.
void fitSVD(Matrix<double> const& a, Vector<double> const& b, Vector<double>& x);

/// The same for several right sides, the columns of `b`, with one decomposition; each gives a column of `x`.
void fitSVD(Matrix<double> const& a, Matrix<double> const& b, Matrix<double>& x);

} // namespace qel::math
