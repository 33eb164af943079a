#pragma once

#include "Core/private/PropertyPrivate.h"

namespace qel {

/// Adds rules to the end of a property's list, and takes them away again when it goes, also while an exception passes,
/// and also if it comes from `addRule` when that has added some of its rules.
/// For an `applyAllRules` whose rules depend on the values of other properties:
///
///     void BoxFilter2D::applyAllRules()
///     {
///         RuleOfOneRun const type(output, AddRuleEnforceSameType(&input));
///         BaseAlgorithm::applyAllRules();
///     }
template <class T> class RuleOfOneRun
{
public:
    template <class AddRule>
    RuleOfOneRun(Property<T>& property, AddRule const& addRule)
        : RuleOfOneRun(property) // from here on the object is whole, so that the destructor runs if addRule throws
    {
        addRule(property);
    }
    RuleOfOneRun(RuleOfOneRun const&) = delete;
    RuleOfOneRun& operator=(RuleOfOneRun const&) = delete;
    ~RuleOfOneRun() { m_property.getPrivate()->rules.resize(m_count); }

private:
    explicit RuleOfOneRun(Property<T>& property)
        : m_property(property)
        , m_count(property.getPrivate()->rules.size())
    {}

    Property<T>& m_property;
    unsigned long m_count; // of the lasting rules
};

} // namespace qel
