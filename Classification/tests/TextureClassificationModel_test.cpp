#include <qel/classification/TextureClassificationModel.h>

#include "Classification/private/LDAClassifier.h"
#include "Classification/private/TextureClassificationModelPrivate.h"
#include "Core/private/ClassicText.h"
#include "Core/private/Serialization/BinaryArchive.h"
#include "Core/tests/Support/Algorithms.h"
#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/ForeignLocale.h"
#include "Core/tests/Support/TemporaryFolder.h"

#include <qel/AlgoInfo.h>
#include <qel/Exception.h>
#include <qel/Ref.h>
#include <qel/classification/ReadTextureClassificationModel.h>
#include <qel/classification/TextureClassificationCreate.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <thread>

using namespace qel;
using namespace qel::classification;
using namespace qel::segmentation;

namespace {

using Model = std::unique_ptr<TextureClassificationModel>;

template <class T> std::string bytesOf(T value) { return std::string(reinterpret_cast<char*>(&value), sizeof value); }

template <class E> container::Vector<E> vectorOf(std::initializer_list<E> elements)
{
    container::Vector<E> vector;
    for (E const& element : elements)
        vector.push_back(element);
    return vector;
}

/// A measure for each of two directions, and one of the histogram.
void setUp(TextureClassificationCreate& create)
{
    create.numOfClasses = 2;
    create.radius = 3;
    create.textureFeaturesGroup = vectorOf({COOC_Contrast, HISTO_Mean});
    create.direction2DCollection = vectorOf({math::Vector2<int>(1, 0), math::Vector2<int>(0, -2)});
    create.direction3DCollection = vectorOf({math::Vector3<int>(1, 2, 3)});
}

template <class SetUp> Model created(SetUp const& adjust)
{
    Ref<TextureClassificationCreate> create(TextureClassificationCreate::New());
    setUp(*create);
    adjust(*create);
    TextureClassificationModel* model = nullptr;
    create->classificationModel = &model;
    create->run();
    return Model(model);
}

Model created()
{
    return created([](TextureClassificationCreate&) {});
}

LDAClassifier& classifierOf(Model const& model)
{
    return dynamic_cast<LDAClassifier&>(*model->getPrivate()->classifier);
}

/// Samples of which the second and the last feature tell the classes.
void train(Model const& model)
{
    LDAClassifier& classifier = classifierOf(model);
    long const dimension = classifier.getLearningSpaceDimension();
    for (int n = 0; n < 12; ++n)
        for (unsigned long c = 0; c < 2; ++c) {
            Eigen::VectorXd sample(dimension);
            for (long i = 0; i < dimension; ++i)
                sample(i) = (n * (i + 3) * 7) % 11 + (i == 1 || i == dimension - 1 ? 8.0 * static_cast<double>(c) : 0);
            classifier.train(sample, c);
        }
    classifier.setMinimumRelativeImprovement(0.3);
    classifier.finalize();
}

String pathOf(std::string const& path) { return String(path.c_str()); }

std::string written(Model const& model, std::string const& path)
{
    model->write(pathOf(path), BINARY, true);
    return test::readFile(path);
}

std::string const NAME = std::string("\x1a\0\0\0\0\0\0\0TextureClassificationModel", 34);
std::string const LDA_NAME = std::string("\x0d\0\0\0\0\0\0\0LDAClassifier", 21);

/// An estimator without samples.
std::string emptyEstimator(long dimension)
{
    std::string const size = bytesOf(dimension);
    std::string bytes = size + size + bytesOf(1l) + std::string(8 * static_cast<std::size_t>(dimension), '\0');
    bytes += size + size + std::string(8 * static_cast<std::size_t>(dimension * dimension), '\0');
    return bytes + bytesOf(0ul) + '\0';
}

/// What a file holds from the number of classes to the classifier, for the model of `created`.
std::string fieldsOfCreated()
{
    std::string bytes = bytesOf(2) + bytesOf(3u);                               // classes, radius
    bytes += std::string("\2\0\0\0\0\0\0\0\x04\0\x34\0", 12);                   // measures 4 and 52
    bytes += bytesOf(0.0) + bytesOf(255.0) + bytesOf(16.0);                     // grey levels of co-occurrence
    bytes += bytesOf(2ul) + bytesOf(1) + bytesOf(0) + bytesOf(0) + bytesOf(-2); // directions
    bytes += bytesOf(0.0) + bytesOf(255.0) + bytesOf(1.0);                      // grey levels of the histogram
    bytes += bytesOf(6ul) + bytesOf(0.2) + bytesOf(0.3) + bytesOf(0.4) + bytesOf(0.6) + bytesOf(0.7) + bytesOf(0.8);
    bytes += LDA_NAME + std::string("\1\0", 2);
    bytes += '\1' + bytesOf(3l) + bytesOf(2l) + bytesOf(0l); // in training, dimension, classes
    for (int i = 0; i < 5; ++i)
        bytes += emptyEstimator(3);
    bytes += bytesOf(3ul);
    for (int i = 0; i < 3; ++i)
        bytes += bytesOf(-1.0) + '\0';
    return bytes + bytesOf(0.01);
}

std::string fileOfCreated() { return "QELO" + NAME + std::string("\2\0\0", 3) + fieldsOfCreated(); }

class ModelFiles : public testing::Test
{
protected:
    std::string file(std::string const& content)
    {
        std::string const path = folder / "model.qelo";
        test::writeFile(path, content);
        return path;
    }
    void expectCorrupted(std::string const& content, std::string const& what)
    {
        SCOPED_TRACE(what);
        std::string const path = file(content);
        TextureClassificationModel model;
        EXPECT_QEL_THROW(model.read(pathOf(path)), SerializationException, "The <" + path + "> file is corrupted.");
    }

