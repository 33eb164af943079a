#include <qel/analysis/IntensityExtrema.h>

#include "Core/private/DefineAlgorithm.h"

namespace qel::analysis {

QEL_DEFINE_ALGORITHM(IntensityExtrema)

void IntensityExtrema::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addOutput(&outputMinimum);
    declare(outputMinimum, "outputMinimum", Scalar());
    addOutput(&outputMaximum);
    declare(outputMaximum, "outputMaximum", Scalar());
}

AlgoBorderInfluence IntensityExtrema::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::analysis
