#include "Core/tests/Support/Algorithms.h"
#include "Registration/tests/PointSets.h"

#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/RigidTransformation3D.h>
#include <qel/geometry/Translation2D.h>
#include <qel/geometry/Translation3D.h>
#include <qel/registration/LandmarkRegistration2D.h>
#include <qel/registration/LandmarkRegistration3D.h>

#include <gtest/gtest.h>

#include <thread>

using namespace qel;
using namespace qel::registration;
using namespace qel::test;
using namespace qel::geometry;

namespace {

struct InThePlane
{
    using Registration = LandmarkRegistration2D;
    using Point = math::Vector2<double>;
    using Handler = Transformation2DHandler;
    using Shift = Translation2D;
    static constexpr char const* name = "LandmarkRegistration2D";
};

struct InSpace
{
    using Registration = LandmarkRegistration3D;
    using Point = math::Vector3<double>;
    using Handler = Transformation3DHandler;
    using Shift = Translation3D;
    static constexpr char const* name = "LandmarkRegistration3D";
};

template <class Point> container::Vector<Point> toVector(std::vector<Point> const& points)
{
    container::Vector<Point> vector;
    for (Point const& point : points)
        vector.push_back(point);
    return vector;
}

template <class Family> class LandmarkRegistrations : public testing::Test
{
protected:
    using P = typename Family::Point;
    using Registration = typename Family::Registration;

    LandmarkRegistrations()
        : registration(Registration::New())
    {
        registration->model = &model;
        registration->data = &data;
        registration->outputTransformation = &handler;
    }

    void setPoints(std::vector<P> const& from, std::vector<P> const& to)
    {
        model = toVector(from);
        data = toVector(to);
    }

    // The result maps the model.
    std::vector<P> mappedModel() const
    {
        std::vector<P> points(model.begin(), model.end());
        handler.get()->map(points.data(), points.data() + points.size());
        return points;
    }

    container::Vector<P> model, data;
    typename Family::Handler handler;
    Ref<Registration> registration;
};

} // namespace

using Families = testing::Types<InThePlane, InSpace>;
TYPED_TEST_SUITE(LandmarkRegistrations, Families);

TYPED_TEST(LandmarkRegistrations, haveTheirPropertiesAndDefaults)
{
    auto& r = *this->registration;
    Ref<typename TypeParam::Registration> const fresh = TypeParam::Registration::New();
    std::vector<std::string> names;
    for (unsigned long i = 0; i < r.getNumOfInputProperties(); ++i)
        names.push_back(r.getInputProperty(i)->getName().c_str());
    EXPECT_EQ(names, std::vector<std::string>(
                         {"data", "model", "transformationType", "robustEstimation", "outlierRatio", "confidence"}));
    ASSERT_EQ(r.getNumOfOutputProperties(), 1u);
    EXPECT_EQ(r.getOutputProperty(0)->getName(), "outputTransformation");
    EXPECT_EQ(fresh->data.get(), nullptr);
    EXPECT_EQ(fresh->model.get(), nullptr);
    EXPECT_EQ(described(&r.transformationType), "TransformationType transformationType = TRANSLATION");
    EXPECT_EQ(r.transformationType.getEnumInfo()->getNumOfLabels(), 6u);
    EXPECT_FALSE(r.robustEstimation.get());
    EXPECT_EQ(r.outlierRatio.get(), 0.2);
    EXPECT_EQ(r.confidence.get(), 0.99);
    EXPECT_EQ(fresh->outputTransformation.get(), nullptr);
    EXPECT_EQ(levelsOf(r), std::vector<OptimLevelType>({SCALAR}));
    AlgoBorderInfluence const influence = r.getAlgoBorderInfluence();
    for (auto direction : {COLUMNS_NEGATIVE, COLUMNS_POSITIVE, ROWS_NEGATIVE, ROWS_POSITIVE})
        EXPECT_EQ(influence.getNumOfVoxels(direction), static_cast<unsigned long>(-1));
    for (auto direction : {PLANS_NEGATIVE, PLANS_POSITIVE, TIME_SERIES_NEGATIVE, SPECTRAL_SERIES_POSITIVE})
        EXPECT_EQ(influence.getNumOfVoxels(direction), 0u);
    EXPECT_EQ(EnumInfo(*r.transformationType.getEnumInfo()).getValueFromLabel("POLYNOMIAL_3"),
              TypeParam::Registration::POLYNOMIAL_3);
}