    test::TemporaryFolder folder;
};

} // namespace

TEST(TextureClassificationModel, startsWithTheDefaults)
{
    TextureClassificationModel const model;
    TextureClassificationModelPrivate const& parameters = *model.getPrivate();
    EXPECT_EQ(parameters.computeMode, MODE_2D);
    EXPECT_EQ(parameters.numOfClasses, 2);
    EXPECT_EQ(parameters.radius, 5u);
    EXPECT_TRUE(parameters.measures.empty());
    EXPECT_EQ(parameters.minGreyLevelCooccurrence, 0);
    EXPECT_EQ(parameters.maxGreyLevelCooccurrence, 255);
    EXPECT_EQ(parameters.binSizeCooccurrence, 16);
    EXPECT_TRUE(parameters.directions2D.empty());
    EXPECT_TRUE(parameters.directions3D.empty());
    EXPECT_EQ(parameters.minGreyLevelHistogram, 0);
    EXPECT_EQ(parameters.maxGreyLevelHistogram, 255);
    EXPECT_EQ(parameters.binSizeHistogram, 1);
    EXPECT_TRUE(parameters.userQuantileRatios.empty());
    EXPECT_FALSE(parameters.classifier->finalized());
    EXPECT_EQ(parameters.getLearningSpaceDimension(), 0u);
}

