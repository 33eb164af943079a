#include "Math/private/GaussianModelEstimator.h"

#include "Core/private/Serialization/BinaryArchive.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <Eigen/LU>
#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel::math {

double determinant(Eigen::MatrixXd const& matrix)
{
    return matrix.rows() == 0 ? 1.0 : matrix.partialPivLu().determinant();
}

Eigen::MatrixXd inverse(Eigen::MatrixXd const& matrix)
{
    return matrix.rows() == 0 ? matrix : Eigen::MatrixXd(matrix.inverse());
}

long rank(Eigen::MatrixXd const& matrix)
{
    // The decomposition leaves its values unset where it meets a NaN.
    if (matrix.size() == 0 || !matrix.allFinite())
        return 0;
    Eigen::JacobiSVD<Eigen::MatrixXd> const decomposition(matrix);
    auto const& values = decomposition.singularValues();
    double const least = values(0) * static_cast<double>(std::max(matrix.rows(), matrix.cols())) *
                         std::numeric_limits<double>::epsilon();
    return (values.array() > least).count();
}

template <class T>
GaussianModelEstimator<T>::GaussianModelEstimator(long dimension)
    : m_dimension(dimension)
    , m_mean(VectorType::Zero(dimension))
    , m_covariance(MatrixType::Zero(dimension, dimension))
    , m_inverseCovariance(MatrixType::Zero(dimension, dimension))
    , m_count(0)
    , m_determinantTerm(0)
    , m_isFinalized(false)
{}

template <class T> void GaussianModelEstimator<T>::add(VectorType const& sample)
{
    m_mean += sample;
    for (long j = 0; j < m_dimension; ++j)
        m_covariance.col(j).head(j + 1) += sample(j) * sample.head(j + 1);
    ++m_count;
}

template <class T> void GaussianModelEstimator<T>::finalize()
{
    if (m_isFinalized)
        return;
    T const count = static_cast<T>(m_count);
    m_mean *= 1 / count;
    for (long j = 0; j < m_dimension; ++j) {
        m_covariance.col(j).head(j + 1) /= count;
        m_covariance.row(j).head(j) = m_covariance.col(j).head(j);
    }
    m_covariance.noalias() -= m_mean * m_mean.transpose();
    inverseCovarianceMatrix();
    m_isFinalized = true;
}

template <class T> void GaussianModelEstimator<T>::reopen()
{
    T const count = static_cast<T>(m_count);
    m_covariance.noalias() += m_mean * m_mean.transpose();
    m_covariance *= count;
    m_mean *= count;
    m_isFinalized = false;
}

template <class T> void GaussianModelEstimator<T>::clear()
{
    m_mean.setZero();
    m_covariance.setZero();
    m_inverseCovariance.setZero();
    m_count = 0;
    m_determinantTerm = 0;
    m_isFinalized = false;
}

template <class T> void GaussianModelEstimator<T>::clearToFinalized()
{
    clear();
    m_isFinalized = true;
}

template <class T> void GaussianModelEstimator<T>::join(GaussianModelEstimator const& other)
{
    if (m_dimension != other.m_dimension)
        QEL_THROW(RuntimeError, "The 2 models must have the same dimension");
    if (!m_isFinalized || !other.m_isFinalized)
        QEL_THROW(RuntimeError, "cannot join 2 models that have not been finalized");
    T const count = static_cast<T>(m_count);
    T const otherCount = static_cast<T>(other.m_count);
    T const total = static_cast<T>(m_count + other.m_count);
    MatrixType moment = (m_covariance + m_mean * m_mean.transpose()) * count;
    moment += (other.m_covariance + other.m_mean * other.m_mean.transpose()) * otherCount;
    m_mean = (m_mean * count + other.m_mean * otherCount) / total;
    m_covariance = moment / total - m_mean * m_mean.transpose();
    m_count += other.m_count;
    inverseCovarianceMatrix();
}

template <class T> void GaussianModelEstimator<T>::joinUnfinalized(GaussianModelEstimator const& other)
{
    if (m_dimension != other.m_dimension)
        QEL_THROW(RuntimeError, "The 2 models must have the same dimension");
    if (m_isFinalized || other.m_isFinalized)
        QEL_THROW(RuntimeError, "cannot join 2 models finalized");
    m_count += other.m_count;
    m_mean += other.m_mean;
    m_covariance += other.m_covariance;
}

