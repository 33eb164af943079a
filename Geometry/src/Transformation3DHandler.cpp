#include <qel/geometry/Transformation3DHandler.h>

#include "Core/private/Property.impl.h"
#include "Geometry/private/TransformationSlot.h"

#include <qel/geometry/Transformation3D.h>

#include <utility>

namespace qel::geometry {

class Transformation3DHandlerPrivate : public TransformationSlot<Transformation3D>
{};

Transformation3DHandler::Transformation3DHandler()
    : m_private(new Transformation3DHandlerPrivate)
{}

Transformation3DHandler::Transformation3DHandler(Transformation3DHandler const& other)
    : m_private(other.m_private)
{
    m_private->addHandler();
}

Transformation3DHandler& Transformation3DHandler::operator=(Transformation3DHandler const& other)
{
    Transformation3DHandler copy(other);
    std::swap(m_private, copy.m_private);
    return *this;
}

Transformation3DHandler::~Transformation3DHandler()
{
    if (m_private->removeHandler())
        delete m_private;
}

Transformation3D* Transformation3DHandler::get() const { return m_private->get(); }

void Transformation3DHandler::set(Transformation3D* transformation) { m_private->set(transformation); }

void Transformation3DHandler::reset() { m_private->set(nullptr); }

Transformation3D* Transformation3DHandler::takeOwnership() { return m_private->takeOwnership(); }

} // namespace qel::geometry

template class QEL_API qel::Property<qel::geometry::Transformation3DHandler*>;
