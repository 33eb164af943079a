#include "Morphology/private/Classes.h"

#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>
#include <qel/ImageModel.h>

namespace qel::morphology {

void declareInput(Property<ImageModel const*>& input)
{
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
}

void declareOutput(Property<ImageModel*>& output, Property<ImageModel const*>& input)
{
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

void declareParameter(Parameter<unsigned int> const& parameter, Property<unsigned int>& property)
{
    if (parameter.mustBePositive)
        declare(property, parameter.name, parameter.defaultValue, ASSERT_POSITIVE_ONLY);
    else
        declare(property, parameter.name, parameter.defaultValue);
}

void declareParameter(Parameter<double> const& parameter, Property<double>& property)
{
    declare(property, parameter.name, parameter.defaultValue);
}

void declareParameter(Parameter<int> const& parameter, PropertyEnumeration& property)
{
    declareEnumeration(property, parameter.name, parameter.defaultValue, *parameter.values);
}

} // namespace qel::morphology
