#pragma once

#include <qel/Export.h>
#include <qel/String.h>

namespace qel {

/// The untyped side of a named parameter or result of an algorithm.
///
/// A host reaches a property by the public member of the algorithm's class, or by name through
/// BaseAlgorithm::getPropertyfromName. During a run every listed property is locked: writing to it changes nothing and
/// raises nothing.
class QEL_API BaseProperty
{
public:
    BaseProperty();
    BaseProperty(BaseProperty const&) = delete;
    BaseProperty& operator=(BaseProperty const&) = delete;

    void lock(bool locked);
    bool isLocked() const;

    /// Checks the value, and adjusts an output image. Fires inside BaseAlgorithm::run only.
    /// Throws RuleException with a level that names this property.
    virtual void applyRules() = 0;

    virtual String getName() const = 0;
    virtual String getDescription() const = 0;
    virtual void setDescription(String const& description) = 0;

    /// Sets the value from its text form, such as `3`, `true`, `@v2:5_5`.
    /// `rest` receives the text. Gives false, and leaves the value alone, where the text does not fit.
    virtual bool read(String const& text, String& rest) = 0;

    virtual ~BaseProperty();

private:
    bool m_locked;
};

} // namespace qel
