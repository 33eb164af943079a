#pragma once

#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace qel {

/// The image must have one of the listed interpretations.
template <class P> class RuleAssertInterpretation : public Rules<P>
{
public:
    explicit RuleAssertInterpretation(std::vector<Interpretations> interpretations)
        : interpretations_(std::move(interpretations))
    {}

    void apply(P& property) override
    {
        ImageModel const* const image = property.get();
        if (!image)
            return;
        Interpretations const interpretation = image->getInterpretation();
        if (std::find(interpretations_.begin(), interpretations_.end(), interpretation) != interpretations_.end())
            return;
        ClassicStream list;
        char const* separator = "";
        for (Interpretations const listed : interpretations_) {
            list << separator << rules::labelOf(listed);
            separator = ", ";
        }
        QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" supports " << list.text()
                                                    << ". Current image is " << rules::labelOf(interpretation) << ".");
    }

private:
    std::vector<Interpretations> interpretations_;
};

} // namespace qel
