// What the algorithms of the registry, all of them, ask of a host's images. An algorithm that comes later is tested
// here too, as soon as it runs with its defaults on one of the kinds of images below.
#include "Core/tests/Support/Algorithms.h"

#include <qel/Exception.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>

namespace qel::test {
namespace {

/// The first reads take a while, so that other threads find work left.
class SlowImage final : public HostImage
{
public:
    using HostImage::HostImage;

    bool readRowAt(unsigned long count, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        if (callsOf(READ_ROW) < 50)
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        return HostImage::readRowAt(count, destination, column, row, plan, time, spectral);
    }
};

struct Kind
{
    VoxelTypes type;
    Interpretations interpretation;
    unsigned long plans;
};
constexpr Kind kinds[] = {{QEL_UINT8, QEL_VALUE, 1}, {QEL_UINT8, QEL_BINARY, 2}, {QEL_FLOAT32, QEL_VALUE, 2}};

using Images = std::vector<std::unique_ptr<SlowImage>>;

/// Gives each image property an image of its own. Where the name tells of a binary image, it is one.
template <class T> void connectImage(BaseProperty* property, Kind const& kind, unsigned long rows, Images& images)
{
    auto* const image = dynamic_cast<Property<T>*>(property);
    if (!image)
        return;
    images.push_back(std::make_unique<SlowImage>(kind.type, Shape{8, rows, kind.plans}));
    bool const isBinary = std::string(property->getName().c_str()).find("inary") != std::string::npos;
    images.back()->setInterpretation(isBinary ? QEL_BINARY : kind.interpretation);
    *image = images.back().get();
}

/// The images after a run with all defaults; none where it takes more than defaults, or other images.
std::optional<Images> imagesAfterRun(AlgoInfo& info, Kind const& kind, unsigned long rows)
{
    Ref<BaseAlgorithm> algorithm = info.createInstance();
    Images images;
    for (unsigned long i = 0; i < algorithm->getNumOfInputProperties(); ++i) {
        connectImage<ImageModel const*>(algorithm->getInputProperty(i), kind, rows, images);
        connectImage<ImageModel*>(algorithm->getInputProperty(i), kind, rows, images);
    }
    for (unsigned long i = 0; i < algorithm->getNumOfOutputProperties(); ++i)
        connectImage<ImageModel*>(algorithm->getOutputProperty(i), kind, rows, images);
    if (images.empty())
        return std::nullopt;
    for (auto const& image : images)
        image->forgetCalls();
    try {
        algorithm->run();
    } catch (Exception const&) {
        return std::nullopt;
    }
    return images;
}

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
            auto const images = imagesAfterRun(info, kind, 240);
            if (!images)
                return;
            for (auto const& image : *images) {
                EXPECT_TRUE(onlyRowsWereForeign(*image));
                if (image->foreignCallsOf(READ_ROW) > 0)
                    tested.insert(info.getName().c_str());
            }
        });
    });
    for (char const* name : {"CopyImage", "BoxFilter2D", "BoxFilter3D", "IntensityStatistics", "Threshold", "Labeling"})
        EXPECT_EQ(tested.count(name), 1u) << name << " was not run by several threads";
}

TEST(HostCallsTest, sizesAreAskedForOnceWhateverTheNumberOfRows)
{
    std::set<std::string> tested;
    forEachAlgorithm([&](AlgoInfo& info, Kind const& kind) {
        auto const few = imagesAfterRun(info, kind, 40);
        auto const many = imagesAfterRun(info, kind, 240);
        ASSERT_EQ(few.has_value(), many.has_value());
        if (!few)
            return;
        tested.insert(info.getName().c_str());
        for (std::size_t i = 0; i < few->size(); ++i)
            EXPECT_EQ(callsBesidesRows(*few->at(i)), callsBesidesRows(*many->at(i))) << "image " << i;
    });
    for (auto& x : tested)
        for (char const* name :
             {"CopyImage", "BoxFilter2D", "BoxFilter3D", "IntensityStatistics", "Threshold", "Labeling",
              "NonLocalMeanFilter2D", "Decimate2D", "GradientMagnitude3D", "BorderConditionExtrapole"})
            EXPECT_EQ(tested.count(name), 1u) << name << " did not run";
}

} // namespace
} // namespace qel::test
