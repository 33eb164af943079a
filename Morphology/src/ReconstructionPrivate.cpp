#include "Morphology/private/ReconstructionPrivate.h"

#include "Morphology/private/GeodesicPropagation.h"

#include <qel/ImageModelAdapter.h>

namespace qel::morphology {

namespace {

constexpr unsigned char reachable = 1;
constexpr unsigned char reached = 2;

/// Objects are 1 until the marker reaches them. All integers are seen as wide ones: none becomes 0 on the way.
class BinaryRows
{
public:
    static constexpr bool hasEnd = true;

    BinaryRows(ImageModel const* input, ImageModel const* marker)
        : m_input(View::New(input, access::FixedBorderCondition<unsigned long>::New(0)))
        , m_marker(View::New(marker, access::FixedBorderCondition<unsigned long>::New(0)))
    {}

    void start(unsigned char* row, long count, access::RowPosition const& at) const
    {
        std::vector<unsigned long> in(static_cast<std::size_t>(count)), marker(in.size());
        m_input->read(in.data(), in.size(), at);
        m_marker->read(marker.data(), in.size(), at);
        for (std::size_t x = 0; x < in.size(); ++x)
            row[x] = in[x] == 0 ? 0 : marker[x] == 0 ? reachable : reached;
    }

    void limit(unsigned char const* row, unsigned char* limits, long count, access::RowPosition const&) const
    {
        for (long x = 0; x < count; ++x)
            limits[x] = row[x] == 0 ? 0 : reached;
    }

    static void end(unsigned char* row, long count)
    {
        for (long x = 0; x < count; ++x)
            row[x] = row[x] == reached;
    }

private:
    using View = access::View<unsigned long>;
    boost::shared_ptr<View> m_input;
    boost::shared_ptr<View> m_marker;
};

} // namespace

void ReconstructionPrivate::run()
{
    Publication const publication(*this);
    ImageModelAdapter const input(const_cast<ImageModel*>(m_settings.input), QEL_UINT64);
    ImageModelAdapter const marker(const_cast<ImageModel*>(m_settings.marker), QEL_UINT64);
    GeodesicPropagation<unsigned char, GeodesicMaxima<unsigned char>, BinaryRows> propagation(
        BinaryRows(input.getImage(), marker.getImage()), m_settings.output, m_settings.connectivity);
    setCurrentChild(&propagation);
    propagation.run();
    removeChild();
}

} // namespace qel::morphology
