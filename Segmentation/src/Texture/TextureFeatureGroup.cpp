#include <qel/segmentation/TextureFeatureGroup.h>

#include "Core/private/Property.impl.h"
#include "Core/private/container/Vector.impl.h"
#include "Segmentation/private/Texture/TextureFeatureGroupText.h"

#include <qel/EnumInfo.h>

#include <charconv>
#include <string_view>

namespace qel {

namespace {

bool readFeature(std::string_view text, segmentation::TextureFeatureTypes& feature)
{
    EnumInfo const& info = segmentation::textureFeatureTypesInfo();
    int value = 0;
    if (String const label(text.data(), text.size()); !text.empty() && info.exists(label)) {
        value = info.getValueFromLabel(label);
    } else {
        auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size())
            return false;
        if (value < segmentation::COOC_FirstMeasure || value > segmentation::HISTO_LastMeasure)
            return false;
    }
    feature = static_cast<segmentation::TextureFeatureTypes>(value);
    return true;
}

} // namespace

template <>
bool Deserialization<segmentation::TextureFeatureGroup>::doIt(String const& text,
                                                              segmentation::TextureFeatureGroup& value, String& rest)
{
    rest = text;
    std::string_view features(text.c_str(), text.length());
    std::string_view const prefix = "@v:";
    if (features.substr(0, prefix.size()) != prefix)
        return false;
    features.remove_prefix(prefix.size());
    segmentation::TextureFeatureGroup read;
    for (bool isLast = features.empty(); !isLast;) {
        std::size_t const end = features.find('#');
        isLast = end == std::string_view::npos;
        segmentation::TextureFeatureTypes feature{};
        if (!readFeature(features.substr(0, end), feature))
            return false;
        read.push_back(feature);
        if (!isLast)
            features.remove_prefix(end + 1);
    }
    value = read;
    return true;
}

template class container::Vector<segmentation::TextureFeatureTypes>;
template class QEL_API Property<segmentation::TextureFeatureGroup>;

} // namespace qel