TEST(TextureClassificationCreate, hasItsPropertiesAndDefaults)
{
    Ref<TextureClassificationCreate> create(TextureClassificationCreate::New());
    EXPECT_EQ(create->computeMode.get(), MODE_2D);
    EXPECT_EQ(create->numOfClasses.get(), 2u);
    EXPECT_EQ(create->radius.get(), 5u);
    EXPECT_TRUE(create->textureFeaturesGroup.get().empty());
    EXPECT_EQ(create->minGreyLevelCooccurrence.get(), 0);
    EXPECT_EQ(create->maxGreyLevelCooccurrence.get(), 255);
    EXPECT_EQ(create->binSizeCooccurrence.get(), 16);
    EXPECT_TRUE(create->direction2DCollection.get().empty());
    EXPECT_TRUE(create->direction3DCollection.get().empty());
    EXPECT_EQ(create->minGreyLevelHistogram.get(), 0);
    EXPECT_EQ(create->maxGreyLevelHistogram.get(), 255);
    EXPECT_EQ(create->binSizeHistogram.get(), 1);
    EXPECT_EQ(create->userQuantileRatioHistogram.get(), vectorOf({-1.0, -1.0, -1.0, -1.0, -1.0, -1.0}));
    EXPECT_EQ(create->classificationModel.get(), nullptr);
    EXPECT_STREQ(create->getInputProperty(0)->getName().c_str(), "computeMode");
    EXPECT_STREQ(create->getInputProperty(12)->getName().c_str(), "userQuantileRatioHistogram");
    EXPECT_STREQ(create->getOutputProperty(0)->getName().c_str(), "classificationModel");
    EXPECT_EQ(create->getNumOfInputProperties(), 13u);
    EXPECT_TRUE(test::hasNoBorder(*create));
    EXPECT_NE(AlgoInfo::fromName("TextureClassificationCreate"), nullptr);
}

TEST(TextureClassificationCreate, makesAModelOfItsProperties)
{
    Model const model = created([](TextureClassificationCreate& create) {
        create.numOfClasses = 4;
        create.minGreyLevelCooccurrence = 7;
        create.maxGreyLevelCooccurrence = -1;
        create.binSizeCooccurrence = 2;
        create.minGreyLevelHistogram = 8;
        create.maxGreyLevelHistogram = 9;
        create.binSizeHistogram = 0.5;
        create.userQuantileRatioHistogram = vectorOf({0.0, -1.0, 0.5, 1.5, std::nan(""), 0.9});
    });
    TextureClassificationModelPrivate const& parameters = *model->getPrivate();
    EXPECT_EQ(parameters.computeMode, MODE_2D);
    EXPECT_EQ(parameters.numOfClasses, 4);
    EXPECT_EQ(parameters.radius, 3u);
    EXPECT_EQ(parameters.measures, vectorOf({COOC_Contrast, HISTO_Mean}));
    EXPECT_EQ(parameters.minGreyLevelCooccurrence, 7);
    EXPECT_EQ(parameters.maxGreyLevelCooccurrence, -1);
    EXPECT_EQ(parameters.binSizeCooccurrence, 2);
    EXPECT_EQ(parameters.directions2D.size(), 2u);
    EXPECT_EQ(parameters.directions3D, vectorOf({math::Vector3<int>(1, 2, 3)}));
    EXPECT_EQ(parameters.minGreyLevelHistogram, 8);
    EXPECT_EQ(parameters.maxGreyLevelHistogram, 9);
    EXPECT_EQ(parameters.binSizeHistogram, 0.5);
    EXPECT_EQ(parameters.userQuantileRatios, vectorOf({0.2, 0.3, 0.5, 1.5, 0.7, 0.9}));
    EXPECT_EQ(parameters.classifier->getLearningSpaceDimension(), 3);
    EXPECT_EQ(parameters.classifier->getNumOfClasses(), 4);
}

TEST(TextureClassificationCreate, countsTheFeaturesOfItsMode)
{
    auto const dimension = [](ComputeMode mode, std::initializer_list<TextureFeatureTypes> measures) {
        Model const model = created([&](TextureClassificationCreate& create) {
            create.computeMode = mode;
            create.textureFeaturesGroup = vectorOf(measures);
        });
        return model->getPrivate()->classifier->getLearningSpaceDimension();
    };
    EXPECT_EQ(dimension(MODE_2D, {COOC_AngularSecondMoment}), 2);
    EXPECT_EQ(dimension(MODE_3D, {COOC_AngularSecondMoment}), 1);
    EXPECT_EQ(dimension(MODE_2D, {COOC_AngularSecondMomentMean}), 1);
    EXPECT_EQ(dimension(MODE_2D, {COOC_InformationMeasuresCorrelation2}), 2);
    EXPECT_EQ(dimension(MODE_2D, {COOC_InformationMeasuresCorrelation2Range}), 1);
    EXPECT_EQ(dimension(MODE_2D, {HISTO_Mean}), 1);       // 52, and a multiple of 4
    EXPECT_EQ(dimension(MODE_2D, {HISTO_QuantileR6}), 1); // 68, too
    EXPECT_EQ(dimension(MODE_2D, {HISTO_Mean, HISTO_Mean, COOC_Entropy}), 4);
}

