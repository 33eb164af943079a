#include "Registration/private/ShapeBasedMatching/ShapeMatcher.h"

#include "Core/private/Throw.h"

#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <atomic>
#include <cmath>

namespace qel::registration {

PoseRange::PoseRange(Pose const& begin, Pose const& end, Pose const& step)
    : m_begin(begin)
    , m_end(end)
    , m_step(step)
    , m_numOfScales(countOf("scales", begin.scale, end.scale, step.scale))
    , m_numOfRotations(countOf("rotations", begin.rotation, end.rotation, step.rotation))
    , m_current(begin)
{}

unsigned long PoseRange::countOf(char const* name, double begin, double end, double step)
{
    constexpr double most = 1e9; // steps: far more than can be tried
    if (!((end - begin) / step < most) || !(begin + step > begin) || !(end + step > end))
        QEL_THROW(InvalidCall, "The range of " << name << " cannot be walked in its steps.");
    unsigned long count = 0;
    for (double value = begin; value <= end; value += step)
        ++count;
    return count;
}

std::vector<Pose> PoseRange::next(std::size_t count)
{
    std::vector<Pose> poses;
    while (poses.size() < count && m_current.scale <= m_end.scale) {
        poses.push_back(m_current);
        m_current.rotation += m_step.rotation;
        if (!(m_current.rotation <= m_end.rotation)) {
            m_current.rotation = m_begin.rotation;
            m_current.scale += m_step.scale;
        }
    }
    return poses;
}

namespace {

/// What positions must come up to: the best score of all tasks. Which of them finds it first does not matter, for only
/// what stays below it for sure is left out.
class SharedLimit
{
public:
    double get() const { return m_value.load(std::memory_order_relaxed); }
    void raise(double score)
    {
        double known = get();
        while (known < score && !m_value.compare_exchange_weak(known, score, std::memory_order_relaxed)) {
        }
    }

private:
    std::atomic<double> m_value{std::numeric_limits<double>::lowest()};
};

struct Scratch
{
    Shape<double> shape;
    ShapeTerms terms;
};

/// The first of the best positions in some rows, for one pose.
Match searchRows(GradientField const& field, Window const& window, long rowsBegin, long rowsEnd, bool absolute,
                 ShapeTerms& terms, SharedLimit& limit)
{
    Match best;
    double scores[positionsAtOnce];
    for (long row = rowsBegin; row < rowsEnd; ++row) {
        ShapeTerms::List const list = terms.at(row, field.rowsBegin(), field.rowsEnd());
        for (long col = window.colsBegin; col < window.colsEnd; col += static_cast<long>(positionsAtOnce)) {
            if (terms.areOdd())
                scoreOddTerms(field.x(col, row), field.y(col, row), list.terms, list.count, scores);
            else if (!scorePositions(field.x(col, row), field.y(col, row), list.terms, list.count, list.reachable,
                                     limit.get() - terms.margin(), absolute, scores))
                continue;
            long const count = std::min(window.colsEnd - col, static_cast<long>(positionsAtOnce));
            for (long i = 0; i < count; ++i) {
                double const score = absolute ? std::abs(scores[i]) : scores[i];
                if (score > best.score) {
                    best.score = score;
                    best.x = col + i;
                    best.y = row;
                }
            }
            limit.raise(best.score);
        }
    }
    return best;
}

} // namespace

ShapeMatcher::ShapeMatcher(Shape<double> const& shape, bool absolute)
    : m_shape(shape)
    , m_center(details::computeCenter(shape))
    , m_absolute(absolute)
{}

long ShapeMatcher::reachOf(double scale) const
{
    double farthest = 0;
    for (math::Vector2<double> const& point : m_shape.points)
        farthest = std::max(farthest, (point - m_center).length());
    return static_cast<long>(std::min(farthest * scale, 1e9)) + 1;
}

Match ShapeMatcher::search(GradientImages const& images, Window const& window, PoseRange const& poses,
                           tbb::task_group_context& context, std::function<bool(unsigned long)> const& onPoses) const
{
    // Enough poses at once to keep many threads busy. Few poses on large images are cut into rows.
    constexpr std::size_t posesAtOnce = 512;
    constexpr long rowsAtOnce = 32;
    Match best;
    if (window.isEmpty())
        return best;
    SharedLimit limit;
    tbb::enumerable_thread_specific<Scratch> scratches;
    for (access::RowPosition const& plan : images.x.plans()) {
        GradientField const field(images, plan, window, reachOf(poses.highestScale()), context);
        PoseRange walk = poses;
        unsigned long numOfDone = 0;
        for (std::vector<Pose> batch = walk.next(posesAtOnce); !batch.empty(); batch = walk.next(posesAtOnce)) {
            long const numOfRows = window.rowsEnd - window.rowsBegin;
            long const rowsOfTask = batch.size() < 64 ? std::min(rowsAtOnce, numOfRows) : numOfRows;
            std::size_t const numOfStrips = static_cast<std::size_t>((numOfRows + rowsOfTask - 1) / rowsOfTask);
            std::vector<Match> found(batch.size() * numOfStrips);
            tbb::parallel_for(
                tbb::blocked_range<std::size_t>(0, found.size(), 1),
                [&](tbb::blocked_range<std::size_t> const& tasks) {
                    Scratch& scratch = scratches.local();
                    for (std::size_t task = tasks.begin(); task < tasks.end(); ++task) {
                        Pose const& pose = batch[task / numOfStrips];
                        scratch.shape = m_shape;
                        details::transformToCenter(scratch.shape, m_center, pose.rotation, pose.scale);
                        scratch.terms.assign(scratch.shape, window, field.stride(), field.hasNaN());
                        long const rowsBegin = window.rowsBegin + static_cast<long>(task % numOfStrips) * rowsOfTask;
                        found[task] =
                            searchRows(field, window, rowsBegin, std::min(rowsBegin + rowsOfTask, window.rowsEnd),
                                       m_absolute, scratch.terms, limit);
                        found[task].pose = numOfDone + task / numOfStrips;
                        found[task].at = pose;
                    }
                },
                tbb::simple_partitioner(), context);
            // An earlier pose wins over an equal one of an earlier plan.
            for (Match const& match : found)
                if (match.score > best.score || (match.score == best.score && match.pose < best.pose))
                    best = match;
            numOfDone += batch.size();
            if (!onPoses(batch.size()))
                return best;
        }
    }
    return best;
}

} // namespace qel::registration
