#pragma once

#include <qel/Export.h>
#include <qel/String.h>

class EnumInfoPrivate;

/// Describes an enumeration at run time, from its declaration as text, such as "RED = 0, GREEN, BLUE = 7, LAST = BLUE".
///
/// A value index walks the distinct values in ascending order, a label index walks the labels in declaration order. A
/// first label without "=" has the value 1.
class QEL_API EnumInfo
{
public:
    /// Throws qel::RuntimeError "EnumInfo declaration error : ..." where a right side is neither a decimal integer nor
    /// an earlier label.
    EnumInfo(char const* enumName, char const* declaration);
    EnumInfo(EnumInfo const& other);
    ~EnumInfo();
    EnumInfo& operator=(EnumInfo const& other);

    qel::String getEnumName() const;
    unsigned long getNumOfLabels() const;
    /// How many distinct values there are.
    unsigned long getNumOfValues() const;

    bool exists(int value) const;
    bool exists(qel::String const& label) const;

    /// Throws std::out_of_range "map::at" on an unknown value.
    unsigned long getNumOfLabelsAtValue(int value) const;
    /// The `labelIndex`-th of the labels of `value`. Throws qel::BadIndex where there is none.
    qel::String getLabelFromValue(int value, unsigned long labelIndex = 0) const;
    /// The `labelIndex`-th of the labels of the value at `valueIndex`. Throws qel::BadIndex where there is none.
    qel::String getLabelFromValueIndex(unsigned long valueIndex, unsigned long labelIndex = 0) const;
    /// Throws qel::BadIndex where there is none.
    int getValueFromValueIndex(unsigned long valueIndex) const;
    /// Throws qel::BadIndex where there is none.
    qel::String getLabelFromlabelIndex(unsigned long labelIndex) const;
    /// Throws qel::BadIndex where there is none.
    int getValueFromLabelIndex(unsigned long labelIndex) const;
    /// Throws std::out_of_range "map::at" on an unknown label.
    int getValueFromLabel(qel::String const& label) const;

private:
    EnumInfoPrivate* m_private;
};
