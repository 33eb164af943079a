#pragma once

namespace qel::nonlinear_filtering {

/// The histograms of all columns under windows that stand side by side in one row, for keys of 8 bits.
///
/// They are cumulative, in 16 steps of 16 values: `coarse` has, for each column, how many keys lie in the steps up to
/// each one; `fine` has, for each step and column, how many keys of that step are up to each value. A sum of cumulative
/// histograms is cumulative too, so a window slides by adding one column and taking away another, and its median is
/// found by counting, without a branch, the steps that do not reach the rank. What is fine is made for the one step
/// that the median lies in, from where it stood when it was last asked for.
///
/// Reference: S. Perreault, P. Hebert, "Median filtering in constant time", IEEE Trans. Image Processing
/// 16(9):2389-2394, 2007.
struct ColumnHistograms
{
    /// Above, the number of keys under a window would leave 15 bits.
    static constexpr unsigned long largestRadius = 90;

    unsigned char* coarse; // columns x 16
    unsigned char* fine;   // 16 x columns x 16
    unsigned long columns; // those of the row, and the radius on either side
    unsigned long radius;
};

/// Adds a row of keys to the columns, and takes one away unless that is null.
void moveColumns(ColumnHistograms const& histograms, unsigned char const* entering, unsigned char const* leaving);

/// The medians of `count` windows.
void mediansOfColumns(ColumnHistograms const& histograms, unsigned char* medians, unsigned long count);

} // namespace qel::nonlinear_filtering