TEST(TextureClassificationCreate, refusesBadProperties)
{
    auto const refuses = [](auto const& adjust, std::string const& text) {
        EXPECT_QEL_THROW(created(adjust), RuleException, text);
    };
    refuses([](auto& create) { create.numOfClasses = 1; },
            "The parameter \"numOfClasses\" (value=1) must be greater than or equal to <2>.");
    refuses([](auto& create) { create.radius = 0; }, "The parameter \"radius\" must be strictly positive.");
    refuses([](auto& create) { create.textureFeaturesGroup = TextureFeatureGroup(); },
            "The parameter \"textureFeaturesGroup\" should not be empty.");
    refuses([](auto& create) { create.userQuantileRatioHistogram = container::Vector<double>(5); },
            "The parameter \"userQuantileRatioHistogram\" must have a size of 6. Current size is 5.");
    Ref<TextureClassificationCreate> create(TextureClassificationCreate::New());
    setUp(*create);
    EXPECT_QEL_THROW(create->run(), RuleException, "The parameter \"classificationModel\" must be set.");
    create->computeMode = 2;
    EXPECT_THROW(create->run(), RuleException);
}

TEST(TextureClassificationCreate, leavesNoModelBehindWhereItFails)
{
    Ref<TextureClassificationCreate> create(TextureClassificationCreate::New());
    setUp(*create);
    TextureClassificationModel* model = nullptr;
    create->classificationModel = &model;
    create->textureFeaturesGroup = vectorOf({COOC_Contrast});
    create->direction2DCollection = container::Vector<math::Vector2<int>>();
    EXPECT_QEL_THROW(create->run(), RuntimeError, "The learning space dimension must be greater than 0");
    EXPECT_EQ(model, nullptr);
    setUp(*create);
    create->numOfClasses = 2000000000u;
    create->direction2DCollection = container::Vector<math::Vector2<int>>(100);
    EXPECT_QEL_THROW(create->run(), MemoryError, "Impossible to allocate a new TextureClassificationModel.");
    EXPECT_EQ(model, nullptr);
}

TEST_F(ModelFiles, haveTheBytesOfTheTable)
{
    Model const model = created();
    EXPECT_EQ(written(model, folder / "a"), fileOfCreated());
    TextureClassificationModel const fresh;
    fresh.write(pathOf(folder / "b"), BINARY, false);
    EXPECT_EQ(test::readFile(folder / "b"),
              "QELO" + NAME + std::string("\2\0\0", 3) + bytesOf(2) + bytesOf(5u) + bytesOf(0ul) + bytesOf(0.0) +
                  bytesOf(255.0) + bytesOf(16.0) + bytesOf(0ul) + bytesOf(0.0) + bytesOf(255.0) + bytesOf(1.0) +
                  bytesOf(0ul) + LDA_NAME + std::string("\1\0\0", 3) + bytesOf(0l) + bytesOf(0l) + bytesOf(0l) +
                  emptyEstimator(0) + bytesOf(0ul) + bytesOf(0.01));
}

TEST_F(ModelFiles, holdTheDirectionsOfTheModeAlone)
{
    Model const model = created([](TextureClassificationCreate& create) { create.computeMode = MODE_3D; });
    std::string const bytes = written(model, folder / "a");
    std::size_t const directions = 4 + NAME.size() + 2 + 1 + 4 + 4 + 8 + 4 + 24;
    EXPECT_EQ(bytes[4 + NAME.size() + 2], '\1');
    EXPECT_EQ(bytes.substr(directions, 20), bytesOf(1ul) + bytesOf(1) + bytesOf(2) + bytesOf(3));
    Model const copy = created();
    copy->read(pathOf(folder / "a"));
    EXPECT_EQ(copy->getPrivate()->computeMode, MODE_3D);
    EXPECT_TRUE(copy->getPrivate()->directions2D.empty());
    EXPECT_EQ(copy->getPrivate()->directions3D.size(), 1u);
    Model const plane = created();
    plane->write(pathOf(folder / "b"), BINARY, false);
    copy->read(pathOf(folder / "b"));
    EXPECT_EQ(copy->getPrivate()->directions2D.size(), 2u);
    EXPECT_TRUE(copy->getPrivate()->directions3D.empty());
}

