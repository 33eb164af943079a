#include "Support.h"

#include <qel/container/Vector.h>
#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/Transformation2D.h>
#include <qel/geometry/Transformation3D.h>
#include <qel/registration/LandmarkRegistration2D.h>
#include <qel/registration/LandmarkRegistration3D.h>
#include <qel/registration/ShapeBasedMatching2D.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

using namespace qel;
using namespace bench;

namespace {

// ---- Landmarks

/// 1000 points, and their images under one transformation with noise; one in five goes anywhere.
template <class Point, class Transformation>
void makeLandmarks(Transformation const& transformation, container::Vector<Point>& model,
                   container::Vector<Point>& data)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(-100, 100), noise(-0.1, 0.1);
    for (int i = 0; i < 1000; ++i) {
        Point point, image, error;
        for (unsigned int axis = 0; axis < Point::dim(); ++axis) {
            point[axis] = place(random);
            error[axis] = noise(random) * (i % 5 == 0 ? 3000 : 1);
        }
        image = point;
        transformation.map(image);
        model.push_back(point);
        data.push_back(image + error);
    }
}

template <class Registration, class Handler, class Point>
void registerLandmarks(benchmark::State& state, container::Vector<Point> const& model,
                       container::Vector<Point> const& data, int type, bool isRobust, double outlierRatio = 0.2)
{
    Handler handler;
    Ref<Registration> registration(Registration::New());
    registration->model = &model;
    registration->data = &data;
    registration->transformationType = type;
    registration->robustEstimation = isRobust;
    registration->outlierRatio = outlierRatio;
    registration->outputTransformation = &handler;
    registration->run();
    for (auto _ : state)
        registration->run();
    if (!isRobust)
        return;
    // What is no outlier is met, by types that can follow the planted one.
    double worst = 0;
    for (unsigned long i = 0; i < 1000; ++i) {
        Point point = model[i];
        handler.get()->map(point);
        if (i % 5 != 0)
            worst = std::max(worst, (point - data[i]).length());
    }
    require(worst < 1, "robust estimate");
}

// ---- Shape matching

struct Gradients
{
    memory::InMemoryImage x, y;
};

float at(memory::InMemoryImage const& image, long column, long row)
{
    long const columns = static_cast<long>(image.getNumOf(COLUMNS)), rows = static_cast<long>(image.getNumOf(ROWS));
    return reinterpret_cast<float const*>(
        image.getInternalBuffer())[std::clamp(row, 0l, rows - 1) * columns + std::clamp(column, 0l, columns - 1)];
}

void computeGradients(memory::InMemoryImage const& image, Gradients& gradients)
{
    long const columns = static_cast<long>(image.getNumOf(COLUMNS)), rows = static_cast<long>(image.getNumOf(ROWS));
    for (memory::InMemoryImage* const out : {&gradients.x, &gradients.y})
        out->reserve(QEL_FLOAT32, image.getNumOf(COLUMNS), image.getNumOf(ROWS), 1, 1, 1);
    float* x = reinterpret_cast<float*>(gradients.x.getInternalBuffer());
    float* y = reinterpret_cast<float*>(gradients.y.getInternalBuffer());
    for (long row = 0; row < rows; ++row)
        for (long column = 0; column < columns; ++column) {
            *x++ = at(image, column + 1, row) - at(image, column - 1, row);
            *y++ = at(image, column, row + 1) - at(image, column, row - 1);
        }
}

/// What lies in the image from (x, y) on, turned by 130 degrees and 1.2 times as large.
void cut(memory::InMemoryImage const& image, long size, double x, double y, memory::InMemoryImage& part)
{
    double const c = 1.2 * std::cos(130 * M_PI / 180), s = 1.2 * std::sin(130 * M_PI / 180);
    part.reserve(QEL_FLOAT32, static_cast<unsigned long>(size), static_cast<unsigned long>(size), 1, 1, 1);
    float* out = reinterpret_cast<float*>(part.getInternalBuffer());
    for (long row = 0; row < size; ++row)
        for (long column = 0; column < size; ++column) {
            double const atX = x + c * double(column) - s * double(row), atY = y + s * double(column) + c * double(row);
            long const left = std::lround(std::floor(atX)), top = std::lround(std::floor(atY));
            double const a = atX - double(left), b = atY - double(top);
            *out++ = float((1 - b) * ((1 - a) * at(image, left, top) + a * at(image, left + 1, top)) +
                           b * ((1 - a) * at(image, left, top + 1) + a * at(image, left + 1, top + 1)));
        }
}

