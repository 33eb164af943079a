#include <qel/classification/TextureClassificationTrain.h>

#include <gtest/gtest.h>

#include "Classification/tests/TextureSupport.h"

using namespace qel;
using namespace qel::classification;
using namespace qel::segmentation;
using namespace qel::test;

namespace {

/// The same training by the extracted features of the whole image, voxel after voxel.
std::unique_ptr<LDAClassifier> plainlyTrained(Model const& model, ImageModel const& image,
                                              Picture<unsigned char> const& labels)
{
    std::unique_ptr<LDAClassifier> classifier(classifierOf(model).clone());
    classifier->startTraining();
    Picture<double> const features = featuresOf(*model->getPrivate(), image);
    forEachVoxel(labels.shape, [&](auto c, auto r, auto p, auto t, auto) {
        if (unsigned char const label = labels.at(c, r, p, t); label > 0)
            classifier->train(featuresAt(features, labels.shape.timeSeries, c, r, p, t), label - 1u);
    });
    classifier->setMinimumRelativeImprovement(0.05);
    classifier->finalize();
    return classifier;
}

void expectSameLearning(LDAClassifier const& expected, LDAClassifier const& actual)
{
    ASSERT_TRUE(actual.finalized());
    for (long c = 0; c < expected.getNumOfClasses(); ++c) {
        auto const& a = expected.getLearningModel(c);
        auto const& b = actual.getLearningModel(c);
        EXPECT_EQ(a.getCount(), b.getCount());
        EXPECT_TRUE(a.getMeanVector().isApprox(b.getMeanVector(), 1e-10));
        EXPECT_TRUE(a.getCovarianceMatrix().isApprox(b.getCovarianceMatrix(), 1e-8));
    }
    for (long k = 0; k < expected.getLearningSpaceDimension(); ++k)
        EXPECT_EQ(expected.isUsedFeature(k), actual.isUsedFeature(k)) << k;
}

class TrainTest : public testing::Test
{
protected:
    void connect(Shape const& shape = {24, 12})
    {
        image = toImage(twoTextures<unsigned char>(shape));
        labels = toImage(someLabels(shape));
        labels.setInterpretation(QEL_LABEL);
        algorithm->input = &image;
        algorithm->mask = &labels;
        algorithm->classificationModel = model.get();
    }
    void setLabel(unsigned char label) { labels.getInternalBuffer()[17] = label; }

    memory::InMemoryImage image, labels;
    Model model = createdModel();
    Ref<TextureClassificationTrain> algorithm{TextureClassificationTrain::New()};
};

constexpr char TOO_MANY_LABELS[] = "The number of labels in the learning images must be equal to the number of classes "
                                   "specified when creating the classification.";

} // namespace

