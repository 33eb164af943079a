#include <qel/segmentation/Labeling.h>

#include "Core/tests/Support/Algorithms.h"
#include "Segmentation/private/LabelingPrivate.h"

#include <qel/devices/Cpu.h>

#include <map>
#include <random>
#include <type_traits>
#include <utility>

namespace qel::test {
namespace {

using segmentation::Labeling;

// The definition as slowly as it reads: voxel by voxel, with maps for tables.

template <class L> std::size_t entryOf(L label) { return static_cast<std::make_unsigned_t<L>>(label); }

template <class L> struct Stripe
{
    unsigned long begin, end;
    L last = 0;
    /// The parent of a label, 0 for a root: (stripe, label).
    std::map<std::size_t, std::pair<std::size_t, L>> links;
    std::size_t count = 0; // labels that were made
    std::map<std::size_t, L> numbers;

    L parentOf(L label) const
    {
        auto const at = links.find(entryOf(label));
        return at == links.end() ? label : at->second.second;
    }
};

inline void cut(unsigned long begin, unsigned long end, unsigned long grain,
                std::vector<std::pair<unsigned long, unsigned long>>& parts)
{
    if (end - begin <= grain) {
        parts.push_back({begin, end});
        return;
    }
    unsigned long const middle = begin + (end - begin) / 2;
    cut(begin, middle, grain, parts);
    cut(middle, end, grain, parts);
}

template <class L> class PlaneModel
{
public:
    PlaneModel(std::vector<bool> const& foreground, unsigned long columns, unsigned long rows, unsigned long stripes)
        : m_foreground(foreground)
        , m_columns(columns)
        , m_labels(foreground.size(), 0)
    {
        if (columns == 0 || rows == 0)
            return;
        unsigned long const grain = std::max(rows / std::max(stripes, 1ul), 1ul);
        std::vector<std::pair<unsigned long, unsigned long>> parts;
        cut(0, rows, grain, parts);
        for (auto const& [begin, end] : parts)
            m_stripes.push_back(labelled(begin, end));
        joinAll(0, rows, grain);
        number();
        for (std::size_t s = 0; s < m_stripes.size(); ++s)
            for (unsigned long y = m_stripes[s].begin; y < m_stripes[s].end; ++y)
                for (unsigned long x = 0; x < columns; ++x)
                    if (L& label = m_labels[y * columns + x]; label != 0) {
                        auto const [stripe, root] = rootOf({s, label});
                        label = m_stripes[stripe].numbers.at(entryOf(root));
                    }
    }

    std::vector<L> const& labels() const { return m_labels; }
    bool hadCircles() const { return m_hadCircles; }

private:
    L at(unsigned long x, unsigned long y) const { return m_labels[y * m_columns + x]; }

    Stripe<L> labelled(unsigned long begin, unsigned long end)
    {
        Stripe<L> stripe{begin, end, 0, {}, 0, {}};
        std::size_t const self = m_stripes.size();
        for (unsigned long y = begin; y < end; ++y)
            for (unsigned long x = 0; x < m_columns; ++x) {
                if (!m_foreground[y * m_columns + x])
                    continue;
                L const w = x > 0 ? at(x - 1, y) : L(0);
                L const nw = y > begin && x > 0 ? at(x - 1, y - 1) : L(0);
                L const n = y > begin ? at(x, y - 1) : L(0);
                L const ne = y > begin ? at(std::min(x + 1, m_columns - 1), y - 1) : L(0);
                L m;
                if (nw != 0)
                    m = w == 0 ? stripe.parentOf(nw) : std::min(w, stripe.parentOf(nw));
                else if (w == 0 && n == 0 && ne == 0) {
                    stripe.last = static_cast<L>(static_cast<std::make_unsigned_t<L>>(stripe.last) + 1);
                    ++stripe.count;
                    m_labels[y * m_columns + x] = stripe.last;
                    continue;
                } else
                    m = w;
                for (L const above : {n, ne})
                    if (above != 0 && (stripe.parentOf(above) < m || m == 0))
                        m = stripe.parentOf(above);
                std::vector<L> const around = {w, nw, n, ne};
                for (std::size_t i = 0; i < 4; ++i) {
                    L const k = around[i];
                    if (k == 0 || k == m || std::count(around.begin(), around.begin() + static_cast<long>(i), k) > 0)
                        continue;
                    auto const parent = stripe.links.find(entryOf(k));
                    if (parent != stripe.links.end() && parent->second.second != m)
                        stripe.links[entryOf(parent->second.second)] = {self, m};
                    stripe.links[entryOf(k)] = {self, m};
                }
                m_labels[y * m_columns + x] = m;
            }
        // Links in a circle have no end: the smallest label of the circle becomes one.
        for (std::size_t label = 1; label <= stripe.count; ++label) {
            std::size_t next = label;
            std::size_t smallest = label;
            for (std::size_t step = 0; step <= stripe.count && stripe.links.count(next) > 0; ++step) {
                next = entryOf(stripe.links.at(next).second);
                smallest = std::min(smallest, next);
                if (next == label) {
                    m_hadCircles = true;
                    stripe.links.erase(smallest);
                    break;
                }
            }
        }
        return stripe;
    }

    std::pair<std::size_t, L> rootOf(std::pair<std::size_t, L> label) const
    {
        for (;;) {
            auto const& links = m_stripes[label.first].links;
            auto const next = links.find(entryOf(label.second));
            if (next == links.end())
                return label;
            label = next->second;
        }
    }

    std::size_t stripeAt(unsigned long row) const
    {
        std::size_t s = 0;
        while (m_stripes[s].end <= row)
            ++s;
        return s;
    }

    void joinAll(unsigned long begin, unsigned long end, unsigned long grain)
    {
        if (end - begin <= grain)
            return;
        unsigned long const middle = begin + (end - begin) / 2;
        joinAll(begin, middle, grain);
        joinAll(middle, end, grain);
        std::size_t const upper = stripeAt(middle - 1);
        std::size_t const lower = stripeAt(middle);
        for (unsigned long x = 0; x < m_columns; ++x) {
            L const b = at(x, middle - 1);
            if (b == 0)
                continue;
            auto const root = rootOf({upper, b});
            for (long offset : {-1, 0, 1}) {
                long const neighbour = static_cast<long>(x) + offset;
                if (neighbour < 0 || neighbour >= static_cast<long>(m_columns))
                    continue;
                L const a = at(static_cast<unsigned long>(neighbour), middle);
                if (a == 0)
                    continue;
                auto const other = rootOf({lower, a});
                if (other != root)
                    m_stripes[other.first].links[entryOf(other.second)] = root;
            }
        }
    }

    void number()
    {
        unsigned int counter = 0;
        for (Stripe<L>& stripe : m_stripes)
            for (std::size_t label = 1; label <= stripe.count; ++label)
                if (stripe.links.count(label) == 0)
                    stripe.numbers[label] = static_cast<L>(++counter);
    }

    std::vector<bool> const& m_foreground;
    unsigned long m_columns;
    std::vector<L> m_labels;
    std::vector<Stripe<L>> m_stripes;
    bool m_hadCircles = false;
};

unsigned long processors() { return std::max(devices::Cpu::getDevice().getLogicalProcessors(), 1u); }

/// Calls `visit(foreground, first voxel)` for each plane.
template <class T, class Visit> void forEachPlane(Picture<T> const& picture, Visit const& visit)
{
    std::size_t const size = picture.shape.columns * picture.shape.rows;
    for (std::size_t first = 0; size > 0 && first < picture.voxels.size(); first += size) {
        std::vector<bool> foreground(size);
        for (std::size_t i = 0; i < size; ++i)
            foreground[i] = !(picture.voxels[first + i] == T(0));
        visit(foreground, first);
    }
}

template <class L, class T> Picture<L> labelled(Picture<T> const& picture, unsigned long stripes = processors())
{
    Picture<L> labels(picture.shape);
    forEachPlane(picture, [&](std::vector<bool> const& foreground, std::size_t first) {
        PlaneModel<L> const plane(foreground, picture.shape.columns, picture.shape.rows, stripes);
        std::copy(plane.labels().begin(), plane.labels().end(), labels.voxels.begin() + static_cast<long>(first));
    });
    return labels;
}

/// Groups by flood fill, numbered as they are met.
template <class T> Picture<unsigned int> flooded(Picture<T> const& picture)
{
    Picture<unsigned int> labels(picture.shape);
    auto const columns = static_cast<long>(picture.shape.columns);
    auto const rows = static_cast<long>(picture.shape.rows);
    forEachPlane(picture, [&](std::vector<bool> const& foreground, std::size_t first) {
        unsigned int count = 0;
        for (std::size_t seed = 0; seed < foreground.size(); ++seed) {
            if (!foreground[seed] || labels.voxels[first + seed] != 0)
                continue;
            ++count;
            std::vector<std::size_t> front = {seed};
            labels.voxels[first + seed] = count;
            while (!front.empty()) {
                long const x = static_cast<long>(front.back()) % columns;
                long const y = static_cast<long>(front.back()) / columns;
                front.pop_back();
                for (long v = std::max(y - 1, 0l); v <= std::min(y + 1, rows - 1); ++v)
                    for (long u = std::max(x - 1, 0l); u <= std::min(x + 1, columns - 1); ++u) {
                        auto const at = static_cast<std::size_t>(v * columns + u);
                        if (foreground[at] && labels.voxels[first + at] == 0) {
                            labels.voxels[first + at] = count;
                            front.push_back(at);
                        }
                    }
            }
        }
    });
    return labels;
}

/// Whether two pictures part their voxels in the same way, plane by plane, and number from 1 without a gap.
template <class A, class B> testing::AssertionResult sameGroups(Picture<A> const& expected, Picture<B> const& actual)
{
    std::size_t const size = expected.shape.columns * expected.shape.rows;
    for (std::size_t first = 0; first < expected.voxels.size(); first += size) {
        std::map<A, B> there;
        std::map<B, A> back;
        for (std::size_t i = first; i < first + size; ++i) {
            A const a = expected.voxels[i];
            B const b = actual.voxels[i];
            if ((a == 0) != (b == 0))
                return testing::AssertionFailure() << "voxel " << i << " is foreground in one";
            if (a == 0)
                continue;
            if (there.emplace(a, b).first->second != b)
                return testing::AssertionFailure() << "group " << +a << " has two numbers at voxel " << i;
            if (back.emplace(b, a).first->second != a)
                return testing::AssertionFailure() << "number " << +b << " is of two groups at voxel " << i;
        }
        if (!back.empty() && (back.begin()->first != 1 || back.rbegin()->first != B(back.size())))
            return testing::AssertionFailure() << "numbers have gaps";
    }
    return testing::AssertionSuccess();
}

/// Foreground voxels of any value, at this density.
template <class T> Picture<T> noise(Shape const& shape, unsigned seed, double density = 0.5)
{
    std::mt19937 random(seed);
    std::bernoulli_distribution isForeground(density);
    Picture<T> const values = randomPicture<T>(shape, seed, true);
    Picture<T> picture(shape);
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        if (isForeground(random))
            picture.voxels[i] = values.voxels[i] == T(0) ? T(1) : values.voxels[i];
    return picture;
}

/// Discs at random places.
Picture<unsigned char> discs(Shape const& shape, unsigned seed)
{
    std::mt19937 random(seed);
    Picture<unsigned char> picture(shape);
    for (unsigned long plan = 0; plan < shape.plans; ++plan)
        for (int disc = 0; disc < 40; ++disc) {
            long const x = static_cast<long>(random() % shape.columns);
            long const y = static_cast<long>(random() % shape.rows);
            long const radius = static_cast<long>(2 + random() % 7);
            for (long v = 0; v < static_cast<long>(shape.rows); ++v)
                for (long u = 0; u < static_cast<long>(shape.columns); ++u)
                    if ((u - x) * (u - x) + (v - y) * (v - y) <= radius * radius)
                        picture.at(static_cast<unsigned long>(u), static_cast<unsigned long>(v), plan) = 1;
        }
    return picture;
}

/// A picture of one plane from its rows: ' ' is background.
Picture<unsigned char> drawn(std::vector<std::string> const& rows)
{
    Picture<unsigned char> picture(Shape{rows.front().size(), rows.size()});
    for (unsigned long y = 0; y < rows.size(); ++y)
        for (unsigned long x = 0; x < rows[y].size(); ++x)
            picture.at(x, y) = rows[y][x] != ' ';
    return picture;
}

template <class Callable> void forEachLabelType(Callable&& callable)
{
    forEachVoxelType([&]<class L>() {
        if constexpr (std::is_integral_v<L>)
            callable.template operator()<L>();
    });
}

/// The same run on a machine with as many processors.
template <class L, class T> Picture<L> labelledInStripes(Picture<T> const& picture, unsigned int stripes)
{
    HostImage const in(picture);
    HostImage out(VoxelTypeOf<L>::value, picture.shape);
    Ref<Labeling> const owner = Labeling::New();
    segmentation::LabelingPrivate<L> labeling(owner.get(), &in, &out, stripes);
    labeling.run();
    return fromImage<L>(out);
}

class LabelingTest : public testing::Test
{
protected:
    template <class L, class T> Picture<L> run(Picture<T> const& picture)
    {
        HostImage const in(picture);
        HostImage out(VoxelTypeOf<L>::value, {1, 1});
        labeling->input = &in;
        labeling->output = &out;
        labeling->run();
        EXPECT_TRUE(samePicture(picture, in));
        return fromImage<L>(out);
    }