struct Scene
{
    Shape shape;
    long size; // of the template
    unsigned int numOfLevel;
    bool isPlanted; // in the image; otherwise the template is noise, and nothing is found soon

    Gradients image, part;
    memory::InMemoryImage mask;

    void make()
    {
        memory::InMemoryImage grey, piece;
        fill(grey, QEL_FLOAT32, shape, bench::Picture::Grey);
        computeGradients(grey, image);
        double const middle = static_cast<double>(shape.columns) * 0.6;
        if (isPlanted)
            cut(grey, size, middle, middle, piece);
        else
            fill(piece, QEL_FLOAT32,
                 Shape{"template", static_cast<unsigned long>(size), static_cast<unsigned long>(size), 1});
        computeGradients(piece, part);
        mask.reserve(QEL_UINT8, static_cast<unsigned long>(size), static_cast<unsigned long>(size), 1, 1, 1);
        std::fill_n(mask.getInternalBuffer(), size * size, 1);
    }

    void give(registration::ShapeBasedMatching2D& matching)
    {
        matching.inputGradientX = &image.x;
        matching.inputGradientY = &image.y;
        matching.templateGradientX = &part.x;
        matching.templateGradientY = &part.y;
        matching.mask = &mask;
        matching.numOfLevel = numOfLevel;
    }
};

struct Place
{
    double x = 0, y = 0, scale = 0, rotation = 0;
};

Place placeOf(registration::ShapeBasedMatching2D const& matching)
{
    return {matching.outputTx, matching.outputTy, matching.outputScale, matching.outputRotation};
}

/// The loops that come to mind, on one thread: for each pose and position, and for each point there, the length of the
/// gradient and the question whether it is inside. One level.
Place matchDirectly(Scene const& scene)
{
    struct Point
    {
        double x, y, gradientX, gradientY;
    };
    long const columns = static_cast<long>(scene.shape.columns), rows = static_cast<long>(scene.shape.rows);
    float const* const imageX = reinterpret_cast<float const*>(scene.image.x.getInternalBuffer());
    float const* const imageY = reinterpret_cast<float const*>(scene.image.y.getInternalBuffer());
    double const center = static_cast<double>(scene.size - 1) / 2;
    double bestScore = std::numeric_limits<double>::lowest();
    Place best;
    std::vector<Point> points;
    for (double scale = 0.5; scale <= 1.8; scale += 0.1) {
        for (double rotation = 0; rotation <= 360; rotation += 10) {
            double const c = std::cos(rotation * M_PI / 180), s = std::sin(rotation * M_PI / 180);
            points.clear();
            for (long row = 0; row < scene.size; ++row)
                for (long column = 0; column < scene.size; ++column) {
                    double const x = double(column) - center, y = double(row) - center;
                    double const gx = at(scene.part.x, column, row), gy = at(scene.part.y, column, row);
                    points.push_back(
                        {scale * (c * x - s * y), scale * (s * x + c * y), c * gx - s * gy, s * gx + c * gy});
                }
            for (long row = 0; row < rows; ++row)
                for (long column = 0; column < columns; ++column) {
                    double score = 0;
                    for (Point const& point : points) {
                        long const x = column + static_cast<long>(point.x), y = row + static_cast<long>(point.y);
                        if (x < 0 || x >= columns || y < 0 || y >= rows)
                            continue;
                        double const gx = imageX[y * columns + x], gy = imageY[y * columns + x];
                        double const length = std::sqrt(gx * gx + gy * gy);
                        if (length > 0)
                            score += (gx * point.gradientX + gy * point.gradientY) / length;
                    }
                    if (score > bestScore) {
                        bestScore = score;
                        double const shiftX = scale * c * center - scale * s * center;
                        double const shiftY = scale * s * center + scale * c * center;
                        best = {double(column) - shiftX, double(row) - shiftY, scale, rotation};
                    }
                }
        }
    }
    return best;
}