TEST_F(ModelFiles, surviveARoundTrip)
{
    for (ComputeMode const mode : {MODE_2D, MODE_3D})
        for (bool const isTrained : {false, true}) {
            Model const model = created([&](TextureClassificationCreate& create) {
                create.computeMode = mode;
                create.minGreyLevelCooccurrence = 10;
                create.maxGreyLevelCooccurrence = 3; // kept, though it is no range
            });
            if (isTrained)
                train(model);
            std::string const bytes = written(model, folder / "a");
            TextureClassificationModel copy;
            copy.read(pathOf(folder / "a"));
            copy.write(pathOf(folder / "b"), BINARY, true);
            EXPECT_EQ(test::readFile(folder / "b"), bytes);
            EXPECT_EQ(copy.getPrivate()->maxGreyLevelCooccurrence, 3);
            if (isTrained) {
                EXPECT_EQ(copy.getInfo(), model->getInfo());
            }
        }
}

TEST_F(ModelFiles, areWrittenByTwoThreadsAtOnce)
{
    Model const model = created();
    train(model);
    std::string const expected = written(model, folder / "a");
    std::string const other = folder / "b";
    std::thread second([&] {
        for (int i = 0; i < 20; ++i)
            model->write(pathOf(other), BINARY, true);
    });
    for (int i = 0; i < 20; ++i)
        model->write(pathOf(folder / "a"), BINARY, true);
    second.join();
    EXPECT_EQ(test::readFile(folder / "a"), expected);
    EXPECT_EQ(test::readFile(other), expected);
}

TEST_F(ModelFiles, ofVersionOneHaveNoMode)
{
    std::string const versionOne = "QELO" + NAME + std::string("\1\0", 2) + fieldsOfCreated();
    Model const model = created([](TextureClassificationCreate& create) { create.computeMode = MODE_3D; });
    model->read(pathOf(file(versionOne)));
    EXPECT_EQ(model->getPrivate()->computeMode, MODE_2D);
    EXPECT_EQ(written(model, folder / "b"), fileOfCreated());

    std::ostringstream stream;
    archive::BinaryOutputArchive archive(stream);
    model->getPrivate()->serialize(archive, 1);
    EXPECT_EQ(stream.str(), fieldsOfCreated());
    model->getPrivate()->computeMode = MODE_3D;
    EXPECT_QEL_THROW(model->getPrivate()->serialize(archive, 1), SerializationException,
                     "TextureClassificationModel version 1 supports only 2D mode.");
}

TEST_F(ModelFiles, tellWhatKeptThemFromBeingWritten)
{
    Model const model = created();
    std::string const path = file("as it was");
    EXPECT_QEL_THROW(model->write(pathOf(path), BINARY, false), SerializationException,
                     "The <" + path + "> file already exists.");
    EXPECT_EQ(test::readFile(path), "as it was");
    std::string const nowhere = folder / "none/file";
    EXPECT_QEL_THROW(model->write(pathOf(nowhere), BINARY, true), SerializationException,
                     "Cannot open the <" + nowhere + "> file.");
    EXPECT_QEL_THROW(model->write(pathOf(path), static_cast<WriteMode>(3), true), SerializationException,
                     "The write mode (3) is unknown.");
    EXPECT_QEL_THROW(model->write(pathOf(path), static_cast<WriteMode>(-1), true), SerializationException,
                     "The write mode (-1) is unknown.");
    EXPECT_QEL_THROW(model->write("/dev/full", BINARY, true), SerializationException,
                     "Cannot write the </dev/full> file.");
    model->getPrivate()->classifier.reset();
    EXPECT_QEL_THROW(model->write(pathOf(path), BINARY, true), SerializationException, "No classifier defined.");
    EXPECT_QEL_THROW(model->read(pathOf(path)), SerializationException, "No classifier defined.");
    EXPECT_QEL_THROW(model->getInfo(), InvalidCall, "No classifier defined.");
}

