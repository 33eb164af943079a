#include <qel/EnumInfo.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "Core/private/EnumInfoPrivate.h"
#include "Core/private/Throw.h"

using qel::String;

namespace {

std::string withoutWhitespace(std::string text)
{
    std::erase_if(text, [](char c) { return std::isspace(c, std::locale::classic()); });
    return text;
}

bool readWholeInteger(std::string const& text, int& value)
{
    char const* begin = text.data();
    char const* const end = begin + text.size();
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        ++begin;
    auto const [stop, error] = std::from_chars(begin, end, value);
    return error == std::errc() && stop == end;
}

} // namespace

void EnumInfoPrivate::parse(std::string const& declaration)
{
    int current = 0;
    std::string::size_type begin = 0;
    for (bool last = false; !last;) {
        std::string::size_type end = declaration.find(',', begin);
        last = end == std::string::npos;
        if (last)
            end = declaration.size();
        std::string label = declaration.substr(begin, end - begin);
        begin = end + 1;

        if (auto const equals = label.find('='); equals != std::string::npos) {
            std::string const right = withoutWhitespace(label.substr(equals + 1));
            label.resize(equals);
            if (int value = 0; readWholeInteger(right, value)) {
                current = value;
            } else if (auto const earlier = valueOfLabel.find(right); earlier != valueOfLabel.end()) {
                current = earlier->second;
            } else {
                QEL_THROW(qel::RuntimeError, "EnumInfo declaration error : "
                                                 << right << " does not correspond to possible item of enum " << name);
            }
        } else {
            // Also for the first label, which so has the value 1.
            current = static_cast<int>(static_cast<unsigned int>(current) + 1u);
        }

        label = withoutWhitespace(label);
        valueOfLabel[label] = current;
        labelsOfValue[current].push_back(label);
        items.emplace_back(current, label);
    }
}

EnumInfo::EnumInfo(char const* enumName, char const* declaration)
    : m_private(nullptr)
{
    EnumInfoPrivate parsed;
    parsed.name = enumName;
    parsed.parse(declaration);
    m_private = new EnumInfoPrivate(std::move(parsed));
}

EnumInfo::EnumInfo(EnumInfo const& other)
    : m_private(new EnumInfoPrivate(*other.m_private))
{}

EnumInfo::~EnumInfo() { delete m_private; }

EnumInfo& EnumInfo::operator=(EnumInfo const& other)
{
    *m_private = EnumInfoPrivate(*other.m_private);
    return *this;
}

String EnumInfo::getEnumName() const { return qel::toString(m_private->name); }

unsigned long EnumInfo::getNumOfLabels() const { return m_private->items.size(); }

unsigned long EnumInfo::getNumOfValues() const { return m_private->labelsOfValue.size(); }

bool EnumInfo::exists(int value) const { return m_private->labelsOfValue.count(value) != 0; }

bool EnumInfo::exists(String const& label) const { return m_private->valueOfLabel.count(qel::toStdString(label)) != 0; }

unsigned long EnumInfo::getNumOfLabelsAtValue(int value) const { return m_private->labelsOfValue.at(value).size(); }

String EnumInfo::getLabelFromValue(int value, unsigned long labelIndex) const
{
    auto const found = m_private->labelsOfValue.find(value);
    unsigned long const count = found == m_private->labelsOfValue.end() ? 0 : found->second.size();
    if (labelIndex >= count)
        QEL_THROW(qel::BadIndex, "Value " << value << " of enum " << m_private->name << " is associated to " << count
                                          << " labels. Can not access to label index " << labelIndex << ".");
    return qel::toString(found->second[labelIndex]);
}

String EnumInfo::getLabelFromValueIndex(unsigned long valueIndex, unsigned long labelIndex) const
{
    auto const& labels = m_private->labelsOfValue.at(getValueFromValueIndex(valueIndex));
    if (labelIndex >= labels.size())
        QEL_THROW(qel::BadIndex, "Value index " << valueIndex << " of enum " << m_private->name << " is associated to "
                                                << labels.size() << " labels. Can not access to label index "
                                                << labelIndex << ".");
    return qel::toString(labels[labelIndex]);
}

int EnumInfo::getValueFromValueIndex(unsigned long valueIndex) const
{
    if (valueIndex >= getNumOfValues())
        QEL_THROW(qel::BadIndex, "Enum " << m_private->name << " contains " << getNumOfValues()
                                         << " values. Can not access to value index " << valueIndex << ".");
    return std::next(m_private->labelsOfValue.begin(), static_cast<std::ptrdiff_t>(valueIndex))->first;
}

namespace {

std::pair<int, std::string> const& itemAt(EnumInfoPrivate const& info, unsigned long labelIndex)
{
    if (labelIndex >= info.items.size())
        QEL_THROW(qel::BadIndex, "Enum " << info.name << " contains " << info.items.size()
                                         << " labels. Can not access to label index " << labelIndex << ".");
    return info.items[labelIndex];
}

} // namespace

String EnumInfo::getLabelFromlabelIndex(unsigned long labelIndex) const
{
    return qel::toString(itemAt(*m_private, labelIndex).second);
}

int EnumInfo::getValueFromLabelIndex(unsigned long labelIndex) const { return itemAt(*m_private, labelIndex).first; }

int EnumInfo::getValueFromLabel(String const& label) const
{
    return m_private->valueOfLabel.at(qel::toStdString(label));
}
