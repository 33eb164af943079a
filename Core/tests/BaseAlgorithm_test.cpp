#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/BaseAlgorithmPrivate.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/storeResult.h"
#include "Core/tests/Support/Support.h"

#include <qel/Algorithm.h>
#include <qel/Ref.h>
#include <qel/algorithms/InteractionInterface.h>

#include <gtest/gtest.h>
#include <tbb/parallel_for.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace qel::test {

/// An algorithm that does in its run what a test tells it.
class ProbeAlgorithm : public BaseAlgorithm
{
    QEL_ALGORITHM(ProbeAlgorithm)
public:
    Property<ImageModel const*> input;
    Property<double> factor;
    Property<int> count;
    Property<ImageModel*> output;
    Property<int> result;

    using BaseAlgorithm::lockAllProperties;

    static inline std::function<void(ProbeAlgorithm&, OptimLevelType)> work;
    static inline std::atomic<bool> vectorIsRunnable{false};
    static inline std::atomic<int> questions{0};
};
QEL_DEFINE_ALGORITHM(ProbeAlgorithm)
AlgoBorderInfluence ProbeAlgorithm::getAlgoBorderInfluence() const { return AlgoBorderInfluence(1, 1, 0, 0, 0); }
void ProbeAlgorithm::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addInput(&factor);
    declare(factor, "factor", 2.0);
    addInput(&count);
    declare(count, "count", 3);
    addOutput(&output);
    declare(output, "output", nullptr);
    addOutput(&result);
    declare(result, "count", -1); // the name of an input: that one is found first
}

template <OptimLevelType Level> class ProbeRunner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override
    {
        ProbeAlgorithm::work(*helper::safe_cast<ProbeAlgorithm*>(algorithm), Level);
    }
    bool isRunnable(BaseAlgorithm*) const override
    {
        ++ProbeAlgorithm::questions;
        return Level == SCALAR || ProbeAlgorithm::vectorIsRunnable;
    }
    OptimLevelType getOptimType() const override { return Level; }
};
using ProbeScalarRunner = ProbeRunner<SCALAR>;
using ProbeVectorRunner = ProbeRunner<VEC_SSE>;
QEL_REGISTER_RUNNER(ProbeAlgorithm, ProbeScalarRunner)
QEL_REGISTER_RUNNER(ProbeAlgorithm, ProbeVectorRunner)

/// Without any runner, and with a property that is missing.
class BareAlgorithm : public BaseAlgorithm
{
    QEL_ALGORITHM(BareAlgorithm)
public:
    Property<int> only;
    bool rulesWereApplied = false;

    using BaseAlgorithm::lockAllProperties;
    void applyAllRules() override
    {
        EXPECT_TRUE(running());
        EXPECT_TRUE(only.isLocked());
        rulesWereApplied = true;
    }
};
QEL_DEFINE_ALGORITHM(BareAlgorithm)
AlgoBorderInfluence BareAlgorithm::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }
void BareAlgorithm::init()
{
    addInput(nullptr);
    addInput(&only);
    declare(only, "only", 1);
    addOutput(nullptr);
}

/// Runs `steps` probes one after the other.
class ChainAlgorithm : public BaseAlgorithm
{
    QEL_ALGORITHM(ChainAlgorithm)
public:
    Property<ImageModel const*> input;

    static inline int steps = 4;
    static inline std::atomic<int> finished{0};
};
QEL_DEFINE_ALGORITHM(ChainAlgorithm)
AlgoBorderInfluence ChainAlgorithm::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }
void ChainAlgorithm::init()
{
    addInput(&input);
    declare(input, "input", nullptr);
}

class ChainImplementation : public algorithms::AbstractPrivateImplementation
{
public:
    using AbstractPrivateImplementation::AbstractPrivateImplementation;
    void run(ChainAlgorithm& chain)
    {
        setNumOfSteps(static_cast<unsigned long>(ChainAlgorithm::steps));
        Publication const publication(*this);
        for (int step = 0; step < ChainAlgorithm::steps; ++step) {
            {
                Ref<ProbeAlgorithm> const probe(ProbeAlgorithm::New(this));
                probe->input = chain.input;
                probe->setMaximumExtraMemoryUsage(chain.getMaximumExtraMemoryUsage());
                probe->run();
                if (isCancelled())
                    return;
            }
            removeChild();
            nextStep();
            ++ChainAlgorithm::finished;
        }
    }
};

class ChainRunner : public ScalarRunner<ChainAlgorithm>
{
    void runOn(ChainAlgorithm& chain) const override
    {
        ChainImplementation implementation(&chain);
        implementation.run(chain);
    }
};
QEL_REGISTER_RUNNER(ChainAlgorithm, ChainRunner)

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// One block a row; says what it does.
struct RowBody
{
    std::function<void(access::Block3d const&)> onBlock;
    std::atomic<int> blocks{0};

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        ++blocks;
        if (onBlock)
            onBlock(block);
        access::IteratorPixelInput<typename Filter::InputView, 1> in(filter.getInputView());
        access::IteratorPixelOutput<typename Filter::OutputView, 1> out(filter.getOutputView(), false);
        for (in.init(block), out.init(block); !in.atEnd(); ++in, ++out)
            *out = static_cast<unsigned char>(*in + 1);
    }
};
using RowFilter = ImageToImageFilter3d<unsigned char, unsigned char, SimdVec::arch_scalar_tag, RowBody>;

void runFrame(ProbeAlgorithm& probe, RowBody& body)
{
    RowFilter filter(&probe, &body);
    filter.setPartitionerInformation(boost::make_shared<PartitionerInfoFixed>(1024, 1, 1));
    filter.setBlocksAreFixed(true);
    filter.setInput(probe.input, access::FixedBorderCondition<unsigned char>::New(0));
    filter.setOutput(probe.output, access::FixedBorderCondition<unsigned char>::New(0));
    filter.run();
}

