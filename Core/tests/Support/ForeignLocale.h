#pragma once

#include <locale>
#include <string>

namespace qel::test {

/// While it lives, the host's global locale writes numbers like 1.234,5: the library must not care.
class ForeignLocale
{
public:
    ForeignLocale()
        : old(std::locale::global(std::locale(std::locale::classic(), new Punctuation)))
    {}
    ~ForeignLocale() { std::locale::global(old); }
    ForeignLocale(ForeignLocale const&) = delete;
    ForeignLocale& operator=(ForeignLocale const&) = delete;

private:
    struct Punctuation : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
    };

    std::locale old;
};

} // namespace qel::test
