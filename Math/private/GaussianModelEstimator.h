#pragma once

#include <vector>

#include <Eigen/Core>

namespace qel::math {

/// The determinant by an LU decomposition with row pivots; 1 without rows.
double determinant(Eigen::MatrixXd const& matrix);
/// The general inverse. Of a singular matrix it holds what the division by 0 gives.
Eigen::MatrixXd inverse(Eigen::MatrixXd const& matrix);
/// How many singular values stand above the rounding of the largest. 0 for a matrix with an element that is not finite.
long rank(Eigen::MatrixXd const& matrix);

/// A Gaussian in many dimensions, estimated from samples: sums first, then, once finalised, mean, covariance and
/// inverse covariance.
///
/// Without samples mean and covariance are NaN. It exists for double.
template <class T> class GaussianModelEstimator
{
public:
    using VectorType = Eigen::Matrix<T, Eigen::Dynamic, 1>;
    using MatrixType = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;

    explicit GaussianModelEstimator(long dimension = 0);

    long getDimension() const { return m_dimension; }
    unsigned long getCount() const { return m_count; }
    bool isFinalized() const { return m_isFinalized; }

    /// Adds a sample, which has the dimension of the model, to the sums.
    void add(VectorType const& sample);
    /// Turns the sums into mean, covariance and inverse. Once is enough.
    void finalize();
    /// Turns mean and covariance back into the sums of all samples so far, so that others can be added. Without samples
    /// these are NaN, and stay so whatever is added.
    void reopen();
    /// No samples, nothing but zeros, not finalised.
    void clear();
    /// The same, but finalised: what other finalised models are joined into.
    void clearToFinalized();

    /// Takes the samples of another finalised model in. Throws RuntimeError on other dimensions, and where either is
    /// not finalised.
    void join(GaussianModelEstimator const& other);
    /// Adds the sums of another model that is not finalised. Throws RuntimeError on other dimensions, and where either
    /// is finalised.
    void joinUnfinalized(GaussianModelEstimator const& other);

    /// The model of some of the dimensions, in ascending order, whatever the order of `indices`. Throws RuntimeError
    /// where it is not finalised, BadIndex on an index that does not exist or comes twice.
    GaussianModelEstimator reduce(std::vector<long> const& indices) const;

    /// Throw InvalidCall where the model is not finalised.
    VectorType const& getMeanVector() const;
    MatrixType const& getCovarianceMatrix() const;

    /// Makes inverse and determinant term anew, from the covariance.
    void inverseCovarianceMatrix();
    MatrixType const& getInverseCovarianceMatrix() const { return m_inverseCovariance; }
    /// Minus the logarithm of the determinant of the covariance.
    T getDeterminantTerm() const { return m_determinantTerm; }
    /// Mean and covariance, or their sums, whatever the state.
    VectorType const& getMeanOrSum() const { return m_mean; }
    MatrixType const& getCovarianceOrSum() const { return m_covariance; }

    /// Puts another variance of one dimension into the covariance; inverse and determinant term stay as they were.
    void setVariance(long index, T variance) { m_covariance(index, index) = variance; }

    /// Writes it to, or reads it from, an archive. The inverse is not stored. Reading throws archive::Corrupted.
    template <class Archive> void serialize(Archive& archive);

private:
    long m_dimension;
    VectorType m_mean;              // the sum of the samples until it is finalised
    MatrixType m_covariance;        // the sum of x(i) x(j) for i <= j until it is finalised
    MatrixType m_inverseCovariance; // of no meaning until it is finalised
    unsigned long m_count;
    T m_determinantTerm;
    bool m_isFinalized;
};

extern template class GaussianModelEstimator<double>;

} // namespace qel::math
