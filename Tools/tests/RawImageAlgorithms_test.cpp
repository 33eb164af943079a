#include <qel/tools/LoadQelRawImage.h>
#include <qel/tools/SaveQelRawImage.h>

#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Runnable.h"
#include "Core/tests/Support/Support.h"

#include <qel/Ref.h>

#include <string>

namespace qel::test {
namespace {

using tools::LoadQelRawImage;
using tools::SaveQelRawImage;

class RawImageAlgorithms : public testing::Test
{
protected:
    std::string quoted() const { return '"' + path + '"'; }

    TemporaryFolder folder;
    std::string path = folder / "image.qel";
    Ref<SaveQelRawImage> save = SaveQelRawImage::New();
    Ref<LoadQelRawImage> load = LoadQelRawImage::New();
};

TEST_F(RawImageAlgorithms, haveTheirPropertiesInOrder)
{
    ASSERT_EQ(save->getNumOfInputProperties(), 3u);
    EXPECT_EQ(save->getNumOfOutputProperties(), 0u);
    EXPECT_EQ(save->getInputProperty(0), &save->input);
    EXPECT_EQ(save->getInputProperty(1), &save->filePath);
    EXPECT_EQ(save->getInputProperty(2), &save->overwrite);
    EXPECT_EQ(save->input.get(), nullptr);
    EXPECT_EQ(save->filePath.get(), String(""));
    EXPECT_FALSE(save->overwrite.get());
    ASSERT_EQ(load->getNumOfInputProperties(), 1u);
    ASSERT_EQ(load->getNumOfOutputProperties(), 1u);
    EXPECT_EQ(load->getInputProperty(0), &load->filePath);
    EXPECT_EQ(load->getOutputProperty(0), &load->output);
    EXPECT_EQ(load->filePath.get(), String(""));
    EXPECT_EQ(load->output.get(), nullptr);
    for (char const* const name : {"input", "filePath", "overwrite"}) {
        ASSERT_NE(save->getPropertyfromName(name), nullptr);
        EXPECT_EQ(save->getPropertyfromName(name)->getName(), String(name));
        EXPECT_EQ(save->getPropertyfromName(name)->getDescription(), String(name));
    }
    EXPECT_EQ(load->getPropertyfromName("filePath"), &load->filePath);
    EXPECT_EQ(load->getPropertyfromName("output"), &load->output);
}

TEST_F(RawImageAlgorithms, haveOneScalarRunnerAndNoBorder)
{
    for (BaseAlgorithm* const algorithm :
         {static_cast<BaseAlgorithm*>(save.get()), static_cast<BaseAlgorithm*>(load.get())}) {
        auto const& runners = AlgoInfoPrivate::getPrivate(algorithm->getInfo())->getAllRunner();
        ASSERT_EQ(runners.size(), 1u);
        EXPECT_EQ(runners[0]->getOptimType(), SCALAR);
        EXPECT_TRUE(runners[0]->isRunnable(algorithm));
        for (int direction = 0; direction < 10; ++direction)
            EXPECT_EQ(algorithm->getAlgoBorderInfluence().getNumOfVoxels(DirectionTypes(direction)), 0u);
    }
}

TEST_F(RawImageAlgorithms, saveAndLoadEveryVoxelType)
{
    save->filePath = String(path.c_str());
    save->overwrite = true;
    load->filePath = String(path.c_str());
    forEachVoxelType([&]<class T>() {
        auto const picture = randomPicture<T>(Shape{33, 5, 3, 2, 2}, 53, true);
        HostImage const image(picture);
        memory::InMemoryImage back;
        save->input = &image;
        load->output = &back;
        save->run();
        load->run();
        EXPECT_TRUE(samePicture(picture, back));
        EXPECT_EQ(save->getProgress(), 0.0);
        EXPECT_EQ(load->getProgress(), 0.0);
    });
}

TEST_F(RawImageAlgorithms, runByNameAlone)
{
    memory::InMemoryImage image = toImage(Picture<short>(Shape{3, 2}, -5));
    memory::InMemoryImage back;
    Ref<BaseAlgorithm> const saving = AlgoInfo::fromName("SaveQelRawImage")->createInstance();
    Ref<BaseAlgorithm> const loading = AlgoInfo::fromName("LoadQelRawImage")->createInstance();
    dynamic_cast<Property<ImageModel const*>&>(*saving->getPropertyfromName("input")) = &image;
    dynamic_cast<Property<String>&>(*saving->getPropertyfromName("filePath")) = String(path.c_str());
    dynamic_cast<Property<String>&>(*loading->getPropertyfromName("filePath")) = String(path.c_str());
    dynamic_cast<Property<ImageModel*>&>(*loading->getPropertyfromName("output")) = &back;
    saving->run();
    loading->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{3, 2}, -5), back));
}

