#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/EnumInfo.h>
#include <qel/Exception.h>
#include <qel/Property.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace qel {

/// The value must be one of the enumeration, and none of the excluded ones.
template <class P = Property<int>> class RuleIsAnEnumOfType : public Rules<P>
{
public:
    explicit RuleIsAnEnumOfType(EnumInfo const* info, std::vector<int> excluded = {})
        : info_(info)
        , excluded_(std::move(excluded))
    {
        if (!info)
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(P& property) override
    {
        int const value = static_cast<int>(property.get());
        if (!info_->exists(value) || std::find(excluded_.begin(), excluded_.end(), value) != excluded_.end())
            QEL_THROW(RuleException, "The value of the parameter \"" << property.getName() << "\" is not valid");
    }

private:
    EnumInfo const* info_;
    std::vector<int> excluded_;
};

} // namespace qel