template <class Condition> bool waitUntil(Condition&& condition)
{
    auto const end = Clock::now() + 60s;
    while (!condition()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

/// Calls the callable where there are two threads, of which one, the worker, is kept elsewhere.
template <class Callable> void withTheOneWorkerBusy(Callable&& callable)
{
    withThreads(2, [&] {
        tbb::task_arena elsewhere(2);
        std::atomic<bool> isBusy{false};
        std::atomic<bool> mayGo{false};
        elsewhere.enqueue([&] {
            isBusy = true;
            EXPECT_TRUE(waitUntil([&] { return mayGo.load(); }));
            isBusy = false;
        });
        ASSERT_TRUE(waitUntil([&] { return isBusy.load(); }));
        callable();
        mayGo = true;
        EXPECT_TRUE(waitUntil([&] { return !isBusy; }));
    });
}

class Host final : public algorithms::InteractionInterface
{
public:
    void updateProgress(double percent) override
    {
        {
            std::lock_guard const guard(m_mutex);
            m_reports.push_back(percent);
            m_reporters.push_back(std::this_thread::get_id());
        }
        if (onProgress)
            onProgress(percent);
    }
    bool isCancelRequested() override
    {
        {
            std::lock_guard const guard(m_mutex);
            m_questions.push_back(Clock::now());
        }
        return onQuestion && onQuestion();
    }
    unsigned short getProgressPeriod() override
    {
        if (onPeriod)
            onPeriod();
        return progressPeriod;
    }
    unsigned short getCancelPeriod() override { return cancelPeriod; }

    std::vector<double> reports() const
    {
        std::lock_guard const guard(m_mutex);
        return m_reports;
    }
    std::vector<std::thread::id> reporters() const
    {
        std::lock_guard const guard(m_mutex);
        return m_reporters;
    }
    std::vector<Clock::time_point> questions() const
    {
        std::lock_guard const guard(m_mutex);
        return m_questions;
    }

    unsigned short progressPeriod = 0;
    unsigned short cancelPeriod = 0;
    std::function<void(double)> onProgress;
    std::function<bool()> onQuestion;
    std::function<void()> onPeriod;

private:
    mutable std::mutex m_mutex;
    std::vector<double> m_reports;
    std::vector<std::thread::id> m_reporters;
    std::vector<Clock::time_point> m_questions;
};

struct BaseAlgorithmTest : testing::Test
{
    BaseAlgorithmTest()
    {
        ProbeAlgorithm::work = [](ProbeAlgorithm&, OptimLevelType) {};
        ProbeAlgorithm::vectorIsRunnable = false;
        ProbeAlgorithm::questions = 0;
        ChainAlgorithm::steps = 4;
        ChainAlgorithm::finished = 0;
        probe = Ref<ProbeAlgorithm>(ProbeAlgorithm::New());
        probe->input = &input;
        probe->output = &output;
    }
    ~BaseAlgorithmTest() override { ProbeAlgorithm::work = nullptr; }

    void expectIdle()
    {
        EXPECT_FALSE(probe->running());
        for (unsigned long i = 0; i < probe->getNumOfInputProperties(); ++i)
            EXPECT_FALSE(probe->getInputProperty(i)->isLocked()) << i;
        for (unsigned long i = 0; i < probe->getNumOfOutputProperties(); ++i)
            EXPECT_FALSE(probe->getOutputProperty(i)->isLocked()) << i;
    }
    /// Whatever happened before, the next run is like any other.
    void expectRunnable()
    {
        expectIdle();
        int runs = 0;
        ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
            ++runs;
            RowBody body;
            runFrame(algorithm, body);
            EXPECT_EQ(body.blocks, 8);
        };
        probe->input = &input;
        EXPECT_NO_THROW(probe->run());
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(probe->getProgress(), 100.0);
        Host another;
        EXPECT_NO_THROW(probe->run(&another));
        EXPECT_EQ(runs, 2);
        expectIdle();
    }

    memory::InMemoryImage input = toImage(randomPicture<unsigned char>({7, 8}, 1));
    memory::InMemoryImage output = toImage(Picture<unsigned char>({7, 8}));
    Ref<ProbeAlgorithm> probe;
    Host host;
};

// ---- what a host sees before a run

TEST_F(BaseAlgorithmTest, hasTheRecordOfItsClass)
{
    EXPECT_EQ(probe->getInfo(), ProbeAlgorithm::getClassInfo());
    EXPECT_EQ(probe->getInfo()->getName(), String("ProbeAlgorithm"));
    EXPECT_EQ(probe->getInfo()->getLibName(), String("Quelide"));
    Ref<BaseAlgorithm> const byName(AlgoInfo::fromName("ProbeAlgorithm")->createInstance());
    EXPECT_NE(dynamic_cast<ProbeAlgorithm*>(byName.get()), nullptr);
    Ref<BaseAlgorithm> const byBase(ProbeAlgorithm::NewBase());
    EXPECT_EQ(byBase->getInfo(), ProbeAlgorithm::getClassInfo());
    EXPECT_EQ(byBase->getNumOfProperties(), 5u);
}

TEST_F(BaseAlgorithmTest, listsPropertiesInDeclarationOrder)
{
    EXPECT_EQ(probe->getNumOfInputProperties(), 3u);
    EXPECT_EQ(probe->getNumOfOutputProperties(), 2u);
    EXPECT_EQ(probe->getNumOfProperties(), 5u);
    EXPECT_EQ(probe->getInputProperty(0), &probe->input);
    EXPECT_EQ(probe->getInputProperty(1), &probe->factor);
    EXPECT_EQ(probe->getInputProperty(2), &probe->count);
    EXPECT_EQ(probe->getOutputProperty(0), &probe->output);
    EXPECT_EQ(probe->getOutputProperty(1), &probe->result);
    EXPECT_EQ(probe->factor.get(), 2.0);
}

TEST_F(BaseAlgorithmTest, findsPropertiesByNameInputsFirst)
{
    EXPECT_EQ(probe->getPropertyfromName("input"), &probe->input);
    EXPECT_EQ(probe->getPropertyfromName("output"), &probe->output);
    EXPECT_EQ(probe->getPropertyfromName("count"), &probe->count);
    EXPECT_EQ(probe->getPropertyfromName("Count"), nullptr);
    EXPECT_EQ(probe->getPropertyfromName(""), nullptr);
    Ref<BareAlgorithm> const bare(BareAlgorithm::New());
    EXPECT_EQ(bare->getPropertyfromName("only"), &bare->only);
}

TEST_F(BaseAlgorithmTest, locksEveryPropertyAndSkipsMissingOnes)
{
    probe->lockAllProperties(true);
    probe->factor = 9.0;
    probe->result = 9;
    EXPECT_EQ(probe->factor.get(), 2.0);
    EXPECT_EQ(probe->result.get(), -1);
    probe->lockAllProperties(false);
    expectIdle();

    Ref<BareAlgorithm> const bare(BareAlgorithm::New());
    bare->lockAllProperties(true);
    EXPECT_TRUE(bare->only.isLocked());
}

TEST_F(BaseAlgorithmTest, keepsThePercentOfExtraMemoryUnchecked)
{
    EXPECT_EQ(probe->getMaximumExtraMemoryUsage(), 100);
    probe->setMaximumExtraMemoryUsage(-7);
    EXPECT_EQ(probe->getMaximumExtraMemoryUsage(), -7);
    probe->setMaximumExtraMemoryUsage(1000);
    EXPECT_EQ(probe->getMaximumExtraMemoryUsage(), 1000);
}

TEST_F(BaseAlgorithmTest, isIdleBeforeTheFirstRun)
{
    expectIdle();
    EXPECT_EQ(probe->getProgress(), 0.0);
    EXPECT_FALSE(probe->isExecutionCancelled());
    probe->cancelExecution();
    EXPECT_FALSE(probe->isExecutionCancelled());
    expectRunnable();
}

// ---- levels

TEST_F(BaseAlgorithmTest, takesTheMostCapableLevelThatCanRun)
{
    std::vector<OptimLevelType> levels;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType level) { levels.push_back(level); };
    probe->run();
    ProbeAlgorithm::vectorIsRunnable = true;
    probe->run();
    EXPECT_EQ(levels, (std::vector{SCALAR, VEC_SSE}));
}

