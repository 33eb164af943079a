#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Registration/private/Estimators3D.h"
#include "Registration/private/LandmarkRegistrationScalarGeneric.h"

#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/RigidTransformation3D.h>
#include <qel/geometry/Translation3D.h>
#include <qel/registration/LandmarkRegistration3D.h>

namespace qel::registration {

namespace {

class LandmarkRegistration3D_Scalar : public ScalarRunner<LandmarkRegistration3D>
{
    void runOn(LandmarkRegistration3D& registration) const override
    {
        switch (registration.transformationType.get()) {
        case LandmarkRegistration3D::TRANSLATION:
            return runEstimator<Translation3DEstimator>(registration);
        case LandmarkRegistration3D::RIGID:
            return runEstimator<Rigid3DEstimator>(registration);
        case LandmarkRegistration3D::AFFINE:
            return runEstimator<Affine3DEstimator>(registration);
        }
    }
};

QEL_REGISTER_RUNNER(LandmarkRegistration3D, LandmarkRegistration3D_Scalar)

} // namespace

} // namespace qel::registration
