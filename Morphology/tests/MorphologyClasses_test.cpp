// What the 28 classes are: names, properties, rules, messages, levels, borders, progress.
#include "Morphology/tests/MorphologyModel.h"

#include <qel/Exception.h>
#include <qel/ImageModelAdapter.h>
#include <qel/devices/Cpu.h>
#include <qel/morphology/Closing2D.h>
#include <qel/morphology/ClosingLine3D.h>
#include <qel/morphology/DilationBall3D.h>
#include <qel/morphology/ErosionDisk2D.h>
#include <qel/morphology/ErosionDisk3D.h>
#include <qel/morphology/ErosionLine2D.h>
#include <qel/morphology/ErosionLine3D.h>
#include <qel/morphology/Opening3D.h>
#include <qel/morphology/OpeningLine2D.h>

#include <map>

namespace qel::test {
namespace {

using namespace morphology;

/// Of each form the properties between input and output.
std::map<std::string, std::vector<std::string>> const parametersOfForms = {
    {"2D", {"unsigned nbIter = 3", "Neighborhood2DType neighborhood2D = QEL_NEIGHBORHOOD2D_8"}},
    {"3D", {"unsigned nbIter = 3", "Neighborhood3DType neighborhood3D = QEL_NEIGHBORHOOD3D_26"}},
    {"Disk2D", {"unsigned elementSize = 3", "AlgoPrecisionType precision = QEL_ALGO_FAST"}},
    {"Ball3D", {"unsigned elementSize = 3", "AlgoPrecisionType precision = QEL_ALGO_FAST"}},
    {"Line2D", {"double orientationAngle = 10", "unsigned elementSize = 3"}},
    {"Line3D", {"double thetaAngle = 0", "double phiAngle = 0", "unsigned elementSize = 3"}},
    {"Disk3D", {"double thetaAngle = 0", "double phiAngle = 0", "unsigned elementSize = 3"}}};

template <class Check> void forEachClass(Check const& check)
{
    for (auto const& [form, parameters] : parametersOfForms)
        for (std::string const& operation : operators()) {
            SCOPED_TRACE(operation + form);
            Ref<BaseAlgorithm> const algorithm = AlgoInfo::fromName((operation + form).c_str())->createInstance();
            check(operation, form, *algorithm);
        }
}

bool isSingle(std::string const& operation) { return operation == "Erosion" || operation == "Dilation"; }

TEST(MorphologyClassesTest, areRegisteredUnderTheirNames)
{
    int count = 0;
    forEachClass([&](std::string const& operation, std::string const& form, BaseAlgorithm& algorithm) {
        EXPECT_EQ(algorithm.getInfo()->getName(), String((operation + form).c_str()));
        EXPECT_EQ(algorithm.getInfo()->getLibName(), String("Quelide"));
        ++count;
    });
    EXPECT_EQ(count, 28);
    Ref<ErosionDisk2D> const disk = ErosionDisk2D::New();
    EXPECT_EQ(disk->getInfo(), AlgoInfo::fromName("ErosionDisk2D"));
}

TEST(MorphologyClassesTest, declareTheirPropertiesInOrder)
{
    forEachClass([&](std::string const&, std::string const& form, BaseAlgorithm& algorithm) {
        std::vector<std::string> inputs = parametersOfForms.at(form);
        inputs.insert(inputs.begin(), "const image input = null");
        std::vector<std::string> described = describedInputs(algorithm);
        for (std::size_t i = 0; i < described.size(); ++i)
            if (auto* const size = dynamic_cast<Property<unsigned int>*>(algorithm.getInputProperty(i)))
                described[i] = std::string("unsigned ") + size->getName().c_str() + " = " + std::to_string(size->get());
        EXPECT_EQ(described, inputs);
        EXPECT_EQ(describedOutputs(algorithm), std::vector<std::string>({"image output = null"}));
    });
}

TEST(MorphologyClassesTest, haveAPacketRunnerWhereTheyAreNoComposites)
{
    bool const runsPackets = devices::Cpu::getDevice().getSSELevel() > 64;
    forEachClass([&](std::string const& operation, std::string const&, BaseAlgorithm& algorithm) {
        if (!isSingle(operation)) {
            EXPECT_EQ(levelsOf(algorithm), std::vector<OptimLevelType>({SCALAR}));
            return;
        }
        EXPECT_EQ(levelsOf(algorithm), std::vector<OptimLevelType>({SCALAR, VEC_SSE}));
        for (int type = QEL_UINT8; type <= QEL_FLOAT64; ++type) {
            HostImage const input(static_cast<VoxelTypes>(type), {3});
            HostImage same(static_cast<VoxelTypes>(type), {3});
            setImages(algorithm, &input, &same);
            bool const hasPacket = type != QEL_UINT64 && type != QEL_INT64;
            EXPECT_TRUE(runnerOf(algorithm, SCALAR)->isRunnable(&algorithm));
            EXPECT_EQ(runnerOf(algorithm, VEC_SSE)->isRunnable(&algorithm), hasPacket && runsPackets) << type;
            HostImage other(type == QEL_UINT8 ? QEL_INT8 : QEL_UINT8, {3});
            setImages(algorithm, &input, &other);
            EXPECT_FALSE(runnerOf(algorithm, VEC_SSE)->isRunnable(&algorithm)) << type;
        }
    });
}

TEST(MorphologyClassesTest, runNoOtherLevelThanTheOneThatIsForced)
{
    forEachClass([&](std::string const& operation, std::string const& form, BaseAlgorithm& algorithm) {
        std::string const text = errorText("no runner found for algorithm", operation + form);
        HostImage const wide(Picture<long>({3, 2}, 4));
        HostImage output;
        setImages(algorithm, &wide, &output);
        forceLevel(algorithm, VEC_SSE);
        EXPECT_QEL_WHAT(algorithm.run(), UnexpectedError, text);
        forceLevel(algorithm, VEC_AVX);
        EXPECT_QEL_WHAT(algorithm.run(), UnexpectedError, text);
        algorithm.setAutoCpuDispatch(true);
        algorithm.run();
        EXPECT_TRUE(samePicture(Picture<long>({3, 2}, 4), output));
    });
}

TEST(MorphologyClassesTest, refuseWrongParameters)
{
    forEachClass([&](std::string const& operation, std::string const& form, BaseAlgorithm& algorithm) {
        std::string const name = operation + form;
        HostImage const input(Picture<short>({5, 4}, 4));
        HostImage output(Picture<short>({1, 1}, 7));
        auto const expectRefused = [&](std::string const& text, std::string const& property) {
            EXPECT_QEL_WHAT(algorithm.run(), RuleException, ruleText(text, property, name));
            EXPECT_TRUE(isAtRest(algorithm));
        };
        setImages(algorithm, nullptr, &output);
        expectRefused("The parameter \"input\" must be set.", "input");
        setImages(algorithm, &input, nullptr);
        expectRefused("The parameter \"output\" must be set.", "output");
        HostImage const complex(QEL_COMPLEX_FLOAT32, {5, 4});
        setImages(algorithm, &complex, &output);
        EXPECT_THROW(algorithm.run(), RuleException);
        setImages(algorithm, &input, &output);
        for (char const* const enumeration : {"neighborhood2D", "neighborhood3D", "precision"})
            if (BaseProperty* const property = algorithm.getPropertyfromName(enumeration)) {
                auto& values = dynamic_cast<PropertyEnumeration&>(*property);
                int const before = values;
                for (int const wrong : {-1, 3}) {
                    values = wrong;
                    expectRefused(std::string("The value of the parameter \"") + enumeration + "\" is not valid",
                                  enumeration);
                }
                values = before;
            }
        if (BaseProperty* const property = algorithm.getPropertyfromName("nbIter")) {
            auto& iterations = dynamic_cast<Property<unsigned int>&>(*property);
            iterations = 0;
            expectRefused("The parameter \"nbIter\" must be strictly positive.", "nbIter");
            iterations = 1;
        }
        EXPECT_TRUE(samePicture(Picture<short>({1, 1}, 7), output));
        algorithm.run();
        EXPECT_TRUE(samePicture(Picture<short>({5, 4}, 4), output));
    });
}

TEST(MorphologyClassesTest, giveTheOutputWhatTheInputIs)
{
    forEachClass([&](std::string const&, std::string const&, BaseAlgorithm& algorithm) {
        HostImage input(Picture<unsigned short>({4, 3, 2, 2, 2}, 9));
        input.setInterpretation(QEL_LABEL);
        input.setSpacingOf(ROWS, 2.5);
        input.setOriginOf(PLANS, -7);
        HostImage output(QEL_FLOAT64, {1});
        setImages(algorithm, &input, &output);
        algorithm.run();
        EXPECT_TRUE(samePicture(Picture<unsigned short>({4, 3, 2, 2, 2}, 9), output));
        EXPECT_TRUE(sameCalibration(input, output));
        EXPECT_EQ(output.getInterpretation(), QEL_LABEL);
    });
}

TEST(MorphologyClassesTest, refuseAnEmptyLineBeforeAnythingIsWritten)
{
    for (char const* const form : {"Line2D", "Line3D"})
        for (std::string const& operation : operators()) {
            std::string const name = operation + form;
            Ref<BaseAlgorithm> const algorithm = AlgoInfo::fromName(name.c_str())->createInstance();
            dynamic_cast<Property<unsigned int>&>(*algorithm->getPropertyfromName("elementSize")) = 0;
            HostImage const input(Picture<short>({5, 4}, 4));
            HostImage output;
            setImages(*algorithm, &input, &output);
            EXPECT_QEL_THROW(algorithm->run(), InvalidCall, "The structuring element is empty.");
            EXPECT_EQ(output.callsOf(WRITE_ROW), 0u);
            EXPECT_TRUE(isAtRest(*algorithm));
        }
}

TEST(MorphologyClassesTest, leaveTheOutputAloneForAFastDiskOfNothing)
{
    for (char const* const form : {"Disk2D", "Ball3D"})
        for (std::string const& operation : operators()) {
            Ref<BaseAlgorithm> const algorithm = AlgoInfo::fromName((operation + form).c_str())->createInstance();
            dynamic_cast<Property<unsigned int>&>(*algorithm->getPropertyfromName("elementSize")) = 0;
            HostImage const input(Picture<short>({5, 4}, 4));
            HostImage output;
            setImages(*algorithm, &input, &output);
            algorithm->run();
            EXPECT_EQ(output.callsOf(WRITE_ROW), 0u);
        }
}

/// The same with an element of absurd size.
Setting huge(Setting setting)
{
    for (auto& [name, value] : setting.properties)
        if (name == "nbIter" || name == "elementSize")
            value = "4000000000";
    return setting;
}

std::vector<unsigned long> influenceOf(BaseAlgorithm const& algorithm)
{
    AlgoBorderInfluence const influence = algorithm.getAlgoBorderInfluence();
    std::vector<unsigned long> counts;
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        counts.push_back(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)));
    return counts;
}

