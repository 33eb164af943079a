#include "TextForms.h"

#include <qel/EnumInfo.h>
#include <qel/linear_filtering/kernel_factory.h>

#include <cmath>

namespace host {

std::string toStdString(qel::String const& text) { return std::string(text.c_str(), text.length()); }
qel::String toQelString(std::string const& text) { return qel::String(text.data(), text.size()); }

std::string joined(std::vector<std::string> const& words, std::string const& separator)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            text += separator;
        text += words[i];
    }
    return text;
}

std::string withPoint(std::string digits)
{
    if (digits.find_first_not_of("+-0123456789e") != std::string::npos)
        return digits;
    std::size_t const exponent = digits.find('e');
    digits.insert(exponent == std::string::npos ? digits.size() : exponent, ".0");
    return digits;
}

std::string formOf(double value)
{
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value < 0 ? "-Infinity" : "Infinity";
    char digits[64];
    auto const end = std::to_chars(digits, digits + sizeof digits, value);
    return std::string(digits, end.ptr);
}

std::string formOf(bool value) { return value ? "true" : "false"; }

std::string formOf(qel::String const& value) { return toStdString(value); }

std::string formOf(qel::Scalar const& value)
{
    switch (value.getType()) {
    case qel::UNSIGNED_INTEGER:
        return formOf(value.getUIntValue());
    case qel::INTEGER:
        return std::string(value.getIntValue() < 0 ? "" : "+").append(formOf(value.getIntValue()));
    default:
        return std::isfinite(value.getRealValue()) ? withPoint(formOf(value.getRealValue()))
                                                   : formOf(value.getRealValue());
    }
}

std::string formOf(qel::ScalarArray const& value) { return toText(jsonOf(value)); }

std::string formOf(qel::kernel::Kernel2D const& value)
{
    return toStdString(qel::linear_filtering::kernel_factory::kernel2DToString(value));
}

std::string formOf(qel::kernel::Kernel3D const& value)
{
    return toStdString(qel::linear_filtering::kernel_factory::kernel3DToString(value));
}

std::string formOf(qel::segmentation::TextureFeatureTypes value)
{
    EnumInfo const& info = qel::segmentation::textureFeatureTypesInfo();
    std::string const label = info.exists(value) ? toStdString(info.getLabelFromValue(value)) : "";
    return label.empty() ? std::to_string(value) : label;
}

Json jsonOf(qel::String const& value) { return toStdString(value); }
Json jsonOf(qel::kernel::Kernel2D const& value) { return formOf(value); }
Json jsonOf(qel::kernel::Kernel3D const& value) { return formOf(value); }
Json jsonOf(qel::segmentation::TextureFeatureTypes value) { return formOf(value); }

Json jsonOf(qel::Scalar const& value)
{
    switch (value.getType()) {
    case qel::UNSIGNED_INTEGER:
        return value.getUIntValue();
    case qel::INTEGER:
        return value.getIntValue();
    default:
        return jsonOf(value.getRealValue());
    }
}

Json jsonOf(qel::ScalarArray const& value)
{
    Json list = Json::array();
    for (unsigned long i = 0; i < value.size(); ++i)
        list.push_back(jsonOf(value.getScalarValueAt(i)));
    return list;
}

} // namespace host
