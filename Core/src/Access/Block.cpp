#include <qel/access/Block.h>

namespace qel::access {

Block::~Block() = default;

} // namespace qel::access
