#pragma once

#include <qel/Property.h>
#include <qel/morphology/MorphologicalLut2D.h>

namespace qel::morphology {

/// A property that points to a MorphologicalLut2D, its own or one of the host's.
///
/// `read` takes "@path:" and the path of a file of exactly 516 bytes: 4 bytes that are passed over, then
/// 512 bytes, one for each pattern. The table that it makes belongs to the property and lives
/// until the next one is read, destroyPrivateAllocation is called or the property ends. A table that is assigned stays
/// the caller's.
class QEL_API PropertyMorphologicalLut2D : public Property<MorphologicalLut2D*>
{
public:
    PropertyMorphologicalLut2D();
    ~PropertyMorphologicalLut2D() override;

    PropertyMorphologicalLut2D& operator=(MorphologicalLut2D* value);
    /// Copies the pointer: a table that `other` has read stays the other's.
    PropertyMorphologicalLut2D& operator=(PropertyMorphologicalLut2D const& other);

    /// Gives false, and leaves the value alone, where the text does not begin with "@path:" or the file cannot be read;
    /// then `error` tells why.
    bool read(String const& text, String& error) override;

    /// Frees the table that was read; a value that points to it becomes null. Does nothing while the property is
    /// locked.
    void destroyPrivateAllocation();

private:
    MorphologicalLut2D* m_own;
};

} // namespace qel::morphology