TEST_F(BaseAlgorithmTest, theLevelCountsOnlyWithoutAutomaticDispatch)
{
    std::vector<OptimLevelType> levels;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType level) { levels.push_back(level); };
    ProbeAlgorithm::vectorIsRunnable = true;
    probe->setOptimLevel(SCALAR);
    probe->run();
    probe->setAutoCpuDispatch(false);
    probe->run();
    probe->setOptimLevel(VEC_SSE);
    probe->run();
    ProbeAlgorithm::vectorIsRunnable = false;
    probe->setAutoCpuDispatch(true);
    probe->run();
    EXPECT_EQ(levels, (std::vector{VEC_SSE, SCALAR, VEC_SSE, SCALAR}));
}

TEST_F(BaseAlgorithmTest, withoutAutomaticDispatchTheLevelIsScalarByDefault)
{
    std::vector<OptimLevelType> levels;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType level) { levels.push_back(level); };
    ProbeAlgorithm::vectorIsRunnable = true;
    probe->setAutoCpuDispatch(false);
    probe->run();
    EXPECT_EQ(levels, std::vector{SCALAR});
}

TEST_F(BaseAlgorithmTest, doesNotFallBackFromALevelThatWasAskedFor)
{
    std::string const words = "Unexpected error :\n"
                              "#1 Error : no runner found for algorithm \n"
                              "#2 From ProbeAlgorithm \n";
    probe->setAutoCpuDispatch(false);
    for (OptimLevelType const level : {VEC_SSE, VEC_AVX, GPU}) {
        probe->setOptimLevel(level);
        EXPECT_QEL_WHAT(probe->run(), UnexpectedError, words);
        EXPECT_QEL_WHAT(probe->run(&host), UnexpectedError, words);
        expectIdle();
    }
    try {
        probe->run();
    } catch (Exception& error) {
        EXPECT_EQ(error.getInfoLevel(0).fileName, String("Core/src/Algorithms/BaseAlgorithmPrivate"));
        EXPECT_EQ(error.getInfoLevel(0).algorithmName, String(""));
        EXPECT_EQ(error.getNumOfInfoLevels(), 2u);
        EXPECT_EQ(error.getInfoLevel(1).message, String(""));
        EXPECT_EQ(error.getInfoLevel(1).algorithmName, String("ProbeAlgorithm"));
        EXPECT_EQ(error.getInfoLevel(1).libraryName, String("Quelide"));
    }
    probe->setAutoCpuDispatch(true);
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, tellsItsLevelsWithoutAskingWhetherTheyCanRun)
{
    EXPECT_TRUE(probe->isOptimLevelSupported(SCALAR));
    EXPECT_TRUE(probe->isOptimLevelSupported(VEC_SSE));
    EXPECT_FALSE(probe->isOptimLevelSupported(VEC_AVX));
    EXPECT_FALSE(probe->isOptimLevelSupported(GPU));
    EXPECT_EQ(probe->getMostPerformantAvailableOptimLevel(), VEC_SSE);
    EXPECT_EQ(ProbeAlgorithm::questions, 0);
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    EXPECT_EQ(chain->getMostPerformantAvailableOptimLevel(), SCALAR);
}

TEST_F(BaseAlgorithmTest, withoutAnyRunnerNothingIsFound)
{
    Ref<BareAlgorithm> const bare(BareAlgorithm::New());
    EXPECT_FALSE(bare->isOptimLevelSupported(SCALAR));
    EXPECT_THROW(bare->getMostPerformantAvailableOptimLevel(), BadIndex);
    EXPECT_QEL_WHAT(bare->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : no runner found for algorithm \n#2 From BareAlgorithm \n");
    EXPECT_TRUE(bare->rulesWereApplied);
    EXPECT_FALSE(bare->only.isLocked());
}

TEST_F(BaseAlgorithmTest, aRunnerRefusesAnAlgorithmOfAnotherClass)
{
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    EXPECT_QEL_THROW(ProbeScalarRunner().run(chain.get()), UnexpectedError,
                     std::string("bad cast when casting ") + typeid(BaseAlgorithm*).name() + " into " +
                         typeid(ProbeAlgorithm*).name());
}

// ---- the run

TEST_F(BaseAlgorithmTest, locksItsPropertiesDuringTheRunOnly)
{
    for (bool const polled : {false, true}) {
        probe->factor = 2.0;
        ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
            EXPECT_TRUE(algorithm.running());
            algorithm.factor = 5.0;
            algorithm.result = 5;
            EXPECT_TRUE(algorithm.input.isLocked());
            EXPECT_TRUE(algorithm.output.isLocked());
        };
        probe->run(polled ? &host : nullptr);
        EXPECT_EQ(probe->factor.get(), 2.0);
        EXPECT_EQ(probe->result.get(), -1);
        expectIdle();
        probe->factor = 5.0;
        EXPECT_EQ(probe->factor.get(), 5.0);
    }
}

