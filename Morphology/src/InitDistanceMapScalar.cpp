#include "Morphology/private/InitDistanceMapScalar.h"

namespace qel::morphology {

HalfSteps::HalfSteps(Lattice const& lattice)
{
    for (int k = 0; k < 27; ++k) {
        step[k][0] = 0.5 * (k % 3 - 1) * lattice.spacing[0];
        step[k][1] = 0.5 * (k % 9 / 3 - 1) * lattice.spacing[1];
        // Plans count by the spacing of rows here: a promise of the published values.
        step[k][2] = 0.5 * (k / 9 - 1) * lattice.spacing[1];
        length[k] =
            static_cast<float>(std::sqrt(step[k][0] * step[k][0] + step[k][1] * step[k][1] + step[k][2] * step[k][2]));
    }
}

void markInterior(unsigned char const* const (&rows)[9], std::size_t voxels, unsigned char* __restrict columns,
                  unsigned char* __restrict interior)
{
    for (std::size_t x = 0; x < voxels + 2; ++x)
        columns[x] = rows[0][x] & rows[1][x] & rows[2][x] & rows[3][x] & rows[4][x] & rows[5][x] & rows[6][x] &
                     rows[7][x] & rows[8][x];
    for (std::size_t x = 0; x < voxels; ++x)
        interior[x] = columns[x] & columns[x + 1] & columns[x + 2];
}

} // namespace qel::morphology
