#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Access/DirectionalMirrorBorderCondition.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/tests/Support/Support.h"

#include <qel/Exception.h>

#include <gtest/gtest.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <numeric>
#include <optional>
#include <random>
#include <vector>

namespace qel::access {
namespace {

using test::HostImage;
using test::Picture;
using test::randomPicture;
using test::sameValue;
using test::Shape;

constexpr double pi = std::numbers::pi;
constexpr long highest = std::numeric_limits<long>::max();
constexpr long lowest = std::numeric_limits<long>::min();

// A row of an image, as getData is asked for it.
struct Request
{
    long count = 1;
    long col = 0;
    long row = 0;
    long plan = 0;
    long time = 0;
    long spectral = 0;
};

std::ostream& operator<<(std::ostream& stream, Request const& r)
{
    return stream << r.count << " voxels at (" << r.col << ", " << r.row << ", " << r.plan << ", " << r.time << ", "
                  << r.spectral << ")";
}

// The row that a condition gives. Sentinels around it show that nothing else was written.
template <class T>
std::vector<T> rowOf(BorderCondition<T> const& condition, ImageModel const& image, Request const& request)
{
    std::vector<T> buffer(static_cast<unsigned long>(std::max(request.count, 0l)) + 4, T(77));
    T* const first = buffer.data() + 2;
    condition.getData(&image, first, first + request.count, request.col, request.row, request.plan, request.time,
                      request.spectral);
    EXPECT_TRUE(buffer[0] == T(77) && buffer[1] == T(77)) << "written before the row";
    EXPECT_TRUE(buffer[buffer.size() - 2] == T(77) && buffer[buffer.size() - 1] == T(77)) << "written behind the row";
    return {buffer.begin() + 2, buffer.end() - 2};
}

template <class T> testing::AssertionResult sameRow(std::vector<T> const& expected, std::vector<T> const& actual)
{
    if (expected.size() != actual.size())
        return testing::AssertionFailure() << "expected " << expected.size() << " voxels, got " << actual.size();
    for (unsigned long i = 0; i < expected.size(); ++i)
        if (!sameValue(expected[i], actual[i]))
            return testing::AssertionFailure()
                   << "voxel " << i << ": expected " << +expected[i] << ", got " << +actual[i];
    return testing::AssertionSuccess();
}

// Whether the row is refused with an UnexpectedError of this text.
template <class T>
testing::AssertionResult refuses(BorderCondition<T> const& condition, ImageModel const& image, Request const& request,
                                 std::string const& text)
{
    return test::throwsText<UnexpectedError>([&] { rowOf(condition, image, request); }, test::deepestMessage, text)
           << " for " << request;
}

bool isIn(long coordinate, unsigned long size) { return coordinate >= 0 && coordinate < static_cast<long>(size); }

// Where the voxel of a request comes from.
struct Source
{
    enum Kind
    {
        VOXEL, // of the image, at `at`
        VALUE, // the fixed value
        ANY    // some voxel of the plan: the reflections go in a circle
    };
    Kind kind;
    unsigned long at[3] = {}; // column, row, plan
    unsigned long time = 0;
};

// Tells for the voxel at a column, row, plan and time series of no bounds where it comes from.
using Model = std::function<Source(Shape const&, Request const&)>;

unsigned long nearest(long coordinate, unsigned long size)
{
    while (coordinate < 0)
        ++coordinate;
    while (coordinate >= static_cast<long>(size))
        --coordinate;
    return static_cast<unsigned long>(coordinate);
}

unsigned long reflected(long coordinate, unsigned long size)
{
    while (!isIn(coordinate, size))
        coordinate = coordinate < 0 ? -coordinate - 1 : 2 * static_cast<long>(size) - 1 - coordinate;
    return static_cast<unsigned long>(coordinate);
}

struct Point
{
    long x;
    long y;
};

// The directional reflection of a point, as its description reads. No value when it has not come back after `patience`
// reflections.
std::optional<Point> reflectedAlong(double angle, Shape const& shape, Point p, int patience = 400)
{
    long const nC = static_cast<long>(shape.columns);
    long const nR = static_cast<long>(shape.rows);
    double c = std::cos(angle);
    double s = std::sin(angle);
    double const t = std::tan(angle);
    if (c < 0) {
        c = -c;
        s = -s;
    }
    auto const round = [](double v) { return static_cast<long>(v < 0 ? v - 0.5 : v + 0.5); };
    if (isIn(p.x, shape.columns) && isIn(p.y, shape.rows))
        return p;
    if (patience == 0)
        return std::nullopt;
    auto const again = [&](long x, long y) { return reflectedAlong(angle, shape, {x, y}, patience - 1); };
    auto const throughA = [&](double a) {
        double d = 2 * a;
        if (round(s * d) == 0 && round(c * d) == 0)
            d += 1;
        return again(p.x + round(s * d), p.y - round(c * d));
    };
    auto const throughB = [&](double b) {
        double d = 2 * b;
        if (round(s * d) == 0 && round(c * d) == 0)
            d += 1;
        return again(p.x - round(s * d), p.y + round(c * d));
    };
    if (t > 0) {
        double const a = double(p.y + 1 - nR) * c - double(p.x) * s;
        if (a > 0)
            return throughA(a);
        double const b = double(p.x + 1 - nC) * s - double(p.y) * c;
        if (b > 0)
            return throughB(b);
    } else {
        double const b = double(p.x) * s - double(p.y) * c;
        if (b > 0)
            return throughB(b);
        double const a = double(p.y + 1 - nR) * c + double(nC - p.x - 1) * s;
        if (a > 0)
            return throughA(a);
    }
    if (p.x < 0)
        return again(-p.x - 1, p.y + round(double(-2 * p.x - 1) * t));
    if (p.x >= nC)
        return again(2 * nC - p.x - 1, p.y - round(double(2 * (p.x - nC) + 1) * t));
    if (p.y < 0)
        return again(p.x + round(double(-2 * p.y - 1) / t), -p.y - 1);
    return again(p.x - round(double(2 * (p.y - nR) + 1) / t), 2 * nR - p.y - 1);
}

// Requests around and far outside an image, narrow ones and some several times as wide as the image.
class RandomRequests
{
public:
    RandomRequests(Shape const& shape, unsigned seed)
        : m_shape(shape)
        , m_random(seed)
    {}