TYPED_TEST(LandmarkRegistrations, translateByTheDifferenceOfTheMeans)
{
    using Point = typename TypeParam::Point;
    this->setPoints(randomPoints<Point>(2, 5, 1), randomPoints<Point>(2, 5, 2));
    this->registration->run();
    auto* const shift = dynamic_cast<typename TypeParam::Shift*>(this->handler.get());
    ASSERT_NE(shift, nullptr);
    Point const expected = (this->data[0] + this->data[1]) / 2.0 - (this->model[0] + this->model[1]) / 2.0;
    EXPECT_LT((shift->getTranslation() - expected).length(), 1e-14);
}

TYPED_TEST(LandmarkRegistrations, refuseMissingObjects)
{
    auto& r = *this->registration;
    std::string const name = TypeParam::name;
    r.data = nullptr;
    r.model = nullptr;
    EXPECT_QEL_WHAT(r.run(), RuleException, ruleText("The parameter \"data\" must be set.", "data", name));
    r.data = &this->data;
    EXPECT_QEL_WHAT(r.run(), RuleException, ruleText("The parameter \"model\" must be set.", "model", name));
    r.model = &this->model;
    r.outputTransformation = nullptr;
    EXPECT_QEL_WHAT(r.run(), RuleException,
                    ruleText("The parameter \"outputTransformation\" must be set.", "outputTransformation", name));
    EXPECT_TRUE(isAtRest(r));
}

TYPED_TEST(LandmarkRegistrations, refuseValuesOutsideOfTheirRanges)
{
    using Point = typename TypeParam::Point;
    auto& r = *this->registration;
    std::string const name = TypeParam::name;
    this->setPoints(randomPoints<Point>(20, 5, 1), randomPoints<Point>(20, 5, 1));
    for (double const bad : {0.09, 0.41, std::nan("")}) {
        r.outlierRatio = bad;
        EXPECT_QEL_WHAT(
            r.run(), RuleException,
            ruleText("The parameter \"outlierRatio\" must be in the range [0.1 ; 0.4[.", "outlierRatio", name));
    }
    r.outlierRatio = 0.4;
    for (double const bad : {0.89, 1.01}) {
        r.confidence = bad;
        EXPECT_QEL_WHAT(r.run(), RuleException,
                        ruleText("The parameter \"confidence\" must be in the range [0.9 ; 1[.", "confidence", name));
    }
    r.confidence = 0.9;
    r.outlierRatio = 0.1;
    r.transformationType = 6;
    EXPECT_QEL_WHAT(
        r.run(), RuleException,
        ruleText("The value of the parameter \"transformationType\" is not valid", "transformationType", name));
    r.transformationType = TypeParam::Registration::TRANSLATION;
    r.robustEstimation = true;
    r.run();
    EXPECT_NE(this->handler.get(), nullptr);
}