template <class T> GaussianModelEstimator<T> GaussianModelEstimator<T>::reduce(std::vector<long> const& indices) const
{
    if (!m_isFinalized)
        QEL_THROW(RuntimeError, "cannot reduce a model that has not been finalized");
    std::vector<bool> isKept(static_cast<std::size_t>(m_dimension));
    for (long const index : indices) {
        if (index < 0 || index >= m_dimension)
            QEL_THROW(BadIndex, "The index does not exist");
        isKept[static_cast<std::size_t>(index)] = true;
    }
    std::vector<long> kept;
    for (long index = 0; index < m_dimension; ++index)
        if (isKept[static_cast<std::size_t>(index)])
            kept.push_back(index);
    if (kept.size() != indices.size())
        QEL_THROW(BadIndex, "Elements of the vector must be unique");

    GaussianModelEstimator reduced(static_cast<long>(kept.size()));
    reduced.m_mean = m_mean(kept);
    reduced.m_covariance = m_covariance(kept, kept);
    reduced.m_count = m_count;
    reduced.inverseCovarianceMatrix();
    reduced.m_isFinalized = true;
    return reduced;
}

template <class T>
typename GaussianModelEstimator<T>::VectorType const& GaussianModelEstimator<T>::getMeanVector() const
{
    if (!m_isFinalized)
        QEL_THROW(InvalidCall, "The Gaussian Model is not up to date.");
    return m_mean;
}

template <class T>
typename GaussianModelEstimator<T>::MatrixType const& GaussianModelEstimator<T>::getCovarianceMatrix() const
{
    if (!m_isFinalized)
        QEL_THROW(InvalidCall, "The Gaussian Model is not up to date.");
    return m_covariance;
}

template <class T> void GaussianModelEstimator<T>::inverseCovarianceMatrix()
{
    m_inverseCovariance = inverse(m_covariance);
    m_determinantTerm = -std::log(determinant(m_covariance));
}

template <class T> template <class Archive> void GaussianModelEstimator<T>::serialize(Archive& archive)
{
    long meanRows = m_dimension;
    long meanColumns = 1;
    long rows = m_dimension;
    long columns = m_dimension;
    // Of a file, all sizes must be those of the dimension, and fit in what is left of it.
    auto const check = [&]([[maybe_unused]] long size, [[maybe_unused]] long expected) {
        if constexpr (Archive::isReading)
            if (size != expected)
                throw archive::Corrupted();
    };
    auto const cells = [&archive](auto& matrix) {
        for (long column = 0; column < matrix.cols(); ++column)
            for (long row = 0; row < matrix.rows(); ++row)
                serialization::serialize(archive, matrix(row, column));
    };

    serialization::serialize(archive, m_dimension);
    serialization::serialize(archive, meanRows);
    check(meanRows, m_dimension);
    serialization::serialize(archive, meanColumns);
    check(meanColumns, 1);
    if constexpr (Archive::isReading) {
        // The square root of what 64 bits hold: no product of two sizes wraps.
        if (m_dimension < 0 || m_dimension > std::numeric_limits<int>::max())
            throw archive::Corrupted();
        unsigned long const size = static_cast<unsigned long>(m_dimension);
        archive.checkRoomFor(size * (size + 1), sizeof(T));
        *this = GaussianModelEstimator(m_dimension);
    }
    cells(m_mean);
    serialization::serialize(archive, rows);
    check(rows, m_dimension);
    serialization::serialize(archive, columns);
    check(columns, m_dimension);
    cells(m_covariance);
    serialization::serialize(archive, m_count);
    serialization::serialize(archive, m_isFinalized);
    if constexpr (Archive::isReading)
        inverseCovarianceMatrix();
}

template class GaussianModelEstimator<double>;
template void GaussianModelEstimator<double>::serialize(archive::BinaryInputArchive& archive);
template void GaussianModelEstimator<double>::serialize(archive::BinaryOutputArchive& archive);

} // namespace qel::math
