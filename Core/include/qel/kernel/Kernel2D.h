#pragma once

#include <qel/Export.h>
#include <qel/kernel/Offset2D.h>

namespace qel::kernel {

class Kernel2DPrivate;

/// A weighted neighbourhood within a plan: a list of offsets, each with a weight, in the order in which they were
/// added.
///
/// It is no grid: offsets that are not in it cost nothing, and an offset may stand in it several times. Copying copies
/// the list. Its text form, from which a property reads it, is "@kernel2D:" and the points, as in
/// `@kernel2D:0_0_1+1_0_0.5`: column, row and weight.
class QEL_API Kernel2D
{
public:
    /// An empty kernel.
    Kernel2D();
    Kernel2D(Kernel2D const& other);
    ~Kernel2D();

    Kernel2D& operator=(Kernel2D const& other);

    /// Appends a point, whether or not its offset is there already.
    void addPoint(long x, long y, double weight);
    void clear();
    /// Multiplies every weight by `factor`.
    void applyScale(double factor);
    /// Divides every weight by the sum of the absolute values of all weights. An empty kernel stays as it is. The
    /// sum is not checked: weights that are all 0 become NaN.
    void normalize();

    unsigned long getNumOfPoints() const;
    /// The index is not checked.
    Offset2D getOffset(unsigned long index) const;
    /// The index is not checked.
    double getWeight(unsigned long index) const;

    /// True where both have the same points in the same order.
    bool operator==(Kernel2D const& other) const;
    bool operator!=(Kernel2D const& other) const;

    /// Inside of the library.
    Kernel2DPrivate const& getPrivate() const { return *m_private; }

private:
    Kernel2DPrivate* m_private;
};

} // namespace qel::kernel
