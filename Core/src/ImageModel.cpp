#include <qel/ImageModel.h>

namespace qel {

ImageModel::~ImageModel() = default;

} // namespace qel