TEST_F(TrainTest, hasItsPropertiesAndDefaults)
{
    EXPECT_EQ(algorithm->getNumOfInputProperties(), 5u);
    EXPECT_EQ(algorithm->getNumOfOutputProperties(), 0u);
    EXPECT_STREQ(algorithm->getInputProperty(1)->getName().c_str(), "mask");
    EXPECT_STREQ(algorithm->getInputProperty(4)->getName().c_str(), "classificationModel");
    EXPECT_EQ(algorithm->rejectionFeatureSelection.get(), 0.05);
    EXPECT_TRUE(algorithm->finalizeTraining.get());
    EXPECT_EQ(levelsOf(*algorithm), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(TrainTest, learnsTheFeaturesOfTheLabelledVoxels)
{
    forEachVoxelType([]<class T>() {
        for (Shape const& shape : {Shape{24, 12}, Shape{9, 7, 2, 2}}) {
            auto const typed = toImage(twoTextures<T>(shape));
            auto typedLabels = toImage(someLabels(shape));
            Model const trained = createdModel();
            auto const expected = plainlyTrained(trained, typed, someLabels(shape));
            train(trained, typed, typedLabels);
            expectSameLearning(*expected, classifierOf(trained));
        }
    });
}

TEST_F(TrainTest, learnsAcrossTheSeamsOfBlocks)
{
    Shape const shape{530, 70};
    auto const image530 = toImage(twoTextures<unsigned short>(shape));
    auto labels530 = toImage(someLabels(shape));
    auto const expected = plainlyTrained(model, image530, someLabels(shape));
    train(model, image530, labels530);
    expectSameLearning(*expected, classifierOf(model));
}

TEST_F(TrainTest, learnsInSpace)
{
    for (Shape const& shape : {Shape{20, 9, 8}, Shape{5, 4, 20, 2}}) {
        Model const trained = createdModel([](TextureClassificationCreate& create) { create.computeMode = MODE_3D; });
        auto const volume = toImage(twoTextures<float>(shape));
        auto volumeLabels = toImage(someLabels(shape));
        auto const expected = plainlyTrained(trained, volume, someLabels(shape));
        train(trained, volume, volumeLabels);
        expectSameLearning(*expected, classifierOf(trained));
    }
}

TEST_F(TrainTest, givesTheSameFileOnAnyNumberOfThreads)
{
    Shape const shape{300, 100, 2};
    auto const large = toImage(twoTextures<unsigned char>(shape));
    auto largeLabels = toImage(someLabels(shape));
    std::string first;
    for (int const threads : {1, 2, 4, 8, 8}) {
        Model const trained = createdModel();
        withThreads(threads, [&] {
            train(trained, large, largeLabels);
            train(trained, large, largeLabels); // and where it goes on
        });
        std::string const file = fileOf(trained);
        if (first.empty())
            first = file;
        EXPECT_TRUE(file == first) << threads;
    }
}

TEST_F(TrainTest, takesLabelsOfAnyIntegerType)
{
    connect();
    algorithm->run();
    std::string const expected = fileOf(model);
    forEachIntegerType([&]<class T>() {
        auto typed = toImage(someLabels<T>(Shape{24, 12}));
        Model const trained = createdModel();
        train(trained, image, typed);
        EXPECT_TRUE(fileOf(trained) == expected);
    });
}

TEST_F(TrainTest, readsImagesThatGiveNoRows)
{
    connect();
    algorithm->run();
    std::string const expected = fileOf(model);
    HostImage hostImage(twoTextures<unsigned char>(Shape{24, 12}));
    HostImage hostLabels(someLabels(Shape{24, 12}));
    Model const trained = createdModel();
    withThreads(4, [&] { train(trained, hostImage, hostLabels); });
    EXPECT_TRUE(fileOf(trained) == expected);
}

TEST_F(TrainTest, refusesLabelsBeyondTheClasses)
{
    connect();
    std::string const before = fileOf(model);
    for (unsigned char const label : {3, 255}) {
        setLabel(label);
        onOneAndFourThreads([&] { EXPECT_QEL_THROW(algorithm->run(), InvalidCall, TOO_MANY_LABELS); });
        EXPECT_TRUE(isAtRest(*algorithm));
    }
    // As it was: nothing of the failed run is in it.
    EXPECT_TRUE(fileOf(model) == before);
    setLabel(0);
    algorithm->run();
    EXPECT_TRUE(classifierOf(model).finalized());
}

TEST_F(TrainTest, countsANegativeLabelAsBeyondTheClasses)
{
    connect();
    auto const refuses = [&]<class T>(T label) {
        auto picture = someLabels<T>(Shape{24, 12});
        picture.at(3, 2) = label;
        auto typed = toImage(picture);
        EXPECT_QEL_THROW(train(model, image, typed), InvalidCall, TOO_MANY_LABELS);
    };
    refuses(static_cast<signed char>(-1));
    refuses(std::numeric_limits<long>::min());
    refuses(std::numeric_limits<unsigned long>::max());
    refuses(std::numeric_limits<unsigned int>::max());
}

TEST_F(TrainTest, needsNoSamples)
{
    connect();
    labels = toImage(Picture<unsigned char>(Shape{24, 12}));
    labels.setInterpretation(QEL_LABEL);
    algorithm->run();
    EXPECT_TRUE(classifierOf(model).finalized());
    EXPECT_TRUE(std::isnan(classifierOf(model).getLearningModel(0).getMeanVector()(0)));
    EXPECT_EQ(classifierOf(model).getClassicationSpaceDimension(), 1);
    EXPECT_TRUE(classifierOf(model).isUsedFeature(0));
    // No sums are left to which samples could be added: such a model stays without power.
    labels = toImage(someLabels(Shape{24, 12}));
    labels.setInterpretation(QEL_LABEL);
    algorithm->run();
    EXPECT_GT(classifierOf(model).getLearningModel(0).getCount(), 0u);
    EXPECT_TRUE(std::isnan(classifierOf(model).getLearningModel(0).getMeanVector()(0)));
    EXPECT_EQ(classifierOf(model).getPower(0), -1.0);
    EXPECT_TRUE(classifierOf(model).isUsedFeature(0));
}

TEST_F(TrainTest, addsTheSamplesOfASecondRun)
{
    connect();
    algorithm->run();
    unsigned long const once = classifierOf(model).getLearningModel(0).getCount();
    auto const mean = classifierOf(model).getLearningModel(0).getMeanVector();
    algorithm->run();
    EXPECT_EQ(classifierOf(model).getLearningModel(0).getCount(), 2 * once);
    EXPECT_TRUE(classifierOf(model).getLearningModel(0).getMeanVector().isApprox(mean, 1e-12));
}

TEST_F(TrainTest, goesOnWithAModelThatWasRead)
{
    connect();
    algorithm->run();
    TemporaryFolder const folder;
    std::string const path = folder / "model";
    model->write(path.c_str(), BINARY, false);
    TextureClassificationModel read;
    read.read(path.c_str());
    algorithm->run();
    algorithm->classificationModel = &read;
    algorithm->run();
    read.write(path.c_str(), BINARY, true);
    EXPECT_TRUE(readFile(path) == fileOf(model));
}

TEST_F(TrainTest, takesTheFirstOfSeveralSpectralSeriesOfLabels)
{
    for (ComputeMode const mode : {MODE_2D, MODE_3D}) {
        auto const ofMode = [mode](TextureClassificationCreate& create) { create.computeMode = mode; };
        Shape const shape{24, 12, 3, 2};
        auto const times = toImage(twoTextures<unsigned char>(shape));
        auto plain = toImage(someLabels(shape));
        Model const expected = createdModel(ofMode);
        train(expected, times, plain);
        Picture<unsigned char> picture(Shape{24, 12, 3, 2, 2});
        forEachVoxel(picture.shape, [&](auto c, auto r, auto p, auto t, auto s) {
            picture.at(c, r, p, t, s) = s == 0 ? someLabels(shape).at(c, r, p, t) : 200; // no label that is allowed
        });
        auto several = toImage(picture);
        Model const trained = createdModel(ofMode);
        train(trained, times, several);
        EXPECT_TRUE(fileOf(trained) == fileOf(expected));
    }
}

TEST_F(TrainTest, isAlwaysCompleted)
{
    connect();
    algorithm->run();
    Model const other = createdModel();
    algorithm->classificationModel = other.get();
    algorithm->finalizeTraining = false;
    algorithm->run();
    EXPECT_TRUE(fileOf(other) == fileOf(model));
}

TEST_F(TrainTest, takesTheLeastImprovement)
{
    connect();
    algorithm->rejectionFeatureSelection = 0.0;
    algorithm->run();
    long const many = classifierOf(model).getClassicationSpaceDimension();
    EXPECT_EQ(classifierOf(model).getMinimumRelativeImprovement(), 0.0);
    algorithm->rejectionFeatureSelection = 1.0;
    algorithm->run();
    EXPECT_EQ(classifierOf(model).getClassicationSpaceDimension(), 1);
    EXPECT_GT(many, 1);
}

TEST_F(TrainTest, leavesTheFirstOfTwoEqualMeasuresZero)
{
    model = createdModel([](TextureClassificationCreate& create) {
        create.textureFeaturesGroup = vectorOf({HISTO_Mean, COOC_Contrast, HISTO_Mean, COOC_Contrast});
    });
    connect();
    algorithm->run();
    auto const& mean = classifierOf(model).getLearningModel(0).getMeanVector();
    ASSERT_EQ(mean.size(), 6);
    EXPECT_EQ(mean(0), 0);
    EXPECT_EQ(mean(1), 0);
    EXPECT_EQ(mean(2), 0);
    EXPECT_GT(mean(3), 0);
    EXPECT_GT(mean(4), 0);
    EXPECT_EQ(classifierOf(model).getPower(0), -1.0);
}

TEST_F(TrainTest, findsTheRangeOfTheImageForItselfAlone)
{
    auto const openRange = [](TextureClassificationCreate& create) {
        create.minGreyLevelCooccurrence = 0.0;
        create.maxGreyLevelCooccurrence = -1.0;
        create.binSizeCooccurrence = 0.0;
        create.minGreyLevelHistogram = 5.0;
        create.maxGreyLevelHistogram = 4.0;
        create.binSizeHistogram = -2.0;
    };
    model = createdModel(openRange);
    Shape const shape{24, 12};
    auto picture = twoTextures<short>(shape);
    for (short& voxel : picture.voxels)
        voxel = static_cast<short>(10 * voxel - 100);
    auto const [low, high] = std::minmax_element(picture.voxels.begin(), picture.voxels.end());
    auto const shorts = toImage(picture);
    labels = toImage(someLabels(shape));
    train(model, shorts, labels);
    EXPECT_EQ(model->getPrivate()->maxGreyLevelCooccurrence, -1.0);
    EXPECT_EQ(model->getPrivate()->binSizeHistogram, -2.0);

    Model const settled = createdModel([&, l = *low, h = *high](TextureClassificationCreate& create) {
        create.minGreyLevelCooccurrence = l;
        create.maxGreyLevelCooccurrence = h;
        create.binSizeCooccurrence = std::ceil((h - l) / 20.0);
        create.minGreyLevelHistogram = l;
        create.maxGreyLevelHistogram = h;
        create.binSizeHistogram = std::ceil((h - l) * 0.00390625);
    });
    train(settled, shorts, labels);
    EXPECT_EQ(classifierOf(model).getLearningModel(1).getCovarianceMatrix(),
              classifierOf(settled).getLearningModel(1).getCovarianceMatrix());
}

TEST_F(TrainTest, refusesModelsThatCannotLearn)
{
    connect();
    auto const refuses = [&](auto const& adjust, std::string const& text) {
        model = createdModel(adjust);
        algorithm->classificationModel = model.get();
        EXPECT_QEL_THROW(algorithm->run(), InvalidCall, text);
    };
    refuses(
        [](TextureClassificationCreate& create) {
            create.direction2DCollection = container::Vector<math::Vector2<int>>();
        },
        "The direction collection is empty.");
    refuses(
        [](TextureClassificationCreate& create) {
            create.direction2DCollection = vectorOf({math::Vector2<int>(1, 0), math::Vector2<int>(5, -3)});
        },
        "The <5; -3> direction is imcompatible with the radius.");
    refuses(
        [](TextureClassificationCreate& create) {
            create.computeMode = MODE_3D;
            create.direction3DCollection = vectorOf({math::Vector3<int>(0, 0, 5)});
        },
        "The <0; 0; 5> direction is imcompatible with the radius.");
    TextureClassificationModel fresh;
    algorithm->classificationModel = &fresh;
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The measures group is empty.");
    fresh.getPrivate()->measures = vectorOf({HISTO_Mean});
    EXPECT_QEL_THROW(algorithm->run(), RuntimeError, "Cannot start a training on an uninitialized classification");
    fresh.getPrivate()->classifier.reset();
    EXPECT_QEL_THROW(algorithm->run(), RuntimeError, "The classifier is invalid.");
}

TEST_F(TrainTest, reportsAConstantImage)
{
    auto const openRange = [](TextureClassificationCreate& create) {
        create.maxGreyLevelCooccurrence = -1.0;
        create.binSizeCooccurrence = 0.0;
        create.maxGreyLevelHistogram = -1.0;
        create.binSizeHistogram = 0.0;
    };
    model = createdModel(openRange);
    connect();
    image = toImage(Picture<unsigned char>(Shape{24, 12}, 7));
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The bin size must be greater than 0.");
    Model const histogram = createdModel([&](TextureClassificationCreate& create) {
        openRange(create);
        create.textureFeaturesGroup = vectorOf({HISTO_Mean});
    });
    algorithm->classificationModel = histogram.get();
    EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The histogram isn't correctly initialized.");
}

TEST_F(TrainTest, refusesBadProperties)
{
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"input\" must be set.");
    connect();
    algorithm->classificationModel = nullptr;
    EXPECT_QEL_THROW(algorithm->run(), RuleException, "The parameter \"classificationModel\" must be set.");
    algorithm->classificationModel = model.get();
    algorithm->rejectionFeatureSelection = -0.1;
    EXPECT_QEL_THROW(algorithm->run(), RuleException,
                     "The parameter \"rejectionFeatureSelection\" (value=-0.1) must be greater than or equal to <0>.");
    algorithm->rejectionFeatureSelection = 0.0;
    labels.setInterpretation(QEL_VALUE);
    EXPECT_THROW(algorithm->run(), RuleException);
    labels.setInterpretation(QEL_LABEL);
    for (Shape const& shape : {Shape{23, 12}, Shape{24, 11}, Shape{24, 12, 2}, Shape{24, 12, 1, 2}}) {
        auto other = toImage(someLabels(shape));
        other.setInterpretation(QEL_LABEL);
        algorithm->mask = &other;
        EXPECT_THROW(algorithm->run(), RuleException) << shape;
    }
    auto real = toImage(Picture<float>(Shape{24, 12}));
    real.setInterpretation(QEL_LABEL);
    algorithm->mask = &real;
    EXPECT_THROW(algorithm->run(), RuleException);
    algorithm->mask = &labels;
    auto const colours = toImage(Picture<unsigned char>(Shape{24, 12, 1, 1, 3}));
    algorithm->input = &colours;
    EXPECT_THROW(algorithm->run(), RuleException);
}

TEST_F(TrainTest, lastsWithImagesOfNoVoxels)
{
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 2, 0}, Shape{3, 2, 1, 0}}) {
        connect(shape);
        algorithm->run();
        EXPECT_TRUE(classifierOf(model).finalized());
    }
}