TEST_F(BaseAlgorithmTest, aMissingInputIsReportedInThreeLevels)
{
    std::string const words = "Rule exception :\n"
                              "#1 Error : The parameter \"input\" must be set. \n"
                              "#2 From Rule error in property input \n"
                              "#3 From ProbeAlgorithm \n";
    int runs = 0;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) { ++runs; };
    probe->input = nullptr;
    EXPECT_QEL_WHAT(probe->run(), RuleException, words);
    EXPECT_QEL_WHAT(probe->run(&host), RuleException, words);
    EXPECT_EQ(runs, 0);
    EXPECT_TRUE(host.reports().empty());
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, appliesInputRulesBeforeOutputRulesAndStopsAtTheFirstFailure)
{
    struct Note : Rules<Property<int>>
    {
        Note(std::vector<std::string>& itsNotes, char const* itsText)
            : notes(itsNotes)
            , text(itsText)
        {}
        void apply(Property<int>& property) override
        {
            EXPECT_TRUE(property.isLocked());
            notes.push_back(text);
        }
        std::vector<std::string>& notes;
        char const* text;
    };
    std::vector<std::string> notes;
    pushRule<int>(probe->result, boost::make_shared<Note>(notes, "output"));
    pushRule<int>(probe->count, boost::make_shared<Note>(notes, "input"));
    probe->run();
    EXPECT_EQ(notes, (std::vector<std::string>{"input", "output"}));
    probe->input = nullptr;
    EXPECT_THROW(probe->run(), RuleException);
    EXPECT_EQ(notes.size(), 2u);
}

TEST_F(BaseAlgorithmTest, exceptionsOfTheLibraryKeepTheirTypeAndGainALevel)
{
    ProbeAlgorithm::work = [](ProbeAlgorithm&, OptimLevelType) { QEL_THROW(BadIndex, "Too far."); };
    std::string const words = "Bad index :\n#1 Error : Too far. \n#2 From ProbeAlgorithm \n";
    EXPECT_QEL_WHAT(probe->run(), BadIndex, words);
    EXPECT_QEL_WHAT(probe->run(&host), BadIndex, words);
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, standardExceptionsBecomeUnexpectedErrorsWithTheirText)
{
    ProbeAlgorithm::work = [](ProbeAlgorithm&, OptimLevelType) { throw std::runtime_error("the disk is full"); };
    std::string const words = "Unexpected error :\n#1 Error : the disk is full ProbeAlgorithm \n";
    EXPECT_QEL_WHAT(probe->run(), UnexpectedError, words);
    EXPECT_QEL_WHAT(probe->run(&host), UnexpectedError, words);
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, anythingElseIsAnUndefinedException)
{
    ProbeAlgorithm::work = [](ProbeAlgorithm&, OptimLevelType) { throw 42; };
    std::string const words = "Unexpected error :\n#1 Error : undefined exception ProbeAlgorithm \n";
    EXPECT_QEL_WHAT(probe->run(), UnexpectedError, words);
    EXPECT_QEL_WHAT(probe->run(&host), UnexpectedError, words);
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, anExceptionOfAChildNamesBothAlgorithms)
{
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    EXPECT_QEL_WHAT(chain->run(), RuleException,
                    "Rule exception :\n"
                    "#1 Error : The parameter \"input\" must be set. \n"
                    "#2 From Rule error in property input \n"
                    "#3 From ProbeAlgorithm \n"
                    "#4 From ChainAlgorithm \n");
    EXPECT_FALSE(chain->running());
    EXPECT_FALSE(chain->isExecutionCancelled());
    chain->input = &input;
    EXPECT_NO_THROW(chain->run());
    EXPECT_EQ(ChainAlgorithm::finished, 4);
}

TEST_F(BaseAlgorithmTest, imagesOfTheHostThatFailAreReportedWithTheirWords)
{
    ProbeAlgorithm::work = [](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        runFrame(algorithm, body);
    };
    HostImage from(randomPicture<unsigned char>({7, 40, 3}, 3));
    HostImage to(QEL_UINT8, {7, 40, 3});
    probe->input = &from;
    probe->output = &to;
    onOneAndFourThreads([&] {
        for (algorithms::InteractionInterface* interaction : {static_cast<Host*>(nullptr), &host}) {
            from.failOn(READ_ROW, from.callsOf(READ_ROW) + 11);
            EXPECT_QEL_WHAT(probe->run(interaction), UnexpectedError,
                            "Unexpected error :\n"
                            "#1 Error : Error in readRowAt implementation, return value is false \n"
                            "#2 From ProbeAlgorithm \n");
            from.behave();
            to.failOn(WRITE_ROW, to.callsOf(WRITE_ROW) + 11);
            EXPECT_QEL_WHAT(probe->run(interaction), UnexpectedError,
                            "Unexpected error :\n"
                            "#1 Error : Error in writeRowAt implementation, return value is false \n"
                            "#2 From ProbeAlgorithm \n");
            to.behave();
            from.throwOn(READ_ROW, from.callsOf(READ_ROW) + 11);
            EXPECT_QEL_WHAT(probe->run(interaction), UnexpectedError,
                            "Unexpected error :\n#1 Error : host failure ProbeAlgorithm \n");
            from.behave();
            to.throwOn(WRITE_ROW, to.callsOf(WRITE_ROW));
            EXPECT_QEL_WHAT(probe->run(interaction), UnexpectedError,
                            "Unexpected error :\n#1 Error : host failure ProbeAlgorithm \n");
            to.behave();
            from.throwOn(GET_NUM_OF, 0);
            EXPECT_QEL_WHAT(probe->run(interaction), UnexpectedError,
                            "Unexpected error :\n#1 Error : host failure ProbeAlgorithm \n");
            from.behave();
            expectIdle();
            EXPECT_NO_THROW(probe->run(interaction));
        }
    });
}