    Ref<Labeling> labeling = Labeling::New();
};

TEST_F(LabelingTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(Labeling::getClassInfo()->getName(), String("Labeling"));
    EXPECT_EQ(Labeling::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("Labeling"), Labeling::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("Labeling")->createInstance();
    EXPECT_NE(dynamic_cast<Labeling*>(other.get()), nullptr);
}

TEST_F(LabelingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*labeling), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*labeling), std::vector<std::string>({"image output = null"}));
    EXPECT_TRUE(hasNoBorder(*labeling));
    EXPECT_EQ(levelsOf(*labeling), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(LabelingTest, matchesItsDefinitionForEveryPairOfTypes)
{
    forceLevel(*labeling, SCALAR);
    unsigned seed = 1;
    forEachVoxelType([&]<class T>() {
        forEachLabelType([&]<class L>() {
            for (Shape const& shape : {Shape{33, 12, 2}, Shape{64, 3}, Shape{1, 9}}) {
                auto const picture = noise<T>(shape, seed, 0.2 + 0.1 * (seed % 6));
                EXPECT_TRUE(samePicture(labelled<L>(picture), run<L>(picture)));
                ++seed;
            }
        });
    });
}

TEST_F(LabelingTest, matchesItsDefinitionForEveryShape)
{
    onOneAndFourThreads([&] {
        unsigned seed = 100;
        for (Shape const& shape : allShapes()) {
            if (shape.spectralSeries != 1)
                continue;
            auto const picture = noise<unsigned short>(shape, seed, 0.2 + 0.1 * (seed % 7));
            EXPECT_TRUE(samePicture(labelled<unsigned int>(picture), run<unsigned int>(picture)));
            ++seed;
        }
    });
}

TEST_F(LabelingTest, matchesItsDefinitionForAnyNumberOfStripes)
{
    for (unsigned int const stripes : {0u, 1u, 2u, 3u, 5u, 8u, 64u, 1000u}) {
        SCOPED_TRACE(testing::Message() << stripes << " stripes");
        for (unsigned seed = 0; seed < 6; ++seed) {
            auto const picture = noise<unsigned char>(Shape{67 + seed, 41 - 8 * (seed % 3)}, seed, 0.3 + 0.1 * seed);
            EXPECT_TRUE(samePicture(labelled<int>(picture, stripes), labelledInStripes<int>(picture, stripes)));
        }
    }
}

TEST_F(LabelingTest, givesTheSameNumbersOnOneAndOnEightThreads)
{
    auto const picture = noise<unsigned char>(Shape{403, 301, 3}, 7, 0.45);
    auto const expected = withThreads(1, [&] { return run<unsigned int>(picture); });
    for (int repeat = 0; repeat < 5; ++repeat) {
        EXPECT_TRUE(samePicture(expected, withThreads(8, [&] { return run<unsigned int>(picture); })));
        auto const stripes = withThreads(8, [&] { return labelledInStripes<unsigned int>(picture, 16); });
        EXPECT_TRUE(samePicture(withThreads(1, [&] { return labelledInStripes<unsigned int>(picture, 16); }), stripes));
    }
}

TEST_F(LabelingTest, findsTheGroupsOfSmoothObjects)
{
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        auto const picture = discs(Shape{97, 83, 2}, seed);
        auto const groups = flooded(picture);
        EXPECT_TRUE(sameGroups(groups, run<unsigned short>(picture)));
        for (unsigned int const stripes : {1u, 4u, 83u})
            EXPECT_TRUE(sameGroups(groups, labelledInStripes<unsigned int>(picture, stripes)));
    }
}

TEST_F(LabelingTest, neverJoinsGroupsAndSeparatesFewInNoise)
{
    int separated = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        auto const picture = noise<unsigned char>(Shape{100, 100}, seed);
        auto const groups = flooded(picture);
        auto const labels = run<unsigned int>(picture);
        std::map<unsigned int, unsigned int> groupOf;
        for (std::size_t i = 0; i < groups.voxels.size(); ++i)
            EXPECT_EQ(groupOf.emplace(labels.voxels[i], groups.voxels[i]).first->second, groups.voxels[i]);
        separated += !sameGroups(groups, labels);
    }
    EXPECT_GT(separated, 0);
    EXPECT_LT(separated, 60);
}

