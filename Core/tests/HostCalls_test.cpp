// What the algorithms of the registry, all of them, ask of a host's images, and what they do when these fail. An
// algorithm that comes later is tested here too, as soon as it runs with its defaults on one of the kinds of images
// below.
#include "Core/tests/Support/Algorithms.h"

#include <qel/Exception.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <thread>

namespace qel::test {
namespace {

/// Reads may wait for another thread to come: work would otherwise be done before one has woken up. Not for long, since
/// small images and some algorithms are work for one thread.
class PatientImage final : public HostImage
{
public:
    using HostImage::HostImage;

    bool readRowAt(unsigned long count, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        using Clock = std::chrono::steady_clock;
        if (waits.exchange(false))
            for (auto const end = Clock::now() + std::chrono::milliseconds(200);
                 foreignCallsOf(READ_ROW) == 0 && Clock::now() < end;)
                std::this_thread::sleep_for(std::chrono::microseconds(100));
        return HostImage::readRowAt(count, destination, column, row, plan, time, spectral);
    }

    mutable std::atomic<bool> waits = false;
};

struct Kind
{
    VoxelTypes type;
    Interpretations interpretation;
    unsigned long plans;
};
constexpr Kind kinds[] = {{QEL_UINT8, QEL_VALUE, 1}, {QEL_UINT8, QEL_BINARY, 2}, {QEL_FLOAT32, QEL_VALUE, 2}};

using Images = std::vector<std::unique_ptr<PatientImage>>;

/// Gives each image property an image of its own. Where the name tells of a binary image, it is one.
template <class T> void connectImage(BaseProperty* property, Kind const& kind, unsigned long rows, Images& images)
{
    auto* const image = dynamic_cast<Property<T>*>(property);
    if (!image)
        return;
    images.push_back(std::make_unique<PatientImage>(kind.type, Shape{8, rows, kind.plans}));
    bool const isBinary = std::string(property->getName().c_str()).find("inary") != std::string::npos;
    images.back()->setInterpretation(isBinary ? QEL_BINARY : kind.interpretation);
    *image = images.back().get();
}

/// An algorithm with all its defaults, and images of its own.
struct Job
{
    Job(AlgoInfo& info, Kind const& kind, unsigned long rows)
        : algorithm(info.createInstance())
    {
        for (unsigned long i = 0; i < algorithm->getNumOfInputProperties(); ++i) {
            connectImage<ImageModel const*>(algorithm->getInputProperty(i), kind, rows, images);
            connectImage<ImageModel*>(algorithm->getInputProperty(i), kind, rows, images);
        }
        for (unsigned long i = 0; i < algorithm->getNumOfOutputProperties(); ++i)
            connectImage<ImageModel*>(algorithm->getOutputProperty(i), kind, rows, images);
        for (auto const& image : images)
            image->forgetCalls();
    }
    /// False where it takes more than defaults, or other images.
    bool runs()
    {
        if (images.empty())
            return false;
        try {
            algorithm->run();
        } catch (Exception const&) {
            return false;
        }
        return true;
    }

