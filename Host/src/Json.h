#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace host {

/// Keeps the order in which entries are added.
using Json = nlohmann::ordered_json;

/// A double as JSON has it: non-finite ones as "NaN", "Infinity", "-Infinity".
Json jsonOf(double value);

/// The text of `value` in one line. Integers are exact; doubles have 17 significant digits, so that reading them gives
/// the same bits; bytes that are no UTF-8 are replaced.
std::string toText(Json const& value);

} // namespace host
