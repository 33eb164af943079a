#include <qel/helper/copySpatialCalibration.h>

#include <initializer_list>

#include <qel/ImageModel.h>

namespace qel {

void helper::copySpatialCalibration(ImageModel const* source, ImageModel* destination)
{
    for (Components const component : {COLUMNS, ROWS, PLANS})
        destination->setSpacingOf(component, source->getSpacingOf(component));
    for (Components const component : {COLUMNS, ROWS, PLANS})
        destination->setOriginOf(component, source->getOriginOf(component));
}

} // namespace qel