TEST_F(BaseAlgorithmTest, anImageOfAnotherVoxelTypeIsRefusedByTheView)
{
    ProbeAlgorithm::work = [](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        runFrame(algorithm, body);
    };
    memory::InMemoryImage const floats = toImage(Picture<float>({7, 8}));
    probe->input = &floats;
    EXPECT_QEL_WHAT(probe->run(), UnexpectedError,
                    "Unexpected error :\n"
                    "#1 Error : Types do not correspond in CheckTypeEquivalence \n"
                    "#2 From ProbeAlgorithm \n");
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, aSecondRunDuringARunDoesNothing)
{
    for (bool const polled : {false, true}) {
        int runs = 0;
        ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
            ++runs;
            ASSERT_LT(runs, 3);
            algorithm.run();
            algorithm.run(&host);
            std::thread([&] { algorithm.run(); }).join();
            EXPECT_TRUE(algorithm.running());
            EXPECT_TRUE(algorithm.input.isLocked());
        };
        probe->run(polled ? &host : nullptr);
        EXPECT_EQ(runs, 1);
        expectIdle();
    }
}

// ---- progress

struct PlainImplementation : algorithms::AbstractPrivateImplementation
{
    using AbstractPrivateImplementation::AbstractPrivateImplementation;
};

TEST_F(BaseAlgorithmTest, progressIsTheShareOfTheWork)
{
    PlainImplementation work(nullptr);
    EXPECT_EQ(work.getProgress(), 0.0);
    work.setTotalWork(8);
    EXPECT_EQ(work.getProgress(), 0.0);
    work.addDoneWork(3);
    EXPECT_EQ(work.getProgress(), 37.5);
    work.addDoneWork(5);
    EXPECT_EQ(work.getProgress(), 100.0);
    work.setTotalWork(4);
    EXPECT_EQ(work.getProgress(), 0.0);
    work.setTotalWork(0);
    work.addDoneWork(1);
    EXPECT_EQ(work.getProgress(), 0.0);
}

TEST_F(BaseAlgorithmTest, progressOfStepsAddsThePartOfTheStepUnderWay)
{
    PlainImplementation top(nullptr);
    top.setNumOfSteps(4);
    EXPECT_EQ(top.getProgress(), 0.0);
    top.nextStep();
    EXPECT_EQ(top.getProgress(), 25.0);
    top.setTotalWork(10);
    top.addDoneWork(4);
    EXPECT_EQ(top.getProgress(), 35.0);

    PlainImplementation middle(nullptr);
    top.setCurrentChild(&middle);
    EXPECT_EQ(top.getProgress(), 25.0);
    middle.setNumOfSteps(2);
    middle.nextStep();
    EXPECT_EQ(top.getProgress(), (100.0 + 50.0) / 4);
    {
        PlainImplementation bottom(nullptr);
        bottom.setTotalWork(4);
        bottom.addDoneWork(1);
        middle.setCurrentChild(&bottom);
        EXPECT_EQ(middle.getProgress(), (100.0 + 25.0) / 2);
        EXPECT_EQ(top.getProgress(), (100.0 + 62.5) / 4);
    }
    // The end of the lowest one clears each link above it.
    EXPECT_EQ(middle.getProgress(), 50.0);
    EXPECT_EQ(top.getProgress(), 35.0);
}

TEST_F(BaseAlgorithmTest, aChildAlgorithmCountsBeforeAChildImplementation)
{
    probe->run();
    ProbeAlgorithm::work = [](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        runFrame(algorithm, body);
    };
    probe->run();
    PlainImplementation top(nullptr);
    top.setNumOfSteps(2);
    PlainImplementation first(nullptr);
    top.setCurrentChild(&first);
    top.setCurrentChild(probe.get());
    EXPECT_EQ(top.getProgress(), 50.0);
    top.removeChild();
    EXPECT_EQ(top.getProgress(), 0.0);
}

TEST_F(BaseAlgorithmTest, aLaterChildOutlivesAnEarlierOne)
{
    PlainImplementation top(nullptr);
    top.setNumOfSteps(2);
    PlainImplementation second(nullptr);
    second.setTotalWork(2);
    second.addDoneWork(1);
    {
        PlainImplementation first(nullptr);
        top.setCurrentChild(&first);
        top.setCurrentChild(&second);
    }
    EXPECT_EQ(top.getProgress(), 25.0);
}

TEST_F(BaseAlgorithmTest, progressRisesWithTheBlocksAndStaysAfterTheRun)
{
    std::vector<double> seen;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        EXPECT_EQ(algorithm.getProgress(), 0.0);
        RowBody body;
        body.onBlock = [&](auto const&) { seen.push_back(algorithm.getProgress()); };
        runFrame(algorithm, body);
        EXPECT_EQ(algorithm.getProgress(), 100.0);
    };
    withThreads(1, [&] { probe->run(); });
    EXPECT_EQ(seen, (std::vector{0.0, 12.5, 25.0, 37.5, 50.0, 62.5, 75.0, 87.5}));
    EXPECT_EQ(probe->getProgress(), 100.0);
}

TEST_F(BaseAlgorithmTest, progressOfAFailedRunStaysWhereItStopped)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        body.onBlock = [&](access::Block3d const& block) {
            if (block.rowsBegin() == 4)
                throw HostFailure();
        };
        runFrame(algorithm, body);
    };
    withThreads(1, [&] { EXPECT_THROW(probe->run(), UnexpectedError); });
    EXPECT_EQ(probe->getProgress(), 50.0);
    EXPECT_FALSE(probe->isExecutionCancelled());
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, progressDoesNotFallBetweenTheChildrenOfACompositeButStartsAgainWithARun)
{
    std::vector<double> ofWork;
    std::vector<double> ofAlgorithm;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        PlainImplementation composite(&algorithm);
        composite.setNumOfSteps(2);
        algorithms::AbstractPrivateImplementation::Publication const publication(composite);
        auto const look = [&] {
            ofWork.push_back(composite.getProgress());
            ofAlgorithm.push_back(algorithm.getProgress());
        };
        look();
        {
            PlainImplementation child(nullptr);
            composite.setCurrentChild(&child);
            child.setTotalWork(4);
            look();
            child.addDoneWork(3);
            look();
        }
        look();
        composite.nextStep();
        look();
        PlainImplementation child(nullptr);
        composite.setCurrentChild(&child);
        child.setTotalWork(2);
        child.addDoneWork(1);
        look();
        child.addDoneWork(1);
        look();
    };
    for (int run = 0; run < 2; ++run) {
        ofWork.clear();
        ofAlgorithm.clear();
        probe->run();
        EXPECT_EQ(ofWork, (std::vector{0.0, 0.0, 37.5, 0.0, 50.0, 75.0, 100.0}));
        EXPECT_EQ(ofAlgorithm, (std::vector{0.0, 0.0, 37.5, 37.5, 50.0, 75.0, 100.0}));
    }
}

