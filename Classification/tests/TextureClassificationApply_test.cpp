#include <qel/classification/TextureClassificationApply.h>

#include <gtest/gtest.h>

#include "Classification/tests/TextureSupport.h"

using namespace qel;
using namespace qel::classification;
using namespace qel::segmentation;
using namespace qel::test;

namespace {

Model trainedModel(ComputeMode mode = MODE_2D, double leastImprovement = 0.01)
{
    Model model = createdModel([&](TextureClassificationCreate& create) { create.computeMode = mode; });
    Shape const shape{40, 24, mode == MODE_3D ? 8ul : 1ul};
    auto const image = toImage(twoTextures<unsigned char>(shape, 7));
    auto labels = toImage(someLabels(shape));
    train(model, image, labels, leastImprovement);
    return model;
}

/// All measures of the whole image, and the classifier's word on those that it has chosen.
Picture<unsigned short> plainLabels(Model const& model, ImageModel const& image, double rejection)
{
    Picture<double> const features = featuresOf(*model->getPrivate(), image);
    std::unique_ptr<LDAClassifier> const classifier(classifierOf(model).clone());
    classifier->setSquaredRejectionDistance(rejection * rejection);
    Picture<unsigned short> labels(shapeOf(image));
    forEachVoxel(labels.shape, [&](auto c, auto r, auto p, auto t, auto) {
        Eigen::VectorXd const all = featuresAt(features, labels.shape.timeSeries, c, r, p, t);
        Eigen::VectorXd chosen(classifier->getClassicationSpaceDimension());
        long count = 0;
        for (long k = 0; k < all.size(); ++k)
            if (classifier->isUsedFeature(k))
                chosen(count++) = all(k);
        labels.at(c, r, p, t) = static_cast<unsigned short>(classifier->classify(chosen) + 1);
    });
    return labels;
}

class ApplyTest : public testing::Test
{
protected:
    void connect(ImageModel& input, ImageModel& output, Model const& model, double rejection = 3)
    {
        algorithm->input = &input;
        algorithm->classificationModel = model.get();
        algorithm->rejection = rejection;
        algorithm->classifiedImage = &output;
    }
    static Model& planeModel()
    {
        static Model model = trainedModel();
        return model;
    }
    static Model& volumeModel()
    {
        static Model model = trainedModel(MODE_3D);
        return model;
    }

    Ref<TextureClassificationApply> algorithm{TextureClassificationApply::New()};
};

} // namespace

