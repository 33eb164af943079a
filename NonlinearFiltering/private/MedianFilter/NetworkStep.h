#pragma once

namespace qel::nonlinear_filtering {

/// The minimum and the maximum of two rows, lane by lane; rows are registers of a table of pointers.
struct NetworkStep
{
    static constexpr unsigned int none = ~0u;

    unsigned int first;
    unsigned int second;
    long firstLane; // of the source that meets lane 0 of the results
    long secondLane;
    unsigned int minimum; // one of both may be none
    unsigned int maximum;
    unsigned long excess; // how many lanes more than wanted
};

} // namespace qel::nonlinear_filtering