TEST_F(RawImageAlgorithms, refuseAMissingImage)
{
    save->filePath = String(path.c_str());
    EXPECT_QEL_WHAT(
        save->run(), RuleException,
        "Rule exception :\n#1 Error : The parameter \"input\" must be set. \n#2 From Rule error in property input \n"
        "#3 From SaveQelRawImage \n");
    EXPECT_QEL_WHAT(
        load->run(), RuleException,
        "Rule exception :\n#1 Error : The parameter \"output\" must be set. \n#2 From Rule error in property output \n"
        "#3 From LoadQelRawImage \n");
}

TEST_F(RawImageAlgorithms, nameThemselvesInAFailureAndRunAgain)
{
    auto const picture = randomPicture<float>(Shape{4, 3}, 59);
    HostImage image(picture);
    save->input = &image;
    save->filePath = String((folder / "no/image").c_str());
    EXPECT_QEL_WHAT(save->run(), RuntimeError,
                    "Runtime error :\n#1 Error : Cannot create or open the file " + (folder / "no/image") +
                        " \n#2 From SaveQelRawImage \n");
    EXPECT_FALSE(save->running());
    EXPECT_FALSE(save->filePath.isLocked());
    save->filePath = String(path.c_str());
    image.failOn(READ_ROW);
    EXPECT_QEL_WHAT(save->run(), RuntimeError,
                    "Runtime error :\n#1 Error : Unable to read the input image \n#2 From SaveQelRawImage \n");
    image.behave();
    EXPECT_QEL_WHAT(save->run(), RuntimeError,
                    "Runtime error :\n#1 Error : File exist: <" + quoted() +
                        ">. Set the overwrite parameter to true. \n#2 From SaveQelRawImage \n");
    save->overwrite = true;
    image.throwOn(READ_ROW);
    EXPECT_QEL_WHAT(save->run(), UnexpectedError, "Unexpected error :\n#1 Error : host failure SaveQelRawImage \n");
    image.behave();
    save->run();

    HostImage back;
    load->output = &back;
    load->filePath = String((folder / "none").c_str());
    EXPECT_QEL_WHAT(load->run(), RuntimeError,
                    "Runtime error :\n#1 Error : Cannot read the file: " + (folder / "none") +
                        ".\t System error: No such file or directory \n#2 From LoadQelRawImage \n");
    EXPECT_FALSE(load->output.isLocked());
    load->filePath = String(path.c_str());
    back.failOn(RESERVE);
    EXPECT_QEL_WHAT(load->run(), RuntimeError,
                    "Runtime error :\n#1 Error : Cannot allocate a memory image for the image " + path +
                        " \n#2 From LoadQelRawImage \n");
    back.behave().throwOn(WRITE_ROW);
    EXPECT_QEL_WHAT(load->run(), UnexpectedError, "Unexpected error :\n#1 Error : host failure LoadQelRawImage \n");
    back.behave();
    load->run();
    EXPECT_TRUE(samePicture(picture, back));
}

} // namespace
} // namespace qel::test
