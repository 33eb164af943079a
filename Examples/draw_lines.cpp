// Draws lines over a volume: seen along its plans, rows and columns, the brightest voxel of each ray in grey and each
// line in a colour of its own, as an RGB picture.
//
//     draw_lines VOLUME.qeli LINES.qelo SHEET.qeli LOW HIGH
#include <qel/quelide.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace {

long const zoom = 6;
long const gap = 4;

using Point = qel::math::Vector3<double>;

/// Two of the three axes, across and down; the third is looked along.
struct View
{
    qel::Components across;
    qel::Components down;
    long left; // of its tile
};

class Sheet
{
public:
    Sheet(qel::memory::InMemoryImage& volume, double low, double high)
        : m_volume(volume)
        , m_low(low)
        , m_high(high)
    {
        for (View const& view :
             {View{qel::COLUMNS, qel::ROWS, 0}, View{qel::COLUMNS, qel::PLANS, 0}, View{qel::ROWS, qel::PLANS, 0}}) {
            m_views.push_back({view.across, view.down, m_width});
            m_width += size(view.across) * zoom + gap;
            m_height = std::max(m_height, size(view.down) * zoom);
        }
        m_width -= gap;
        m_picture.reserve(qel::QEL_UINT8, static_cast<unsigned long>(m_width), static_cast<unsigned long>(m_height), 1,
                          1, 3);
        std::fill_n(m_picture.getInternalBuffer(), m_width * m_height * 3, 255);
    }

    qel::memory::InMemoryImage const& picture() const { return m_picture; }

    void drawVolume()
    {
        for (View const& view : m_views) {
            std::vector<double> const brightest = brightestOf(view);
            for (long y = 0; y < size(view.down) * zoom; ++y)
                for (long x = 0; x < size(view.across) * zoom; ++x) {
                    double const value = brightest[static_cast<std::size_t>(y / zoom * size(view.across) + x / zoom)];
                    double const grey = std::clamp((value - m_low) / (m_high - m_low), 0.0, 1.0) * 200;
                    for (long channel = 0; channel < 3; ++channel)
                        at(view.left + x, y, channel) = static_cast<unsigned char>(grey);
                }
        }
    }

    /// From vertex to vertex, with dots that touch.
    void drawLine(std::vector<Point> const& line, double number)
    {
        for (View const& view : m_views)
            for (std::size_t i = 1; i < line.size(); ++i) {
                Point const step = line[i] - line[i - 1];
                int const dots = static_cast<int>(step.length() * zoom) + 1;
                for (int dot = 0; dot <= dots; ++dot)
                    drawDot(view, line[i - 1] + step * (double(dot) / dots), number);
            }
    }

private:
    long size(qel::Components axis) const { return static_cast<long>(m_volume.getNumOf(axis)); }

    unsigned char& at(long x, long y, long channel)
    {
        return m_picture.getInternalBuffer()[(channel * m_height + y) * m_width + x];
    }

    std::vector<double> brightestOf(View const& view) const
    {
        qel::ImageModelAdapter const adapter(&m_volume, qel::QEL_FLOAT64);
        std::vector<double> brightest(static_cast<std::size_t>(size(view.across) * size(view.down)), m_low);
        std::vector<double> row(m_volume.getNumOf(qel::COLUMNS));
        for (long z = 0; z < size(qel::PLANS); ++z)
            for (long y = 0; y < size(qel::ROWS); ++y) {
                adapter.getImage()->readRowAt(row.size(), reinterpret_cast<unsigned char*>(row.data()), 0,
                                              static_cast<unsigned long>(y), static_cast<unsigned long>(z), 0, 0);
                for (long x = 0; x < size(qel::COLUMNS); ++x) {
                    long const place[] = {x, y, z};
                    double& ray =
                        brightest[static_cast<std::size_t>(place[view.down] * size(view.across) + place[view.across])];
                    ray = std::max(ray, row[static_cast<std::size_t>(x)]);
                }
            }
        return brightest;
    }

    /// Of 3 x 3 pixels. A point in calibrated coordinates lies in the middle of its voxel.
    void drawDot(View const& view, Point const& point, double number)
    {
        auto const pixel = [&](qel::Components axis) {
            return std::lround(((point[axis] - m_volume.getOriginOf(axis)) / m_volume.getSpacingOf(axis) + 0.5) * zoom -
                               0.5);
        };
        for (long y = pixel(view.down) - 1; y <= pixel(view.down) + 1; ++y)
            for (long x = pixel(view.across) - 1; x <= pixel(view.across) + 1; ++x)
                for (long channel = 0; channel < 3; ++channel)
                    if (x >= 0 && y >= 0 && x < size(view.across) * zoom && y < size(view.down) * zoom) {
                        // Hues by the golden ratio, so that lines that follow each other differ.
                        double const hue = number * 0.618034 + static_cast<double>(channel) / 3;
                        at(view.left + x, y, channel) =
                            static_cast<unsigned char>(std::lround(127.5 + 127.5 * std::cos(2 * 3.14159265 * hue)));
                    }
    }

    qel::memory::InMemoryImage& m_volume;
    double m_low;
    double m_high;
    std::vector<View> m_views;
    long m_width = 0;
    long m_height = 0;
    qel::memory::InMemoryImage m_picture;
};

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 6) {
        std::cerr << "draw_lines VOLUME.qeli LINES.qelo SHEET.qeli LOW HIGH\n";
        return 2;
    }
    qel::memory::InMemoryImage volume;
    qel::Ref<qel::tools::LoadQelRawImage> const load(qel::tools::LoadQelRawImage::New());
    load->filePath = qel::String(argv[1]);
    load->output = &volume;
    load->run();

    qel::Ref<qel::Data> const data = qel::Data::load(argv[2]);
    auto const* const lines = dynamic_cast<qel::geometry::LineSet3D const*>(data.get());
    if (!lines) {
        std::cerr << argv[2] << " holds no lines\n";
        return 1;
    }

    Sheet sheet(volume, std::atof(argv[4]), std::atof(argv[5]));
    sheet.drawVolume();
    std::vector<Point> line;
    int number = 1;
    for (unsigned long index : lines->getIndices()) {
        if (index != qel::geometry::LineSet3D::stop) {
            line.push_back(lines->getCoords()[index]);
            continue;
        }
        sheet.drawLine(line, number++);
        line.clear();
    }

    qel::Ref<qel::tools::SaveQelRawImage> const save(qel::tools::SaveQelRawImage::New());
    save->input = &sheet.picture();
    save->filePath = qel::String(argv[3]);
    save->overwrite = true;
    save->run();
} catch (qel::Exception const& error) {
    std::cerr << error.what().c_str();
    return 1;
}