TEST_F(LabelingTest, leavesAnEmptyPlaneEmpty)
{
    Picture<float> const empty(Shape{70, 9, 2}, -0.0f);
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{70, 9, 2}), run<unsigned char>(empty)));
}

TEST_F(LabelingTest, takesWhateverIsNotZeroForForeground)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    Picture<double> const reals(Shape{9}, {nan, 0, -1, -0.0, 1e-320, 0, 256, 0, -nan});
    EXPECT_TRUE(samePicture(Picture<short>(Shape{9}, {1, 0, 2, 0, 3, 0, 4, 0, 5}), run<short>(reals)));
    Picture<long> const wide(Shape{4}, {1l << 32, 0, std::numeric_limits<long>::min(), 0});
    EXPECT_TRUE(samePicture(Picture<short>(Shape{4}, {1, 0, 2, 0}), run<short>(wide)));
}

TEST_F(LabelingTest, numbersTheRunsOfASingleRow)
{
    auto const picture = drawn({"xx x  xxx x"});
    EXPECT_TRUE(
        samePicture(Picture<unsigned char>(Shape{11}, {1, 1, 0, 2, 0, 0, 3, 3, 3, 0, 4}), run<unsigned char>(picture)));
}

TEST_F(LabelingTest, connectsCornersWithinAndAcrossStripes)
{
    for (auto const& rows : {std::vector<std::string>{"x ", " x"}, std::vector<std::string>{" x", "x "},
                             std::vector<std::string>{"x   x", " x x ", "  x  ", " x x ", "x   x"}})
        for (unsigned int const stripes : {1u, 2u, 5u}) {
            auto const picture = drawn(rows);
            Picture<unsigned int> expected(picture.shape);
            std::copy(picture.voxels.begin(), picture.voxels.end(), expected.voxels.begin());
            EXPECT_TRUE(samePicture(expected, labelledInStripes<unsigned int>(picture, stripes)));
        }
}

