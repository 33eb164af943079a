#include <qel/BaseProperty.h>

namespace qel {

BaseProperty::BaseProperty()
    : m_locked(false)
{}
BaseProperty::~BaseProperty() = default;

void BaseProperty::lock(bool locked) { m_locked = locked; }
bool BaseProperty::isLocked() const { return m_locked; }

} // namespace qel
