#include "Core/private/SimdVec.h"
#include "Morphology/private/HitOrMissKernels.h"
#include "Morphology/private/MorphologicalLut2DPrivate.h"
#include "Morphology/private/MorphologicalLut3DPrivate.h"
#include "Morphology/private/NeighborhoodRule.h"
#include "Morphology/tests/HitOrMissModel.h"

#include <qel/devices/Cpu.h>
#include <qel/morphology/ApplyMorphologicalLut2D.h>
#include <qel/morphology/ApplyMorphologicalLut3D.h>

namespace xsimd {
struct sse4_1;
struct avx2;
} // namespace xsimd

namespace qel::test {
namespace {

using morphology::ApplyMorphologicalLut2D;
using morphology::ApplyMorphologicalLut3D;
using morphology::MorphologicalLut2D;
using morphology::MorphologicalLut3D;

// Steps to the bits of a pattern, as they are numbered.
constexpr long around[9][2] = {{0, 0}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}};

template <class Neighbour> unsigned int patternOf(MorphologicalLut2D const&, Neighbour const& neighbour)
{
    unsigned int pattern = 0;
    for (int bit = 0; bit < 9; ++bit)
        pattern |= (static_cast<unsigned int>(neighbour(around[bit][0], around[bit][1], 0)) & 1) << bit;
    return pattern;
}

template <class Neighbour> unsigned int patternOf(MorphologicalLut3D const&, Neighbour const& neighbour)
{
    unsigned int pattern = 0;
    for (int bit = 0; bit < 27; ++bit)
        pattern |= (static_cast<unsigned int>(neighbour(bit % 3 - 1, bit / 3 % 3 - 1, bit / 9 - 1)) & 1) << bit;
    return pattern;
}

bool has(MorphologicalLut2D const& lut, unsigned int pattern) { return lut.getPrivate().patterns[pattern] != 0; }
bool has(MorphologicalLut3D const& lut, unsigned int pattern)
{
    return (lut.getPrivate().words[pattern / 32] >> pattern % 32 & 1) != 0;
}

void fill(MorphologicalLut2D& lut)
{
    std::mt19937 random(11);
    std::vector<unsigned char> table(512);
    for (unsigned char& entry : table)
        entry = static_cast<unsigned char>(random() % 2 * (random() % 256));
    lut.buildFromLut(table.data(), table.size());
}
void fill(MorphologicalLut3D& lut)
{
    std::mt19937 random(12);
    std::vector<int> table(4194304);
    for (int& word : table)
        word = static_cast<int>(random());
    lut.buildFromLut(table.data(), table.size());
}

template <class T> T acted(int flag, T voxel)
{
    switch (flag) {
    case morphology::SET_ZERO:
        return 0;
    case morphology::SET_ONE:
        return 1;
    case morphology::SET_CHANGE:
        return static_cast<T>(1 - voxel);
    default:
        return voxel;
    }
}

template <class Algorithm> class ApplyMorphologicalLutTest : public testing::Test
{
protected:
    static constexpr bool isPlanar = std::is_same_v<Algorithm, ApplyMorphologicalLut2D>;
    using Lut = std::conditional_t<isPlanar, MorphologicalLut2D, MorphologicalLut3D>;

    static Lut& randomLut()
    {
        static Lut* const lut = [] {
            static Lut filled;
            fill(filled);
            return &filled;
        }();
        return *lut;
    }
    void SetUp() override
    {
        if (apply->morphologicalLut.get() == nullptr)
            apply->morphologicalLut = &randomLut();
    }
    void choose(int matching, int noMatching, int border)
    {
        apply->matchingFlag = matching;
        apply->noMatchingFlag = noMatching;
        apply->borderCondition = border;
    }
    template <class T> Picture<T> expected(Picture<T> const& in)
    {
        Lut const& lut = *apply->morphologicalLut.get();
        return byNeighbours(in, apply->borderCondition, [&](auto const& neighbour) {
            return acted<T>(has(lut, patternOf(lut, neighbour)) ? apply->matchingFlag : apply->noMatchingFlag,
                            neighbour(0, 0, 0));
        });
    }
    template <class T> Picture<T> run(Picture<T> const& in)
    {
        BinaryImage const input(in);
        HostImage out;
        apply->input = &input;
        apply->output = &out;
        apply->run();
        return fromImage<T>(out);
    }
    template <class T> void check(Picture<T> const& in)
    {
        auto const picture = expected(in);
        EXPECT_TRUE(samePicture(picture, run(in)));
        BinaryImage image(in);
        apply->input = &image;
        apply->output = &image;
        apply->run();
        EXPECT_TRUE(samePicture(picture, image)) << "in place";
    }

    Ref<Algorithm> apply = Algorithm::New();
    std::string const name = isPlanar ? "ApplyMorphologicalLut2D" : "ApplyMorphologicalLut3D";
};

using Algorithms = testing::Types<ApplyMorphologicalLut2D, ApplyMorphologicalLut3D>;
TYPED_TEST_SUITE(ApplyMorphologicalLutTest, Algorithms);

TYPED_TEST(ApplyMorphologicalLutTest, isRegisteredWithItsPropertiesInOrder)
{
    Ref<TypeParam> const fresh = TypeParam::New();
    EXPECT_EQ(AlgoInfo::fromName(this->name.c_str()), TypeParam::getClassInfo());
    EXPECT_EQ(levelsOf(*fresh), std::vector<OptimLevelType>{SCALAR});
    EXPECT_EQ(describedInputs(*fresh),
              std::vector<std::string>({"const image input = null", "unknown morphologicalLut",
                                        "MatchingActionTypes matchingFlag = SET_ONE",
                                        "MatchingActionTypes noMatchingFlag = SET_ZERO",
                                        "BinaryBorderConditionTypes borderCondition = STOP_OBJECT"}));
    EXPECT_EQ(describedOutputs(*fresh), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(fresh->morphologicalLut.get(), nullptr);
    AlgoBorderInfluence const influence = fresh->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= (this->isPlanar ? ROWS_POSITIVE : PLANS_POSITIVE) ? 1u : 0u);
}

TYPED_TEST(ApplyMorphologicalLutTest, looksEachNeighbourhoodUp)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachBinaryType([&]<class T>() {
            for (Shape const& shape : allShapes())
                for (int const border : {morphology::STOP_OBJECT, morphology::CONTINUE_OBJECT}) {
                    SCOPED_TRACE(testing::Message() << shape << ", border " << border);
                    this->choose(static_cast<int>(seed % 4), static_cast<int>((seed / 4 + 1) % 4), border);
                    ++seed;
                    this->check(binaryPicture<T>(shape, seed, 50));
                }
        });
    });
}