TEST_F(BaseAlgorithmTest, progressOfAChainGoesOnFromStepToStep)
{
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    memory::InMemoryImage target = toImage(Picture<unsigned char>({7, 8}));
    std::vector<double> seen;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        EXPECT_EQ(algorithm.getMaximumExtraMemoryUsage(), 33);
        seen.push_back(chain->getProgress());
        RowBody body;
        body.onBlock = [&](access::Block3d const& block) {
            if (block.rowsBegin() == 4)
                seen.push_back(chain->getProgress());
        };
        storeResult(algorithm.output, &target);
        runFrame(algorithm, body);
    };
    chain->input = &input;
    chain->setMaximumExtraMemoryUsage(33);
    withThreads(1, [&] { chain->run(); });
    EXPECT_EQ(seen, (std::vector{0.0, 12.5, 25.0, 37.5, 50.0, 62.5, 75.0, 87.5}));
    EXPECT_EQ(chain->getProgress(), 100.0);
}

// ---- cancellation

TEST_F(BaseAlgorithmTest, aCancelledRunReturnsNormallyWithPartOfTheOutput)
{
    auto const before = fromImage<unsigned char>(output);
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        body.onBlock = [&](access::Block3d const& block) {
            EXPECT_FALSE(algorithm.isExecutionCancelled());
            if (block.rowsBegin() == 2) {
                algorithm.cancelExecution();
                EXPECT_TRUE(algorithm.isExecutionCancelled());
            }
        };
        runFrame(algorithm, body);
        EXPECT_EQ(body.blocks, 3);
        EXPECT_FALSE(algorithm.isExecutionCancelled());
    };
    withThreads(1, [&] { EXPECT_NO_THROW(probe->run()); });
    EXPECT_FALSE(probe->isExecutionCancelled());
    EXPECT_EQ(probe->getProgress(), 37.5);
    auto const in = fromImage<unsigned char>(input);
    auto const out = fromImage<unsigned char>(output);
    for (unsigned long row = 0; row < 8; ++row)
        for (unsigned long column = 0; column < 7; ++column)
            EXPECT_EQ(out.at(column, row),
                      row < 3 ? static_cast<unsigned char>(in.at(column, row) + 1) : before.at(column, row));
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, anotherThreadCancels)
{
    for (bool const polled : {false, true}) {
        ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
            RowBody body;
            std::atomic<bool> isUnderWay{false};
            body.onBlock = [&](auto const&) {
                isUnderWay = true;
                EXPECT_TRUE(waitUntil([&] { return algorithm.isExecutionCancelled(); }));
            };
            std::thread canceller([&] {
                EXPECT_TRUE(waitUntil([&] { return isUnderWay.load(); }));
                algorithm.cancelExecution();
            });
            runFrame(algorithm, body);
            canceller.join();
            EXPECT_LE(body.blocks, 4);
        };
        EXPECT_NO_THROW(probe->run(polled ? &host : nullptr));
        expectIdle();
    }
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, cancellingAChainStopsItsChildAndTheStepsBehind)
{
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    chain->input = &input;
    int started = 0;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        ++started;
        storeResult<ImageModel*>(algorithm.output, &output);
        RowBody body;
        body.onBlock = [&](access::Block3d const& block) {
            if (started == 2 && block.rowsBegin() == 1) {
                chain->cancelExecution();
                EXPECT_TRUE(algorithm.isExecutionCancelled());
            }
        };
        runFrame(algorithm, body);
        if (started == 2) {
            EXPECT_EQ(body.blocks, 2);
        }
    };
    withThreads(1, [&] { EXPECT_NO_THROW(chain->run()); });
    EXPECT_EQ(started, 2);
    EXPECT_EQ(ChainAlgorithm::finished, 1);
    EXPECT_EQ(chain->getProgress(), 25.0);
    ChainAlgorithm::finished = 0;
    started = 2;
    withThreads(1, [&] { EXPECT_NO_THROW(chain->run()); });
    EXPECT_EQ(ChainAlgorithm::finished, 4);
}

TEST_F(BaseAlgorithmTest, aChildThatStartsAfterTheCancellationStartsNoBlock)
{
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    chain->input = &input;
    int blocks = 0;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        chain->cancelExecution(); // the child has no frame yet
        storeResult<ImageModel*>(algorithm.output, &output);
        RowBody body;
        runFrame(algorithm, body);
        blocks += body.blocks;
    };
    EXPECT_NO_THROW(chain->run());
    EXPECT_EQ(blocks, 0);
    EXPECT_EQ(ChainAlgorithm::finished, 0);
}

TEST_F(BaseAlgorithmTest, aChildImplementationThatComesAfterTheCancellationIsCancelledToo)
{
    PlainImplementation top(nullptr);
    PlainImplementation middle(nullptr);
    PlainImplementation bottom(nullptr);
    middle.setCurrentChild(&bottom);
    top.cancelExecution();
    EXPECT_FALSE(middle.isCancelled());
    top.setCurrentChild(&middle);
    EXPECT_TRUE(middle.isCancelled());
    EXPECT_TRUE(bottom.isCancelled());

    PlainImplementation running(nullptr);
    PlainImplementation later(nullptr); // gone first, as children are
    running.setCurrentChild(&later);
    EXPECT_FALSE(later.isCancelled());
}

TEST_F(BaseAlgorithmTest, withoutAFrameThereIsNothingToCancel)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        algorithm.cancelExecution();
        EXPECT_FALSE(algorithm.isExecutionCancelled());
        RowBody body;
        runFrame(algorithm, body);
        EXPECT_EQ(body.blocks, 8);
    };
    probe->run();
    EXPECT_EQ(probe->getProgress(), 100.0);
}