void match(benchmark::State& state, Scene scene)
{
    scene.make();
    Ref<registration::ShapeBasedMatching2D> matching(registration::ShapeBasedMatching2D::New());
    scene.give(*matching);
    for (auto _ : state)
        matching->run();
    double const middle = static_cast<double>(scene.shape.columns) * 0.6;
    Place const place = placeOf(*matching);
    if (scene.isPlanted)
        require(std::abs(place.x - middle) < 4 && std::abs(place.y - middle) < 4 && place.rotation == 130,
                "planted pose");
}

void matchBoth(benchmark::State& state, Scene scene)
{
    scene.make();
    Place direct;
    for (auto _ : state)
        direct = matchDirectly(scene);
    Ref<registration::ShapeBasedMatching2D> matching(registration::ShapeBasedMatching2D::New());
    scene.give(*matching);
    matching->run();
    Place const place = placeOf(*matching);
    require(std::abs(direct.x - place.x) < 1e-6 && std::abs(direct.y - place.y) < 1e-6 && direct.scale == place.scale &&
                direct.rotation == place.rotation,
            "the same place by both ways");
}

} // namespace

int main(int argc, char** argv)
{
    using registration::LandmarkRegistration2D;
    using registration::LandmarkRegistration3D;
    static container::Vector<math::Vector2<double>> model2, data2;
    static container::Vector<math::Vector3<double>> model3, data3;
    makeLandmarks(geometry::PolynomialOrder3Transformation2D([] {
                      static double parameters[20] = {5, 1, 0, 0, 0, 0, 0, 0, 0, 0, 6, 0, 1};
                      return parameters;
                  }()),
                  model2, data2);
    makeLandmarks(geometry::AffineTransformation3D(math::Vector3<double>(1, 2, 3),
                                                   math::Matrix3<double>(1, 0, 0, 0, 1, 0, 0, 0, 1)),
                  model3, data3);
    char const* const types[] = {"TRANSLATION", "RIGID", "AFFINE", "PROJECTIVE", "POLYNOMIAL_2", "POLYNOMIAL_3"};
    for (bool const isRobust : {false, true}) {
        std::string const suffix = std::string(isRobust ? "/robust" : "/plain") + "/1000points";
        for (int type = 0; type < 6; ++type)
            add("LandmarkRegistration2D:" + std::string(types[type]) + suffix, [=](benchmark::State& state) {
                registerLandmarks<LandmarkRegistration2D, geometry::Transformation2DHandler>(state, model2, data2, type,
                                                                                             isRobust);
            });
        for (int type = 0; type < 3; ++type)
            add("LandmarkRegistration3D:" + std::string(types[type]) + suffix, [=](benchmark::State& state) {
                registerLandmarks<LandmarkRegistration3D, geometry::Transformation3DHandler>(state, model3, data3, type,
                                                                                             isRobust);
            });
    }

    add("LandmarkRegistration2D:POLYNOMIAL_3/robust/outlierRatio:0.4/1000points", [](benchmark::State& state) {
        registerLandmarks<LandmarkRegistration2D, geometry::Transformation2DHandler>(
            state, model2, data2, LandmarkRegistration2D::POLYNOMIAL_3, true, 0.4);
    });

    constexpr Shape small{"128", 128, 128, 1};
    for (bool const isPlanted : {true, false}) {
        std::string const what = isPlanted ? "planted" : "noise";
        for (unsigned int const levels : {4u, 3u})
            add("ShapeBasedMatching2D:" + what + "/" + std::to_string(levels) + "levels/1024x1024_64x64",
                [=](benchmark::State& state) {
                    match(state, {megapixel, 64, levels, isPlanted, {}, {}, {}});
                });
        add("ShapeBasedMatching2D:" + what + "/1level/128x128_16x16", [=](benchmark::State& state) {
            match(state, {small, 16, 1, isPlanted, {}, {}, {}});
        });
        add("Direct:" + what + "/1level/128x128_16x16", [=](benchmark::State& state) {
            matchBoth(state, {small, 16, 1, isPlanted, {}, {}, {}});
        });
    }
    return run(argc, argv);
}
