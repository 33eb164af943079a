#pragma once

namespace qel {

/// Plan by plan, or whole volumes.
struct Filter2dTag
{};
struct Filter3dTag
{};

/// Whether a body accumulates a result over the blocks.
struct FilterWithReductionTag
{};
struct FilterWithoutReductionTag
{};

} // namespace qel
