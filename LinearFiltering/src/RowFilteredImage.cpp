#include "LinearFiltering/private/RowFilteredImage.h"

#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/Access/View.h"
#include "LinearFiltering/private/FIRKernels.h"
#include "LinearFiltering/private/typeOfSums.h"

#include <qel/ImageModelAdapter.h>

namespace qel::linear_filtering {

class RowFilteredImage::Rows
{
public:
    virtual ~Rows() = default;
    virtual void read(unsigned char* destination, unsigned long count, access::RowPosition at) const = 0;
};

namespace {

template <class T> class RowsOf final : public RowFilteredImage::Rows
{
public:
    RowsOf(ImageModel* image, VoxelTypes shown, std::vector<double> const& weights)
        : m_adapter(image, VoxelTypeOf<T>::value)
        , m_view(access::View<T>::New(m_adapter.getImage(), access::MirrorBorderCondition<T>::New()))
        , m_weights(weights.begin(), weights.end())
        , m_sum(weightedSumOfProcessor<T>())
        , m_toShown(shown == VoxelTypeOf<T>::value ? nullptr : helper::voxelConversion(VoxelTypeOf<T>::value, shown))
    {}

    void read(unsigned char* destination, unsigned long count, access::RowPosition at) const override
    {
        unsigned long const points = m_weights.size();
        unsigned long const length = count + points - 1;
        // Not cleared: all of it is written.
        std::unique_ptr<T[]> const buffer(new T[length + (m_toShown ? count : 0)]);
        at.column -= static_cast<long>(points / 2);
        m_view->read(buffer.get(), length, at);
        std::vector<T const*> pointers(points);
        for (unsigned long point = 0; point < points; ++point)
            pointers[point] = buffer.get() + point;
        T* const sums = m_toShown ? buffer.get() + length : reinterpret_cast<T*>(destination);
        m_sum(pointers.data(), m_weights.data(), points, sums, count);
        if (m_toShown) {
            auto const* source = reinterpret_cast<unsigned char const*>(sums);
            m_toShown(source, destination, count);
        }
    }

private:
    ImageModelAdapter m_adapter;
    boost::shared_ptr<access::View<T>> m_view;
    std::vector<T> m_weights;
    WeightedSum<T> m_sum;
    helper::VoxelConversion m_toShown; // none where sums are of the shown type
};

} // namespace

RowFilteredImage::RowFilteredImage(ImageModel const* image, VoxelTypes shown, std::vector<double> const& weights)
    : ImageModelProxy(const_cast<ImageModel*>(image), shown)
{
    visitTypeOfSums(shown, [&]<class T>(std::type_identity<T>) {
        m_rows = std::make_unique<RowsOf<T>>(getWrapped(), shown, weights);
    });
}

RowFilteredImage::~RowFilteredImage() = default;

bool RowFilteredImage::readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                                 unsigned long row, unsigned long plan, unsigned long time,
                                 unsigned long spectral) const
{
    m_rows->read(destination, numOfVoxels,
                 {static_cast<long>(column), static_cast<long>(row), static_cast<long>(plan), static_cast<long>(time),
                  static_cast<long>(spectral)});
    return true;
}

bool RowFilteredImage::writeRowAt(unsigned long, unsigned char const*, unsigned long, unsigned long, unsigned long,
                                  unsigned long, unsigned long)
{
    return false;
}

bool RowFilteredImage::reserve(VoxelTypes const&, unsigned long, unsigned long, unsigned long, unsigned long,
                               unsigned long)
{
    return false;
}

} // namespace qel::linear_filtering
