#pragma once

#include "Core/private/Access/View.h"
#include "Registration/private/ShapeBasedMatching/ShapeTerms.h"

#include <qel/ImageModelAdapter.h>

#include <tbb/task_group.h> // tbb::task_group_context

#include <vector>

namespace qel::registration {

/// An image of any real voxel type, read as doubles.
class DoubleImage
{
public:
    /// `image` is not owned.
    explicit DoubleImage(ImageModel const* image);

    access::View<double> const& operator*() const { return *m_view; }
    access::View<double> const* operator->() const { return m_view.get(); }

    /// The first position of each plan, in the order of a two-dimensional frame.
    std::vector<access::RowPosition> plans() const;

private:
    ImageModelAdapter m_adapter;
    boost::shared_ptr<access::View<double>> m_view;
};

/// The X and Y gradients of an image.
struct GradientImages
{
    DoubleImage x;
    DoubleImage y;
};

/// What a search reads of one plan: the gradients that a shape meets from the positions of a window, each made 1 long;
/// zeros where there is none. Rows lie within the image; columns go on beyond it as far as the shape does.
class GradientField
{
public:
    /// `reach`: no offset of the shape is larger. Reads and normalises rows in parallel.
    GradientField(GradientImages const& images, access::RowPosition const& plan, Window const& window, long reach,
                  tbb::task_group_context& context);

    /// The place of a position, to which the offsets of terms are added.
    double const* x(long column, long row) const { return m_x.data() + indexOf(column, row); }
    double const* y(long column, long row) const { return m_y.data() + indexOf(column, row); }
    long stride() const { return m_stride; }
    long rowsBegin() const { return m_rowsBegin; }
    long rowsEnd() const { return m_rowsEnd; }
    /// Whether an infinite gradient left something that is no number.
    bool hasNaN() const { return m_hasNaN; }

private:
    long indexOf(long column, long row) const { return (row - m_rowsBegin) * m_stride + column - m_colsBegin; }

    long m_colsBegin;
    long m_rowsBegin;
    long m_rowsEnd;
    long m_stride;
    std::vector<double> m_x;
    std::vector<double> m_y;
    bool m_hasNaN = false;
};

} // namespace qel::registration
