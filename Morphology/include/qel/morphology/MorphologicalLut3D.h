#pragma once

#include <qel/Export.h>
#include <qel/container/Vector.h>

namespace qel::morphology {

class MorphologicalLut3DPrivate;

/// Tells of each of the 2^27 patterns of a binary 3 x 3 x 3 neighbourhood whether it matches. At first none does.
///
/// A pattern is a number of 27 bits: bit k is the k-th voxel of the cube, columns first, then rows, then plans, each
/// from -1 to 1; so the centre is bit 13. The table takes 16 MiB: pattern p is bit p mod 32 of word p / 32.
class QEL_API MorphologicalLut3D
{
public:
    MorphologicalLut3D();
    MorphologicalLut3D(MorphologicalLut3D const& other);
    ~MorphologicalLut3D();

    MorphologicalLut3D& operator=(MorphologicalLut3D const& other);

    /// No pattern matches any more.
    void reset();
    /// Lets each pattern match that agrees with the kernel; what matched before still does. Entry k of the kernel
    /// stands for bit k: 0 or 1 asks for that value, anything else takes both.
    /// Throws InvalidCall where the kernel does not have 27 entries.
    void addKernel(container::Vector<unsigned char> kernel);
    /// Takes the whole table from an array of words in the table's own layout. Throws InvalidCall for null or any other
    /// size than 4194304.
    void buildFromLut(int const* lut, unsigned long size);

    bool operator==(MorphologicalLut3D const& other) const;
    bool operator!=(MorphologicalLut3D const& other) const;

    /// Inside of the library.
    MorphologicalLut3DPrivate const& getPrivate() const { return *m_private; }

private:
    MorphologicalLut3DPrivate* m_private;
};

} // namespace qel::morphology