TEST_F(ModelFiles, ofOtherModesAreEmptyAndReadAsTexts)
{
    Model const model = created();
    for (int const mode : {1, 2})
        for (char const* const name : {"a.txt", "a.xml", "a.TXT", "a.Xml"}) {
            std::string const path = folder / name;
            model->write(pathOf(path), static_cast<WriteMode>(mode), true);
            EXPECT_EQ(test::readFile(path), "");
            std::string const before = written(model, folder / "before");
            model->read(pathOf(path));
            EXPECT_EQ(written(model, folder / "after"), before);
        }
    model->write(pathOf(folder / "empty.qelo"), static_cast<WriteMode>(1), false);
    EXPECT_QEL_THROW(model->read(pathOf(folder / "empty.qelo")), SerializationException, "Invalid magic number: <>.");
    // The name alone decides, not the content.
    test::writeFile(folder / "real.txt", fileOfCreated());
    TextureClassificationModel fresh;
    fresh.read(pathOf(folder / "real.txt"));
    EXPECT_EQ(fresh.getPrivate()->radius, 5u);
}

TEST_F(ModelFiles, tellWhatTheyAreWhereTheyAreNoModels)
{
    TextureClassificationModel model;
    std::string const none = folder / "none";
    EXPECT_QEL_THROW(model.read(pathOf(none)), SerializationException, "The <" + none + "> file does not exists.");
    EXPECT_QEL_THROW(model.read(pathOf(file("QELI"))), SerializationException, "Invalid magic number: <QELI>.");
    EXPECT_QEL_THROW(model.read(pathOf(file("QE"))), SerializationException, "Invalid magic number: <QE>.");
    EXPECT_QEL_THROW(model.read(pathOf(file(std::string("QELO\x09\0\0\0\0\0\0\0LineSet3D", 21)))),
                     SerializationException, "The <LineSet3D> classifier isn't supported.");
    EXPECT_QEL_THROW(model.read(pathOf(file(std::string("QELO\0\0\0\0\0\0\0\0", 12)))), SerializationException,
                     "The <> classifier isn't supported.");
    // Nothing was lost so far.
    model.read(pathOf(file(fileOfCreated())));
    std::string other = fileOfCreated();
    other.replace(other.find("LDAClass"), 3, "SVM");
    EXPECT_QEL_THROW(model.read(pathOf(file(other))), SerializationException, "Unknown classifier.");
    EXPECT_QEL_THROW(model.getInfo(), InvalidCall, "No classifier defined.");
}

TEST_F(ModelFiles, areRefusedWhereTheyEndTooEarly)
{
    Model const trained = created();
    train(trained);
    std::string const bytes = written(trained, folder / "trained");
    for (std::size_t length = 4; length < bytes.size(); length += length < 120 ? 1 : 41)
        expectCorrupted(bytes.substr(0, length), "length " + std::to_string(length));
}

