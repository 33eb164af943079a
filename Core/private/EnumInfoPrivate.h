#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

/// What stands behind an EnumInfo.
class EnumInfoPrivate
{
public:
    /// Reads a declaration such as "RED = 0, GREEN, BLUE = 7, LAST = BLUE" into the tables below.
    void parse(std::string const& declaration);

    std::string name;
    std::map<std::string, int> valueOfLabel;
    std::map<int, std::vector<std::string>> labelsOfValue; ///< labels in declaration order
    std::vector<std::pair<int, std::string>> items;        ///< in declaration order
};