TEST_F(LabelingTest, givesTheArmsOfAUOneNumber)
{
    auto const picture = drawn({"x   x", "x   x", "x   x", "xxxxx"});
    Picture<unsigned int> expected(picture.shape);
    std::copy(picture.voxels.begin(), picture.voxels.end(), expected.voxels.begin());
    for (unsigned int const stripes : {1u, 2u, 3u, 4u})
        EXPECT_TRUE(samePicture(expected, labelledInStripes<unsigned int>(picture, stripes)));
}

TEST_F(LabelingTest, startsEachPlaneAtOneAgain)
{
    Picture<unsigned char> picture(Shape{5, 4, 3, 2});
    for (unsigned long time = 0; time < 2; ++time)
        for (unsigned long plan = 0; plan < 3; ++plan) {
            picture.at(0, 0, plan, time) = static_cast<unsigned char>(plan != 1);
            picture.at(4, 3, plan, time) = 1;
        }
    auto const labels = run<unsigned int>(picture);
    for (unsigned long time = 0; time < 2; ++time) {
        EXPECT_EQ(labels.at(0, 0, 0, time), 1u);
        EXPECT_EQ(labels.at(4, 3, 0, time), 2u);
        EXPECT_EQ(labels.at(4, 3, 1, time), 1u);
        EXPECT_EQ(labels.at(4, 3, 2, time), 2u);
    }
}

