#include "ImageArgument.h"

#include "Errors.h"
#include "Suggestion.h"
#include "TextForms.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace host {

namespace {

std::vector<std::string> const interpretationNames{"binary", "label", "value"};

std::vector<std::string> keysOf(ImageArgument::Role role, bool shared)
{
    if (shared)
        return {"save"};
    switch (role) {
    case ImageArgument::Role::Input:
        return {"interpretation", "type", "spacing", "origin", "unit"};
    case ImageArgument::Role::Output:
        return {"type", "size", "interpretation"};
    case ImageArgument::Role::InOut:
        return {"interpretation", "type", "spacing", "origin", "unit", "save"};
    case ImageArgument::Role::Conversion:
        break;
    }
    return {"type", "interpretation"};
}

// Where the last ",letters=" of the text begins; npos where there is none.
std::size_t lastKey(std::string const& text)
{
    for (std::size_t comma = text.rfind(','); comma != std::string::npos;
         comma = comma == 0 ? std::string::npos : text.rfind(',', comma - 1)) {
        std::size_t end = comma + 1;
        while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])))
            ++end;
        if (end > comma + 1 && end < text.size() && text[end] == '=')
            return comma;
    }
    return std::string::npos;
}

std::vector<std::string> split(std::string const& text, char separator)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (;;) {
        std::size_t const end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
        if (end == std::string::npos)
            return parts;
        begin = end + 1;
    }
}

template <class T> bool readWhole(std::string const& text, T& value)
{
    auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

std::array<double, 3> threeNumbers(std::string const& key, std::string const& text)
{
    std::vector<std::string> const parts = split(text, '_');
    std::array<double, 3> values{};
    bool good = parts.size() == 3;
    for (std::size_t i = 0; good && i < 3; ++i)
        good = readWhole(parts[i], values[i]) && std::isfinite(values[i]);
    if (!good)
        throw UsageError(key + "=" + text + " is not of the form " + key + "=X_Y_Z with three numbers");
    return values;
}

std::array<unsigned long, 5> fiveSizes(std::string const& text)
{
    std::vector<std::string> const parts = split(text, '_');
    std::array<unsigned long, 5> values{};
    bool good = parts.size() == 5;
    for (std::size_t i = 0; good && i < 5; ++i)
        good = readWhole(parts[i], values[i]);
    unsigned long bytes = 8;
    for (std::size_t i = 0; good && i < 5; ++i)
        good = !__builtin_mul_overflow(bytes, std::max(values[i], 1UL), &bytes);
    if (!good)
        throw UsageError("size=" + text + " is not of the form size=C_R_P_T_S with five sizes that memory can hold");
    return values;
}

} // namespace

std::vector<std::string> const& voxelTypeNames()
{
    static std::vector<std::string> const names{"uint8", "uint16", "uint32", "uint64",  "int8",
                                                "int16", "int32",  "int64",  "float32", "float64"};
    return names;
}

qel::VoxelTypes voxelTypeFromName(std::string const& name)
{
    std::vector<std::string> const& names = voxelTypeNames();
    auto const found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        throw UsageError(unknownName("voxel type", name, names));
    return static_cast<qel::VoxelTypes>(found - names.begin());
}

std::string nameOf(qel::VoxelTypes type)
{
    auto const index = static_cast<std::size_t>(type);
    if (index < voxelTypeNames().size())
        return voxelTypeNames()[index];
    return toStdString(qel::helper::VoxelTypesToString(type));
}

std::string nameOf(qel::Interpretations interpretation)
{
    auto const index = static_cast<std::size_t>(interpretation);
    return index < interpretationNames.size() ? interpretationNames[index] : "unknown";
}

ImageArgument ImageArgument::parse(std::string const& text, Role role)
{
    ImageArgument argument;
    if (text == "null") {
        argument.null = true;
        return argument;
    }
    std::vector<std::pair<std::string, std::string>> keys;
    std::string rest = text;
    for (std::size_t comma = lastKey(rest); comma != std::string::npos; comma = lastKey(rest)) {
        std::size_t const equals = rest.find('=', comma);
        keys.emplace_back(rest.substr(comma + 1, equals - comma - 1), rest.substr(equals + 1));
        rest.resize(comma);
    }
    std::reverse(keys.begin(), keys.end());

    bool const shared = !rest.empty() && rest[0] == '@' && role != Role::Conversion;
    (shared ? argument.other : argument.path) = shared ? rest.substr(1) : rest;
    if (rest.empty())
        throw UsageError("an image needs a path: \"" + text + "\" has none");

    std::vector<std::string> const known = keysOf(role, shared);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        auto const& [key, value] = keys[i];
        if (std::find(known.begin(), known.end(), key) == known.end())
            throw UsageError(unknownName("key", key, known) + " in \"" + text + "\"");
        for (std::size_t j = 0; j < i; ++j) {
            if (keys[j].first == key)
                throw UsageError("\"" + text + "\" gives " + key + " twice");
        }
        if (key == "type") {
            argument.type = voxelTypeFromName(value);
        } else if (key == "interpretation") {
            auto const found = std::find(interpretationNames.begin(), interpretationNames.end(), value);
            if (found == interpretationNames.end())
                throw UsageError(unknownName("interpretation", value, interpretationNames));
            argument.interpretation = static_cast<qel::Interpretations>(found - interpretationNames.begin());
        } else if (key == "spacing") {
            argument.spacing = threeNumbers(key, value);
        } else if (key == "origin") {
            argument.origin = threeNumbers(key, value);
        } else if (key == "unit") {
            argument.unit = value;
        } else if (key == "size") {
            argument.size = fiveSizes(value);
        } else {
            if (value.empty())
                throw UsageError("save= in \"" + text + "\" needs a path");
            argument.save = value;
        }
    }
    return argument;
}

} // namespace host
