#pragma once

#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Runnable.h"
#include "Core/tests/Support/Support.h"

#include <qel/AlgoInfo.h>
#include <qel/BaseAlgorithm.h>
#include <qel/EnumInfo.h>
#include <qel/PropertyEnumeration.h>
#include <qel/Ref.h>
#include <qel/Scalar.h>
#include <qel/algorithms/InteractionInterface.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace qel::test {

/// Small shapes at which loops over voxels break: one voxel, one column, one row, no voxel along each axis, series.
inline std::vector<Shape> oddShapes()
{
    return {{1, 1},       {1, 7},          {7, 1},      {2, 2, 9},     {0, 3},           {3, 0},         {3, 2, 0},
            {3, 2, 2, 0}, {3, 2, 1, 1, 0}, {15, 3},     {16, 3},       {17, 3},          {31, 2},        {33, 2},
            {65, 3},      {1, 1, 1, 5},    {1, 13, 12}, {33, 5, 3, 2}, {33, 5, 3, 1, 2}, {9, 4, 2, 3, 2}};
}

/// Shapes around the sizes at which blocks are cut.
inline std::vector<Shape> seamShapes()
{
    return {{1023, 9}, {1024, 10}, {1025, 11}, {1025, 9, 2}, {1024, 11, 1, 2}, {67, 11, 21}, {2051, 23, 2}};
}

inline std::vector<Shape> allShapes()
{
    std::vector<Shape> shapes = oddShapes();
    for (Shape const& shape : seamShapes())
        shapes.push_back(shape);
    return shapes;
}

inline Shape firstSeries(Shape shape)
{
    shape.spectralSeries = 1;
    return shape;
}

/// Switches automatic dispatch off: any other runner than that of the level makes the run fail.
inline void forceLevel(BaseAlgorithm& algorithm, OptimLevelType level)
{
    algorithm.setAutoCpuDispatch(false);
    algorithm.setOptimLevel(level);
}

inline Runnable const* runnerOf(BaseAlgorithm& algorithm, OptimLevelType level)
{
    for (auto const& runner : AlgoInfoPrivate::getPrivate(algorithm.getInfo())->getAllRunner())
        if (runner->getOptimType() == level)
            return runner.get();
    return nullptr;
}

inline std::vector<OptimLevelType> levelsOf(BaseAlgorithm& algorithm)
{
    std::vector<OptimLevelType> levels;
    for (auto const& runner : AlgoInfoPrivate::getPrivate(algorithm.getInfo())->getAllRunner())
        levels.push_back(runner->getOptimType());
    std::sort(levels.begin(), levels.end());
    return levels;
}

/// "kind name = value".
inline std::string described(BaseProperty* property)
{
    std::ostringstream text;
    std::string const name = property->getName().c_str();
    auto const address = [](ImageModel const* image) { return image ? "an image" : "null"; };
    if (auto* const input = dynamic_cast<Property<ImageModel const*>*>(property))
        text << "const image " << name << " = " << address(input->get());
    else if (auto* const output = dynamic_cast<Property<ImageModel*>*>(property))
        text << "image " << name << " = " << address(output->get());
    else if (auto* const enumeration = dynamic_cast<PropertyEnumeration*>(property))
        text << enumeration->getEnumInfo()->getEnumName().c_str() << ' ' << name << " = "
             << enumeration->getEnumInfo()->getLabelFromValue(enumeration->get()).c_str();
    else if (auto* const real = dynamic_cast<Property<double>*>(property))
        text << "double " << name << " = " << real->get();
    else if (auto* const scalar = dynamic_cast<Property<Scalar>*>(property))
        text << "scalar of kind " << int(scalar->get().getType()) << ' ' << name << " = " << scalar->get().asDouble();
    else
        text << "unknown " << name;
    if (property->getDescription() != property->getName())
        text << " with another description";
    return text.str();
}

inline std::vector<std::string> describedInputs(BaseAlgorithm& algorithm)
{
    std::vector<std::string> all;
    for (unsigned long i = 0; i < algorithm.getNumOfInputProperties(); ++i)
        all.push_back(described(algorithm.getInputProperty(i)));
    return all;
}

inline std::vector<std::string> describedOutputs(BaseAlgorithm& algorithm)
{
    std::vector<std::string> all;
    for (unsigned long i = 0; i < algorithm.getNumOfOutputProperties(); ++i)
        all.push_back(described(algorithm.getOutputProperty(i)));
    return all;
}

inline testing::AssertionResult hasNoBorder(BaseAlgorithm& algorithm)
{
    AlgoBorderInfluence const influence = algorithm.getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        if (influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)) != 0)
            return testing::AssertionFailure() << "direction " << direction << " is not 0";
    return testing::AssertionSuccess();
}

inline testing::AssertionResult isAtRest(BaseAlgorithm& algorithm)
{
    if (algorithm.running())
        return testing::AssertionFailure() << "it is running";
    for (unsigned long i = 0; i < algorithm.getNumOfInputProperties(); ++i)
        if (algorithm.getInputProperty(i)->isLocked())
            return testing::AssertionFailure() << algorithm.getInputProperty(i)->getName().c_str() << " is locked";
    for (unsigned long i = 0; i < algorithm.getNumOfOutputProperties(); ++i)
        if (algorithm.getOutputProperty(i)->isLocked())
            return testing::AssertionFailure() << algorithm.getOutputProperty(i)->getName().c_str() << " is locked";
    return testing::AssertionSuccess();
}

