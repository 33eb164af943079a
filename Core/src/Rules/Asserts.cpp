#include "Core/private/Rules/Asserts.h"

#include "Core/private/Rules/RuleAssertDimension.h"
#include "Core/private/Rules/RuleAssertDimensionImage.h"
#include "Core/private/Rules/RuleAssertInterpretation.h"
#include "Core/private/Rules/RuleAssertSameSize.h"
#include "Core/private/Rules/RuleAssertSameType.h"
#include "Core/private/Rules/RuleAssertType.h"
#include "Core/private/Rules/RuleEnforceInterpretation.h"
#include "Core/private/Rules/RuleEnforceSameInterpretation.h"
#include "Core/private/Rules/RuleEnforceSameSizeAndCalibration.h"
#include "Core/private/Rules/RuleEnforceSameSizeCalibrationAndType.h"
#include "Core/private/Rules/RuleEnforceSameType.h"
#include "Core/private/Rules/RuleEnforceType.h"
#include "Core/private/Rules/RuleEnforceTypePromotionImageImage.h"
#include "Core/private/Rules/RuleEnforceTypePromotionImageValue.h"
#include "Core/private/Rules/RuleKeepInputType.h"
#include "Core/private/Rules/RuleSetInterpretation.h"

namespace qel {

ImageReference const& detail::required(ImageReference const& reference)
{
    if (!reference.isSet())
        QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    return reference;
}

AddRuleEnforceTypePromotionImageValue::AddRuleEnforceTypePromotionImageValue(ImageReference const& image,
                                                                             Property<double> const* value,
                                                                             unsigned int mode)
    : image_(detail::required(image))
    , value_(value)
    , mode_(mode)
{
    if (!value)
        QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
}

AddRuleIsAnEnumOfType::AddRuleIsAnEnumOfType(EnumInfo const* info, std::initializer_list<int> excluded)
    : info_(info)
    , excluded_(excluded)
{
    if (!info)
        QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
}

void AddRuleAssertType::operator()(Property<ImageModel const*>& property) const
{
    detail::push<ImageModel const*>(property, new RuleAssertType<Property<ImageModel const*>>(types_));
}

void AddRuleAssertType::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleAssertType<Property<ImageModel*>>(types_));
}

void AddRuleAssertInterpretation::operator()(Property<ImageModel const*>& property) const
{
    detail::push<ImageModel const*>(property,
                                    new RuleAssertInterpretation<Property<ImageModel const*>>(interpretations_));
}

void AddRuleAssertInterpretation::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleAssertInterpretation<Property<ImageModel*>>(interpretations_));
}

void AddRuleAssertDimension::operator()(Property<ImageModel const*>& property) const
{
    detail::push<ImageModel const*>(property, new RuleAssertDimension<Property<ImageModel const*>>(component_, size_));
}

void AddRuleAssertDimension::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleAssertDimension<Property<ImageModel*>>(component_, size_));
}

void AddRuleAssertDimensionImage::operator()(Property<ImageModel const*>& property) const
{
    detail::push<ImageModel const*>(
        property, new RuleAssertDimensionImage<Property<ImageModel const*>>(reference_, components_[0], components_[1],
                                                                            components_[2], components_[3]));
}

void AddRuleAssertDimensionImage::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(
        property, new RuleAssertDimensionImage<Property<ImageModel*>>(reference_, components_[0], components_[1],
                                                                      components_[2], components_[3]));
}

void AddRuleAssertSameSize::operator()(Property<ImageModel const*>& property) const
{
    detail::push<ImageModel const*>(property,
                                    new RuleAssertSameSize<Property<ImageModel const*>>(other_, withCalibration_));
}

void AddRuleAssertSameSize::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleAssertSameSize<Property<ImageModel*>>(other_, withCalibration_));
}

void AddRuleAssertSameType::operator()(Property<ImageModel const*>& property) const
{
    detail::push<ImageModel const*>(property, new RuleAssertSameType<Property<ImageModel const*>>(other_));
}

void AddRuleAssertSameType::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleAssertSameType<Property<ImageModel*>>(other_));
}

void AddRuleEnforceType::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceType(type_));
}

void AddRuleKeepInputType::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, takesTypeOfModel_ ? new RuleKeepInputType(input_, model_)
                                                          : new RuleKeepInputType(input_, type_));
}

void AddRuleEnforceInterpretation::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceInterpretation(interpretation_));
}

void AddRuleSetInterpretation::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleSetInterpretation(interpretation_));
}

void AddRuleEnforceSameType::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceSameType(reference_));
}

void AddRuleEnforceSameSizeAndCalibration::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceSameSizeAndCalibration(reference_));
}

void AddRuleEnforceSameSizeCalibrationAndType::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceSameSizeCalibrationAndType(reference_));
}

void AddRuleEnforceSameInterpretation::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceSameInterpretation(reference_));
}

void AddRuleEnforceTypePromotionImageImage::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceTypePromotionImageImage(first_, second_, mode_));
}

void AddRuleEnforceTypePromotionImageValue::operator()(Property<ImageModel*>& property) const
{
    detail::push<ImageModel*>(property, new RuleEnforceTypePromotionImageValue(image_, value_, mode_));
}

} // namespace qel
