#include <qel/classification/TextureClassificationStandalone.h>

#include <gtest/gtest.h>

#include "Classification/private/textonDirections.h"
#include "Classification/tests/TextureSupport.h"

#include <qel/classification/TextureClassificationApply.h>

using namespace qel;
using namespace qel::classification;
using namespace qel::segmentation;
using namespace qel::test;

namespace {

class StandaloneTest : public testing::Test
{
protected:
    void connect(ImageModel const& input, ImageModel& labels, ImageModel& classified)
    {
        labels.setInterpretation(QEL_LABEL);
        algorithm->input = &input;
        algorithm->labelImg = &labels;
        algorithm->radius = 2;
        algorithm->classifiedImage = &classified;
    }
    std::string details() const { return algorithm->classificationDetails.get().c_str(); }

    Ref<TextureClassificationStandalone> algorithm{TextureClassificationStandalone::New()};
    memory::InMemoryImage output;
};

/// The measures that a report lists.
std::vector<int> measuresIn(std::string const& report)
{
    std::string const begin = "textureFeaturesGroup:\n";
    std::string const list = report.substr(report.find(begin) + begin.size());
    std::istringstream lines(list.substr(0, list.find("minGrey")));
    std::vector<int> measures;
    for (std::string line; std::getline(lines, line);)
        measures.push_back(textureFeatureTypesInfo().getValueFromLabel(line.c_str() + 1));
    return measures;
}

} // namespace

TEST_F(StandaloneTest, hasItsPropertiesAndDefaults)
{
    EXPECT_EQ(algorithm->getNumOfInputProperties(), 9u);
    EXPECT_EQ(algorithm->getNumOfOutputProperties(), 2u);
    EXPECT_EQ(algorithm->computeMode.get(), MODE_2D);
    EXPECT_EQ(algorithm->usedMeasures.get(), 4u);
    EXPECT_EQ(algorithm->radius.get(), 5u);
    EXPECT_EQ(algorithm->textonShape.get(), CUBE);
    EXPECT_EQ(algorithm->textonSize.get(), 1u);
    EXPECT_EQ(algorithm->rejectionFeatureSelection.get(), 0.05);
    EXPECT_EQ(algorithm->rejection.get(), 3);
    EXPECT_STREQ(algorithm->getOutputProperty(1)->getName().c_str(), "classificationDetails");
    EXPECT_EQ(details(), "");
    EXPECT_EQ(algorithm->getAlgoBorderInfluence().getNumOfVoxels(ROWS_POSITIVE), 5u);
}

TEST_F(StandaloneTest, doesWhatItsStepsDoWithASettledRange)
{
    Shape const shape{40, 24};
    auto picture = twoTextures<short>(shape);
    for (short& voxel : picture.voxels)
        voxel = static_cast<short>(20 * voxel - 300);
    auto const image = toImage(picture);
    auto labels = toImage(someLabels(shape));
    connect(image, labels, output);
    algorithm->usedMeasures = 7;
    algorithm->run();

    auto const [low, high] = std::minmax_element(picture.voxels.begin(), picture.voxels.end());
    Model const model = createdModel([&, l = *low, h = *high](TextureClassificationCreate& create) {
        TextureFeatureGroup measures;
        for (int m = 0; m < 52; m += 4)
            measures.push_back(static_cast<TextureFeatureTypes>(m));
        for (int m = 0; m < 52; ++m)
            if (m % 4 != 0)
                measures.push_back(static_cast<TextureFeatureTypes>(m));
        for (int m = 52; m < 69; ++m)
            measures.push_back(static_cast<TextureFeatureTypes>(m));
        create.textureFeaturesGroup = measures;
        create.minGreyLevelCooccurrence = l;
        create.maxGreyLevelCooccurrence = h;
        create.binSizeCooccurrence = std::ceil((h - l) / 20.0);
        create.minGreyLevelHistogram = l;
        create.maxGreyLevelHistogram = h;
        create.binSizeHistogram = std::ceil((h - l) * 0.00390625);
        create.direction2DCollection = vectorOf(
            {math::Vector2<int>(0, 1), math::Vector2<int>(1, 1), math::Vector2<int>(1, 0), math::Vector2<int>(-1, 1)});
    });
    train(model, image, labels);
    EXPECT_STREQ(details().c_str(), model->getInfo().c_str());
    memory::InMemoryImage expected;
    Ref<TextureClassificationApply> apply(TextureClassificationApply::New());
    apply->input = &image;
    apply->classificationModel = model.get();
    apply->classifiedImage = &expected;
    apply->run();
    EXPECT_TRUE(samePicture(fromImage<unsigned short>(expected), output));
    EXPECT_EQ(output.getInterpretation(), QEL_LABEL);
}