// ---- polled runs

TEST_F(BaseAlgorithmTest, aPolledRunReportsProgressAndOneLastTimeAtItsEnd)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        EXPECT_NE(std::this_thread::get_id(), std::thread::id());
        RowBody body;
        body.onBlock = [&](access::Block3d const& block) {
            if (block.rowsBegin() == 4) {
                auto const seen = host.reports().size();
                EXPECT_TRUE(waitUntil([&] { return host.reports().size() >= seen + 2; }));
            }
        };
        runFrame(algorithm, body);
    };
    probe->run(&host);
    auto const reports = host.reports();
    ASSERT_GE(reports.size(), 3u);
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    EXPECT_EQ(reports.back(), 100.0);
    EXPECT_GE(reports.front(), 0.0);
    EXPECT_LT(reports.front(), 100.0);
    EXPECT_EQ(host.reporters().front(), std::this_thread::get_id());
    EXPECT_EQ(probe->getProgress(), 100.0);
    expectIdle();
}

TEST_F(BaseAlgorithmTest, aPolledRunWorksOnAnotherThread)
{
    auto const caller = std::this_thread::get_id();
    std::atomic<bool> isElsewhere{false};
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) { isElsewhere = std::this_thread::get_id() != caller; };
    onOneAndFourThreads([&] {
        isElsewhere = false;
        probe->run(&host);
        EXPECT_TRUE(isElsewhere);
    });
    // The last report of each run comes from there; the poller may still add one of its own.
    auto const reporters = host.reporters();
    EXPECT_GE(std::count_if(reporters.begin(), reporters.end(), [&](auto id) { return id != caller; }), 2);
}

TEST_F(BaseAlgorithmTest, periodsAboveHundredMillisecondsCountAsHundred)
{
    host.progressPeriod = 5000;
    host.cancelPeriod = 65535;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) {
        auto const start = Clock::now();
        EXPECT_TRUE(waitUntil([&] { return host.reports().size() >= 2 && host.questions().size() >= 2; }));
        EXPECT_LT(Clock::now() - start, 4s);
    };
    probe->run(&host);
}

TEST_F(BaseAlgorithmTest, aPeriodOfZeroCallsTheHostAtEachWakeUp)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) {
        EXPECT_TRUE(waitUntil([&] { return host.reports().size() >= 6; }));
    };
    probe->run(&host);
    auto const questions = host.questions();
    // One of the reports is the last one, from the runner.
    EXPECT_EQ(questions.size() + 1, host.reports().size());
    for (std::size_t i = 1; i < questions.size(); ++i)
        EXPECT_GE(questions[i] - questions[i - 1], 20ms);
}

TEST_F(BaseAlgorithmTest, onlyTheFirstWaitForCancellationIsTheCancelPeriod)
{
    host.progressPeriod = 100;
    host.cancelPeriod = 0;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) {
        EXPECT_TRUE(waitUntil([&] { return host.questions().size() >= 3; }));
    };
    probe->run(&host);
    auto const slow = host.questions();
    for (std::size_t i = 1; i < slow.size(); ++i)
        EXPECT_GE(slow[i] - slow[i - 1], 100ms);

    Host quick;
    quick.progressPeriod = 0;
    quick.cancelPeriod = 100;
    Clock::time_point start;
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) {
        start = Clock::now();
        EXPECT_TRUE(waitUntil([&] { return quick.questions().size() >= 9; }));
    };
    auto const called = Clock::now();
    probe->run(&quick);
    auto const questions = quick.questions();
    EXPECT_GE(questions.front() - called, 100ms);
    auto shortest = questions[1] - questions[0];
    for (std::size_t i = 1; i < questions.size(); ++i)
        shortest = std::min(shortest, questions[i] - questions[i - 1]);
    EXPECT_LT(shortest, 100ms);
}

TEST_F(BaseAlgorithmTest, theHostCancelsAPolledRun)
{
    onOneAndFourThreads([&] {
        Host canceller;
        canceller.onQuestion = [] { return true; };
        std::atomic<int> blocks{0};
        ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
            RowBody body;
            body.onBlock = [&](auto const&) {
                ++blocks;
                EXPECT_TRUE(waitUntil([&] { return algorithm.isExecutionCancelled(); }));
            };
            runFrame(algorithm, body);
        };
        EXPECT_NO_THROW(probe->run(&canceller));
        EXPECT_LE(blocks, 4);
        EXPECT_EQ(canceller.questions().size(), 1u);
        expectIdle();
    });
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, aHostThatCancelsBeforeTheFrameExistsIsHeard)
{
    std::atomic<bool> isAsked{false};
    host.onQuestion = [&] {
        isAsked = true;
        return true;
    };
    int blocks = -1;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        EXPECT_TRUE(waitUntil([&] { return isAsked.load(); }));
        std::this_thread::sleep_for(50ms);
        RowBody body;
        runFrame(algorithm, body);
        blocks = body.blocks;
    };
    EXPECT_NO_THROW(probe->run(&host));
    EXPECT_EQ(blocks, 0);
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, aHostThatCancelsBeforeAThreadIsFreeIsHeard)
{
    withTheOneWorkerBusy([&] {
        host.onQuestion = [] { return true; };
        int blocks = -1;
        ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
            RowBody body;
            runFrame(algorithm, body);
            blocks = body.blocks;
        };
        EXPECT_NO_THROW(probe->run(&host));
        EXPECT_EQ(blocks, 0);
    });
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, whatThePollingThreadDoesItselfLeavesNothingForALateWorker)
{
    withTheOneWorkerBusy([&] {
        auto const caller = std::this_thread::get_id();
        host.onQuestion = [] { return true; };
        int runs = 0;
        for (int i = 0; i < 10; ++i) {
            Ref<ProbeAlgorithm> const own(ProbeAlgorithm::New());
            own->input = &input;
            own->output = &output;
            ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
                EXPECT_EQ(std::this_thread::get_id(), caller);
                ++runs;
                RowBody body;
                runFrame(algorithm, body);
            };
            own->run(&host);
        }
        EXPECT_EQ(runs, 10);
#ifdef __SANITIZE_ADDRESS__
        // No worker came since: what only the scheduler knows of is lost now, as at the end of the program.
        EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
#endif
    });
}

