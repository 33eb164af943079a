#include <qel/miscellaneous/Decimate2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Throw.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>
#include <qel/ImageModel.h>

namespace qel::miscellaneous {

QEL_DEFINE_ALGORITHM(Decimate2D)

namespace {

EnumInfo& decimationOpInfo()
{
    static EnumInfo info("DecimationOp", "MEAN = 0, MIN, MAX, FIRST");
    return info;
}

} // namespace

void Decimate2D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addInput(&operatorType);
    declareEnumeration(operatorType, "operatorType", MEAN, decimationOpInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence Decimate2D::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

void Decimate2D::applyAllRules()
{
    BaseAlgorithm::applyAllRules();
    ImageModel const& in = *input.get();
    ImageModel& out = *output.get();
    VoxelTypes const type = in.getVoxelType();
    auto const half = [](unsigned long size) { return size / 2 + size % 2; };
    unsigned long const sizes[] = {half(in.getNumOf(COLUMNS)), half(in.getNumOf(ROWS)), in.getNumOf(PLANS),
                                   in.getNumOf(TIME_SERIES), in.getNumOf(SPECTRAL_SERIES)};
    bool fits = out.getVoxelType() == type;
    for (Components const component : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES})
        fits = fits && out.getNumOf(component) == sizes[component];
    if (!fits && !out.reserve(type, sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]))
        QEL_THROW(RuleException, "The parameter \"" << output.getName() << "\" cannot be resized and retyped to fit \""
                                                    << input.getName() << "\".");
}

} // namespace qel::miscellaneous