TEST_F(StandaloneTest, takesTimeSeriesOfImagesThatGiveNoRows)
{
    Shape const shape{21, 12, 4, 2};
    auto const picture = twoTextures<float>(shape);
    for (TextonShape const texton : {SPHERE, BALL})
        for (ComputeMode const mode : {MODE_2D, MODE_3D}) {
            HostImage const image(picture);
            HostImage labels(someLabels<int>(shape));
            HostImage classified;
            connect(image, labels, classified);
            algorithm->computeMode = mode;
            algorithm->usedMeasures = mode == MODE_2D ? 3 : 2; // of so many directions in space few summaries
            algorithm->textonShape = texton;
            algorithm->textonSize = 2;
            algorithm->run();

            auto const [low, high] = std::minmax_element(picture.voxels.begin(), picture.voxels.end());
            Model const model = createdModel([&, l = *low, h = *high](TextureClassificationCreate& create) {
                TextureFeatureGroup measures;
                for (int const m : measuresIn(details()))
                    measures.push_back(static_cast<TextureFeatureTypes>(m));
                create.computeMode = mode;
                create.textureFeaturesGroup = measures;
                create.minGreyLevelCooccurrence = l;
                create.maxGreyLevelCooccurrence = h;
                create.binSizeCooccurrence = std::ceil((h - l) / 20.0);
                create.minGreyLevelHistogram = 0.0;
                create.maxGreyLevelHistogram = -1.0;
                create.binSizeHistogram = -1.0;
                create.direction2DCollection = textonDirections2D(texton, 2, 2);
                create.direction3DCollection = textonDirections3D(texton, 2, 2);
            });
            train(model, image, labels);
            EXPECT_STREQ(details().c_str(), model->getInfo().c_str());
            memory::InMemoryImage expected;
            Ref<TextureClassificationApply> apply(TextureClassificationApply::New());
            apply->input = &image;
            apply->classificationModel = model.get();
            apply->classifiedImage = &expected;
            apply->run();
            EXPECT_TRUE(samePicture(fromImage<unsigned short>(expected), classified));
        }
}

TEST_F(StandaloneTest, reportsImagesThatFailInAnyOfItsSteps)
{
    Shape const shape{20, 12};
    HostImage image(twoTextures<unsigned char>(shape));
    HostImage labels(someLabels(shape));
    HostImage classified;
    connect(image, labels, classified);
    algorithm->run();
    auto const expected = fromImage<unsigned short>(classified);
    std::string const report = details();
    for (auto const& [failing, operation] :
         {std::pair(&image, READ_ROW), std::pair(&labels, READ_ROW), std::pair(&classified, WRITE_ROW)}) {
        failing->forgetCalls();
        algorithm->run();
        unsigned long const count = failing->callsOf(operation);
        for (unsigned long after = 0; after < count; after += 7) {
            std::string const call = operation == READ_ROW ? "readRowAt" : "writeRowAt";
            failing->forgetCalls();
            failing->failOn(operation, after);
            EXPECT_QEL_THROW(algorithm->run(), UnexpectedError,
                             "Error in " + call + " implementation, return value is false");
            EXPECT_TRUE(isAtRest(*algorithm));
            failing->behave();
            failing->forgetCalls();
            failing->throwOn(operation, after);
            EXPECT_THROW(algorithm->run(), UnexpectedError);
            EXPECT_TRUE(isAtRest(*algorithm));
            failing->behave();
        }
        algorithm->run();
        EXPECT_TRUE(samePicture(expected, classified));
        EXPECT_EQ(details(), report);
    }
}

TEST_F(StandaloneTest, stopsWhileItApplies)
{
    ObservedImage image(twoTextures<unsigned char>(Shape{64, 2000}));
    auto labels = toImage(someLabels(Shape{64, 2000}));
    HostImage out;
    connect(image, labels, out);
    algorithm->run();
    unsigned long const all = image.callsOf(READ_ROW);
    algorithm->classificationDetails = String("before");
    image.forgetCalls();
    out.forgetCalls();
    image.onRead = [&] {
        if (image.callsOf(READ_ROW) + 1500 > all)
            algorithm->cancelExecution();
    };
    algorithm->run();
    EXPECT_TRUE(isAtRest(*algorithm));
    EXPECT_GT(out.callsOf(WRITE_ROW), 0u);
    EXPECT_LT(out.callsOf(WRITE_ROW), 2000u);
    EXPECT_EQ(details(), "before");
}

