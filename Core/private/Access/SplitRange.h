#pragma once

#include <algorithm>
#include <qel/access/Range.h>

namespace qel::access {

inline bool isEmpty(Range const& range) { return range.begin >= range.end; }

inline bool isDivisible(Range const& range) { return !isEmpty(range) && range.end - range.begin > range.grain; }

// Whether `a` has a greater ratio of size to grain than `b`. Cross products: no quotient, and false on a tie.
inline bool isLonger(Range const& a, Range const& b)
{
    double const sizeA = static_cast<double>(a.end - a.begin);
    double const sizeB = static_cast<double>(b.end - b.begin);
    return static_cast<double>(b.grain) * sizeA > sizeB * static_cast<double>(a.grain);
}

// A grain of 0 would be split for ever.
inline Range withUsableGrain(Range const& range) { return {range.end, range.begin, std::max(range.grain, 1ul)}; }

// `left` keeps the first half, `right` becomes the second.
inline void cut(Range& left, Range& right)
{
    unsigned long const middle = left.begin + (left.end - left.begin) / 2;
    right = {left.end, middle, left.grain};
    left.end = middle;
}

} // namespace qel::access