TEST_F(TrainTest, lastsWithNumbersThatAreNone)
{
    Shape const shape{24, 12};
    auto picture = twoTextures<double>(shape);
    picture.at(4, 4) = std::numeric_limits<double>::quiet_NaN();
    picture.at(20, 4) = std::numeric_limits<double>::infinity();
    picture.at(20, 9) = -1e300;
    auto const numbers = toImage(picture);
    labels = toImage(someLabels(shape));
    train(model, numbers, labels);
    EXPECT_TRUE(classifierOf(model).finalized());
    EXPECT_TRUE(std::isfinite(classifierOf(model).getLearningModel(0).getMeanVector()(0)));
}

TEST_F(TrainTest, leavesTheModelAloneWhenItIsCancelled)
{
    ObservedImage large(QEL_UINT8, Shape{64, 2000});
    auto largeLabels = toImage(Picture<unsigned char>(Shape{64, 2000}, 1));
    largeLabels.setInterpretation(QEL_LABEL);
    algorithm->input = &large;
    algorithm->mask = &largeLabels;
    algorithm->classificationModel = model.get();
    std::string const before = fileOf(model);
    large.onRead = [&] { algorithm->cancelExecution(); };
    algorithm->run();
    EXPECT_TRUE(isAtRest(*algorithm));
    EXPECT_TRUE(fileOf(model) == before);
    EXPECT_LT(large.callsOf(READ_ROW), 1000u);
}