TEST_F(ApplyTest, hasItsPropertiesAndDefaults)
{
    EXPECT_EQ(algorithm->getNumOfInputProperties(), 3u);
    EXPECT_EQ(algorithm->getNumOfOutputProperties(), 1u);
    EXPECT_STREQ(algorithm->getInputProperty(1)->getName().c_str(), "classificationModel");
    EXPECT_EQ(algorithm->rejection.get(), 3);
    EXPECT_EQ(levelsOf(*algorithm), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(ApplyTest, labelsAsTheClassifierSaysOfTheExtractedFeatures)
{
    ASSERT_GT(classifierOf(planeModel()).getClassicationSpaceDimension(), 1);
    forEachVoxelType([&]<class T>() {
        for (Shape const& shape :
             {Shape{1, 1}, Shape{1, 7}, Shape{33, 5, 3, 2}, Shape{20, 9}, Shape{0, 3}, Shape{3, 2, 0}}) {
            auto image = toImage(twoTextures<T>(shape, 3));
            for (double const rejection : {1.5, 3.0, 50.0}) {
                auto const expected =
                    shape.count() == 0 ? Picture<unsigned short>(shape) : plainLabels(planeModel(), image, rejection);
                memory::InMemoryImage output;
                connect(image, output, planeModel(), rejection);
                algorithm->run();
                EXPECT_TRUE(samePicture(expected, output)) << rejection;
            }
        }
    });
}

TEST_F(ApplyTest, labelsVolumes)
{
    forEachVoxelType([&]<class T>() {
        for (Shape const& shape : {Shape{1, 1}, Shape{11, 5, 7}, Shape{3, 4, 5, 2}}) {
            auto image = toImage(twoTextures<T>(shape, 3));
            memory::InMemoryImage output;
            connect(image, output, volumeModel());
            algorithm->run();
            EXPECT_TRUE(samePicture(plainLabels(volumeModel(), image, 3), output)) << shape;
        }
    });
}

TEST_F(ApplyTest, labelsAlikeOnAnyNumberOfThreadsAndAcrossSeams)
{
    Shape const shape{530, 70};
    auto image = toImage(twoTextures<unsigned char>(shape, 3));
    auto const expected = plainLabels(planeModel(), image, 3);
    Shape const volumeShape{140, 20, 20};
    auto volume = toImage(twoTextures<unsigned char>(volumeShape, 3));
    auto const expectedVolume = plainLabels(volumeModel(), volume, 3);
    onOneAndFourThreads([&] {
        memory::InMemoryImage output;
        connect(image, output, planeModel());
        algorithm->run();
        EXPECT_TRUE(samePicture(expected, output));
        connect(volume, output, volumeModel());
        algorithm->run();
        EXPECT_TRUE(samePicture(expectedVolume, output));
    });
}

TEST_F(ApplyTest, tellsTheTexturesApart)
{
    Shape const shape{60, 40};
    auto image = toImage(twoTextures<unsigned char>(shape, 99));
    memory::InMemoryImage output;
    connect(image, output, planeModel(), 4);
    algorithm->run();
    auto const labels = fromImage<unsigned short>(output);
    unsigned long right = 0;
    unsigned long wrong = 0;
    forEachVoxel(shape, [&](auto c, auto r, auto, auto, auto) {
        unsigned short const label = labels.at(c, r);
        if (label != 0)
            (label == (2 * c < shape.columns ? 1 : 2) ? right : wrong) += 1;
    });
    EXPECT_GT(right, 2000u);
    EXPECT_LT(wrong, 100u);
}

TEST_F(ApplyTest, worksInPlace)
{
    onOneAndFourThreads([&] {
        for (Shape const& shape : {Shape{33, 5, 3, 2}, Shape{300, 70}, Shape{20, 20, 20}})
            for (Model const* const model : {&planeModel(), &volumeModel()}) {
                auto both = toImage(twoTextures<unsigned short>(shape, 5));
                auto const expected = plainLabels(*model, both, 3);
                connect(both, both, *model);
                algorithm->run();
                EXPECT_TRUE(samePicture(expected, both)) << shape;
                EXPECT_EQ(both.getInterpretation(), QEL_LABEL);
                HostImage host(twoTextures<unsigned short>(shape, 5));
                connect(host, host, *model);
                algorithm->run();
                EXPECT_TRUE(samePicture(expected, host)) << shape;
            }
    });
}

TEST_F(ApplyTest, keepsAnInputThatWouldHaveToBecomeAnotherType)
{
    auto const picture = twoTextures<unsigned char>(Shape{9, 9});
    auto both = toImage(picture);
    connect(both, both, planeModel());
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"input\" cannot be used as output image if it must be retyped.");
    EXPECT_TRUE(samePicture(picture, both));
    EXPECT_EQ(both.getInterpretation(), QEL_VALUE);
}

TEST_F(ApplyTest, shapesItsOutput)
{
    auto image = toImage(twoTextures<float>(Shape{20, 9, 2, 3}));
    image.setSpacingOf(ROWS, 0.25);
    image.setOriginOf(COLUMNS, -4);
    auto output = toImage(Picture<double>(Shape{2, 2, 1, 1, 5}));
    connect(image, output, planeModel());
    algorithm->run();
    EXPECT_EQ(output.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(output.getInterpretation(), QEL_LABEL);
    EXPECT_EQ(shapeOf(output), (Shape{20, 9, 2, 3}));
    EXPECT_TRUE(sameCalibration(image, output));
    HostImage refuses;
    refuses.failOn(RESERVE);
    connect(image, refuses, planeModel());
    EXPECT_THROW(algorithm->run(), RuleException);
}

TEST_F(ApplyTest, measuresNoMoreThanItNeeds)
{
    // One feature each: of a direction, of a summary whose directions nobody asked for, of a histogram.
    for (TextureFeatureTypes const measure :
         {COOC_Contrast, COOC_ContrastMean, COOC_EntropyStddev, COOC_SumAverageRange, HISTO_Variance, HISTO_QuantileR2})
        for (bool const isOrderReversed : {false, true}) {
            Model const model = createdModel([&](TextureClassificationCreate& create) {
                create.textureFeaturesGroup = isOrderReversed ? vectorOf({HISTO_Peak, COOC_Correlation, measure})
                                                              : vectorOf({measure, COOC_Correlation, HISTO_Peak});
            });
            Shape const shape{40, 24};
            auto image = toImage(twoTextures<unsigned char>(shape, 7));
            auto labels = toImage(someLabels(shape));
            train(model, image, labels, 0.3);
            memory::InMemoryImage output;
            connect(image, output, model);
            algorithm->run();
            EXPECT_TRUE(samePicture(plainLabels(model, image, 3), output)) << measure;
        }
}

TEST_F(ApplyTest, takesTheFirstOfTwoEqualMeasuresForZero)
{
    // Without samples of one class nothing has power, and the first feature is chosen: one that nobody computes.
    Model const model = createdModel([](TextureClassificationCreate& create) {
        create.textureFeaturesGroup = vectorOf({HISTO_Mean, HISTO_Mean});
    });
    Shape const shape{20, 12};
    auto image = toImage(twoTextures<unsigned char>(shape, 7));
    auto labels = toImage(Picture<unsigned char>(shape, 1));
    train(model, image, labels);
    ASSERT_TRUE(classifierOf(model).isUsedFeature(0));
    ASSERT_FALSE(classifierOf(model).isUsedFeature(1));
    memory::InMemoryImage output;
    connect(image, output, model);
    algorithm->run();
    EXPECT_TRUE(samePicture(plainLabels(model, image, 3), output));
}

TEST_F(ApplyTest, labelsNothingAfterATrainingWithoutSamples)
{
    Model const model = createdModel();
    Shape const shape{20, 12};
    auto image = toImage(twoTextures<unsigned char>(shape, 7));
    auto labels = toImage(Picture<unsigned char>(shape));
    train(model, image, labels);
    auto output = toImage(Picture<unsigned short>(shape, 9));
    connect(image, output, model);
    algorithm->run();
    EXPECT_TRUE(samePicture(Picture<unsigned short>(shape), output));
}

TEST_F(ApplyTest, rejectsMoreTheSmallerTheRejection)
{
    auto image = toImage(twoTextures<unsigned char>(Shape{60, 40}, 3));
    auto const rejectedAt = [&](double rejection) {
        memory::InMemoryImage output;
        connect(image, output, planeModel(), rejection);
        algorithm->run();
        auto const labels = fromImage<unsigned short>(output);
        return std::count(labels.voxels.begin(), labels.voxels.end(), 0);
    };
    long const atOne = rejectedAt(1.0000001);
    EXPECT_GT(atOne, 1200);
    EXPECT_LT(rejectedAt(2), atOne);
    EXPECT_EQ(rejectedAt(1e9), 0);
    // The next run has its own, whatever the model was applied with before.
    EXPECT_EQ(rejectedAt(1.0000001), atOne);
    EXPECT_EQ(classifierOf(planeModel()).getSquaredRejectionDistance(), 9.0);
}

TEST_F(ApplyTest, refusesModelsThatCannotBeApplied)
{
    auto image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    memory::InMemoryImage output;
    Model const untrained = createdModel();
    connect(image, output, untrained);
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "Call isUsedFeature while the model is not finalized.");
    Model const fresh = std::make_unique<TextureClassificationModel>();
    connect(image, output, fresh);
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The measures group is empty.");
    fresh->getPrivate()->classifier.reset();
    EXPECT_QEL_THROW(algorithm->run(), RuntimeError, "The classifier is invalid.");
}

TEST_F(ApplyTest, findsNoRangeByItself)
{
    auto const trainOpen = [](auto const& adjust) {
        Model model = createdModel(adjust);
        Shape const shape{40, 24};
        auto const image = toImage(twoTextures<unsigned char>(shape, 7));
        auto labels = toImage(someLabels(shape));
        train(model, image, labels);
        return model;
    };
    Model const model = trainOpen([](TextureClassificationCreate& create) {
        create.textureFeaturesGroup = vectorOf({COOC_Contrast});
        create.maxGreyLevelCooccurrence = -1.0;
        create.binSizeCooccurrence = 0.0;
    });
    auto image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    memory::InMemoryImage output;
    connect(image, output, model);
    onOneAndFourThreads([&] {
        EXPECT_QEL_THROW(algorithm->run(), UnexpectedError, "Cooccurrence matrix used but not initialized");
        EXPECT_TRUE(isAtRest(*algorithm));
    });
}

TEST_F(ApplyTest, findsNoRangeOfHistogramsByItself)
{
    Shape const shape{40, 24};
    auto image = toImage(twoTextures<unsigned char>(shape, 7));
    auto labels = toImage(someLabels(shape));
    memory::InMemoryImage output;
    // An open range has no bins, or is turned round.
    for (auto const& [binSize, text] : {std::pair(0.0, "The histogram isn't correctly initialized."),
                                        std::pair(1.0, "The histogram is empty: impossible to compute a measure.")}) {
        Model const model = createdModel([size = binSize](TextureClassificationCreate& create) {
            create.textureFeaturesGroup = vectorOf({HISTO_Mean});
            create.maxGreyLevelHistogram = -1.0;
            create.binSizeHistogram = size;
        });
        train(model, image, labels);
        connect(image, output, model);
        onOneAndFourThreads([&] {
            EXPECT_QEL_THROW(algorithm->run(), InvalidCall, text);
            EXPECT_TRUE(isAtRest(*algorithm));
        });
    }
}

TEST_F(ApplyTest, refusesAWindowWithoutVoxels)
{
    // No one can create such a model, but a file may hold it.
    Shape const shape{40, 24};
    auto image = toImage(twoTextures<unsigned char>(shape, 7));
    auto labels = toImage(someLabels(shape));
    memory::InMemoryImage output;
    for (TextureFeatureTypes const measure : {HISTO_Mean, COOC_Contrast}) {
        Model const model = createdModel(
            [measure](TextureClassificationCreate& create) { create.textureFeaturesGroup = vectorOf({measure}); });
        train(model, image, labels);
        model->getPrivate()->radius = 0;
        std::string const text = measure == HISTO_Mean ? "The histogram is empty: impossible to compute a measure."
                                                       : "The <1; 0> direction is imcompatible with the radius.";
        connect(image, output, model);
        EXPECT_QEL_THROW(algorithm->run(), InvalidCall, text);
        EXPECT_QEL_THROW(train(model, image, labels), InvalidCall, text);
    }
}

TEST_F(ApplyTest, refusesBadProperties)
{
    auto image = toImage(twoTextures<unsigned char>(Shape{20, 12}));
    memory::InMemoryImage output;
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"input\" must be set.");
    connect(image, output, planeModel());
    algorithm->classificationModel = nullptr;
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"classificationModel\" must be set.");
    connect(image, output, planeModel(), 1.0);
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"rejection\" (value=1) must be greater than <1>.");
    connect(image, output, planeModel());
    algorithm->classifiedImage = nullptr;
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"classifiedImage\" must be set.");
    auto colours = toImage(Picture<unsigned char>(Shape{24, 12, 1, 1, 3}));
    connect(colours, output, planeModel());
    EXPECT_THROW(algorithm->run(), RuleException);
}

