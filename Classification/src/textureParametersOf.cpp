#include "Classification/private/textureParametersOf.h"

#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/classification/TextureClassificationModel.h>

namespace qel::classification {

using segmentation::details::TextureParameters;

TextureParameters textureParametersOf(TextureClassificationModelPrivate const& model)
{
    TextureParameters parameters;
    parameters.features = segmentation::details::featuresOf(model.measures);
    parameters.isVolume = model.computeMode == MODE_3D;
    parameters.directions = parameters.isVolume ? segmentation::details::directionsOf(model.directions3D)
                                                : segmentation::details::directionsOf(model.directions2D);
    parameters.radius = model.radius;
    parameters.cooccurrence = {model.minGreyLevelCooccurrence, model.maxGreyLevelCooccurrence,
                               model.binSizeCooccurrence};
    parameters.histogram = {model.minGreyLevelHistogram, model.maxGreyLevelHistogram, model.binSizeHistogram};
    parameters.quantileRatios = segmentation::details::quantileRatiosOf(model.userQuantileRatios);
    return parameters;
}

AlgoBorderInfluence borderInfluenceOf(TextureClassificationModel const* model)
{
    if (model == nullptr)
        return AlgoBorderInfluence(0, 0, 0, 0, 0);
    unsigned long const radius = model->getPrivate()->radius;
    return AlgoBorderInfluence(radius, radius, model->getPrivate()->computeMode == MODE_3D ? radius : 0, 0, 0);
}

void requireUsable(TextureClassificationModelPrivate const& model)
{
    if (!model.classifier)
        QEL_THROW(RuntimeError, "The classifier is invalid.");
    if (model.measures.empty())
        QEL_THROW(InvalidCall, "The measures group is empty.");
}

} // namespace qel::classification
