#include "Segmentation/private/Foreground.h"

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/TypeDispatch.h"

#include <qel/ImageModel.h>

#include <cstring>
#include <vector>

namespace qel::segmentation {

namespace {

/// 64 bytes of 0 or 1 as bits, the first byte lowest.
std::uint64_t packed(unsigned char const* bytes)
{
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) {
        std::uint64_t eight;
        std::memcpy(&eight, bytes + 8 * i, 8);
        // Moves byte k to bit 56 + k, and no two bytes to one place.
        bits |= (eight * 0x0102040810204080u >> 56) << (8 * i);
    }
    return bits;
}

template <class T> void markForeground(T const* __restrict in, unsigned char* __restrict out, unsigned long count)
{
    for (unsigned long x = 0; x < count; ++x)
        out[x] = in[x] != T(0);
}

template <class T> class TypedReader final : public ForegroundReader
{
public:
    explicit TypedReader(boost::shared_ptr<access::View<T>> const& view)
        : m_cache(view->createRowCacheRead(1))
    {}

    std::uint64_t const* read(access::RowPosition const& at, unsigned long count) override
    {
        T const* const voxels = m_cache->fetchRow(0, count, at).data();
        m_bits.resize(count / 64 + 1);
        unsigned char bytes[64];
        unsigned long word = 0;
        for (; word < count / 64; ++word) {
            markForeground(voxels + 64 * word, bytes, 64);
            m_bits[word] = packed(bytes);
        }
        std::memset(bytes, 0, 64);
        markForeground(voxels + 64 * word, bytes, count % 64);
        m_bits[word] = packed(bytes);
        return m_bits.data();
    }

private:
    boost::shared_ptr<access::RowCacheRead<access::View<T>, std::allocator<T>>> m_cache;
    std::vector<std::uint64_t> m_bits;
};

template <class T> class TypedForeground final : public Foreground
{
public:
    explicit TypedForeground(ImageModel const* image)
        : m_view(access::View<T>::New(image, access::FixedBorderCondition<T>::New(T(0))))
    {}

    std::unique_ptr<ForegroundReader> createReader() const override { return std::make_unique<TypedReader<T>>(m_view); }

private:
    boost::shared_ptr<access::View<T>> m_view;
};

} // namespace

std::unique_ptr<Foreground> Foreground::New(ImageModel const* image)
{
    std::unique_ptr<Foreground> foreground;
    tmpl_dispatch::visitType<AllVoxelTypes>(image->getVoxelType(), [&]<class T>(std::type_identity<T>) {
        foreground = std::make_unique<TypedForeground<T>>(image);
    });
    return foreground;
}

} // namespace qel::segmentation