TEST_F(LabelingTest, wrapsNumbersInItsOutputsType)
{
    // 600 single voxels: in one row they wrap within its stripe, in rows of 100 only when the plane is numbered.
    Picture<unsigned char> row(Shape{1200, 1});
    Picture<unsigned char> field(Shape{200, 11});
    Picture<unsigned char> unsignedNumbers(field.shape);
    Picture<signed char> signedNumbers(field.shape);
    for (unsigned long i = 0; i < 600; ++i) {
        row.at(2 * i) = 1;
        field.at(2 * (i % 100), i / 100 * 2) = 1;
        unsignedNumbers.at(2 * (i % 100), i / 100 * 2) = static_cast<unsigned char>(i + 1);
        signedNumbers.at(2 * (i % 100), i / 100 * 2) = static_cast<signed char>(i + 1);
    }
    EXPECT_TRUE(samePicture(unsignedNumbers, labelledInStripes<unsigned char>(field, 11)));
    EXPECT_TRUE(samePicture(signedNumbers, labelledInStripes<signed char>(field, 11)));
    EXPECT_TRUE(samePicture(labelled<unsigned char>(row), run<unsigned char>(row)));
    EXPECT_TRUE(samePicture(labelled<signed char>(row), run<signed char>(row)));
}

TEST_F(LabelingTest, staysInItsTablesWhereLabelsWrapWithinAStripe)
{
    int withCircles = 0;
    for (unsigned seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        auto const picture = noise<unsigned char>(Shape{211, 60}, seed, 0.15 + 0.02 * (seed % 20));
        for (unsigned int const stripes : {1u, 3u}) {
            EXPECT_TRUE(samePicture(labelled<unsigned char>(picture, stripes),
                                    labelledInStripes<unsigned char>(picture, stripes)));
            EXPECT_TRUE(
                samePicture(labelled<signed char>(picture, stripes), labelledInStripes<signed char>(picture, stripes)));
        }
        forEachPlane(picture, [&](std::vector<bool> const& foreground, std::size_t) {
            withCircles += PlaneModel<signed char>(foreground, 211, 60, 1).hadCircles();
        });
    }
    EXPECT_GT(withCircles, 0);
    // Beyond what 16 bits hold.
    Picture<unsigned char> dots(Shape{1024, 300});
    for (unsigned long y = 0; y < 300; y += 2)
        for (unsigned long x = y / 2 % 2; x < 1024; x += 2)
            dots.at(x, y) = 1;
    EXPECT_TRUE(samePicture(labelled<unsigned short>(dots, 1), labelledInStripes<unsigned short>(dots, 1)));
    EXPECT_TRUE(samePicture(labelled<short>(dots, 1), labelledInStripes<short>(dots, 1)));
}