TEST_F(ModelFiles, areRefusedWhereTheyDisagreeWithThemselves)
{
    std::string const good = fileOfCreated();
    auto const with = [&good](std::size_t place, std::string const& bytes) {
        std::string changed = good;
        return changed.replace(place, bytes.size(), bytes);
    };
    std::size_t const version = 4 + NAME.size();
    std::size_t const mode = version + 2;
    std::size_t const classes = mode + 1;
    std::size_t const measures = classes + 8;
    std::size_t const directions = measures + 8 + 4 + 24;
    std::size_t const ratios = directions + 8 + 16 + 24;
    std::size_t const classifier = ratios + 8 + 48;
    std::size_t const dimension = classifier + LDA_NAME.size() + 2 + 1;
    for (int const value : {0, 3, 0x102})
        expectCorrupted(with(version, bytesOf(static_cast<unsigned short>(value))), "version");
    expectCorrupted(with(mode, "\2"), "mode");
    for (int const value : {-1, 0, 1, 3, std::numeric_limits<int>::min()})
        expectCorrupted(with(classes, bytesOf(value)), "classes");
    for (unsigned long const value : {0ul, 1ul, 3ul, 1ul << 40, ~0ul}) {
        expectCorrupted(with(measures, bytesOf(value)), "measures");
        expectCorrupted(with(directions, bytesOf(value)), "directions");
        expectCorrupted(with(ratios, bytesOf(value)), "ratios");
    }
    expectCorrupted(with(measures + 8, bytesOf(static_cast<unsigned short>(69))), "a measure");
    expectCorrupted(with(measures + 8, bytesOf(static_cast<unsigned short>(0xffff))), "a measure");
    expectCorrupted(with(measures + 8, bytesOf(static_cast<unsigned short>(5))), "a measure without directions");
    expectCorrupted(with(classifier, bytesOf(~0ul)), "the classifier's name");
    expectCorrupted(with(classifier + LDA_NAME.size(), "\2"), "the classifier's version");
    for (long const value : {-1l, 0l, 2l, 4l, 1l << 40})
        expectCorrupted(with(dimension, bytesOf(value)), "dimension");
    // The ratios that a measure needs.
    std::string few = good;
    few.replace(ratios, 8 + 48, bytesOf(0ul));
    few.replace(measures + 8 + 2, 2, bytesOf(static_cast<unsigned short>(HISTO_QuantileR1)));
    expectCorrupted(few, "too few ratios");
    few.replace(measures + 8 + 2, 2, bytesOf(static_cast<unsigned short>(HISTO_Quantile90)));
    TextureClassificationModel model;
    EXPECT_NO_THROW(model.read(pathOf(file(few))));
}

TEST_F(ModelFiles, ofACountThatMemoryCannotHoldAreRefusedAtOnce)
{
    // 2^31 - 1 classes and a dimension to match: the models alone would take terabytes.
    std::string bytes = fileOfCreated();
    std::size_t const classes = 4 + NAME.size() + 3;
    bytes.replace(classes, 4, bytesOf(std::numeric_limits<int>::max()));
    std::size_t const status = bytes.find("LDAClassifier") + 15;
    bytes.replace(status + 9, 8, bytesOf(static_cast<long>(std::numeric_limits<int>::max())));
    expectCorrupted(bytes, "classes");
}

TEST(TextureClassificationModel, reportsWhatItHolds)
{
    Model const model = created([](TextureClassificationCreate& create) {
        create.numOfClasses = 2;
        create.minGreyLevelCooccurrence = 0.5;
        create.binSizeHistogram = 1e-7;
    });
    train(model);
    ASSERT_FALSE(classifierOf(model).isUsedFeature(0));
    ASSERT_TRUE(classifierOf(model).isUsedFeature(1));
    std::string const isMeanUsed = classifierOf(model).isUsedFeature(2) ? "\tHISTO_Mean\n" : "";
    std::string const expected = "Compute mode: 0\n"
                                 "Number of classes: 2\n"
                                 "radius: 3\n"
                                 "number of texture Features:2\n"
                                 "textureFeaturesGroup:\n"
                                 "\tCOOC_Contrast\n"
                                 "\tHISTO_Mean\n"
                                 "minGreyLevelCooccurrence: 0.5\n"
                                 "maxGreyLevelCooccurrence: 255\n"
                                 "binSizeCooccurrence: 16\n"
                                 "directionCollection:\n"
                                 "\t1 - 0\n"
                                 "\t0 - -2\n"
                                 "minGreyLevelHistogram: 0\n"
                                 "maxGreyLevelHistogram: 255\n"
                                 "binSizeHistogram: 1e-07\n"
                                 "userQuantileRatioHistogram:\n"
                                 "\t0.2\n\t0.3\n\t0.4\n\t0.6\n\t0.7\n\t0.8\n"
                                 "number of possible features :3\n"
                                 "number of selected features :" +
                                 std::to_string(classifierOf(model).getClassicationSpaceDimension()) +
                                 "\n"
                                 "selected features: \n"
                                 "\tCOOC_Contrast: direction 0 - -2\n" +
                                 isMeanUsed;
    EXPECT_STREQ(model->getInfo().c_str(), expected.c_str());
}

