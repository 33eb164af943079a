#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"

#include <qel/geometry/SphereSampling.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numbers>

namespace qel::geometry {

namespace {

#include "Geometry/tables/SphereTables.inc"

// The sizes of the sets, which follow each other in the tables.
constexpr std::uint64_t samplesNumber[] = {
    1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,  13,   14,   15,   16,   17,  18, 19, 20,
    21,  22,  23,  24,  25,  26,  27,  28,  29,  30,  31,  32,  33,   34,   35,   36,   37,  38, 39, 40,
    41,  42,  43,  44,  45,  46,  47,  48,  49,  50,  51,  52,  53,   54,   55,   56,   57,  58, 59, 60,
    61,  62,  63,  64,  65,  66,  67,  68,  69,  70,  71,  72,  73,   74,   75,   76,   77,  78, 79, 80,
    81,  82,  83,  84,  85,  86,  87,  88,  89,  90,  91,  92,  93,   94,   95,   96,   97,  98, 99, 100,
    150, 200, 250, 300, 350, 400, 450, 500, 600, 700, 800, 900, 1000, 1500, 2000, 2500, 3000};

constexpr std::size_t sumOfSizes()
{
    std::size_t sum = 0;
    for (std::uint64_t size : samplesNumber)
        sum += size;
    return sum;
}
static_assert(std::size(phiVec) == sumOfSizes() && std::size(thetaVec) == sumOfSizes());

class ScalarSphereSamplingRunner : public ScalarRunner<SphereSampling>
{
    void runOn(SphereSampling& sampling) const override
    {
        bool const wholeSphere = sampling.samplingMode == SPHERE;
        std::uint64_t const wanted = wholeSphere ? sampling.nbDesiredSamples >> 1U : sampling.nbDesiredSamples;
        std::size_t set = 0;
        std::size_t offset = 0;
        for (; samplesNumber[set] < wanted && set + 1 < std::size(samplesNumber); ++set)
            offset += samplesNumber[set];
        std::size_t const end = offset + samplesNumber[set];

        container::Vector<math::Vector2<double>>& directions = *sampling.directionSamplesVec;
        directions.clear();
        directions.reserve((wholeSphere ? 2 : 1) * samplesNumber[set]);
        for (std::size_t i = offset; i < end; ++i) {
            double const pi = std::numbers::pi;
            double const phi = phiVec[i];
            double const theta = thetaVec[i];
            directions.push_back({phi, theta});
            if (wholeSphere)
                directions.push_back({pi - phi, theta > 0 ? theta - pi : theta + pi});
        }
    }
};

} // namespace

QEL_REGISTER_RUNNER(SphereSampling, ScalarSphereSamplingRunner)

} // namespace qel::geometry