TEST_F(LabelingTest, joinsBlocksThatTileARectangleInAnyWay)
{
    // As a body is free to be cut: into columns too, and joined from either side.
    using Body = segmentation::BlockLabeling<unsigned int, unsigned int>;
    using access::Block2d;
    auto const picture = discs(Shape{60, 50}, 3);
    HostImage const in(picture);
    Ref<Labeling> const owner = Labeling::New();
    HostImage out(QEL_UINT32, picture.shape);
    segmentation::LabelingPrivate<unsigned int> frame(owner.get(), &in, &out, 1);
    auto const foreground = segmentation::Foreground::New(&in);
    auto const block = [](unsigned long x, unsigned long endX, unsigned long y, unsigned long endY) {
        return Block2d({endY, y, 50}, {endX, x, 60}, 0, 0, 0);
    };
    for (bool const isReversed : {false, true}) {
        Body parts[4] = {{*foreground, frame}, {*foreground, frame}, {*foreground, frame}, {*foreground, frame}};
        parts[0].runBlock(block(0, 23, 0, 31));
        parts[1].runBlock(block(23, 60, 0, 31));
        parts[2].runBlock(block(0, 23, 31, 50));
        parts[3].runBlock(block(23, 60, 31, 50));
        auto const join = [&](Body& first, Body& second) -> Body& {
            Body& left = isReversed ? second : first;
            left.join(isReversed ? first : second);
            return left;
        };
        Body& all = join(join(parts[0], parts[1]), join(parts[2], parts[3]));
        EXPECT_EQ(all.getBlocks().size(), 4u);
        std::size_t roots = 0;
        for (auto const& [start, labels] : all.getBlocks())
            for (auto const& entry : labels.table)
                roots += entry.label == 0;
        auto const groups = flooded(picture);
        EXPECT_EQ(roots, *std::max_element(groups.voxels.begin(), groups.voxels.end()));
    }
}

