#include "Core/private/Rules/ImageShape.h"

#include "Core/private/ClassicText.h"

#include <qel/EnumInfo.h>
#include <qel/ImageModel.h>

namespace qel::rules {

namespace {
String labelOf(EnumInfo const& info, int value)
{
    return info.exists(value) ? info.getLabelFromValue(value, 0) : toText(value);
}
} // namespace

Sizes sizesOf(ImageModel const& image)
{
    Sizes sizes;
    for (Components const component : allComponents)
        sizes[component] = image.getNumOf(component);
    return sizes;
}

bool reserve(ImageModel& image, VoxelTypes type, Sizes const& sizes)
{
    return image.reserve(type, sizes[COLUMNS], sizes[ROWS], sizes[PLANS], sizes[TIME_SERIES], sizes[SPECTRAL_SERIES]);
}

bool haveSameCalibration(ImageModel const& a, ImageModel const& b)
{
    for (Components const component : allComponents)
        if (a.getSpacingOf(component) != b.getSpacingOf(component) ||
            a.getOriginOf(component) != b.getOriginOf(component))
            return false;
    return true;
}

void copyCalibration(ImageModel const& from, ImageModel& to)
{
    for (Components const component : allComponents) {
        double const spacing = from.getSpacingOf(component);
        if (to.getSpacingOf(component) != spacing)
            to.setSpacingOf(component, spacing);
        double const origin = from.getOriginOf(component);
        if (to.getOriginOf(component) != origin)
            to.setOriginOf(component, origin);
    }
}

String labelOf(VoxelTypes type) { return labelOf(helper::voxelTypesInfo(), type); }
String labelOf(Interpretations interpretation) { return labelOf(helper::interpretationsInfo(), interpretation); }

bool exists(VoxelTypes type) { return helper::voxelTypesInfo().exists(type); }
bool exists(Interpretations interpretation) { return helper::interpretationsInfo().exists(interpretation); }

} // namespace qel::rules
