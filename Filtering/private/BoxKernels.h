#pragma once

#include "Core/private/Helper/convertVoxel.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

// The row kernels of the box filters. Not inlined: one copy serves all bodies of a pair of types.

namespace qel::filtering::smoothing {

/// What sums of a work type are kept in. Integers are summed unsigned, so that they may wrap on their way: the last sum
/// fits. Reals are summed in double, and so a box of one value has exactly that mean.
template <class Work> struct SumOf
{
    using type = double;
};
template <> struct SumOf<unsigned short>
{
    using type = unsigned short;
};
template <> struct SumOf<short>
{
    using type = unsigned short;
};
template <> struct SumOf<int>
{
    using type = unsigned int;
};

/// Whether sums of so many voxels are exact in any order.
template <class T, class Sum> bool sumsAreExact(double numOfVoxels)
{
    if constexpr (std::is_integral_v<Sum>)
        return true;
    else if constexpr (std::is_integral_v<T>)
        return numOfVoxels * static_cast<double>(std::numeric_limits<std::make_unsigned_t<T>>::max()) <= 0x1p+53;
    else
        return false;
}

/// sum += row
template <class Sum, class T> void addRow(T const* __restrict row, Sum* __restrict sum, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        sum[x] = static_cast<Sum>(sum[x] + static_cast<Sum>(row[x]));
}

/// out = row
template <class Sum, class T> void convertRow(T const* __restrict row, Sum* __restrict out, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = static_cast<Sum>(row[x]);
}

/// out = row + behind
template <class Sum, class T>
[[gnu::noinline]] void addRows(T const* __restrict row, Sum const* __restrict behind, Sum* __restrict out,
                               std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = static_cast<Sum>(static_cast<Sum>(row[x]) + behind[x]);
}

/// head += row; out = tail + head
template <class Sum, class T>
[[gnu::noinline]] void enterRow(T const* __restrict row, Sum const* __restrict tail, Sum* __restrict head,
                                Sum* __restrict out, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        Sum const sum = static_cast<Sum>(head[x] + static_cast<Sum>(row[x]));
        head[x] = sum;
        out[x] = static_cast<Sum>(tail[x] + sum);
    }
}

/// head += row; out = tail + (middle + head)
template <class Sum, class T>
[[gnu::noinline]] void enterRow(T const* __restrict row, Sum const* __restrict tail, Sum const* __restrict middle,
                                Sum* __restrict head, Sum* __restrict out, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        Sum const sum = static_cast<Sum>(head[x] + static_cast<Sum>(row[x]));
        head[x] = sum;
        out[x] = static_cast<Sum>(tail[x] + static_cast<Sum>(middle[x] + sum));
    }
}

/// sum = out - row
template <class Sum, class T>
[[gnu::noinline]] void leaveRow(T const* __restrict row, Sum const* __restrict out, Sum* __restrict sum,
                                std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        sum[x] = static_cast<Sum>(out[x] - static_cast<Sum>(row[x]));
}

/// How many rows `sumAlongRows` takes at once: the additions along one row wait for each other, those of several rows
/// do not.
inline constexpr unsigned long rowsAtOnce = 4;

/// Sums of `size` successive values of each of four rows: out[x] = in[x] + ... + in[x + size - 1]. A row of `in` has
/// `count + size - 1` values, and rows stand `inStride` and `outStride` values apart.
///
/// Segments of `size` values start at fixed columns of the image; in[0] is the value `phase` of its segment. A sum is
/// the tail of one segment and the head of the next, and so needs three additions whatever the size. `tails` has room
/// for four times `size`. Integers, whose sums are exact, slide.
template <class Sum>
[[gnu::noinline]] void sumAlongRows(Sum const* __restrict in, std::size_t inStride, Sum* __restrict out,
                                    std::size_t outStride, std::size_t count, std::size_t size, std::size_t phase,
                                    Sum* __restrict tails)
{
    if constexpr (std::is_integral_v<Sum>) {
        unsigned int sums[rowsAtOnce] = {};
        for (std::size_t row = 0; row < rowsAtOnce; ++row)
            for (std::size_t i = 0; i + 1 < size; ++i)
                sums[row] += in[row * inStride + i];
        for (std::size_t x = 0; x < count; ++x)
            for (std::size_t row = 0; row < rowsAtOnce; ++row) {
                Sum const* const at = in + row * inStride + x;
                unsigned int const sum = sums[row] + at[size - 1];
                out[row * outStride + x] = static_cast<Sum>(sum);
                sums[row] = sum - at[0];
            }
        return;
    }
    auto const add = [](Sum& sum, Sum value) { sum = static_cast<Sum>(sum + value); };
    for (std::size_t done = 0; done < count; phase = 0) {
        std::size_t const length = size - phase; // of what is left of the segment
        std::size_t const outputs = std::min(length, count - done);
        Sum const* const in0 = in + done;
        Sum const* const in1 = in0 + inStride;
        Sum const* const in2 = in1 + inStride;
        Sum const* const in3 = in2 + inStride;
        Sum sum0 = 0, sum1 = 0, sum2 = 0, sum3 = 0;
        for (std::size_t i = length; i-- > 0;) {
            add(sum0, in0[i]);
            add(sum1, in1[i]);
            add(sum2, in2[i]);
            add(sum3, in3[i]);
            tails[4 * i] = sum0;
            tails[4 * i + 1] = sum1;
            tails[4 * i + 2] = sum2;
            tails[4 * i + 3] = sum3;
        }
        sum0 = sum1 = sum2 = sum3 = 0;
        // The head of the next segment that belongs to the first sum.
        for (std::size_t i = length; i < size; ++i) {
            add(sum0, in0[i]);
            add(sum1, in1[i]);
            add(sum2, in2[i]);
            add(sum3, in3[i]);
        }
        Sum* const out0 = out + done;
        Sum* const out1 = out0 + outStride;
        Sum* const out2 = out1 + outStride;
        Sum* const out3 = out2 + outStride;
        out0[0] = static_cast<Sum>(tails[0] + sum0);
        out1[0] = static_cast<Sum>(tails[1] + sum1);
        out2[0] = static_cast<Sum>(tails[2] + sum2);
        out3[0] = static_cast<Sum>(tails[3] + sum3);
        for (std::size_t i = 1; i < outputs; ++i) {
            std::size_t const next = size + i - 1;
            add(sum0, in0[next]);
            add(sum1, in1[next]);
            add(sum2, in2[next]);
            add(sum3, in3[next]);
            out0[i] = static_cast<Sum>(tails[4 * i] + sum0);
            out1[i] = static_cast<Sum>(tails[4 * i + 1] + sum1);
            out2[i] = static_cast<Sum>(tails[4 * i + 2] + sum2);
            out3[i] = static_cast<Sum>(tails[4 * i + 3] + sum3);
        }
        done += outputs;
    }
}

