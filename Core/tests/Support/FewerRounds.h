#pragma once

namespace qel::test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

/// Leaves out most rounds of a test's loops in a program under a sanitizer, which is ten times slower and looks for
/// other faults than wrong results: one of `each` is run. It must not divide the length of an inner loop, of which only
/// one value would be met.
class FewerRounds
{
public:
    explicit FewerRounds(unsigned each = 7)
        : m_each(each)
    {}
    bool leaveThisOut() { return isSanitized && m_round++ % m_each != 0; }

private:
    unsigned m_each;
    unsigned m_round = 0;
};

} // namespace qel::test