TYPED_TEST(LandmarkRegistrations, refuseDataShorterThanTheModelAndPassOverTheRest)
{
    using Point = typename TypeParam::Point;
    auto& r = *this->registration;
    this->setPoints(randomPoints<Point>(5, 5, 1), randomPoints<Point>(4, 5, 2));
    for (bool const robust : {false, true}) {
        r.robustEstimation = robust;
        EXPECT_QEL_WHAT(r.run(), InvalidCall,
                        "Invalid call :\n#1 Error : The data and the model must have the same number of points. \n"
                        "#2 From " +
                            std::string(TypeParam::name) + " \n");
        EXPECT_EQ(this->handler.get(), nullptr);
    }
    r.robustEstimation = false;
    this->setPoints(randomPoints<Point>(5, 5, 1), randomPoints<Point>(9, 5, 2));
    r.run();
    Point const shift = dynamic_cast<typename TypeParam::Shift&>(*this->handler.get()).getTranslation();
    this->data.resize(5);
    r.run();
    EXPECT_EQ(dynamic_cast<typename TypeParam::Shift&>(*this->handler.get()).getTranslation(), shift);
}

TYPED_TEST(LandmarkRegistrations, leaveTheHandlerAsItWasWhereTheyFail)
{
    using Point = typename TypeParam::Point;
    auto& r = *this->registration;
    auto* const held = new typename TypeParam::Shift;
    this->handler.set(held);
    std::string const from = " \n#2 From " + std::string(TypeParam::name) + " \n";
    for (bool const robust : {false, true}) {
        r.robustEstimation = robust;
        for (int const type : {0, 1, 2}) {
            r.transformationType = type;
            EXPECT_QEL_WHAT(r.run(), RuntimeError,
                            "Runtime error :\n#1 Error : Bad points set the dimension is 0" + from);
        }
    }
    r.transformationType = 0;
    this->setPoints(randomPoints<Point>(2, 5, 1), randomPoints<Point>(2, 5, 2));
    EXPECT_QEL_WHAT(r.run(), RuntimeError,
                    "Runtime error :\n#1 Error :  insufficient number of points. N=2*minNumOfPoint+1 points are "
                    "needed." +
                        from);
    EXPECT_EQ(this->handler.get(), held);
    EXPECT_TRUE(isAtRest(r));
    this->setPoints(randomPoints<Point>(3, 5, 1), randomPoints<Point>(3, 5, 1));
    r.run();
    EXPECT_NE(this->handler.get(), nullptr);
}

TYPED_TEST(LandmarkRegistrations, giveTheSameInEachRun)
{
    using Point = typename TypeParam::Point;
    this->setPoints(randomPoints<Point>(50, 5, 1), randomPoints<Point>(50, 5, 2));
    this->registration->robustEstimation = true;
    this->registration->transformationType = 2;
    this->registration->run();
    auto const first = this->mappedModel();
    this->registration->run();
    EXPECT_EQ(this->mappedModel(), first);
}

TYPED_TEST(LandmarkRegistrations, endWithFullConfidence)
{
    using Point = typename TypeParam::Point;
    auto const from = randomPoints<Point>(3, 5, 1);
    auto to = from;
    to[1][0] += 3;
    this->setPoints(from, to);
    auto& r = *this->registration;
    r.robustEstimation = true;
    r.confidence = 1.0;
    r.outlierRatio = 0.1;
    r.run();
    EXPECT_EQ(this->mappedModel()[0], to[0]);
}

TYPED_TEST(LandmarkRegistrations, areCancelledWithoutAResult)
{
    using Point = typename TypeParam::Point;
    auto& r = *this->registration;
    this->setPoints(randomPoints<Point>(20000, 5, 1), randomPoints<Point>(20000, 5, 2));
    r.robustEstimation = true;
    r.confidence = 1.0; // a million fits: hours
    Poller poller;
    poller.wantsToCancel = true;
    r.run(&poller);
    EXPECT_TRUE(poller.hasCancelled);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_EQ(this->handler.get(), nullptr);
    EXPECT_TRUE(isAtRest(r));
    r.confidence = 0.9;
    Poller patient;
    r.run(&patient);
    EXPECT_NE(this->handler.get(), nullptr);
    EXPECT_TRUE(patient.isSteady);
}

