#include <qel/Library.h>

#include "Core/private/CpuPrivate.h"
#include "Core/private/Library.h"

#include <Eigen/Core>

namespace qel {

void init_library()
{
    devices::CpuPrivate::initClass();
    // All parallelism comes from the frames: the matrix library keeps to the thread that calls it.
    Eigen::initParallel();
    Eigen::setNbThreads(1);
}

void terminate_library() { devices::CpuPrivate::exitClass(); }

namespace {
[[gnu::constructor]] void atLoad() { init_library(); }
[[gnu::destructor]] void atUnload() { terminate_library(); }
} // namespace

} // namespace qel

bool QuelideLoadLibrary(void*)
{
    qel::init_library();
    return true;
}

void QuelideUnloadLibrary() { qel::terminate_library(); }