TEST_F(TrainTest, reportsImagesThatFail)
{
    Shape const shape{24, 12};
    auto const picture = twoTextures<unsigned char>(shape);
    connect(shape);
    algorithm->run();
    std::string const expected = fileOf(model);
    Model trained;
    expectFailingImagesAreReported<TextureClassificationTrain>(
        [&](TextureClassificationTrain& failing, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(someLabels(shape)));
            images[1]->setInterpretation(QEL_LABEL);
            trained = createdModel();
            failing.input = images[0].get();
            failing.mask = images[1].get();
            failing.classificationModel = trained.get();
        },
        [&](HostImages const&) { return fileOf(trained) == expected; });
}

TEST_F(TrainTest, tellsTheReachOfItsModel)
{
    EXPECT_TRUE(hasNoBorder(*algorithm));
    algorithm->classificationModel = model.get();
    AlgoBorderInfluence influence = algorithm->getAlgoBorderInfluence();
    EXPECT_EQ(influence.getNumOfVoxels(COLUMNS_NEGATIVE), 2u);
    EXPECT_EQ(influence.getNumOfVoxels(ROWS_POSITIVE), 2u);
    EXPECT_EQ(influence.getNumOfVoxels(PLANS_POSITIVE), 0u);
    model->getPrivate()->computeMode = MODE_3D;
    influence = algorithm->getAlgoBorderInfluence();
    EXPECT_EQ(influence.getNumOfVoxels(PLANS_POSITIVE), 2u);
    EXPECT_EQ(influence.getNumOfVoxels(TIME_SERIES_POSITIVE), 0u);
}
