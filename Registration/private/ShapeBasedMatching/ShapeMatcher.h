#pragma once

#include "Registration/private/ShapeBasedMatching/GradientField.h"
#include "Registration/private/ShapeBasedMatching/Shape.h"

#include <functional>
#include <limits>

namespace qel::registration {

/// How a shape is turned and scaled.
struct Pose
{
    double scale;
    double rotation;
};

/// All poses of a range, lower scales first, then lower rotations: both by repeated addition.
class PoseRange
{
public:
    /// Throws InvalidCall where a range has no end or its step is lost in it.
    PoseRange(Pose const& begin, Pose const& end, Pose const& step);

    /// How many poses there are.
    unsigned long size() const { return m_numOfScales * m_numOfRotations; }
    double highestScale() const { return m_end.scale; }

    /// The next poses, at most `count`; none behind the last one.
    std::vector<Pose> next(std::size_t count);

private:
    static unsigned long countOf(char const* name, double begin, double end, double step);

    Pose m_begin;
    Pose m_end;
    Pose m_step;
    unsigned long m_numOfScales;
    unsigned long m_numOfRotations;
    Pose m_current;
};

/// A position, its score, and the pose.
struct Match
{
    double score = std::numeric_limits<double>::lowest();
    long x = -1;
    long y = -1;
    unsigned long pose = 0; ///< its number
    Pose at = {0, 0};
};

/// Finds the place and the pose of a shape: the first of the highest score, by poses, plans, rows and columns.
class ShapeMatcher
{
public:
    /// `absolute`: the absolute value of a sum is its score.
    ShapeMatcher(Shape<double> const& shape, bool absolute);

    math::Vector2<double> const& center() const { return m_center; }

    /// Searches all positions of the window in all plans. Poses are tried in parallel; the result does not depend on
    /// how. `onPoses` is called with how many are done, in one plan each, and answers whether to go on.
    Match search(GradientImages const& images, Window const& window, PoseRange const& poses,
                 tbb::task_group_context& context, std::function<bool(unsigned long)> const& onPoses) const;

private:
    class Task;
    long reachOf(double scale) const;

    Shape<double> m_shape;
    math::Vector2<double> m_center;
    bool m_absolute;
};

} // namespace qel::registration