TEST_F(StandaloneTest, choosesMeasuresByBits)
{
    auto const image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    auto labels = toImage(someLabels(Shape{20, 12}));
    connect(image, labels, output);
    auto const measuresOf = [&](unsigned int bits) {
        algorithm->usedMeasures = bits;
        algorithm->run();
        return measuresIn(details());
    };
    std::vector<int> const perDirection{0, 4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 44, 48};
    std::vector<int> overDirections;
    for (int m = 0; m < 52; ++m)
        if (m % 4 != 0)
            overDirections.push_back(m);
    std::vector<int> histogram;
    for (int m = 52; m <= 68; ++m)
        histogram.push_back(m);
    EXPECT_EQ(measuresOf(1), perDirection);
    EXPECT_EQ(measuresOf(2), overDirections);
    EXPECT_EQ(measuresOf(4), histogram);
    EXPECT_EQ(measuresOf(12), histogram);
    EXPECT_QEL_THROW(measuresOf(8), RuleException, "The parameter \"textureFeaturesGroup\" should not be empty.");
    EXPECT_QEL_THROW(measuresOf(0), RuleException, "The parameter \"usedMeasures\" must be strictly positive.");
}

TEST_F(StandaloneTest, settlesNothingThatIsNotUsed)
{
    auto const image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    auto labels = toImage(someLabels(Shape{20, 12}));
    connect(image, labels, output);
    algorithm->textonShape = BALL;
    algorithm->textonSize = 100; // of no use for a histogram
    algorithm->run();
    EXPECT_NE(details().find("minGreyLevelCooccurrence: 0\nmaxGreyLevelCooccurrence: -1\nbinSizeCooccurrence: -1\n"
                             "directionCollection:\nminGrey"),
              std::string::npos);
    EXPECT_NE(details().find("binSizeHistogram: 1\n"), std::string::npos);
}

TEST_F(StandaloneTest, hasAsManyClassesAsTheLargestLabel)
{
    Shape const shape{40, 24};
    auto const image = toImage(twoTextures<unsigned char>(shape));
    auto picture = someLabels<long>(shape);
    for (long& label : picture.voxels)
        label = label == 2 ? 7 : label;
    auto labels = toImage(picture);
    connect(image, labels, output);
    algorithm->run();
    EXPECT_NE(details().find("Number of classes: 7\n"), std::string::npos);
}

TEST_F(StandaloneTest, refusesLabelImagesWithoutLabels)
{
    Shape const shape{20, 12};
    auto const image = toImage(twoTextures<unsigned char>(shape));
    Picture<short> picture(shape);
    for (short const largest : {short(0), short(-3)}) {
        picture.voxels.assign(picture.voxels.size(), largest);
        auto labels = toImage(picture);
        connect(image, labels, output);
        EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "No label defined in label image.");
        EXPECT_TRUE(isAtRest(*algorithm));
    }
    picture.voxels.assign(picture.voxels.size(), 1);
    auto labels = toImage(picture);
    connect(image, labels, output);
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"numOfClasses\" (value=1) must be greater than or equal to <2>.");
    picture.voxels[0] = 2;
    picture.voxels[1] = -1;
    auto negative = toImage(picture);
    connect(image, negative, output);
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall,
                     "The number of labels in the learning images must be equal to the number of classes specified "
                     "when creating the classification.");
}

TEST_F(StandaloneTest, refusesMoreClassesThanMemoryHolds)
{
    auto const image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    auto labels = toImage(Picture<unsigned long>(Shape{20, 12}, 2000000000ul));
    connect(image, labels, output);
    algorithm->usedMeasures = 7;
    EXPECT_QEL_THROW(algorithm->run(), MemoryError, "Impossible to allocate a new TextureClassificationModel.");
}

TEST_F(StandaloneTest, refusesTextonsBeyondTheWindow)
{
    auto const image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    auto labels = toImage(someLabels(Shape{20, 12}));
    connect(image, labels, output);
    algorithm->usedMeasures = 1;
    algorithm->textonSize = 5;
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The <0; 5> direction is imcompatible with the radius.");
    algorithm->textonShape = BALL;
    algorithm->textonSize = 4000000000u;
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The <0; 5> direction is imcompatible with the radius.");
    algorithm->textonShape = CUBE;
    algorithm->textonSize = 4; // fits along an axis, and not at a slant
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The <4; 4> direction is imcompatible with the radius.");
}

