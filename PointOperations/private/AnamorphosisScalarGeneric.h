#pragma once

#include <cstddef>

namespace qel::point_operations {

struct AnamorphosisOperator_StandardTag
{};
struct AnamorphosisOperator_NoMinTag
{};
struct AnamorphosisOperator_NoStepTag
{};
struct AnamorphosisOperator_NoMin_NoStepTag
{};

/// The place of a voxel in the table. The four forms give the same values.
inline double anamorphosisIndex(AnamorphosisOperator_StandardTag, double voxel, double low, double step)
{
    return (voxel - low) / step;
}
inline double anamorphosisIndex(AnamorphosisOperator_NoMinTag, double voxel, double, double step)
{
    return voxel / step;
}
inline double anamorphosisIndex(AnamorphosisOperator_NoStepTag, double voxel, double low, double)
{
    return voxel - low;
}
inline double anamorphosisIndex(AnamorphosisOperator_NoMin_NoStepTag, double voxel, double, double) { return voxel; }

/// The results are of the voxel type already: one cast for each entry, none for each voxel.
template <class T> struct AnamorphosisScalarGeneric
{
    void (*row)(AnamorphosisScalarGeneric const&, T const*, T*, std::size_t);
    double low;
    double high;
    double step;
    T const* lut; // has an entry for each voxel of the range, and at least one
    T lowResult;
    T highResult;

    void operator()(T const* in, T* out, std::size_t count) const { row(*this, in, out, count); }
};

template <class Operator, class T>
void anamorphosisRow(AnamorphosisScalarGeneric<T> const& parameters, T const* __restrict in, T* __restrict out,
                     std::size_t count)
{
    AnamorphosisScalarGeneric<T> const p = parameters;
    for (std::size_t x = 0; x < count; ++x) {
        double const voxel = static_cast<double>(in[x]);
        // A NaN is neither below nor above: the first entry is its own.
        bool const isInRange = bool(int(voxel >= p.low) & int(voxel <= p.high));
        double const index = isInRange ? anamorphosisIndex(Operator(), voxel, p.low, p.step) : 0.0;
        T const result = p.lut[static_cast<long>(index)];
        out[x] = voxel < p.low ? p.lowResult : voxel > p.high ? p.highResult : result;
    }
}

/// For bytes: the result of each of them, computed once by one of the forms above.
template <class T> class AnamorphosisOfBytes
{
public:
    explicit AnamorphosisOfBytes(AnamorphosisScalarGeneric<T> const& kernel)
    {
        T voxels[256];
        for (unsigned int i = 0; i < 256; ++i)
            voxels[i] = static_cast<T>(i);
        kernel(voxels, m_results, 256);
    }

    void operator()(T const* __restrict in, T* __restrict out, std::size_t count) const
    {
        for (std::size_t x = 0; x < count; ++x)
            out[x] = m_results[static_cast<unsigned char>(in[x])];
    }

private:
    T m_results[256];
};

} // namespace qel::point_operations
