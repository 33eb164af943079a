#include "Errors.h"
#include "PictureFile.h"

#include <filesystem>

#include <dlfcn.h>

namespace host {

namespace {

namespace fs = std::filesystem;

PictureFunctions const& load()
{
    // Beside the program in a build tree, at a fixed place from it in an installed tree.
    fs::path const folder = fs::read_symlink("/proc/self/exe").parent_path();
    fs::path module = folder / QUELIDE_PICTURES;
    if (!fs::exists(module))
        module = folder / QUELIDE_MODULE_FOLDER / QUELIDE_PICTURES;
    void* const handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const symbol = handle ? dlsym(handle, "quelidePictureFunctions") : nullptr;
    if (!symbol)
        throw HostError(std::string("cannot load the module for image files: ") + dlerror());
    return *reinterpret_cast<PictureFunctions const* (*)()>(symbol)();
}

} // namespace

PictureFunctions const& pictures()
{
    static PictureFunctions const& functions = load();
    return functions;
}

} // namespace host
