#include <qel/registration/LandmarkRegistration3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Property.impl.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "Registration/private/transformationTypeInfo.h"

namespace qel::registration {

QEL_DEFINE_ALGORITHM(LandmarkRegistration3D)

void LandmarkRegistration3D::init()
{
    addInput(&data);
    declare(data, "data", nullptr, ASSERT_NOT_NULL);
    addInput(&model);
    declare(model, "model", nullptr, ASSERT_NOT_NULL);
    addInput(&transformationType);
    declareEnumeration(transformationType, "transformationType", TRANSLATION, transformationTypeInfo(),
                       {PROJECTIVE, POLYNOMIAL_2, POLYNOMIAL_3});
    addInput(&robustEstimation);
    declare(robustEstimation, "robustEstimation", false);
    addInput(&outlierRatio);
    declare(outlierRatio, "outlierRatio", 0.2, AddRuleinRange<double>(0.1, 0.4));
    addInput(&confidence);
    declare(confidence, "confidence", 0.99, AddRuleinRange<double>(0.9, 1.0));
    addOutput(&outputTransformation);
    declare(outputTransformation, "outputTransformation", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence LandmarkRegistration3D::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(-1, -1, 0, 0, 0);
}

} // namespace qel::registration

namespace qel {

template <>
bool Deserialization<registration::LandmarkRegistration3D::TransformationType>::doIt(
    String const& text, registration::LandmarkRegistration3D::TransformationType& value, String& rest)
{
    PropertyEnumeration reader;
    reader.setEnumInfo(&registration::transformationTypeInfo());
    if (!reader.read(text, rest))
        return false;
    value = static_cast<registration::LandmarkRegistration3D::TransformationType>(reader.get());
    return true;
}

template class QEL_API Property<registration::LandmarkRegistration3D::TransformationType>;

} // namespace qel
