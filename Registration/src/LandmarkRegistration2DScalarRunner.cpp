#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Registration/private/Estimators2D.h"
#include "Registration/private/LandmarkRegistrationScalarGeneric.h"

#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/Translation2D.h>
#include <qel/registration/LandmarkRegistration2D.h>

namespace qel::registration {

namespace {

class LandmarkRegistration2D_Scalar : public ScalarRunner<LandmarkRegistration2D>
{
    void runOn(LandmarkRegistration2D& registration) const override
    {
        switch (registration.transformationType.get()) {
        case LandmarkRegistration2D::TRANSLATION:
            return runEstimator<Translation2DEstimator>(registration);
        case LandmarkRegistration2D::RIGID:
            return runEstimator<Rigid2DEstimator>(registration);
        case LandmarkRegistration2D::AFFINE:
            return runEstimator<Affine2DEstimator>(registration);
        case LandmarkRegistration2D::PROJECTIVE:
            return runEstimator<Projective2DEstimatorByKernelEstimation>(registration);
        case LandmarkRegistration2D::POLYNOMIAL_2:
            return runEstimator<Polynomial2DOrder2Estimator>(registration);
        case LandmarkRegistration2D::POLYNOMIAL_3:
            return runEstimator<Polynomial2DOrder3Estimator>(registration);
        }
    }
};

QEL_REGISTER_RUNNER(LandmarkRegistration2D, LandmarkRegistration2D_Scalar)

} // namespace

} // namespace qel::registration
