#pragma once

#include <qel/Export.h>

namespace qel::geometry {

class Transformation2D;
class Transformation2DHandlerPrivate;

/// Carries a transformation of the plane out of an algorithm.
///
/// A handler owns what it holds. Copies of a handler share one slot: what one of them sets, all of them hold, and it is
/// deleted with the last of them.
class QEL_API Transformation2DHandler
{
public:
    /// Holds nothing.
    Transformation2DHandler();
    Transformation2DHandler(Transformation2DHandler const& other);
    Transformation2DHandler& operator=(Transformation2DHandler const& other);
    ~Transformation2DHandler();

    /// What it holds; null where that is nothing. The handler keeps it.
    Transformation2D* get() const;
    /// Deletes what it held, and takes another over.
    void set(Transformation2D* transformation);
    /// Deletes what it held.
    void reset();
    /// Deletes what it held, and returns the address that it had: only to be compared with null.
    Transformation2D* takeOwnership();

private:
    Transformation2DHandlerPrivate* m_private;
};

} // namespace qel::geometry
