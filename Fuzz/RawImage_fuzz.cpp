// Raw image files of any origin: loaded, or refused in words; and what was loaded survives a round trip.
#include "Fuzz/MemoryFile.h"
#include "Fuzz/Require.h"

#include <qel/Exception.h>
#include <qel/Ref.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/tools/LoadQelRawImage.h>
#include <qel/tools/SaveQelRawImage.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

using namespace qel;
using fuzz::MemoryFile;
using fuzz::require;

namespace {

bool load(MemoryFile const& file, memory::InMemoryImage& image)
{
    Ref<tools::LoadQelRawImage> algorithm(tools::LoadQelRawImage::New());
    algorithm->filePath = String(file.path());
    algorithm->output = &image;
    try {
        algorithm->run();
        return true;
    } catch (Exception const& error) {
        require(error.what().length() > 0, "a refusal has words");
        return false;
    }
}

void save(memory::InMemoryImage const& image, MemoryFile const& file)
{
    Ref<tools::SaveQelRawImage> algorithm(tools::SaveQelRawImage::New());
    algorithm->filePath = String(file.path());
    algorithm->input = &image;
    algorithm->overwrite = true;
    algorithm->run();
}

std::size_t bytesOf(ImageModel const& image)
{
    std::size_t bytes = helper::getSizeOf(image.getVoxelType());
    for (int axis = 0; axis < 5; ++axis)
        bytes *= image.getNumOf(static_cast<Components>(axis));
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static MemoryFile const file;
    static MemoryFile const copy;
    file.assign(data, size);
    memory::InMemoryImage image;
    if (!load(file, image)) {
        require(bytesOf(image) == 0, "a refused file leaves the image as it was");
        return 0;
    }
    require(bytesOf(image) <= size, "no more voxels than the file holds");

    save(image, copy);
    memory::InMemoryImage again;
    require(load(copy, again), "what was saved can be loaded");
    require(again.getVoxelType() == image.getVoxelType(), "the voxel type survives");
    require(again.getInterpretation() == image.getInterpretation(), "the interpretation survives");
    require(bytesOf(again) == bytesOf(image), "the sizes survive");
    require(bytesOf(image) == 0 ||
                std::memcmp(again.getInternalBuffer(), image.getInternalBuffer(), bytesOf(image)) == 0,
            "the voxels survive");
    return 0;
}