    Request next()
    {
        Request request;
        request.count = between(1, m_random() % 3 == 0 ? 4 * long(m_shape.columns) + 3 : long(m_shape.columns) + 2);
        request.col = around(m_shape.columns);
        request.row = around(m_shape.rows);
        request.plan = around(m_shape.plans);
        request.time = around(m_shape.timeSeries);
        request.spectral = between(0, long(m_shape.spectralSeries) - 1);
        return request;
    }

    // The same, in a plan of the image.
    Request nextInPlan()
    {
        Request request = next();
        request.plan = between(0, long(m_shape.plans) - 1);
        request.time = between(0, long(m_shape.timeSeries) - 1);
        return request;
    }

private:
    long between(long low, long high) { return std::uniform_int_distribution<long>(low, high)(m_random); }
    // Half the coordinates inside, the others up to five sizes away.
    long around(unsigned long size)
    {
        long const n = static_cast<long>(size);
        return m_random() % 2 == 0 ? between(0, n - 1) : between(-5 * n - 2, 6 * n + 2);
    }

    Shape m_shape;
    std::mt19937 m_random;
};

std::vector<Shape> const shapes = {{1, 1, 1, 1, 1}, {2, 1, 1, 1, 1}, {1, 2, 2, 1, 2},  {2, 2, 1, 2, 1},
                                   {3, 2, 3, 1, 1}, {5, 4, 3, 2, 2}, {17, 6, 1, 1, 1}, {9, 1, 4, 3, 1}};

unsigned long readsOf(HostImage& image)
{
    unsigned long const reads = image.callsOf(test::READ_ROW);
    image.forgetCalls();
    return reads;
}

// Compares the rows of random requests with the model, voxel by voxel, and the number of reads with `readsOfRow`, which
// is given the count of voxels and how many of them lie inside the image.
template <class T>
void expectRows(BorderCondition<T> const& condition, T value, int rounds, bool onlyInPlan, Model const& model,
                unsigned long (*readsOfRow)(unsigned long count, unsigned long inside))
{
    for (Shape const& shape : shapes) {
        Picture<T> const picture = randomPicture<T>(shape, 2, true);
        HostImage image(picture);
        RandomRequests requests(shape, 3);
        for (int round = 0; round < rounds; ++round) {
            Request const request = onlyInPlan || round % 2 == 0 ? requests.nextInPlan() : requests.next();
            std::vector<T> const actual = rowOf(condition, image, request);
            std::vector<T> expected;
            unsigned long inside = 0;
            for (long i = 0; i < request.count; ++i) {
                Request single = request;
                single.col += i;
                inside += isIn(single.col, shape.columns) && isIn(single.row, shape.rows) &&
                          isIn(single.plan, shape.plans) && isIn(single.time, shape.timeSeries);
                Source const source = model(shape, single);
                unsigned long const spectral = static_cast<unsigned long>(request.spectral);
                if (source.kind == Source::VOXEL) {
                    expected.push_back(picture.at(source.at[0], source.at[1], source.at[2], source.time, spectral));
                } else if (source.kind == Source::VALUE) {
                    expected.push_back(value);
                } else {
                    T const* const plan = &picture.at(0, 0, source.at[2], source.time, spectral);
                    T const found = actual[static_cast<unsigned long>(i)];
                    ASSERT_TRUE(std::any_of(plan, plan + shape.columns * shape.rows,
                                            [found](T voxel) { return sameValue(voxel, found); }));
                    expected.push_back(found);
                }
            }
            ASSERT_TRUE(sameRow(expected, actual)) << shape << ' ' << request;
            ASSERT_EQ(readsOf(image), readsOfRow(expected.size(), inside)) << shape << ' ' << request;
        }
    }
}

template <class T> struct Named
{
    char const* name;
    boost::shared_ptr<BorderCondition<T>> condition;
};

template <class T> std::vector<Named<T>> allConditions()
{
    return {{"Continue", ContinueBorderCondition<T>::New()},
            {"Fixed", FixedBorderCondition<T>::New(T(5))},
            {"Mirror", MirrorBorderCondition<T>::New()},
            {"Directional mirror", DirectionalMirrorBorderCondition<T>::New(0.3)}};
}

TEST(BorderConditionTest, readsARowInsideTheImageWithOneCall)
{
    test::forEachVoxelType([]<class T>() {
        Picture<T> const picture = randomPicture<T>({7, 3, 2, 2, 2}, 1, true);
        HostImage image(picture);
        for (Named<T> const& each : allConditions<T>())
            for (Request const& request : {Request{7, 0, 0, 0, 0, 0}, Request{1, 6, 2, 1, 1, 1},
                                           Request{3, 2, 1, 1, 0, 1}, Request{5, 2, 2, 0, 1, 0}}) {
                T const* const start =
                    &picture.at(request.col, request.row, request.plan, request.time, request.spectral);
                EXPECT_TRUE(
                    sameRow(std::vector<T>(start, start + request.count), rowOf(*each.condition, image, request)))
                    << each.name << ' ' << request;
                EXPECT_EQ(readsOf(image), 1u) << each.name << ' ' << request;
            }
    });
}

TEST(BorderConditionTest, readsNothingForARowOfNoVoxels)
{
    HostImage image(randomPicture<short>({4, 3, 2, 1, 1}, 1));
    for (Named<short> const& each : allConditions<short>())
        for (Request const& request :
             {Request{0, 0, 0, 0, 0, 0}, Request{0, -2, 1, 0, 0, 0}, Request{0, 4, 7, 1, 0, 0}}) {
            EXPECT_TRUE(rowOf(*each.condition, image, request).empty());
            EXPECT_EQ(readsOf(image), 0u) << each.name;
        }
}

TEST(BorderConditionTest, refusesAnImageOfAnotherVoxelType)
{
    test::forEachVoxelType([]<class T>() {
        for (int type = QEL_UINT8; type <= QEL_FLOAT64; ++type) {
            if (type == VoxelTypeOf<T>::value)
                continue;
            HostImage image(static_cast<VoxelTypes>(type), Shape{4, 3, 1, 1, 1});
            for (Named<T> const& each : allConditions<T>())
                for (Request const& request : {Request{2, 0, 0, 0, 0, 0}, Request{2, -1, 9, 9, 9, 9}})
                    EXPECT_TRUE(
                        refuses(*each.condition, image, request, "Types do not correspond in CheckTypeEquivalence"));
            EXPECT_EQ(readsOf(image), 0u);
        }
    });
}

TEST(BorderConditionTest, neverExtendsSpectralSeries)
{
    test::forEachVoxelType([]<class T>() {
        HostImage image(randomPicture<T>({4, 3, 1, 1, 2}, 1));
        for (Named<T> const& each : allConditions<T>()) {
            std::string const text =
                std::string(each.name) + " border condition is not compatible with spectral series extrapolation";
            for (long const spectral : {2l, -1l, highest, lowest}) {
                EXPECT_TRUE(refuses(*each.condition, image, {2, 1, 1, 0, 0, spectral}, text));
                // Said before anything about the other axes.
                EXPECT_TRUE(refuses(*each.condition, image, {9, -3, -1, 5, 5, spectral}, text));
                EXPECT_TRUE(refuses(*each.condition, image, {0, 0, 0, 0, 0, spectral}, text));
            }
        }
        EXPECT_EQ(readsOf(image), 0u);
    });
}

TEST(BorderConditionTest, tellsAnImageThatRefusesToBeRead)
{
    test::forEachVoxelType([]<class T>() {
        HostImage image(randomPicture<T>({4, 3, 2, 1, 1}, 1));
        image.failOn(test::READ_ROW);
        for (Named<T> const& each : allConditions<T>())
            // Inside, over the left edge, over the right one, over both, several times as wide.
            for (Request const& request :
                 {Request{2, 1, 1, 0, 0, 0}, Request{3, -1, 1, 0, 0, 0}, Request{3, 2, 1, 0, 0, 0},
                  Request{6, -1, 1, 0, 0, 0}, Request{40, -9, 1, 0, 0, 0}})
                EXPECT_TRUE(refuses(*each.condition, image, request,
                                    "Error in readRowAt implementation, return value is false"))
                    << each.name << ' ' << request;
        // Wholly outside.
        for (Named<T> const& each : allConditions<T>()) {
            if (std::string(each.name) == "Fixed")
                continue;
            for (Request const& request : {Request{2, -9, 1, 0, 0, 0}, Request{2, 9, 1, 0, 0, 0},
                                           Request{2, 1, -1, 0, 0, 0}, Request{2, 1, 3, 0, 0, 0}})
                EXPECT_TRUE(refuses(*each.condition, image, request,
                                    "Error in readRowAt implementation, return value is false"))
                    << each.name << ' ' << request;
        }
    });
}

TEST(BorderConditionTest, passesOnWhatTheImageThrows)
{
    HostImage image(randomPicture<float>({4, 3, 2, 1, 1}, 1));
    image.throwOn(test::READ_ROW);
    for (Named<float> const& each : allConditions<float>()) {
        EXPECT_THROW(rowOf(*each.condition, image, {2, 1, 1, 0, 0, 0}), test::HostFailure);
        EXPECT_THROW(rowOf(*each.condition, image, {40, -9, 1, 0, 0, 0}), test::HostFailure);
    }
}

TEST(BorderConditionTest, doesNotExtendAnImageWithoutVoxels)
{
    for (Shape const& shape : {Shape{0, 3, 2, 1, 1}, Shape{3, 0, 2, 1, 1}, Shape{3, 3, 0, 1, 1}, Shape{3, 3, 2, 0, 1}})
        for (long const start : {0l, -2l, 1l}) {
            HostImage image(QEL_UINT8, shape);
            Request const request{5, start, start, 0, 0, 0};
            auto const row = [&](auto const& condition) { return rowOf<unsigned char>(*condition, image, request); };
            std::string const refused = "Error in readRowAt implementation, return value is false";
            EXPECT_QEL_THROW(row(ContinueBorderCondition<unsigned char>::New()), UnexpectedError, refused);
            EXPECT_QEL_THROW(row(MirrorBorderCondition<unsigned char>::New()), UnexpectedError, refused);
            std::string const directional = shape.timeSeries == 0 ? "Directional mirror border condition is not "
                                                                    "compatible with time series extrapolation"
                                            : shape.plans == 0    ? "Directional mirror border condition is not "
                                                                    "compatible with plans extrapolation"
                                                                  : refused;
            EXPECT_QEL_THROW(row(DirectionalMirrorBorderCondition<unsigned char>::New(0.3)), UnexpectedError,
                             directional);
            EXPECT_EQ(row(FixedBorderCondition<unsigned char>::New(9)), std::vector<unsigned char>(5, 9));
            EXPECT_EQ(readsOf(image), 0u);
        }
    HostImage image(QEL_UINT8, Shape{3, 3, 1, 1, 0});
    for (Named<unsigned char> const& each : allConditions<unsigned char>())
        EXPECT_TRUE(
            refuses(*each.condition, image, {2, 0, 0, 0, 0, 0},
                    std::string(each.name) + " border condition is not compatible with spectral series extrapolation"));
}

TEST(BorderConditionTest, servesManyThreadsWithOneObject)
{
    Picture<unsigned short> const picture = randomPicture<unsigned short>({13, 9, 3, 2, 1}, 5);
    HostImage const image(picture);
    for (Named<unsigned short> const& each : allConditions<unsigned short>()) {
        RandomRequests requests(picture.shape, 7);
        std::vector<Request> asked;
        std::vector<std::vector<unsigned short>> expected;
        for (int i = 0; i < 200; ++i) {
            asked.push_back(requests.nextInPlan());
            expected.push_back(rowOf(*each.condition, image, asked.back()));
        }
        std::vector<std::vector<unsigned short>> actual(asked.size());
        test::withThreads(4, [&] {
            tbb::parallel_for(0ul, asked.size(),
                              [&](unsigned long i) { actual[i] = rowOf(*each.condition, image, asked[i]); });
        });
        EXPECT_EQ(expected, actual) << each.name;
    }
}

unsigned long oneRead(unsigned long, unsigned long) { return 1; }

TEST(ContinueBorderConditionTest, repeatsTheNearestVoxel)
{
    Model const model = [](Shape const& shape, Request const& voxel) {
        return Source{
            Source::VOXEL,
            {nearest(voxel.col, shape.columns), nearest(voxel.row, shape.rows), nearest(voxel.plan, shape.plans)},
            nearest(voxel.time, shape.timeSeries)};
    };
    test::forEachVoxelType(
        [&]<class T>() { expectRows<T>(*ContinueBorderCondition<T>::New(), T(0), 300, false, model, oneRead); });
}

TEST(ContinueBorderConditionTest, fillsARowLeftOfTheImageWithItsFirstVoxel)
{
    Picture<int> picture({4, 1, 3, 1, 1});
    picture.voxels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    HostImage image(picture);
    auto const condition = ContinueBorderCondition<int>::New();
    EXPECT_EQ(rowOf(*condition, image, {3, -3, 0, 0, 0, 0}), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(rowOf(*condition, image, {4, -3, 0, 0, 0, 0}), (std::vector<int>{1, 1, 1, 1}));
    EXPECT_EQ(rowOf(*condition, image, {3, -70, 0, 1, 0, 0}), (std::vector<int>{5, 5, 5}));
    EXPECT_EQ(rowOf(*condition, image, {2, 4, 0, 0, 0, 0}), (std::vector<int>{4, 4}));
}

TEST(ContinueBorderConditionTest, readsThePlanThatIsNearest)
{
    Picture<int> picture({2, 1, 3, 1, 1});
    picture.voxels = {1, 2, 3, 4, 5, 6};
    HostImage image(picture);
    auto const condition = ContinueBorderCondition<int>::New();
    EXPECT_EQ(rowOf(*condition, image, {2, 0, 0, -7, 0, 0}), (std::vector<int>{1, 2}));
    EXPECT_EQ(rowOf(*condition, image, {2, 0, 0, 3, 0, 0}), (std::vector<int>{5, 6}));
}

TEST(ContinueBorderConditionTest, takesCoordinatesOfAnySize)
{
    Picture<int> picture({2, 2, 1, 1, 1});
    picture.voxels = {1, 2, 3, 4};
    HostImage image(picture);
    auto const condition = ContinueBorderCondition<int>::New();
    EXPECT_EQ(rowOf(*condition, image, {3, lowest, lowest, lowest, lowest, 0}), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(rowOf(*condition, image, {3, highest, highest, highest, highest, 0}), (std::vector<int>{4, 4, 4}));
}

TEST(FixedBorderConditionTest, putsItsValueOutsideTheImage)
{
    Model const model = [](Shape const& shape, Request const& voxel) {
        if (!isIn(voxel.col, shape.columns) || !isIn(voxel.row, shape.rows) || !isIn(voxel.plan, shape.plans) ||
            !isIn(voxel.time, shape.timeSeries))
            return Source{Source::VALUE};
        return Source{Source::VOXEL,
                      {(unsigned long)voxel.col, (unsigned long)voxel.row, (unsigned long)voxel.plan},
                      (unsigned long)voxel.time};
    };
    test::forEachVoxelType([&]<class T>() {
        for (T const value : {T(0), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()})
            expectRows<T>(*FixedBorderCondition<T>::New(value), value, 200, false, model,
                          [](unsigned long, unsigned long inside) { return inside > 0 ? 1ul : 0ul; });
    });
}

TEST(FixedBorderConditionTest, doesNotReadTheImageForARowOutside)
{
    HostImage image(randomPicture<double>({4, 3, 2, 2, 1}, 1));
    image.failOn(test::READ_ROW);
    auto const condition = FixedBorderCondition<double>::New(2.5);
    for (Request const& request :
         {Request{4, 0, -1, 0, 0, 0}, Request{4, 0, 3, 0, 0, 0}, Request{4, 0, 0, -1, 0, 0}, Request{4, 0, 0, 2, 0, 0},
          Request{4, 0, 0, 0, -1, 0}, Request{4, 0, 0, 0, 2, 0}, Request{4, -4, 0, 0, 0, 0}, Request{4, 4, 0, 0, 0, 0}})
        EXPECT_EQ(rowOf(*condition, image, request), std::vector<double>(4, 2.5)) << request;
    EXPECT_EQ(readsOf(image), 0u);
}

TEST(FixedBorderConditionTest, takesCoordinatesOfAnySize)
{
    HostImage image(randomPicture<int>({4, 3, 1, 1, 1}, 1));
    auto const condition = FixedBorderCondition<int>::New(-3);
    EXPECT_EQ(rowOf(*condition, image, {3, lowest, 0, 0, 0, 0}), (std::vector<int>(3, -3)));
    EXPECT_EQ(rowOf(*condition, image, {3, highest, 0, 0, 0, 0}), (std::vector<int>(3, -3)));
    EXPECT_EQ(rowOf(*condition, image, {3, 0, lowest, highest, lowest, 0}), (std::vector<int>(3, -3)));
}

TEST(MirrorBorderConditionTest, reflectsWithTheEdgeVoxelRepeated)
{
    std::vector<long> const expected = {3, 2, 1, 0, 0, 1, 2, 3, 3, 2, 1, 0};
    std::vector<long> actual;
    for (long x = -4; x < 8; ++x)
        actual.push_back(MirrorBorderCondition<float>::computeCoord(x, 4));
    EXPECT_EQ(actual, expected);
    for (long x = -20; x < 20; ++x)
        EXPECT_EQ(MirrorBorderCondition<float>::computeCoord(x, 1), 0);
    for (unsigned long size = 1; size < 6; ++size)
        for (long x = -40; x < 40; ++x)
            EXPECT_EQ(MirrorBorderCondition<float>::computeCoord(x, static_cast<long>(size)),
                      static_cast<long>(reflected(x, size)));
}

// Everywhere, also for rows wholly outside and for images of one column.
TEST(MirrorBorderConditionTest, reflectsEveryVoxelOfARow)
{
    Model const model = [](Shape const& shape, Request const& voxel) {
        return Source{
            Source::VOXEL,
            {reflected(voxel.col, shape.columns), reflected(voxel.row, shape.rows), reflected(voxel.plan, shape.plans)},
            reflected(voxel.time, shape.timeSeries)};
    };
    test::forEachVoxelType(
        [&]<class T>() { expectRows<T>(*MirrorBorderCondition<T>::New(), T(0), 400, false, model, oneRead); });
}

TEST(MirrorBorderConditionTest, reflectsEveryRequestOnASmallRow)
{
    for (unsigned long const size : {1ul, 2ul, 3ul, 4ul, 5ul}) {
        Picture<int> picture({size, 1, 1, 1, 1});
        std::iota(picture.voxels.begin(), picture.voxels.end(), 10);
        HostImage image(picture);
        auto const condition = MirrorBorderCondition<int>::New();
        for (long col = -20; col < 20; ++col)
            for (long count = 1; count < 25; ++count) {
                Request const request{count, col, 0, 0, 0, 0};
                std::vector<int> expected;
                for (long x = col; x < col + count; ++x)
                    expected.push_back(picture.at(reflected(x, size)));
                ASSERT_EQ(rowOf(*condition, image, request), expected) << size << ' ' << request;
                ASSERT_EQ(readsOf(image), 1u);
            }
    }
}

TEST(MirrorBorderConditionTest, turnsSeveralTimesInARowThatIsWiderThanTheImage)
{
    Picture<int> picture({2, 1, 1, 1, 1});
    picture.voxels = {0, 1};
    HostImage image(picture);
    EXPECT_EQ(rowOf(*MirrorBorderCondition<int>::New(), image, {6, -2, 0, 0, 0, 0}),
              (std::vector<int>{1, 0, 0, 1, 1, 0}));
}

TEST(MirrorBorderConditionTest, takesCoordinatesOfAnySize)
{
    for (long size = 1; size < 6; ++size) {
        auto const exact = [size](__int128 x) {
            __int128 const period = 2 * size;
            __int128 const rest = ((x % period) + period) % period;
            return static_cast<long>(rest < size ? rest : period - 1 - rest);
        };
        Picture<int> picture({static_cast<unsigned long>(size), 3, 1, 1, 1});
        std::iota(picture.voxels.begin(), picture.voxels.end(), 0);
        HostImage image(picture);
        for (long const col : {lowest, lowest + 1, lowest + 2, highest - 3, highest - 1, highest})
            for (long const row : {lowest, highest}) {
                std::vector<int> expected;
                for (int i = 0; i < 13; ++i)
                    expected.push_back(
                        // 2^63 leaves the rest 2 when divided by 6.
                        picture.at(exact(__int128(col) + i), row == lowest ? reflected(-2, 3) : reflected(1, 3)));
                EXPECT_EQ(rowOf(*MirrorBorderCondition<int>::New(), image, {13, col, row, lowest, highest, 0}),
                          expected)
                    << size << ' ' << col << ' ' << row;
            }
    }
    EXPECT_EQ(MirrorBorderCondition<int>::computeCoord(lowest, highest), highest - 1);
    EXPECT_EQ(MirrorBorderCondition<int>::computeCoord(highest, highest), highest - 1);
}

std::vector<double> const angles = {0,    pi,   pi / 2,        -pi / 2, pi / 4, -pi / 4, 3 * pi / 4,
                                    0.3,  -0.3, 1.2,           -1.2,    2.0,    -2.0,    3.0,
                                    -3.0, 1e-9, pi / 2 - 0.01, 7.5,     -100,   0.7,     pi / 6};

TEST(DirectionalMirrorBorderConditionTest, reflectsPointsAsItsDescriptionReads)
{
    for (double const angle : angles)
        for (Shape const& shape : {Shape{3, 3}, Shape{5, 4}, Shape{17, 6}, Shape{6, 23}}) {
            DirectionalMirror const mirror(angle);
            ImageSizes const sizes(HostImage(QEL_UINT8, shape));
            long const reach = 60;
            unsigned long endless = 0;
            for (long y = -reach; y < reach; ++y)
                for (long x = -reach; x < reach; ++x) {
                    long outX = -1;
                    long outY = -1;
                    mirror.computeCoord(sizes, x, y, outX, outY);
                    ASSERT_TRUE(isIn(outX, shape.columns) && isIn(outY, shape.rows));
                    std::optional<Point> const expected = reflectedAlong(angle, shape, {x, y});
                    if (!expected) {
                        ++endless;
                        continue;
                    }
                    ASSERT_EQ(outX, expected->x) << angle << ' ' << shape << " (" << x << ", " << y << ")";
                    ASSERT_EQ(outY, expected->y) << angle << ' ' << shape << " (" << x << ", " << y << ")";
                }
            EXPECT_EQ(endless, 0u) << angle << ' ' << shape;
        }
}

TEST(DirectionalMirrorBorderConditionTest, readsEveryVoxelWhereItsPointIsReflectedTo)
{
    for (double const angle : angles) {
        SCOPED_TRACE(angle);
        Model const model = [angle](Shape const& shape, Request const& voxel) {
            std::optional<Point> const point = reflectedAlong(angle, shape, {voxel.col, voxel.row});
            EXPECT_TRUE(point || std::min(shape.columns, shape.rows) <= 2);
            Source source{point ? Source::VOXEL : Source::ANY, {}, static_cast<unsigned long>(voxel.time)};
            if (point) {
                source.at[0] = static_cast<unsigned long>(point->x);
                source.at[1] = static_cast<unsigned long>(point->y);
            }
            source.at[2] = static_cast<unsigned long>(voxel.plan);
            return source;
        };
        // One read for the part inside, and one for each voxel outside.
        test::forEachVoxelType([&]<class T>() {
            expectRows<T>(*DirectionalMirrorBorderCondition<T>::New(angle), T(0), 12, true, model,
                          [](unsigned long count, unsigned long inside) { return count - inside + (inside > 0); });
        });
    }
}

TEST(DirectionalMirrorBorderConditionTest, keepsItsAngleAndADirectionThatPointsToPositiveColumns)
{
    for (double const angle : angles) {
        DirectionalMirror const mirror(angle);
        double const sign = std::cos(angle) < 0 ? -1 : 1;
        EXPECT_EQ(mirror.angle(), angle);
        EXPECT_EQ(mirror.cosine(), sign * std::cos(angle));
        EXPECT_EQ(mirror.sine(), sign * std::sin(angle));
        EXPECT_EQ(mirror.tangent(), std::tan(angle));
        EXPECT_GE(mirror.cosine(), 0);
    }
}

TEST(DirectionalMirrorBorderConditionTest, givesTheSameForOppositeAngles)
{
    Picture<float> const picture = randomPicture<float>({6, 5, 1, 1, 1}, 8);
    HostImage image(picture);
    for (double const angle : {0.3, -0.7, 1.1, pi / 4}) {
        auto const one = DirectionalMirrorBorderCondition<float>::New(angle);
        auto const opposite = DirectionalMirrorBorderCondition<float>::New(angle + pi);
        for (long row = -8; row < 12; ++row)
            EXPECT_TRUE(
                sameRow(rowOf(*one, image, {30, -12, row, 0, 0, 0}), rowOf(*opposite, image, {30, -12, row, 0, 0, 0})))
                << angle << ' ' << row;
    }
}

TEST(DirectionalMirrorBorderConditionTest, reflectsStraightAlongTheAxesForAnAngleOfZero)
{
    DirectionalMirror const mirror(0);
    EXPECT_EQ(mirror.tangent(), 0);
    ImageSizes const sizes(HostImage(QEL_UINT8, Shape{6, 5}));
    auto const reflect = [&](long x, long y) {
        long outX;
        long outY;
        mirror.computeCoord(sizes, x, y, outX, outY);
        return std::pair(outX, outY);
    };
    // Only the column outside: reflected along the row, with the edge voxel repeated.
    EXPECT_EQ(reflect(-1, 2), std::pair(0l, 2l));
    EXPECT_EQ(reflect(-3, 2), std::pair(2l, 2l));
    EXPECT_EQ(reflect(6, 4), std::pair(5l, 4l));
    EXPECT_EQ(reflect(8, 0), std::pair(3l, 0l));
    // A row outside: reflected across the corner's line, about the edge row itself.
    EXPECT_EQ(reflect(3, -1), std::pair(3l, 1l));
    EXPECT_EQ(reflect(3, -2), std::pair(3l, 2l));
    EXPECT_EQ(reflect(3, 5), std::pair(3l, 3l));
}

TEST(DirectionalMirrorBorderConditionTest, refusesToExtendTimeSeriesAndPlans)
{
    test::forEachVoxelType([]<class T>() {
        HostImage image(randomPicture<T>({4, 3, 2, 3, 1}, 1));
        auto const condition = DirectionalMirrorBorderCondition<T>::New(0.3);
        for (long const time : {-1l, 3l, lowest, highest})
            // Said before anything about plans.
            for (long const plan : {0l, -1l})
                EXPECT_TRUE(refuses(*condition, image, {2, 0, 0, plan, time, 0},
                                    "Directional mirror border condition is not compatible with time series "
                                    "extrapolation"));
        for (long const plan : {-1l, 2l, lowest, highest})
            EXPECT_TRUE(refuses(*condition, image, {2, 0, 0, plan, 0, 0},
                                "Directional mirror border condition is not compatible with plans extrapolation"));
        EXPECT_EQ(readsOf(image), 0u);
    });
}

TEST(DirectionalMirrorBorderConditionTest, endsInsideTheImageWhateverTheAngleTheSizeAndTheDistance)
{
    double const infinity = std::numeric_limits<double>::infinity();
    double const notANumber = std::numeric_limits<double>::quiet_NaN();
    for (double const angle :
         {0.0, pi / 2, -pi / 2, 0.3, -0.3, 2.5, pi / 4, 1e-300, 1e300, infinity, -infinity, notANumber})
        for (Shape const& shape : {Shape{1, 1}, Shape{2, 1}, Shape{1, 2}, Shape{2, 2}, Shape{1, 9}, Shape{9, 1},
                                   Shape{2, 7}, Shape{7, 2}, Shape{8, 8}}) {
            DirectionalMirror const mirror(angle);
            ImageSizes const sizes(HostImage(QEL_UINT8, shape));
            for (long const x : {0l, -1l, 9l, -50l, 50l, lowest, highest})
                for (long const y : {0l, -1l, 9l, -50l, 50l, lowest, highest}) {
                    long outX = -1;
                    long outY = -1;
                    mirror.computeCoord(sizes, x, y, outX, outY);
                    EXPECT_TRUE(isIn(outX, shape.columns) && isIn(outY, shape.rows))
                        << angle << ' ' << shape << " (" << x << ", " << y << ")";
                }
            Picture<int> const picture = randomPicture<int>(shape, 3);
            HostImage image(picture);
            auto const condition = DirectionalMirrorBorderCondition<int>::New(angle);
            for (Request const& request : {Request{30, -15, 0, 0, 0, 0}, Request{30, -15, -4, 0, 0, 0},
                                           Request{3, lowest, highest, 0, 0, 0}, Request{3, highest, lowest, 0, 0, 0}})
                for (int const voxel : rowOf(*condition, image, request))
                    EXPECT_NE(std::count(picture.voxels.begin(), picture.voxels.end(), voxel), 0);
        }
}

TEST(RoundDoubleToCoordTest, roundsHalvesAwayFromZeroAndStaysInRange)
{
    EXPECT_EQ(roundDoubleToCoord(0.0), 0);
    EXPECT_EQ(roundDoubleToCoord(0.49), 0);
    EXPECT_EQ(roundDoubleToCoord(0.5), 1);
    EXPECT_EQ(roundDoubleToCoord(-0.49), 0);
    EXPECT_EQ(roundDoubleToCoord(-0.5), -1);
    EXPECT_EQ(roundDoubleToCoord(2.5), 3);
    EXPECT_EQ(roundDoubleToCoord(-2.5), -3);
    EXPECT_EQ(roundDoubleToCoord(1e300), highest);
    EXPECT_EQ(roundDoubleToCoord(-1e300), lowest);
    EXPECT_EQ(roundDoubleToCoord(0x1p63), highest);
    EXPECT_EQ(roundDoubleToCoord(-0x1p63), lowest);
    EXPECT_EQ(roundDoubleToCoord(std::numeric_limits<double>::quiet_NaN()), 0);
}

} // namespace
} // namespace qel::access
