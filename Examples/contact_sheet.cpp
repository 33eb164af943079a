// Draws an image for the eye: intensities from LOW to HIGH in grey, up to twelve plans side by side, as an RGB picture.
// Voxels under a mask are tinted, and the edge of the mask is drawn full. Of a label image, each label has a colour.
//
//     contact_sheet IMAGE.qeli SHEET.qeli LOW HIGH [MASK.qeli]
//     contact_sheet LABELS.qeli SHEET.qeli labels
#include <qel/quelide.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace {

unsigned long const mostTiles = 12;
unsigned long const tilesInARow = 4;
unsigned long const gap = 4;
unsigned long const leastWidth = 200; // of a tile of a volume; a picture of one plan is twice as wide
double const tint[] = {255, 140, 0};

void load(char const* path, qel::memory::InMemoryImage& image)
{
    qel::Ref<qel::tools::LoadQelRawImage> const load(qel::tools::LoadQelRawImage::New());
    load->filePath = qel::String(path);
    load->output = &image;
    load->run();
}

void save(qel::memory::InMemoryImage const& image, char const* path)
{
    qel::Ref<qel::tools::SaveQelRawImage> const save(qel::tools::SaveQelRawImage::New());
    save->input = &image;
    save->filePath = qel::String(path);
    save->overwrite = true;
    save->run();
}

/// One plan of an image as doubles, whatever its voxel type.
class Plan
{
public:
    Plan(qel::memory::InMemoryImage& image, unsigned long plan)
        : m_columns(image.getNumOf(qel::COLUMNS))
        , m_rows(image.getNumOf(qel::ROWS))
        , m_voxels(m_columns * m_rows)
    {
        qel::ImageModelAdapter const adapter(&image, qel::QEL_FLOAT64);
        for (unsigned long y = 0; y < m_rows; ++y)
            adapter.getImage()->readRowAt(m_columns, reinterpret_cast<unsigned char*>(&m_voxels[y * m_columns]), 0, y,
                                          plan, 0, 0);
    }

    /// 0 outside.
    double at(unsigned long x, unsigned long y) const
    {
        return x < m_columns && y < m_rows ? m_voxels[y * m_columns + x] : 0;
    }

private:
    unsigned long m_columns;
    unsigned long m_rows;
    std::vector<double> m_voxels;
};

/// How bright a voxel is in a channel of the sheet, from 0 to 255.
using Shade = std::function<double(double value, unsigned long channel)>;

Shade greyBetween(double low, double high)
{
    return [=](double value, unsigned long) { return std::clamp((value - low) / (high - low), 0.0, 1.0) * 255; };
}

/// Hues by the golden ratio, so that labels that follow each other differ; 0 is black.
double colourOfLabel(double label, unsigned long channel)
{
    double const hue = label * 0.618034 + static_cast<double>(channel) / 3;
    return label == 0 ? 0 : 127.5 + 127.5 * std::cos(2 * 3.14159265 * hue);
}

void drawSheet(qel::memory::InMemoryImage& image, qel::memory::InMemoryImage* mask, Shade const& shade,
               qel::memory::InMemoryImage& sheet)
{
    unsigned long const columns = image.getNumOf(qel::COLUMNS);
    unsigned long const rows = image.getNumOf(qel::ROWS);
    unsigned long const plans = image.getNumOf(qel::PLANS);
    unsigned long const tiles = std::min(plans, mostTiles);
    unsigned long const across = std::min(tiles, tilesInARow);
    unsigned long const down = (tiles + across - 1) / across;
    unsigned long const zoom = leastWidth * (tiles == 1 ? 2 : 1) / columns + 1;
    unsigned long const width = across * (columns * zoom + gap) - gap;
    unsigned long const height = down * (rows * zoom + gap) - gap;
    sheet.reserve(qel::QEL_UINT8, width, height, 1, 1, 3);
    unsigned char* const pixels = sheet.getInternalBuffer();
    std::fill_n(pixels, width * height * 3, 255);

    for (unsigned long tile = 0; tile < tiles; ++tile) {
        unsigned long const plan = (2 * tile + 1) * plans / (2 * tiles); // evenly over the volume
        Plan const voxels(image, plan);
        Plan const under = mask ? Plan(*mask, plan) : voxels;
        // A pixel of the mask is at its edge if the mask ends within reach.
        unsigned long const reach = (zoom + 1) / 2;
        auto const isUnder = [&](unsigned long x, unsigned long y) { return under.at(x / zoom, y / zoom) != 0; };
        auto const isEdge = [&](unsigned long x, unsigned long y) {
            return !isUnder(x - reach, y) || !isUnder(x + reach, y) || !isUnder(x, y - reach) || !isUnder(x, y + reach);
        };
        for (unsigned long y = 0; y < rows * zoom; ++y) {
            for (unsigned long x = 0; x < columns * zoom; ++x) {
                double const value = voxels.at(x / zoom, y / zoom);
                double const weight = !mask || !isUnder(x, y) ? 0 : isEdge(x, y) ? 1 : 0.3;
                unsigned long const sheetX = tile % across * (columns * zoom + gap) + x;
                unsigned long const sheetY = tile / across * (rows * zoom + gap) + y;
                for (unsigned long channel = 0; channel < 3; ++channel) {
                    double const level = shade(value, channel);
                    pixels[(channel * height + sheetY) * width + sheetX] =
                        static_cast<unsigned char>(std::lround(level + weight * (tint[channel] - level)));
                }
            }
        }
    }
}

} // namespace

int main(int argc, char** argv)
try {
    bool const hasLabels = argc == 4 && std::string(argv[3]) == "labels";
    if (!hasLabels && argc != 5 && argc != 6) {
        std::cerr << "contact_sheet IMAGE.qeli SHEET.qeli LOW HIGH [MASK.qeli]\n"
                     "contact_sheet LABELS.qeli SHEET.qeli labels\n";
        return 2;
    }
    qel::memory::InMemoryImage image;
    qel::memory::InMemoryImage mask;
    qel::memory::InMemoryImage sheet;
    load(argv[1], image);
    if (image.getNumOf(qel::COLUMNS) * image.getNumOf(qel::ROWS) * image.getNumOf(qel::PLANS) == 0) {
        std::cerr << argv[1] << " has no voxels\n";
        return 1;
    }
    if (argc == 6)
        load(argv[5], mask);
    Shade const shade = hasLabels ? Shade(colourOfLabel) : greyBetween(std::atof(argv[3]), std::atof(argv[4]));
    drawSheet(image, argc == 6 ? &mask : nullptr, shade, sheet);
    save(sheet, argv[2]);
} catch (qel::Exception const& error) {
    std::cerr << error.what().c_str();
    return 1;
}