TEST_F(StandaloneTest, reportsAConstantImage)
{
    auto const image = toImage(Picture<float>(Shape{20, 12}, 0.5f));
    auto labels = toImage(someLabels(Shape{20, 12}));
    connect(image, labels, output);
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The histogram isn't correctly initialized.");
    algorithm->usedMeasures = 1;
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The bin size must be greater than 0.");
}

TEST_F(StandaloneTest, worksInPlaceOverItsLabelsAndOverItsInput)
{
    for (ComputeMode const mode : {MODE_2D, MODE_3D}) {
        Shape const shape{40, 24, 6};
        auto image = toImage(twoTextures<unsigned short>(shape));
        auto labels = toImage(someLabels<unsigned short>(shape));
        connect(image, labels, output);
        algorithm->computeMode = mode;
        algorithm->usedMeasures = 6;
        algorithm->run();
        auto const expected = fromImage<unsigned short>(output);
        std::string const report = details();
        onOneAndFourThreads([&] {
            auto both = toImage(someLabels<unsigned short>(shape));
            connect(image, both, both);
            algorithm->run();
            EXPECT_TRUE(samePicture(expected, both));
            EXPECT_EQ(details(), report);
            auto over = toImage(twoTextures<unsigned short>(shape));
            connect(over, labels, over);
            algorithm->run();
            EXPECT_TRUE(samePicture(expected, over));
        });
    }
    auto image = toImage(twoTextures<unsigned short>(Shape{20, 12}));
    auto labels = toImage(someLabels<int>(Shape{20, 12}));
    connect(image, labels, labels);
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"labelImg\" cannot be used as output image if it must be retyped.");
}

TEST_F(StandaloneTest, keepsLabelsThatWouldHaveToBeResized)
{
    Shape const shape{20, 12};
    auto const image = toImage(twoTextures<unsigned short>(shape));
    auto const picture = someLabels<unsigned short>(Shape{20, 12, 1, 1, 2});
    auto both = toImage(picture);
    connect(image, both, both);
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"labelImg\" cannot be used as output image if it must be resized.");
    EXPECT_TRUE(samePicture(picture, both));
    auto labels = toImage(someLabels<unsigned short>(shape));
    connect(image, labels, output);
    algorithm->run();
    auto const expected = fromImage<unsigned short>(output);
    connect(image, both, output); // the second series is of no interest
    algorithm->run();
    EXPECT_TRUE(samePicture(expected, output));
}

TEST_F(StandaloneTest, refusesBadProperties)
{
    auto const image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    auto labels = toImage(someLabels(Shape{20, 12}));
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"input\" must be set.");
    connect(image, labels, output);
    algorithm->radius = 0;
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"radius\" must be strictly positive.");
    algorithm->radius = 2;
    algorithm->textonSize = 0;
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"textonSize\" must be strictly positive.");
    algorithm->textonSize = 1;
    algorithm->textonShape = 3;
    EXPECT_THROW(algorithm->run(), RuleException);
    algorithm->textonShape = SPHERE;
    algorithm->computeMode = -1;
    EXPECT_THROW(algorithm->run(), RuleException);
    algorithm->computeMode = MODE_2D;
    algorithm->rejection = 0.5;
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"rejection\" (value=0.5) must be greater than <1>.");
    algorithm->rejection = 3;
    auto narrow = toImage(someLabels(Shape{19, 12}));
    connect(image, narrow, output);
    EXPECT_THROW(algorithm->run(), RuleException);
}

TEST_F(StandaloneTest, stopsWhenItIsCancelled)
{
    // In the label image's extrema, in those of the image, in the training.
    for (unsigned long const after : {0ul, 1500ul, 4000ul}) {
        ObservedImage image(twoTextures<unsigned char>(Shape{64, 2000}));
        auto labels = toImage(Picture<unsigned char>(Shape{64, 2000}, 2));
        HostImage out;
        connect(image, labels, out);
        image.onRead = [&] {
            if (image.callsOf(READ_ROW) > after)
                algorithm->cancelExecution();
        };
        algorithm->run();
        EXPECT_TRUE(isAtRest(*algorithm));
        EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
        EXPECT_EQ(details(), "");
    }
}

TEST_F(StandaloneTest, reachesItsFullProgress)
{
    auto const image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    auto labels = toImage(someLabels(Shape{20, 12}));
    connect(image, labels, output);
    algorithm->run();
    EXPECT_EQ(algorithm->getProgress(), 100);
}
