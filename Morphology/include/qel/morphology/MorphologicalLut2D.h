#pragma once

#include <qel/Export.h>
#include <qel/container/Vector.h>

namespace qel::morphology {

class MorphologicalLut2DPrivate;

/// Tells of each of the 512 patterns of a binary 3 x 3 neighbourhood whether it matches. At first none does.
///
/// A pattern is a number of 9 bits: the centre is bit 0, and its neighbours follow round it from the east, with rows
/// that grow downwards:
///
///     4 3 2
///     5 0 1
///     6 7 8
class QEL_API MorphologicalLut2D
{
public:
    MorphologicalLut2D();
    MorphologicalLut2D(MorphologicalLut2D const& other);
    ~MorphologicalLut2D();

    MorphologicalLut2D& operator=(MorphologicalLut2D const& other);

    /// No pattern matches any more.
    void reset();
    /// Lets each pattern match that agrees with the kernel; what matched before still does. Entry k of the kernel
    /// stands for bit k: 0 or 1 asks for that value, anything else takes both.
    /// Throws InvalidCall where the kernel does not have 9 entries.
    void addKernel(container::Vector<unsigned char> kernel);
    /// Takes the whole table from an array with one number for each pattern, which matches where that is not 0. Of an
    /// `int` the lowest byte counts. Throws InvalidCall for null or any other size than 512.
    void buildFromLut(int const* lut, unsigned long size);
    void buildFromLut(unsigned char const* lut, unsigned long size);

    bool operator==(MorphologicalLut2D const& other) const;
    bool operator!=(MorphologicalLut2D const& other) const;

    /// Inside of the library.
    MorphologicalLut2DPrivate const& getPrivate() const { return *m_private; }

private:
    MorphologicalLut2DPrivate* m_private;
};

} // namespace qel::morphology