TEST_F(LabelingTest, worksInPlace)
{
    onOneAndFourThreads([&] {
        forEachLabelType([&]<class L>() {
            auto const picture = noise<L>(Shape{77, 31, 2}, 3, 0.4);
            HostImage image(picture);
            labeling->input = &image;
            labeling->output = &image;
            labeling->run();
            EXPECT_TRUE(samePicture(labelled<L>(picture), image));
        });
    });
}

TEST_F(LabelingTest, givesItsOwnResultBackWhenItRunsOnIt)
{
    auto const picture = discs(Shape{80, 60}, 11);
    auto const once = run<unsigned int>(picture);
    EXPECT_TRUE(samePicture(once, run<unsigned int>(once)));
}

TEST_F(LabelingTest, shapesItsOutputAndKeepsItsTypeAndMeaning)
{
    HostImage in(noise<float>(Shape{4, 3, 2, 2}, 1));
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    HostImage out(QEL_INT64, {1, 1});
    out.setInterpretation(QEL_BINARY);
    labeling->input = &in;
    labeling->output = &out;
    labeling->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT64);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    EXPECT_EQ(labeling->getProgress(), 100);
}

TEST_F(LabelingTest, refusesWrongImagesInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out;
    auto const text = [](std::string const& message, std::string const& property) {
        return ruleText(message, property, "Labeling");
    };
    EXPECT_QEL_WHAT(labeling->run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    labeling->input = &in;
    EXPECT_QEL_WHAT(labeling->run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    labeling->output = &out;
    HostImage const series(QEL_UINT8, {3, 3, 1, 1, 2});
    labeling->input = &series;
    EXPECT_THROW(labeling->run(), RuleException);
    labeling->input = &in;
    HostImage real(QEL_FLOAT32, {3, 3});
    labeling->output = &real;
    EXPECT_QEL_WHAT(labeling->run(), RuleException,
                    text("The parameter \"output\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                         "int16, int32, int64. Current data type is float32.",
                         "output"));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_EQ(real.callsOf(WRITE_ROW), 0u);
    labeling->output = &out;
    out.failOn(RESERVE);
    EXPECT_THROW(labeling->run(), RuleException);
    EXPECT_TRUE(isAtRest(*labeling));
}

TEST_F(LabelingTest, callsImagesFromOtherThreadsForRowsOnly)
{
    HostImage const in(noise<unsigned char>(Shape{50, 200, 4}, 1));
    HostImage out;
    labeling->input = &in;
    labeling->output = &out;
    withThreads(4, [&] { labeling->run(); });
    EXPECT_TRUE(onlyRowsWereForeign(in));
    EXPECT_TRUE(onlyRowsWereForeign(out));
}

TEST_F(LabelingTest, stopsWhenItIsCancelled)
{
    auto const picture = noise<unsigned char>(Shape{50, 200, 400}, 1);
    ObservedImage in(picture);
    HostImage out(QEL_UINT16, picture.shape);
    labeling->input = &in;
    labeling->output = &out;
    std::atomic<int> rows = 0;
    in.onRead = [&] {
        if (++rows == 300)
            labeling->cancelExecution();
    };
    labeling->run();
    EXPECT_LT(labeling->getProgress(), 50);
    EXPECT_LT(in.callsOf(READ_ROW), 1000u);
    // The first plane was done; the second is whole, or as it was.
    auto const expected = labelled<unsigned short>(picture);
    auto const left = fromImage<unsigned short>(out);
    for (std::size_t i = 0; i < 10000; ++i)
        ASSERT_EQ(left.voxels[i], expected.voxels[i]);
    for (std::size_t i = 20000; i < left.voxels.size(); ++i)
        ASSERT_EQ(left.voxels[i], 0xCDCD);
    in.onRead = nullptr;
    labeling->run();
    EXPECT_TRUE(samePicture(expected, out));
}

TEST_F(LabelingTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = noise<unsigned int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<Labeling>(
        [&](Labeling& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(QEL_INT16, Shape{1, 1}));
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(labelled<short>(picture), *images[1])); });
}

} // namespace
} // namespace qel::test
