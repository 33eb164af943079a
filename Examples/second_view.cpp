// A second view of a plane scene, as another camera would give it: for registration, which brings both together again.
//
//     second_view take IMAGE.qeli VIEW.qeli SIZE X Y SCALE DEGREES NOISE   a square part, turned and scaled
//     second_view pairs SIZE X Y SCALE DEGREES WRONG                       landmarks of the view and of the image, as
//     text second_view lay IMAGE.qeli VIEW.qeli SHEET.qeli TX TY A B C D        the view where (A B; C D) p + (TX, TY)
//     puts it
//
// (X, Y) is where the view's first voxel lies in the image. Of the pairs, about WRONG in 100 are wrong. Where both
// agree, a laid view is grey; elsewhere red and cyan tell the image from the view.
#include <qel/quelide.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <vector>

namespace {

using Point = qel::math::Vector2<double>;
using qel::geometry::AffineTransformation2D;

/// The one plan of an image, as doubles.
struct Plan
{
    explicit Plan(char const* path)
    {
        qel::memory::InMemoryImage image;
        qel::Ref<qel::tools::LoadQelRawImage> const load(qel::tools::LoadQelRawImage::New());
        load->filePath = qel::String(path);
        load->output = &image;
        load->run();
        columns = static_cast<long>(image.getNumOf(qel::COLUMNS));
        rows = static_cast<long>(image.getNumOf(qel::ROWS));
        voxels.resize(static_cast<std::size_t>(columns * rows));
        qel::ImageModelAdapter const adapter(&image, qel::QEL_FLOAT64);
        for (long y = 0; y < rows; ++y)
            adapter.getImage()->readRowAt(
                static_cast<unsigned long>(columns),
                reinterpret_cast<unsigned char*>(&voxels[static_cast<std::size_t>(y * columns)]), 0,
                static_cast<unsigned long>(y), 0, 0, 0);
    }

    bool has(Point const& p) const
    {
        return p[0] >= 0 && p[1] >= 0 && p[0] <= double(columns - 1) && p[1] <= double(rows - 1);
    }

    /// Between four voxels; the edge goes on.
    double at(Point const& p) const
    {
        auto const voxel = [&](long x, long y) {
            return voxels[static_cast<std::size_t>(std::clamp(y, 0l, rows - 1) * columns +
                                                   std::clamp(x, 0l, columns - 1))];
        };
        long const x = std::lround(std::floor(p[0])), y = std::lround(std::floor(p[1]));
        double const a = p[0] - double(x), b = p[1] - double(y);
        return (1 - b) * ((1 - a) * voxel(x, y) + a * voxel(x + 1, y)) +
               b * ((1 - a) * voxel(x, y + 1) + a * voxel(x + 1, y + 1));
    }

    long columns = 0;
    long rows = 0;
    std::vector<double> voxels;
};

void save(qel::memory::InMemoryImage const& image, char const* path)
{
    qel::Ref<qel::tools::SaveQelRawImage> const save(qel::tools::SaveQelRawImage::New());
    save->input = &image;
    save->filePath = qel::String(path);
    save->overwrite = true;
    save->run();
}

unsigned char toByte(double value) { return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 255.0))); }

Point mapped(AffineTransformation2D const& view, double x, double y)
{
    Point point(x, y);
    view.map(point);
    return point;
}

/// X Y SCALE DEGREES: from the view into the image.
AffineTransformation2D placeOf(char** words)
{
    double const scale = std::atof(words[2]), angle = std::atof(words[3]) * 3.14159265358979 / 180;
    double const c = scale * std::cos(angle), s = scale * std::sin(angle);
    return AffineTransformation2D(std::atof(words[0]), std::atof(words[1]), c, -s, s, c);
}

