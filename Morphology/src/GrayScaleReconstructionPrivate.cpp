#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/TypeDispatch.h"
#include "Morphology/private/GeodesicPropagation.h"
#include "Morphology/private/ReconstructionPrivate.h"

#include <qel/ImageModelAdapter.h>
#include <qel/Ref.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/point_operations/CopyImage.h>

namespace qel::morphology {

namespace {

/// Values start at the marker, and may go as far as the image.
template <class M, class Order> class GreyRows
{
public:
    static constexpr bool hasEnd = false;

    GreyRows(ImageModel const* limit, ImageModel const* marker)
        : m_limit(View::New(limit, access::FixedBorderCondition<M>::New(M(0))))
        , m_marker(View::New(marker, access::FixedBorderCondition<M>::New(M(0))))
    {}

    void start(M* row, long count, access::RowPosition const& at) const
    {
        // No voxel starts beyond its limit: neighbours would take what it gives back later.
        std::vector<M> limits(static_cast<std::size_t>(count));
        m_limit->read(limits.data(), limits.size(), at);
        m_marker->read(row, limits.size(), at);
        for (std::size_t x = 0; x < limits.size(); ++x)
            row[x] = Order::limited(row[x], limits[x]);
    }

    void limit(M const*, M* limits, long count, access::RowPosition const& at) const
    {
        m_limit->read(limits, static_cast<unsigned long>(count), at);
    }

    static void end(M*, long) {}

private:
    using View = access::View<M>;
    boost::shared_ptr<View> m_limit;
    boost::shared_ptr<View> m_marker;
};

struct GrayScaleReconstructionProcessingScalarDispatcher
{
    template <class M> static void run(GrayScaleReconstructionPrivate* implementation) { implementation->runAs<M>(); }
};

} // namespace

void GrayScaleReconstructionPrivate::run()
{
    Publication const publication(*this);
    tmpl_dispatch::Visitor1Args<AllVoxelTypes, GrayScaleReconstructionProcessingScalarDispatcher,
                                GrayScaleReconstructionPrivate*>()(m_settings.output->getVoxelType(), this);
}

template <class M> void GrayScaleReconstructionPrivate::runAs()
{
    ImageModel const* input = m_settings.input;
    memory::InMemoryImage copy;
    if (helper::underlyingImage(input) == helper::underlyingImage(m_settings.output)) {
        // The limit is needed to the end, when the output has long changed.
        Ref<point_operations::CopyImage> const child(point_operations::CopyImage::New(this));
        child->input = input;
        child->output = &copy;
        child->run();
        removeChild();
        if (isCancelled())
            return;
        input = &copy;
    }
    ImageModelAdapter const limit(const_cast<ImageModel*>(input), VoxelTypeOf<M>::value);
    if (m_settings.isErosion)
        propagate<M, GeodesicMinima<M>>(limit.getImage());
    else
        propagate<M, GeodesicMaxima<M>>(limit.getImage());
}

template <class M, class Order> void GrayScaleReconstructionPrivate::propagate(ImageModel const* limit)
{
    using Rows = GreyRows<M, Order>;
    GeodesicPropagation<M, Order, Rows> propagation(Rows(limit, m_settings.marker), m_settings.output,
                                                    m_settings.connectivity);
    setCurrentChild(&propagation);
    propagation.run();
    removeChild();
}

} // namespace qel::morphology