TYPED_TEST(ApplyMorphologicalLutTest, doesWhatEachPairOfFlagsSays)
{
    forEachBinaryType([&]<class T>() {
        auto const in = randomPicture<T>(Shape{70, 5, 3}, 9);
        for (int matching = 0; matching < 4; ++matching)
            for (int noMatching = 0; noMatching < 4; ++noMatching) {
                SCOPED_TRACE(testing::Message() << matching << " and " << noMatching);
                this->choose(matching, noMatching, morphology::STOP_OBJECT);
                this->check(in);
            }
    });
}

TYPED_TEST(ApplyMorphologicalLutTest, countsOtherVoxelsThan0And1ByParity)
{
    auto const in = randomPicture<short>(Shape{40, 9, 4}, 3);
    auto binary = in;
    for (short& voxel : binary.voxels)
        voxel &= 1;
    this->choose(morphology::SET_ONE, morphology::SET_ZERO, morphology::CONTINUE_OBJECT);
    EXPECT_TRUE(samePicture(this->run(binary), this->run(in)));
}

TYPED_TEST(ApplyMorphologicalLutTest, copiesItsInputByATableWithoutAKernel)
{
    typename TestFixture::Lut empty;
    this->apply->morphologicalLut = &empty;
    this->choose(morphology::SET_ONE, morphology::SET_UNCHANGE, morphology::STOP_OBJECT);
    auto const in = randomPicture<unsigned short>(Shape{1030, 12, 3}, 4);
    EXPECT_TRUE(samePicture(in, this->run(in)));
}

