#pragma once

#include <qel/Property.h>
#include <qel/morphology/MorphologicalLut3D.h>

namespace qel::morphology {

/// A property that points to a MorphologicalLut3D, its own or one of the host's.
///
/// `read` takes "@path:" and the path of a file of exactly 16777220 bytes: 4 bytes that are passed over, then
/// 4194304 words of 32 bits in the table's layout, lowest byte first. The table that it makes belongs to the property
/// and lives until the next one is read, destroyPrivateAllocation is called or the property ends. A table that is
/// assigned stays the caller's.
class QEL_API PropertyMorphologicalLut3D : public Property<MorphologicalLut3D*>
{
public:
    PropertyMorphologicalLut3D();
    ~PropertyMorphologicalLut3D() override;

    PropertyMorphologicalLut3D& operator=(MorphologicalLut3D* value);
    /// Copies the pointer: a table that `other` has read stays the other's.
    PropertyMorphologicalLut3D& operator=(PropertyMorphologicalLut3D const& other);

    /// Gives false, and leaves the value alone, where the text does not begin with "@path:" or the file cannot be read;
    /// then `error` tells why.
    bool read(String const& text, String& error) override;

    /// Frees the table that was read; a value that points to it becomes null. Does nothing while the property is
    /// locked.
    void destroyPrivateAllocation();

private:
    MorphologicalLut3D* m_own;
};

} // namespace qel::morphology
