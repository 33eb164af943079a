#pragma once

#include <qel/Export.h>
#include <qel/kernel/Offset3D.h>

namespace qel::kernel {

class Kernel3DPrivate;

/// A weighted neighbourhood in space: what Kernel2D is within a plan.
///
/// Its text form is "@kernel3D:" and the points, as in `@kernel3D:0_0_0_1+0_0_1_0.5`: column, row, plan and weight.
class QEL_API Kernel3D
{
public:
    /// An empty kernel.
    Kernel3D();
    Kernel3D(Kernel3D const& other);
    ~Kernel3D();

    Kernel3D& operator=(Kernel3D const& other);

    /// Appends a point, whether or not its offset is there already.
    void addPoint(long x, long y, long z, double weight);
    void clear();
    /// Multiplies every weight by `factor`.
    void applyScale(double factor);
    /// Divides every weight by the sum of the absolute values of all weights. An empty kernel stays as it is. The
    /// sum is not checked: weights that are all 0 become NaN.
    void normalize();

    unsigned long getNumOfPoints() const;
    /// The index is not checked.
    Offset3D getOffset(unsigned long index) const;
    /// The index is not checked.
    double getWeight(unsigned long index) const;

    /// True where both have the same points in the same order.
    bool operator==(Kernel3D const& other) const;
    bool operator!=(Kernel3D const& other) const;

    /// Inside of the library.
    Kernel3DPrivate const& getPrivate() const { return *m_private; }

private:
    Kernel3DPrivate* m_private;
};

} // namespace qel::kernel
