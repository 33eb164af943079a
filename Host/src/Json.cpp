#include "Json.h"

#include "TextForms.h"

#include <charconv>
#include <cmath>

namespace host {

namespace {

void append(std::string& text, Json const& value)
{
    switch (value.type()) {
    case Json::value_t::object: {
        text += '{';
        bool first = true;
        for (auto const& [key, entry] : value.items()) {
            if (!first)
                text += ", ";
            first = false;
            append(text, Json(key));
            text += ": ";
            append(text, entry);
        }
        text += '}';
        break;
    }
    case Json::value_t::array: {
        text += '[';
        bool first = true;
        for (Json const& entry : value) {
            if (!first)
                text += ", ";
            first = false;
            append(text, entry);
        }
        text += ']';
        break;
    }
    case Json::value_t::number_float: {
        char digits[64];
        auto const end =
            std::to_chars(digits, digits + sizeof digits, value.get<double>(), std::chars_format::general, 17);
        text += withPoint(std::string(digits, end.ptr));
        break;
    }
    default:
        text += value.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
}

} // namespace

Json jsonOf(double value)
{
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value < 0 ? "-Infinity" : "Infinity";
    return value;
}

std::string toText(Json const& value)
{
    std::string text;
    append(text, value);
    return text;
}

} // namespace host