TEST_F(BaseAlgorithmTest, aGroupThatIsCancelledAroundAPolledRunDoesNotCancelIt)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        runFrame(algorithm, body);
        EXPECT_EQ(body.blocks, 8);
    };
    withThreads(2, [&] {
        tbb::task_group group;
        group.run_and_wait([&] {
            group.cancel();
            probe->run(&host);
        });
    });
    EXPECT_EQ(host.reports().back(), 100.0);
}

TEST_F(BaseAlgorithmTest, polledRunsEndOnOneThreadAndOnTwoWithoutAWordFromTheScheduler)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        runFrame(algorithm, body);
        EXPECT_EQ(body.blocks, 8);
    };
    auto const run = [&] {
        for (int i = 0; i < 5; ++i)
            probe->run(&host);
    };
    testing::internal::CaptureStderr();
    run();
    for (int const limit : {1, 2, 3}) {
        tbb::global_control const control(tbb::global_control::max_allowed_parallelism,
                                          static_cast<std::size_t>(limit));
        run();
        std::thread(run).join();
        for (int const size : {1, 2}) {
            tbb::task_arena arena(std::min(size, limit));
            arena.execute(run);
        }
    }
    {
        // An arena that was made when more was allowed.
        tbb::global_control const wide(tbb::global_control::max_allowed_parallelism, 6);
        tbb::task_arena arena(6);
        arena.execute([&] {
            tbb::global_control const narrow(tbb::global_control::max_allowed_parallelism, 2);
            run();
        });
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(host.reports().back(), 100.0);
}

TEST_F(BaseAlgorithmTest, polledRunsOnEveryThreadOfTheSchedulerEnd)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        runFrame(algorithm, body);
        EXPECT_EQ(body.blocks, 8);
    };
    onOneAndFourThreads([&] {
        std::atomic<int> ended{0};
        tbb::parallel_for(0, 4, [&](int) {
            Ref<ProbeAlgorithm> const own(ProbeAlgorithm::New());
            memory::InMemoryImage target = toImage(Picture<unsigned char>({7, 8}));
            Host itsHost;
            own->input = &input;
            own->output = &target;
            own->run(&itsHost);
            EXPECT_EQ(itsHost.reports().back(), 100.0);
            ++ended;
        });
        EXPECT_EQ(ended, 4);
    });
}

TEST_F(BaseAlgorithmTest, callbacksOfTheHostMayThrow)
{
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        RowBody body;
        body.onBlock = [](auto const&) { std::this_thread::sleep_for(15ms); };
        runFrame(algorithm, body);
    };
    std::string const foreign = "Unexpected error :\n#1 Error : host failure ProbeAlgorithm \n";
    std::string const own = "Runtime error :\n#1 Error : no window \n#2 From ProbeAlgorithm \n";

    Host progress;
    progress.onProgress = [](double) { throw HostFailure(); };
    EXPECT_QEL_WHAT(probe->run(&progress), UnexpectedError, foreign);
    expectIdle();

    Host question;
    question.onQuestion = []() -> bool { QEL_THROW(RuntimeError, "no window"); };
    EXPECT_QEL_WHAT(probe->run(&question), RuntimeError, own);
    expectIdle();

    Host period;
    period.onPeriod = [] { throw 1; };
    EXPECT_QEL_WHAT(probe->run(&period), UnexpectedError,
                    "Unexpected error :\n#1 Error : undefined exception ProbeAlgorithm \n");
    expectIdle();

    Host last;
    last.progressPeriod = 100;
    last.onProgress = [](double percent) {
        if (percent == 100.0)
            throw HostFailure();
    };
    EXPECT_QEL_WHAT(probe->run(&last), UnexpectedError, foreign);
    expectRunnable();
}

TEST_F(BaseAlgorithmTest, aRuleFailureInAPolledRunStartsNothing)
{
    int asked = 0;
    host.onPeriod = [&] { ++asked; };
    probe->input = nullptr;
    EXPECT_THROW(probe->run(&host), RuleException);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(ProbeAlgorithm::questions, 0);
    EXPECT_TRUE(host.questions().empty());
}

// ---- many threads

TEST_F(BaseAlgorithmTest, progressAndCancellationComeFromAnyThreadAtAnyTime)
{
    Ref<ChainAlgorithm> const chain(ChainAlgorithm::New());
    chain->input = &input;
    ProbeAlgorithm::work = [&](ProbeAlgorithm& algorithm, OptimLevelType) {
        storeResult<ImageModel*>(algorithm.output, &output);
        RowBody body;
        runFrame(algorithm, body);
    };
    std::atomic<bool> isOver{false};
    std::atomic<unsigned long> looks{0};
    std::thread watcher([&] {
        while (!isOver) {
            double const progress = chain->getProgress();
            EXPECT_GE(progress, 0.0);
            EXPECT_LE(progress, 100.0);
            static_cast<void>(chain->isExecutionCancelled());
            static_cast<void>(chain->running());
            if (++looks % 64 == 0)
                chain->cancelExecution();
        }
    });
    for (int i = 0; i < 300; ++i)
        ASSERT_NO_THROW(chain->run());
    EXPECT_TRUE(waitUntil([&] { return looks > 64; }));
    isOver = true;
    watcher.join();
    ChainAlgorithm::finished = 0;
    chain->run();
    EXPECT_EQ(ChainAlgorithm::finished, 4);
    EXPECT_EQ(chain->getProgress(), 100.0);
}

TEST_F(BaseAlgorithmTest, ofRunsFromManyThreadsOneRunsAtATime)
{
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::atomic<int> runs{0};
    ProbeAlgorithm::work = [&](ProbeAlgorithm&, OptimLevelType) {
        most = std::max(most.load(), ++inside);
        ++runs;
        std::this_thread::sleep_for(1ms);
        --inside;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int k = 0; k < 20; ++k)
                probe->run();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(most, 1);
    EXPECT_GE(runs, 20);
    EXPECT_LE(runs, 80);
    expectRunnable();
}

} // namespace
} // namespace qel::test
