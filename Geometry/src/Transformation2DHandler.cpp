#include <qel/geometry/Transformation2DHandler.h>

#include "Core/private/Property.impl.h"
#include "Geometry/private/TransformationSlot.h"

#include <qel/geometry/Transformation2D.h>

#include <utility>

namespace qel::geometry {

class Transformation2DHandlerPrivate : public TransformationSlot<Transformation2D>
{};

Transformation2DHandler::Transformation2DHandler()
    : m_private(new Transformation2DHandlerPrivate)
{}

Transformation2DHandler::Transformation2DHandler(Transformation2DHandler const& other)
    : m_private(other.m_private)
{
    m_private->addHandler();
}

Transformation2DHandler& Transformation2DHandler::operator=(Transformation2DHandler const& other)
{
    Transformation2DHandler copy(other);
    std::swap(m_private, copy.m_private);
    return *this;
}

Transformation2DHandler::~Transformation2DHandler()
{
    if (m_private->removeHandler())
        delete m_private;
}

Transformation2D* Transformation2DHandler::get() const { return m_private->get(); }

void Transformation2DHandler::set(Transformation2D* transformation) { m_private->set(transformation); }

void Transformation2DHandler::reset() { m_private->set(nullptr); }

Transformation2D* Transformation2DHandler::takeOwnership() { return m_private->takeOwnership(); }

} // namespace qel::geometry

template class QEL_API qel::Property<qel::geometry::Transformation2DHandler*>;