TYPED_TEST(ApplyMorphologicalLutTest, deletesLoneVoxels)
{
    typename TestFixture::Lut lut;
    container::Vector<unsigned char> lone(this->isPlanar ? 9 : 27);
    lone[this->isPlanar ? 0 : 13] = 1;
    lut.addKernel(lone);
    this->apply->morphologicalLut = &lut;
    this->choose(morphology::SET_CHANGE, morphology::SET_UNCHANGE, morphology::STOP_OBJECT);
    Picture<unsigned char> in(Shape{8, 7});
    in.at(1, 1) = in.at(0, 6) = 1;
    in.at(4, 3) = in.at(5, 4) = 1;
    auto expected = in;
    expected.at(1, 1) = expected.at(0, 6) = 0;
    EXPECT_TRUE(samePicture(expected, this->run(in)));
    // Beyond the border the voxel in the corner goes on.
    this->apply->borderCondition = morphology::CONTINUE_OBJECT;
    if (this->isPlanar) {
        expected.at(0, 6) = 1;
        EXPECT_TRUE(samePicture(expected, this->run(in)));
    } else { // in the one plan, all voxels do
        EXPECT_TRUE(samePicture(in, this->run(in)));
    }
}

TYPED_TEST(ApplyMorphologicalLutTest, readsItsTableFromAFile)
{
    TemporaryFolder const folder;
    std::string const path = folder / "table";
    typename TestFixture::Lut const& lut = this->randomLut();
    if constexpr (TestFixture::isPlanar) {
        auto const& patterns = lut.getPrivate().patterns;
        writeFile(path, "any " + std::string(patterns.begin(), patterns.end()));
    } else {
        auto const& words = lut.getPrivate().words;
        writeFile(path, "any " + std::string(reinterpret_cast<char const*>(words.begin()),
                                             reinterpret_cast<char const*>(words.end())));
    }
    auto const in = binaryPicture<signed char>(Shape{30, 20, 4}, 8, 50);
    auto const expected = this->run(in);
    this->apply->morphologicalLut = nullptr;
    String rest;
    ASSERT_TRUE(this->apply->getPropertyfromName("morphologicalLut")->read(("@path:" + path).c_str(), rest));
    EXPECT_TRUE(samePicture(expected, this->run(in)));
}

TYPED_TEST(ApplyMorphologicalLutTest, shapesItsOutputLikeItsInputButForItsInterpretation)
{
    BinaryImage input(binaryPicture<short>(Shape{4, 3, 2, 2}, 1, 50));
    input.setSpacingOf(PLANS, 7);
    HostImage out(QEL_FLOAT64, {1, 1});
    out.setInterpretation(QEL_LABEL);
    this->apply->input = &input;
    this->apply->output = &out;
    this->apply->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.sizes(), input.sizes());
    EXPECT_TRUE(sameCalibration(input, out));
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
}

TYPED_TEST(ApplyMorphologicalLutTest, refusesWrongParametersInTheRulesWords)
{
    auto& algorithm = *this->apply;
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, this->name);
    };
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    HostImage const grey(QEL_UINT8, {3, 3});
    BinaryImage const wide(Picture<int>(Shape{3, 3}));
    BinaryImage const good(Picture<unsigned char>(Shape{3, 3}));
    algorithm.input = &wide;
    EXPECT_QEL_WHAT(
        algorithm.run(), RuleException,
        text("The parameter \"input\" supports only data type(s): uint8, uint16, int8, int16. Current data type is "
             "int32.",
             "input"));
    algorithm.input = &grey;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"input\" supports QEL_BINARY. Current image is QEL_VALUE.", "input"));
    algorithm.input = &good;
    algorithm.morphologicalLut = nullptr;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    text("The parameter \"morphologicalLut\" must be set.", "morphologicalLut"));
    algorithm.morphologicalLut = &this->randomLut();
    for (PropertyEnumeration* const property :
         {&algorithm.matchingFlag, &algorithm.noMatchingFlag, &algorithm.borderCondition}) {
        int const before = property->get();
        std::string const flag = property->getName().c_str();
        *property = 4;
        EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                        text("The value of the parameter \"" + flag + "\" is not valid", flag));
        *property = before;
    }
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    EXPECT_TRUE(isAtRest(algorithm));
}

