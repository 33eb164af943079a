#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// The image must have the five sizes of another one, and on demand its spacings and origins, to the last bit.
template <class P> class RuleAssertSameSize : public Rules<P>
{
public:
    RuleAssertSameSize(ImageReference const& other, bool withCalibration)
        : other_(other)
        , withCalibration_(withCalibration)
    {
        if (!other.isSet())
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(P& property) override
    {
        ImageModel const* const other = other_.getImage();
        if (!other)
            QEL_THROW(RuleException, "The parameter \"" << other_.getName() << "\" must be set.");
        ImageModel const* const image = property.get();
        if (!image)
            return;
        if (rules::sizesOf(*image) != rules::sizesOf(*other))
            QEL_THROW(RuleException, "The parameters \"" << other_.getName() << "\" and \"" << property.getName()
                                                         << "\" must have the same size.");
        if (withCalibration_ && !rules::haveSameCalibration(*image, *other))
            QEL_THROW(RuleException, "The parameters \"" << other_.getName() << "\" and \"" << property.getName()
                                                         << "\" must have the same spacial calibration.");
    }

private:
    ImageReference other_;
    bool withCalibration_;
};

} // namespace qel
