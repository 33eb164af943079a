#pragma once

#include <qel/Property.h>

namespace qel {

class ImageModel;

/// The image property that a rule compares with. It may be of either kind: of the two pointers one is null.
class ImageReference
{
public:
    ImageReference(Property<ImageModel const*> const* property);
    ImageReference(Property<ImageModel*> const* property);

    /// False where the reference was made from a null pointer; nothing else may be asked then.
    bool isSet() const;
    ImageModel const* getImage() const;
    String getName() const;

private:
    Property<ImageModel const*> const* input_ = nullptr;
    Property<ImageModel*> const* output_ = nullptr;
};

} // namespace qel