/// The whole what() of a failed rule, of an error inside of the run, and of what is no exception of the library's.
inline std::string ruleText(std::string const& message, std::string const& property, std::string const& algorithm)
{
    return "Rule exception :\n#1 Error : " + message + " \n#2 From Rule error in property " + property + " \n#3 From " +
           algorithm + " \n";
}
inline std::string errorText(std::string const& message, std::string const& algorithm)
{
    return "Unexpected error :\n#1 Error : " + message + " \n#2 From " + algorithm + " \n";
}
inline std::string foreignErrorText(std::string const& message, std::string const& algorithm)
{
    return "Unexpected error :\n#1 Error : " + message + ' ' + algorithm + " \n";
}

inline std::string addressText(void const* address)
{
    std::ostringstream text;
    text << address;
    return text.str();
}

/// A host that polls, and asks for cancellation once it is told to.
class Poller final : public algorithms::InteractionInterface
{
public:
    void updateProgress(double percent) override
    {
        if (percent < last || percent > 100)
            isSteady = false;
        last = percent;
    }
    bool isCancelRequested() override
    {
        bool const answer = wantsToCancel;
        hasCancelled = hasCancelled || answer;
        return answer;
    }
    unsigned short getProgressPeriod() override { return 1; }
    unsigned short getCancelPeriod() override { return 1; }

    std::atomic<bool> wantsToCancel = false;
    std::atomic<bool> hasCancelled = false;
    double last = 0;
    bool isSteady = true; // progress never fell, nor passed 100
};

/// A HostImage that calls back when a row is read.
class ObservedImage : public HostImage
{
public:
    using HostImage::HostImage;

    bool readRowAt(unsigned long count, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (onRead)
            onRead();
        return HostImage::readRowAt(count, destination, column, row, plan, time, spectral);
    }

    std::function<void()> onRead;
};

using HostImages = std::vector<std::unique_ptr<HostImage>>;

/// Runs an algorithm on images that throw from each operation which it calls, early and late, and on images that refuse
/// rows or calibration. `connect(algorithm, images)` fills the empty list with fresh images, and sets them;
/// `isDone(images)` tells whether a whole run has gone over them.
template <class Algorithm, class Connect, class IsDone>
void expectFailingImagesAreReported(Connect const& connect, IsDone const& isDone)
{
    std::string const name = Algorithm::getClassInfo()->getName().c_str();
    Ref<Algorithm> algorithm = Algorithm::New();
    std::vector<std::vector<unsigned long>> calls;
    {
        HostImages images;
        connect(*algorithm, images);
        for (auto const& image : images)
            image->forgetCalls();
        algorithm->run();
        for (auto const& image : images) {
            calls.emplace_back();
            for (int operation = 0; operation < NUM_OF_OPERATIONS; ++operation)
                calls.back().push_back(image->callsOf(static_cast<Operation>(operation)));
        }
        EXPECT_TRUE(isDone(images));
    }

    auto const attempt = [&](std::size_t which, auto const& spoil, auto const& check) {
        HostImages images;
        connect(*algorithm, images);
        images[which]->forgetCalls();
        spoil(*images[which]);
        check();
        EXPECT_TRUE(isAtRest(*algorithm));
        images[which]->behave();
        algorithm->run();
        EXPECT_TRUE(isDone(images));
    };
    for (std::size_t which = 0; which < calls.size(); ++which)
        for (int number = 0; number < NUM_OF_OPERATIONS; ++number) {
            unsigned long const count = calls[which][static_cast<std::size_t>(number)];
            if (count == 0)
                continue;
            SCOPED_TRACE(testing::Message() << "image " << which << ", operation " << number);
            auto const operation = static_cast<Operation>(number);
            for (unsigned long const after : {0ul, count - 1})
                attempt(
                    which, [&](HostImage& image) { image.throwOn(operation, after); },
                    [&] {
                        EXPECT_QEL_WHAT(algorithm->run(), UnexpectedError, foreignErrorText("host failure", name));
                    });
            if (operation == READ_ROW || operation == WRITE_ROW) {
                std::string const call = operation == READ_ROW ? "readRowAt" : "writeRowAt";
                std::string const text = errorText("Error in " + call + " implementation, return value is false", name);
                for (unsigned long const after : {0ul, count - 1})
                    attempt(
                        which, [&](HostImage& image) { image.failOn(operation, after); },
                        [&] { EXPECT_QEL_WHAT(algorithm->run(), UnexpectedError, text); });
                Poller poller;
                attempt(
                    which, [&](HostImage& image) { image.failOn(operation); },
                    [&] { EXPECT_QEL_WHAT(algorithm->run(&poller), UnexpectedError, text); });
                attempt(
                    which, [&](HostImage& image) { image.throwOn(operation); },
                    [&] {
                        EXPECT_QEL_WHAT(algorithm->run(&poller), UnexpectedError,
                                        foreignErrorText("host failure", name));
                    });
            }
            if (operation == SET_SPACING || operation == SET_ORIGIN)
                attempt(
                    which, [&](HostImage& image) { image.failOn(operation); }, [&] { algorithm->run(); });
        }
}

/// Whether no thread but that of the host made another call than for rows.
inline testing::AssertionResult onlyRowsWereForeign(HostImage const& image)
{
    for (int number = 0; number < NUM_OF_OPERATIONS; ++number) {
        auto const operation = static_cast<Operation>(number);
        if (operation != READ_ROW && operation != WRITE_ROW && image.foreignCallsOf(operation) != 0)
            return testing::AssertionFailure() << "operation " << number << " was called by another thread";
    }
    return testing::AssertionSuccess();
}

} // namespace qel::test