TYPED_TEST(ApplyMorphologicalLutTest, stopsWhenItIsCancelled)
{
    auto const in = binaryPicture<unsigned char>(Shape{256, 256, 8}, 1, 50);
    ObservedImage input(in);
    input.setInterpretation(QEL_BINARY);
    HostImage out;
    this->apply->input = &input;
    this->apply->output = &out;
    input.onRead = [&] { this->apply->cancelExecution(); };
    this->apply->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 1000u);
    EXPECT_TRUE(isAtRest(*this->apply));
    input.onRead = nullptr;
    Poller patient;
    this->apply->run(&patient);
    EXPECT_TRUE(patient.isSteady);
    EXPECT_TRUE(isAtRest(*this->apply));
    EXPECT_TRUE(samePicture(this->expected(in), out));
}

TYPED_TEST(ApplyMorphologicalLutTest, reportsImagesThatFailDuringTheRun)
{
    auto const in = binaryPicture<short>(Shape{5, 23, 2}, 1, 60);
    auto const expected = this->expected(in);
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            images.push_back(std::make_unique<BinaryImage>(in));
            images.push_back(std::make_unique<HostImage>());
            algorithm.morphologicalLut = &this->randomLut();
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[1])); });
}

template <class T> void expectSameKernels()
{
    std::mt19937 random(5);
    morphology::MatchBytes bytes;
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
    MorphologicalLut3D lut;
    fill(lut);
    T const all = static_cast<T>(-1);
    morphology::MatchingActions<T> const actions{{all, all, 2}, {0, all, 0}};
    morphology::NeighborRows const neighbors{{1, 3, 4, 5, 7}, {0, 2, 6, 8}, 4, 5, 4};
    std::vector<T> rows[9];
    T const* starts[9];
    for (int i = 0; i < 9; ++i) {
        for (int x = 0; x < 3002; ++x)
            rows[i].push_back(static_cast<T>(random() % 10 == 0 ? random() : 0));
        starts[i] = rows[i].data() + 1;
    }
    auto const results = [&](morphology::HitOrMissKernels<T> const& kernels, long count) {
        std::vector<std::vector<T>> all3(3, std::vector<T>(static_cast<std::size_t>(count) + 1, 77));
        kernels.matchInPlane(starts, all3[0].data(), count, bytes, actions);
        kernels.matchInSpace(starts, all3[1].data(), count, lut.getPrivate().words.data(), actions);
        kernels.keepEnds(starts, all3[2].data(), count, neighbors);
        for (auto const& result : all3)
            EXPECT_EQ(result.back(), 77) << "beyond the end";
        return all3;
    };
    for (long const count : {1, 15, 16, 17, 31, 32, 33, 1023, 1024, 1025, 3000}) {
        auto const plain = results(morphology::hitOrMissKernels<SimdVec::arch_scalar_tag, T>(), count);
        if (devices::Cpu::getDevice().getSSELevel() >= 65) {
            EXPECT_EQ(plain, results(morphology::hitOrMissKernels<xsimd::sse4_1, T>(), count)) << count;
        }
        if (devices::Cpu::getDevice().getAVXLevel() >= 2) {
            EXPECT_EQ(plain, results(morphology::hitOrMissKernels<xsimd::avx2, T>(), count)) << count;
        }
    }
}

TEST(HitOrMissKernelsTest, giveTheSameInAllInstructionSets)
{
    expectSameKernels<unsigned char>();
    expectSameKernels<unsigned short>();
}

TEST(BinaryBorderConditionTest, thatIsUnknownIsRefused)
{
    EXPECT_FALSE(morphology::continuesObjects(morphology::STOP_OBJECT));
    EXPECT_TRUE(morphology::continuesObjects(morphology::CONTINUE_OBJECT));
    EXPECT_QEL_THROW(morphology::continuesObjects(2), InvalidCall, "Invalid border condition.");
    EXPECT_QEL_THROW(morphology::continuesObjects(-1), InvalidCall, "Invalid border condition.");
}

} // namespace
} // namespace qel::test
