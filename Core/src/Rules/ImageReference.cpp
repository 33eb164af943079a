#include "Core/private/Rules/ImageReference.h"

namespace qel {

ImageReference::ImageReference(Property<ImageModel const*> const* property)
    : input_(property)
{}
ImageReference::ImageReference(Property<ImageModel*> const* property)
    : output_(property)
{}

bool ImageReference::isSet() const { return input_ || output_; }
ImageModel const* ImageReference::getImage() const { return input_ ? input_->get() : output_->get(); }
String ImageReference::getName() const { return input_ ? input_->getName() : output_->getName(); }

} // namespace qel
