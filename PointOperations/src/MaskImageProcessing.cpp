#include <qel/point_operations/MaskImageProcessing.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(MaskImageProcessing)

void MaskImageProcessing::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&inputBinary);
    declare(inputBinary, "inputBinary", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY_TYPE,
            AddRuleAssertDimensionImage(&input, COLUMNS, ROWS, PLANS), AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input));
}

AlgoBorderInfluence MaskImageProcessing::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::point_operations
