#pragma once

// All cursors that bodies use.
#include "Core/private/Access/IteratorHalfNeighborhood.h"
#include "Core/private/Access/IteratorNeighborhood.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Access/IteratorSeries.h"
