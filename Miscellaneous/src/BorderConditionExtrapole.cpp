#include <qel/miscellaneous/BorderConditionExtrapole.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::miscellaneous {

QEL_DEFINE_ALGORITHM(BorderConditionExtrapole)

void BorderConditionExtrapole::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addInput(&bctype);
    declare(bctype, "bctype", 0u);
    addInput(&value);
    declare(value, "value", 0.0);
    addInput(&zoomFactor);
    declare(zoomFactor, "zoomFactor", 0.0);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence BorderConditionExtrapole::getAlgoBorderInfluence() const
{
    // Without bound along columns and rows.
    return AlgoBorderInfluence(-1ul, -1ul, 0, 0, 0);
}

} // namespace qel::miscellaneous