TEST_F(ApplyTest, appliesOneModelInTwoRunsAtOnce)
{
    auto image = toImage(twoTextures<unsigned char>(Shape{120, 60}, 3));
    auto const strict = plainLabels(planeModel(), image, 1.5);
    auto const lax = plainLabels(planeModel(), image, 40);
    auto const run = [&](double rejection, Picture<unsigned short> const& expected) {
        for (int i = 0; i < 5; ++i) {
            memory::InMemoryImage output;
            Ref<TextureClassificationApply> apply(TextureClassificationApply::New());
            apply->input = &image;
            apply->classificationModel = planeModel().get();
            apply->rejection = rejection;
            apply->classifiedImage = &output;
            apply->run();
            EXPECT_TRUE(samePicture(expected, output));
        }
    };
    std::thread other([&] { run(1.5, strict); });
    run(40, lax);
    other.join();
}

TEST_F(ApplyTest, stopsWhenItIsCancelled)
{
    ObservedImage image(QEL_UINT8, Shape{64, 2000});
    HostImage output;
    connect(image, output, planeModel());
    image.onRead = [&] { algorithm->cancelExecution(); };
    algorithm->run();
    EXPECT_LT(output.callsOf(WRITE_ROW), 400u);
    EXPECT_TRUE(isAtRest(*algorithm));
    image.onRead = nullptr;
    output.forgetCalls();
    algorithm->run();
    EXPECT_EQ(output.callsOf(WRITE_ROW), 2000u);
    EXPECT_EQ(algorithm->getProgress(), 100);
}

TEST_F(ApplyTest, reportsImagesThatFail)
{
    Shape const shape{24, 12};
    auto const picture = twoTextures<unsigned char>(shape);
    auto const expected = plainLabels(planeModel(), toImage(picture), 3);
    expectFailingImagesAreReported<TextureClassificationApply>(
        [&](TextureClassificationApply& failing, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            failing.input = images[0].get();
            failing.classificationModel = planeModel().get();
            failing.classifiedImage = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[1])); });
}

TEST_F(ApplyTest, tellsTheReachOfItsModel)
{
    EXPECT_TRUE(hasNoBorder(*algorithm));
    algorithm->classificationModel = volumeModel().get();
    EXPECT_EQ(algorithm->getAlgoBorderInfluence().getNumOfVoxels(PLANS_NEGATIVE), 2u);
    algorithm->classificationModel = planeModel().get();
    EXPECT_EQ(algorithm->getAlgoBorderInfluence().getNumOfVoxels(PLANS_NEGATIVE), 0u);
    EXPECT_EQ(algorithm->getAlgoBorderInfluence().getNumOfVoxels(COLUMNS_POSITIVE), 2u);
}