TEST(MorphologyClassesTest, stateTheReachOfOneElement)
{
    using Counts = std::vector<unsigned long>;
    std::vector<std::pair<Setting, Counts>> const cases = {
        {ofPlans(7, 8), {7, 7, 7, 7, 0, 0, 0, 0, 0, 0}},
        {ofVolumes(5, 6), {5, 5, 5, 5, 5, 5, 0, 0, 0, 0}},
        {disk(4, false), {4, 4, 4, 4, 0, 0, 0, 0, 0, 0}},
        {disk(6, true), {6, 6, 6, 6, 0, 0, 0, 0, 0, 0}},
        {ball(4000000000, false), {4000000000, 4000000000, 4000000000, 4000000000, 4000000000, 4000000000, 0, 0, 0, 0}},
        {line(0, 9), {0, 8, 0, 0, 0, 0, 0, 0, 0, 0}},
        {line(-45, 5), {0, 4, 4, 0, 0, 0, 0, 0, 0, 0}},
        {line(180, 3), {2, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {line(10, 0), {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {lineInSpace(0, 0, 6), {0, 0, 0, 0, 0, 5, 0, 0, 0, 0}},
        {lineInSpace(-90, 90, 4), {0, 0, 3, 0, 0, 0, 0, 0, 0, 0}},
        {diskInSpace(0, 0, 3), {3, 3, 3, 3, 0, 0, 0, 0, 0, 0}},
        {diskInSpace(0, 90, 2), {0, 0, 2, 2, 2, 2, 0, 0, 0, 0}},
        {huge(line(-135, 1)), {3999999999, 0, 3999999999, 0, 0, 0, 0, 0, 0, 0}},
        {huge(lineInSpace(0, 180, 1)), {0, 0, 0, 0, 3999999999, 0, 0, 0, 0, 0}},
        {huge(diskInSpace(90, 0, 1)), {4000000000, 4000000000, 4000000000, 4000000000, 0, 0, 0, 0, 0, 0}}};
    for (auto const& [setting, counts] : cases)
        for (std::string const& operation : operators())
            EXPECT_EQ(influenceOf(*create(operation, setting)), counts) << operation << setting;
    std::vector<Setting> settings = smallSettings();
    for (unsigned long radius = 0; radius < 40; ++radius)
        settings.push_back(
            diskInSpace(17 * static_cast<double>(radius) - 300, 23 * static_cast<double>(radius) - 200, radius));
    settings.push_back(diskInSpace(33, 60, 700));
    for (Setting const& setting : settings) {
        long reach[6];
        if (setting.form.find("Line") == std::string::npos && setting.form != "Disk3D")
            continue;
        kernel::computeExtrema(setting.element.front().offsets, reach[0], reach[1], reach[2], reach[3], reach[4],
                               reach[5]);
        auto const counts = influenceOf(*create("Erosion", setting));
        for (unsigned i = 0; i < 6; ++i)
            EXPECT_EQ(counts[i], static_cast<unsigned long>(std::max(i % 2 == 0 ? -reach[i] : reach[i], 0l)))
                << setting << ' ' << i;
    }
}

TEST(MorphologyClassesTest, reportProgressAndCanBeCancelled)
{
    forEachClass([&](std::string const&, std::string const&, BaseAlgorithm& algorithm) {
        Picture<short> const in({40, 30, 12}, 4);
        HostImage output;
        HostImage const input(in);
        setImages(algorithm, &input, &output);
        Poller poller;
        algorithm.run(&poller);
        EXPECT_EQ(poller.last, 100);
        EXPECT_TRUE(poller.isSteady);
        EXPECT_EQ(algorithm.getProgress(), 100);

        // From the first row on that is read: the other blocks do not start.
        ObservedImage observed(in);
        observed.onRead = [&] { algorithm.cancelExecution(); };
        HostImage untouched(Picture<short>(in.shape, 9));
        setImages(algorithm, &observed, &untouched);
        algorithm.run();
        EXPECT_LT(algorithm.getProgress(), 100);
        EXPECT_TRUE(isAtRest(algorithm));
        observed.onRead = nullptr;
        algorithm.run();
        EXPECT_TRUE(samePicture(in, untouched));
    });
}

TEST(MorphologyClassesTest, endInTimeAndMemoryOfTheImageForElementsOfAnySize)
{
    Picture<float> in = randomPictureBetween<float>({17, 13, 5}, 3, -100, 100);
    for (Setting const& setting :
         {ofPlans(1, 4), ofPlans(1, 8), ofVolumes(1, 6), ofVolumes(1, 18), ofVolumes(1, 26), disk(1, false),
          disk(1, true), ball(1, false), ball(1, true), diskInSpace(10, 20, 1)}) {
        SCOPED_TRACE(setting.text());
        bool const isFlat = setting.form == "Disk3D";
        for (char const* const operation : {"Erosion", "Dilation"}) {
            bool const isErosion = operation[0] == 'E';
            HostImage const input(in);
            HostImage output;
            Ref<BaseAlgorithm> const algorithm = create(operation, huge(setting));
            setImages(*algorithm, &input, &output);
            algorithm->run();
            if (isFlat) {
                EXPECT_TRUE(
                    samePicture(extremum(in, kernel::generateDiskOffset3DCollection(20, 10, 60), isErosion), output));
                continue;
            }
            Picture<float> wanted(in.shape);
            unsigned long const plans = setting.isOfVolumes ? in.shape.plans : 1;
            for (unsigned long begin = 0; begin < in.voxels.size(); begin += 17 * 13 * plans) {
                auto const first = in.voxels.begin() + static_cast<long>(begin);
                auto const last = first + static_cast<long>(17 * 13 * plans);
                std::fill_n(wanted.voxels.begin() + static_cast<long>(begin), 17 * 13 * plans,
                            isErosion ? *std::min_element(first, last) : *std::max_element(first, last));
            }
            EXPECT_TRUE(samePicture(wanted, output));
        }
    }
    for (Setting const& setting : {line(10, 3), line(-100, 3), lineInSpace(10, 40, 3), lineInSpace(-10, 170, 3)}) {
        HostImage const input(in);
        HostImage output;
        Ref<BaseAlgorithm> algorithm = create("Erosion", huge(setting));
        setImages(*algorithm, &input, &output);
        algorithm->run();
        Setting const whole = setting.isOfVolumes ? lineInSpace(std::stod(setting.properties[0].second),
                                                                std::stod(setting.properties[1].second), 60)
                                                  : line(std::stod(setting.properties[0].second), 60);
        EXPECT_TRUE(samePicture(expected("Erosion", whole, in), output)) << setting;
    }
}

TEST(MorphologyClassesTest, takeAnInfinityForLessThanWhatStandsOutside)
{
    float const infinity = std::numeric_limits<float>::infinity();
    Picture<float> const in({9, 9}, infinity);
    for (Setting const& setting : {ofPlans(2, 8), ofPlans(2, 4), disk(2, true), disk(2, false), line(30, 4)}) {
        HostImage const input(in);
        HostImage output;
        Ref<BaseAlgorithm> const algorithm = create("Erosion", setting);
        setImages(*algorithm, &input, &output);
        algorithm->run();
        EXPECT_TRUE(samePicture(expected("Erosion", setting, in), output)) << setting;
    }
    // From everywhere in the image the element reaches beyond it.
    for (Setting const& setting : {ofPlans(50, 8), disk(50, true), line(0, 50)}) {
        HostImage const input(in);
        HostImage output;
        Ref<BaseAlgorithm> const algorithm = create("Erosion", setting);
        setImages(*algorithm, &input, &output);
        algorithm->run();
        EXPECT_TRUE(samePicture(Picture<float>(in.shape, std::numeric_limits<float>::max()), output)) << setting;
    }
}

TEST(MorphologyClassesTest, passOverNotANumber)
{
    forEachVoxelType([&]<class T>() {
        if constexpr (std::is_floating_point_v<T>)
            for (Setting const& setting : smallSettings())
                for (char const* const operation : {"Erosion", "Dilation"}) {
                    Picture<T> const in = randomPicture<T>({15, 9, 4}, 21, true);
                    HostImage const input(in);
                    HostImage output;
                    Ref<BaseAlgorithm> const algorithm = create(operation, setting);
                    setImages(*algorithm, &input, &output);
                    algorithm->run();
                    EXPECT_TRUE(samePicture(expected(operation, setting, in), output)) << operation << setting;
                }
    });
}

TEST(MorphologyClassesTest, seeOneImageBehindTwoAdapters)
{
    for (Setting const& setting : {ofPlans(3, 8), disk(4, true), line(20, 9), ofVolumes(2, 18), ball(3, true)})
        for (std::string const& operation : operators()) {
            Picture<short> const in = randomPictureBetween<short>({61, 47, 12}, 21, -100, 100);
            HostImage image(in);
            ImageModelAdapter const input(&image, QEL_INT32);
            ImageModelAdapter const output(&image, QEL_INT32);
            Ref<BaseAlgorithm> const algorithm = create(operation, setting);
            setImages(*algorithm, input.getImage(), output.getImage());
            algorithm->run();
            EXPECT_TRUE(samePicture(expected(operation, setting, in), image)) << operation << setting;
        }
}

TEST(MorphologyClassesTest, nameThemselvesAndTheirChildInErrors)
{
    Ref<OpeningLine2D> const opening = OpeningLine2D::New();
    opening->elementSize = 0u;
    HostImage const input(Picture<short>({5, 4}, 4));
    HostImage output;
    opening->input = &input;
    opening->output = &output;
    EXPECT_QEL_WHAT(opening->run(), InvalidCall,
                    "Invalid call :\n#1 Error : The structuring element is empty. \n#2 From ErosionLine2D \n#3 From "
                    "OpeningLine2D \n");
}

template <class C> void expectFailingImagesAreReportedFor()
{
    Picture<short> const in = randomPicture<short>({20, 12, 3}, 3);
    expectFailingImagesAreReported<C>(
        [&](C& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(in));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return images[1]->sizes() == in.shape; });
}

TEST(MorphologyClassesTest, reportFailingImages)
{
    expectFailingImagesAreReportedFor<ErosionDisk2D>();
    expectFailingImagesAreReportedFor<DilationBall3D>();
    expectFailingImagesAreReportedFor<ErosionLine3D>();
}

} // namespace
} // namespace qel::test
