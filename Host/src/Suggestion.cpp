#include "Suggestion.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace host {

namespace {

// A letter in the wrong case is a smaller error than a wrong letter.
unsigned long const wrongCase = 1;
unsigned long const wrongLetter = 4;

unsigned long cost(char a, char b)
{
    if (a == b)
        return 0;
    auto const lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return lower(a) == lower(b) ? wrongCase : wrongLetter;
}

// Edit distance with swaps of neighbours.
unsigned long distance(std::string const& a, std::string const& b)
{
    std::vector<std::vector<unsigned long>> table(a.size() + 1, std::vector<unsigned long>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        table[i][0] = i * wrongLetter;
    for (std::size_t j = 0; j <= b.size(); ++j)
        table[0][j] = j * wrongLetter;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            table[i][j] = std::min({table[i - 1][j] + wrongLetter, table[i][j - 1] + wrongLetter,
                                    table[i - 1][j - 1] + cost(a[i - 1], b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + wrongLetter);
        }
    }
    return table[a.size()][b.size()];
}

} // namespace

std::string nearestName(std::string const& name, std::vector<std::string> const& candidates)
{
    // Nobody types a name this long: comparing it would only cost time.
    std::string const typed = name.substr(0, 200);
    std::string nearest;
    unsigned long least = std::numeric_limits<unsigned long>::max();
    for (std::string const& candidate : candidates) {
        unsigned long const errors = distance(typed, candidate);
        if (errors < least) {
            least = errors;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string unknownName(std::string const& what, std::string const& name, std::vector<std::string> const& candidates)
{
    std::string text = "no " + what + " \"" + name + "\"";
    std::string const nearest = nearestName(name, candidates);
    if (!nearest.empty())
        text += "; the nearest is \"" + nearest + "\"";
    return text;
}

} // namespace host