TEST(TextureClassificationModel, reportsDirectionsInSpace)
{
    Model const model = created([](TextureClassificationCreate& create) {
        create.computeMode = MODE_3D;
        create.textureFeaturesGroup = vectorOf({COOC_AngularSecondMoment, COOC_InformationMeasuresCorrelation2Range});
    });
    train(model);
    ASSERT_TRUE(classifierOf(model).isUsedFeature(1));
    std::string const report = model->getInfo().c_str();
    EXPECT_EQ(report.rfind("Compute mode: 1\n", 0), 0u);
    EXPECT_NE(report.find("\tCOOC_AngularSecondMoment\n"), std::string::npos); // not the alias of the same number
    EXPECT_NE(report.find("directionCollection:\n\t1 - 2 - 3\nminGrey"), std::string::npos);
    EXPECT_NE(report.find("\tCOOC_InformationMeasuresCorrelation2Range\n"), std::string::npos);
    EXPECT_EQ(report.find("COOC_AngularSecondMoment: direction 1 - 2 - 3\n") != std::string::npos,
              classifierOf(model).isUsedFeature(0));
}

TEST(TextureClassificationModel, hasNoReportBeforeItIsTrained)
{
    TextureClassificationModel const fresh;
    EXPECT_QEL_THROW(fresh.getInfo(), InvalidCall, "Call getLearningSpaceDimension while status is UNINITIALIZED.");
    EXPECT_QEL_THROW(created()->getInfo(), InvalidCall,
                     "Call getClassicationSpaceDimension while the model is not finalized.");
}

TEST_F(ModelFiles, areLoadedByTheAlgorithm)
{
    Model const model = created();
    train(model);
    model->write(pathOf(folder / "a"), BINARY, false);
    Ref<ReadTextureClassificationModel> read(ReadTextureClassificationModel::New());
    TextureClassificationModel* result = nullptr;
    read->newClassification = &result;
    read->pathClassificationFile = pathOf(folder / "a");
    read->run();
    Model const loaded(result);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->getInfo(), model->getInfo());
    EXPECT_TRUE(test::hasNoBorder(*read));

    read->pathClassificationFile = pathOf(file("QELI"));
    EXPECT_QEL_THROW(read->run(), SerializationException, "Invalid magic number: <QELI>.");
    EXPECT_EQ(result, nullptr);
    result = loaded.get();
    read->pathClassificationFile = "";
    EXPECT_QEL_THROW(read->run(), InvalidCall, "The path is empty.");
    EXPECT_EQ(result, nullptr);
    read->newClassification = nullptr;
    EXPECT_QEL_THROW(read->run(), RuleException, "The parameter \"newClassification\" must be set.");
}

TEST(TextureClassificationModel, travelsThroughProperties)
{
    TextureClassificationModel model;
    TextureClassificationModel* pointer = &model;
    Property<TextureClassificationModel*> property;
    Property<TextureClassificationModel const*> constant;
    Property<TextureClassificationModel**> result;
    property = &model;
    constant = &model;
    result = &pointer;
    EXPECT_EQ(property.get(), &model);
    EXPECT_EQ(constant.get(), &model);
    EXPECT_EQ(*result.get(), &model);
    String rest;
    EXPECT_FALSE(property.read("model", rest));
    EXPECT_STREQ(rest.c_str(), "model");
    EXPECT_EQ(property.get(), &model);
}