TEST(LandmarkRegistration2D, givesTheClassOfEachType)
{
    auto const vector = toVector(randomPoints<math::Vector2<double>>(30, 5, 1));
    Transformation2DHandler handler;
    Ref<LandmarkRegistration2D> const r = LandmarkRegistration2D::New();
    r->data = &vector;
    r->model = &vector;
    r->outputTransformation = &handler;
    auto const run = [&](int type) {
        r->transformationType = type;
        r->robustEstimation = false;
        r->run();
        std::string const plain = typeid(*handler.get()).name();
        r->robustEstimation = true;
        r->run();
        EXPECT_EQ(typeid(*handler.get()).name(), plain);
        math::Vector2<double> point(1, 2);
        handler.get()->map(point);
        EXPECT_LT((point - math::Vector2<double>(1, 2)).length(), 1e-9);
        return handler.get();
    };
    EXPECT_NE(dynamic_cast<Translation2D*>(run(LandmarkRegistration2D::TRANSLATION)), nullptr);
    EXPECT_NE(dynamic_cast<RigidTransformation2D*>(run(LandmarkRegistration2D::RIGID)), nullptr);
    EXPECT_NE(dynamic_cast<AffineTransformation2D*>(run(LandmarkRegistration2D::AFFINE)), nullptr);
    EXPECT_NE(dynamic_cast<ProjectiveTransformation2D*>(run(LandmarkRegistration2D::PROJECTIVE)), nullptr);
    EXPECT_NE(dynamic_cast<PolynomialOrder2Transformation2D*>(run(LandmarkRegistration2D::POLYNOMIAL_2)), nullptr);
    EXPECT_NE(dynamic_cast<PolynomialOrder3Transformation2D*>(run(LandmarkRegistration2D::POLYNOMIAL_3)), nullptr);
}

TEST(LandmarkRegistration3D, givesTheClassOfEachType)
{
    auto const vector = toVector(randomPoints<math::Vector3<double>>(30, 5, 1));
    Transformation3DHandler handler;
    Ref<LandmarkRegistration3D> const r = LandmarkRegistration3D::New();
    r->data = &vector;
    r->model = &vector;
    r->outputTransformation = &handler;
    for (bool const robust : {false, true}) {
        r->robustEstimation = robust;
        r->transformationType = LandmarkRegistration3D::TRANSLATION;
        r->run();
        EXPECT_NE(dynamic_cast<Translation3D*>(handler.get()), nullptr);
        r->transformationType = LandmarkRegistration3D::RIGID;
        r->run();
        EXPECT_NE(dynamic_cast<RigidTransformation3D*>(handler.get()), nullptr);
        r->transformationType = LandmarkRegistration3D::AFFINE;
        r->run();
        EXPECT_NE(dynamic_cast<AffineTransformation3D*>(handler.get()), nullptr);
    }
    for (int const type : {LandmarkRegistration3D::PROJECTIVE, LandmarkRegistration3D::POLYNOMIAL_2,
                           LandmarkRegistration3D::POLYNOMIAL_3}) {
        r->transformationType = type;
        EXPECT_QEL_WHAT(r->run(), RuleException,
                        ruleText("The value of the parameter \"transformationType\" is not valid", "transformationType",
                                 "LandmarkRegistration3D"));
    }
}

TEST(LandmarkRegistration3D, hasAPropertyOfItsEnumeration)
{
    Property<LandmarkRegistration3D::TransformationType> property;
    property = LandmarkRegistration3D::RIGID;
    String rest;
    EXPECT_TRUE(property.read("AFFINE", rest));
    EXPECT_EQ(property.get(), LandmarkRegistration3D::AFFINE);
    EXPECT_TRUE(property.read("0", rest));
    EXPECT_EQ(property.get(), LandmarkRegistration3D::TRANSLATION);
    EXPECT_FALSE(property.read("BENT", rest));
    EXPECT_EQ(property.get(), LandmarkRegistration3D::TRANSLATION);
}
