#include "Filtering/private/BoxFilterDispatch.h"

#include "Core/private/PartitionerInfoFixed.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <boost/make_shared.hpp>
#include <tbb/task_arena.h>

#include <algorithm>
#include <bit>

namespace qel::filtering::smoothing {

namespace {

/// So many pieces that what each begins with is an eighth of its work; but one for each thread, and no more than four.
unsigned long grainFor(unsigned long size, unsigned long side)
{
    auto const threads = static_cast<unsigned long>(std::max(tbb::this_task_arena::max_concurrency(), 1));
    // Blocks are halved: a power of two of them are all alike.
    unsigned long const pieces =
        std::min(std::bit_ceil(threads) * 4, std::max(std::bit_ceil(threads), std::bit_floor(size / side / 8)));
    return std::max((size + pieces - 1) / pieces, 1ul);
}

} // namespace

void checkSides(std::initializer_list<unsigned int> sides)
{
    if (std::find(sides.begin(), sides.end(), 0u) != sides.end())
        QEL_THROW(InvalidCall, "The box size must be at least 1 on each axis.");
}

boost::shared_ptr<AbstractPartitionerPolicy> partitionFor(ImageModel const& image, unsigned long boxRows, Filter2dTag)
{
    return boost::make_shared<PartitionerInfoFixed>(2048, grainFor(image.getNumOf(ROWS), boxRows), 1);
}

boost::shared_ptr<AbstractPartitionerPolicy> partitionFor(ImageModel const& image, unsigned long boxRows, Filter3dTag)
{
    // What is kept are whole plans of a block.
    unsigned long const columns = 512;
    unsigned long const rows = 65536 / std::clamp(image.getNumOf(COLUMNS), 1ul, columns);
    return boost::make_shared<PartitionerInfoFixed>(columns, std::min(rows, grainFor(image.getNumOf(ROWS), boxRows)),
                                                    image.getNumOf(PLANS));
}

} // namespace qel::filtering::smoothing
