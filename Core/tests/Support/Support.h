#pragma once

// All of the test support.
#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/HostImage.h"
#include "Core/tests/Support/Images.h"
#include "Core/tests/Support/Picture.h"
#include "Core/tests/Support/RandomPicture.h"
#include "Core/tests/Support/SamePicture.h"
#include "Core/tests/Support/TemporaryFolder.h"
#include "Core/tests/Support/Threads.h"
#include "Core/tests/Support/VoxelTypeLoop.h"
