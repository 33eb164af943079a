#pragma once

#include <qel/Export.h>

namespace qel::geometry {

class Transformation3D;
class Transformation3DHandlerPrivate;

/// Carries a transformation of space out of an algorithm.
///
/// A handler owns what it holds. Copies of a handler share one slot: what one of them sets, all of them hold, and it is
/// deleted with the last of them.
class QEL_API Transformation3DHandler
{
public:
    /// Holds nothing.
    Transformation3DHandler();
    Transformation3DHandler(Transformation3DHandler const& other);
    Transformation3DHandler& operator=(Transformation3DHandler const& other);
    ~Transformation3DHandler();

    /// What it holds; null where that is nothing. The handler keeps it.
    Transformation3D* get() const;
    /// Deletes what it held, and takes another over.
    void set(Transformation3D* transformation);
    /// Deletes what it held.
    void reset();
    /// Deletes what it held, and returns the address that it had: only to be compared with null.
    Transformation3D* takeOwnership();

private:
    Transformation3DHandlerPrivate* m_private;
};

} // namespace qel::geometry