struct BoxFilterOperator_SumTag
{};
struct BoxFilterOperator_NormalizeTag
{};

/// The sum, as voxels of the work type.
template <class Work, class Out>
[[gnu::noinline]] void finishRow(typename SumOf<Work>::type const* __restrict sum, Out* __restrict out,
                                 std::size_t count, double, BoxFilterOperator_SumTag)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = static_cast<Out>(static_cast<Work>(sum[x]));
}

/// The sum divided by the area of the box, cut towards zero.
///
/// To multiply by the reciprocal is exact with half a voxel more: the quotient is then further from any whole number,
/// by half of 1 / area at least, than the product can be wrong.
template <class Real, class Work, class Out>
void divideRow(typename SumOf<Work>::type const* __restrict sum, Out* __restrict out, std::size_t count, double area)
{
    Real const reciprocal = Real(1) / static_cast<Real>(area);
    for (std::size_t x = 0; x < count; ++x) {
        Real const value = static_cast<Real>(static_cast<int>(static_cast<Work>(sum[x])));
        Real const half = std::is_signed_v<Out> && value < 0 ? Real(-0.5) : Real(0.5);
        out[x] = static_cast<Out>(static_cast<int>((value + half) * reciprocal));
    }
}

/// Of 8-bit voxels, boxes up to this area are divided in float: sums are below 2^23, so that half a voxel more is
/// exact, and a quotient up to 256 is wrong by 2^-15 at most, with half of 1 / area above 2^-15 * 4 / 3.
inline constexpr double largestAreaInFloat = 12288;

/// The same for floats, which have fewer digits than their sums: by factors a little below and above the reciprocal.
/// Where both give one float, the quotient between them is that float too. False where they do not, which is rare.
inline bool divideRowByFactors(double const* __restrict sum, float* __restrict out, std::size_t count, double area)
{
    double const low = (1.0 / area) * (1.0 - 0x1p-50);
    double const high = (1.0 / area) * (1.0 + 0x1p-50);
    std::uint32_t difference = 0;
    for (std::size_t x = 0; x < count; ++x) {
        float const below = static_cast<float>(sum[x] * low);
        float const above = static_cast<float>(sum[x] * high);
        out[x] = below;
        difference |= std::bit_cast<std::uint32_t>(below) ^ std::bit_cast<std::uint32_t>(above);
    }
    return difference == 0;
}

template <class Work, class Out>
[[gnu::noinline]] void finishRow(typename SumOf<Work>::type const* __restrict sum, Out* __restrict out,
                                 std::size_t count, double area, BoxFilterOperator_NormalizeTag)
{
    if constexpr (std::is_floating_point_v<Work>) {
        if constexpr (std::is_same_v<Out, float>)
            if (divideRowByFactors(sum, out, count, area))
                return;
        for (std::size_t x = 0; x < count; ++x)
            out[x] = helper::convertVoxel<Out>(sum[x] / area);
    } else if constexpr (sizeof(Work) == 2) {
        divideRow<float, Work>(sum, out, count, area);
    } else {
        if (sizeof(Out) == 1 && area <= largestAreaInFloat)
            divideRow<float, Work>(sum, out, count, area);
        else
            divideRow<double, Work>(sum, out, count, area);
    }
}

} // namespace qel::filtering::smoothing