    Ref<BaseAlgorithm> algorithm;
    Images images;
};

/// `check(info, kind)` for each registered class of the library, and each kind of images.
template <class Check> void forEachAlgorithm(Check const& check)
{
    for (unsigned long index = 0; index < AlgoInfo::getNumOfAlgorithms(); ++index) {
        AlgoInfo& info = *AlgoInfo::fromIndex(index);
        if (info.getLibName() != String("Quelide"))
            continue; // made by another test
        SCOPED_TRACE(info.getName().c_str());
        for (Kind const& kind : kinds)
            check(info, kind);
    }
}

constexpr bool isForRows(int operation)
{
    return operation == READ_ROW || operation == WRITE_ROW || operation == GET_ROW || operation == GET_CONST_ROW;
}

using Calls = std::array<unsigned long, NUM_OF_OPERATIONS>;

Calls callsBesidesRows(HostImage const& image)
{
    Calls calls{};
    for (int operation = 0; operation < NUM_OF_OPERATIONS; ++operation)
        if (!isForRows(operation))
            calls[static_cast<std::size_t>(operation)] = image.callsOf(static_cast<Operation>(operation));
    return calls;
}

TEST(HostCallsTest, otherThreadsCallImagesForRowsAlone)
{
    std::set<std::string> tested;
    forEachAlgorithm([&](AlgoInfo& info, Kind const& kind) {
        withThreads(4, [&] {
            Job job(info, kind, 240);
            for (auto const& image : job.images)
                image->waits = true;
            if (!job.runs())
                return;
            for (auto const& image : job.images) {
                EXPECT_TRUE(onlyRowsWereForeign(*image));
                if (image->foreignCallsOf(READ_ROW) > 0)
                    tested.insert(info.getName().c_str());
            }
        });
    });
    EXPECT_GE(tested.size(), 5u) << "hardly any algorithm was run by several threads";
}

TEST(HostCallsTest, sizesAreAskedForOnceWhateverTheNumberOfRows)
{
    std::set<std::string> tested;
    forEachAlgorithm([&](AlgoInfo& info, Kind const& kind) {
        Job few(info, kind, 40);
        Job many(info, kind, 240);
        bool const runs = few.runs();
        ASSERT_EQ(many.runs(), runs);
        if (!runs)
            return;
        tested.insert(info.getName().c_str());
        for (std::size_t i = 0; i < few.images.size(); ++i)
            EXPECT_EQ(callsBesidesRows(*few.images[i]), callsBesidesRows(*many.images[i])) << "image " << i;
    });
    for (char const* name : {"CopyImage", "BoxFilter2D", "BoxFilter3D", "IntensityStatistics", "Threshold", "Labeling",
                             "NonLocalMeanFilter2D", "Decimate2D", "GradientMagnitude3D", "BorderConditionExtrapole"})
        EXPECT_EQ(tested.count(name), 1u) << name << " did not run";
}

/// The message of the first level that a run ends with, or "" where it does not fail.
template <class Expected> std::string failureOfRun(BaseAlgorithm& algorithm)
{
    try {
        algorithm.run();
    } catch (Expected& error) {
        return error.getInfoLevel(0).message.c_str();
    }
    return "";
}

TEST(HostCallsTest, imagesThatFailLeaveEveryAlgorithmAtRestAndUsable)
{
    std::set<std::string> tested;
    forEachAlgorithm([&](AlgoInfo& info, Kind const& kind) {
        unsigned long const rows = 9;
        Job whole(info, kind, rows);
        if (!whole.runs())
            return;
        tested.insert(info.getName().c_str());
        for (std::size_t which = 0; which < whole.images.size(); ++which)
            for (int number = 0; number < NUM_OF_OPERATIONS; ++number) {
                auto const operation = static_cast<Operation>(number);
                unsigned long const calls = whole.images[which]->callsOf(operation);
                if (calls == 0)
                    continue;
                SCOPED_TRACE(testing::Message() << "image " << which << ", operation " << number);
                for (unsigned long const after : {0ul, calls - 1}) {
                    Job job(info, kind, rows);
                    job.images[which]->throwOn(operation, after);
                    EXPECT_EQ(failureOfRun<UnexpectedError>(*job.algorithm), "host failure");
                    EXPECT_TRUE(isAtRest(*job.algorithm));
                    job.images[which]->behave().forgetCalls();
                    EXPECT_EQ(failureOfRun<Exception>(*job.algorithm), "");

                    // Some operations may be refused; for rows that is the end of the run.
                    job.images[which]->forgetCalls();
                    job.images[which]->failOn(operation, after);
                    std::string const failure = failureOfRun<Exception>(*job.algorithm);
                    if (operation == READ_ROW || operation == WRITE_ROW) {
                        EXPECT_NE(failure, "");
                    }
                    EXPECT_TRUE(isAtRest(*job.algorithm));
                    job.images[which]->behave();
                    EXPECT_EQ(failureOfRun<Exception>(*job.algorithm), "");
                }
            }
    });
    for (char const* name : {"CopyImage", "BoxFilter3D", "IntensityStatistics", "NonLocalMeanFilter3D"})
        EXPECT_EQ(tested.count(name), 1u) << name << " did not run";
}

} // namespace
} // namespace qel::test