void take(char** words)
{
    Plan const scene(words[0]);
    long const size = std::atol(words[2]);
    AffineTransformation2D const place = placeOf(words + 3);
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, std::atof(words[7]));
    qel::memory::InMemoryImage view;
    view.reserve(qel::QEL_FLOAT32, static_cast<unsigned long>(size), static_cast<unsigned long>(size), 1, 1, 1);
    float* out = reinterpret_cast<float*>(view.getInternalBuffer());
    for (long y = 0; y < size; ++y)
        for (long x = 0; x < size; ++x)
            *out++ = float(scene.at(mapped(place, double(x), double(y))) + noise(random));
    save(view, words[1]);
}

void printPairs(char** words)
{
    double const size = std::atof(words[0]);
    AffineTransformation2D const place = placeOf(words + 1);
    double const wrong = std::atof(words[5]) / 100;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share(0, 1);
    std::string model, data;
    for (int i = 0; i < 40; ++i) {
        double const x = std::floor(size * share(random)), y = std::floor(size * share(random));
        Point point = mapped(place, x, y);
        double const reach = share(random) < wrong ? 120 : 1;
        point += Point(reach * (share(random) - 0.5), reach * (share(random) - 0.5));
        model += (i ? "#@v2:" : "@v:@v2:") + std::to_string(x) + "_" + std::to_string(y);
        data += (i ? "#@v2:" : "@v:@v2:") + std::to_string(point[0]) + "_" + std::to_string(point[1]);
    }
    std::cout << "model=" << model << '\n' << "data=" << data << '\n';
}

void lay(char** words)
{
    Plan const scene(words[0]), view(words[1]);
    double const tx = std::atof(words[3]), ty = std::atof(words[4]), a = std::atof(words[5]), b = std::atof(words[6]),
                 c = std::atof(words[7]), d = std::atof(words[8]);
    double const determinant = a * d - b * c;
    AffineTransformation2D const back((b * ty - d * tx) / determinant, (c * tx - a * ty) / determinant, d / determinant,
                                      -b / determinant, -c / determinant, a / determinant);
    long const zoom = 2, width = scene.columns * zoom, height = scene.rows * zoom;
    qel::memory::InMemoryImage sheet;
    sheet.reserve(qel::QEL_UINT8, static_cast<unsigned long>(width), static_cast<unsigned long>(height), 1, 1, 3);
    unsigned char* const red = sheet.getInternalBuffer();
    unsigned char* const green = red + width * height;
    unsigned char* const blue = green + width * height;
    double const edge = 1.2;
    for (long y = 0; y < height; ++y) {
        for (long x = 0; x < width; ++x) {
            long const i = y * width + x;
            Point const at(double(x) / zoom, double(y) / zoom);
            Point const inView = mapped(back, at[0], at[1]);
            double const grey = scene.at(at);
            bool const isInside = view.has(inView);
            bool const isEdge =
                isInside && (inView[0] < edge || inView[1] < edge || inView[0] > double(view.columns - 1) - edge ||
                             inView[1] > double(view.rows - 1) - edge);
            red[i] = isEdge ? 255 : toByte(grey);
            green[i] = isEdge ? 140 : isInside ? toByte(view.at(inView)) : toByte(grey);
            blue[i] = isEdge ? 0 : isInside ? toByte(view.at(inView)) : toByte(grey);
        }
    }
    save(sheet, words[2]);
}

} // namespace

int main(int argc, char** argv)
try {
    std::string const command = argc > 1 ? argv[1] : "";
    if (command == "take" && argc == 10)
        take(argv + 2);
    else if (command == "pairs" && argc == 8)
        printPairs(argv + 2);
    else if (command == "lay" && argc == 11)
        lay(argv + 2);
    else {
        std::cerr << "second_view take IMAGE.qeli VIEW.qeli SIZE X Y SCALE DEGREES NOISE\n"
                     "second_view pairs SIZE X Y SCALE DEGREES WRONG\n"
                     "second_view lay IMAGE.qeli VIEW.qeli SHEET.qeli TX TY A B C D\n";
        return 2;
    }
} catch (qel::Exception const& error) {
    std::cerr << error.what().c_str();
    return 1;
}
