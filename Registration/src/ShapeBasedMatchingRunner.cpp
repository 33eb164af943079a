#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/storeResult.h"
#include "Registration/private/ShapeBasedMatching/Pyramid.h"
#include "Registration/private/ShapeBasedMatching/ShapeMatcher.h"

#include <qel/registration/ShapeBasedMatching2D.h>

namespace qel::registration {

namespace {

/// The points whose mask is set, in the order of voxels.
Shape<double> maskToShape(DoubleImage const& mask, GradientImages const& gradients)
{
    Shape<double> shape;
    std::size_t const width = mask->numOfCols();
    std::vector<double> set(width), x(width), y(width);
    for (access::RowPosition at : mask.plans()) {
        for (at.row = 0; at.row < static_cast<long>(mask->numOfRows()); ++at.row) {
            mask->read(set.data(), width, at);
            gradients.x->read(x.data(), width, at);
            gradients.y->read(y.data(), width, at);
            for (std::size_t column = 0; column < width; ++column) {
                if (!(set[column] > 0))
                    continue;
                shape.points.emplace_back(static_cast<double>(column), static_cast<double>(at.row));
                shape.gradients.emplace_back(x[column], y[column]);
            }
        }
    }
    return shape;
}

/// The frame's child for the search of one level: cancelling it stops the loop.
class LevelSearch : public algorithms::AbstractPrivateImplementation
{
public:
    using AbstractPrivateImplementation::AbstractPrivateImplementation;

    void cancelExecution() override
    {
        AbstractPrivateImplementation::cancelExecution();
        context.cancel_group_execution();
    }

    tbb::task_group_context context;
};

class ShapeBasedMatchingPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    explicit ShapeBasedMatchingPrivate(ShapeBasedMatching2D& matching)
        : AbstractPrivateImplementation(&matching)
        , m_matching(matching)
        , m_poses({matching.scaleBegin, matching.rotationBegin}, {matching.scaleEnd, matching.rotationEnd},
                  {matching.scaleStep, matching.rotationStep})
        , m_pyramids{Pyramid(matching.inputGradientX, matching.numOfLevel, miscellaneous::MEAN),
                     Pyramid(matching.inputGradientY, matching.numOfLevel, miscellaneous::MEAN),
                     Pyramid(matching.templateGradientX, matching.numOfLevel, miscellaneous::MEAN),
                     Pyramid(matching.templateGradientY, matching.numOfLevel, miscellaneous::MEAN),
                     Pyramid(matching.mask, matching.numOfLevel, miscellaneous::MAX)}
    {}

    void run()
    {
        unsigned long const numOfLevels = m_matching.numOfLevel;
        Publication const publication(*this);
        setNumOfSteps(5 * (numOfLevels - 1) + numOfLevels);
        for (Pyramid& pyramid : m_pyramids)
            if (!pyramid.run(this))
                return;
        Match best;
        for (unsigned long level = numOfLevels; level-- > 0;)
            if (!searchLevel(level, level + 1 == numOfLevels, best))
                return;
    }

private:
    /// Below the coarsest level, around what was found. False if the run was cancelled.
    bool searchLevel(unsigned long level, bool isCoarsest, Match& best)
    {
        GradientImages const images{DoubleImage(m_pyramids[0].get(level)), DoubleImage(m_pyramids[1].get(level))};
        GradientImages const gradients{DoubleImage(m_pyramids[2].get(level)), DoubleImage(m_pyramids[3].get(level))};
        DoubleImage const mask(m_pyramids[4].get(level));
        long const numOfCols = static_cast<long>(images.x->numOfCols());
        long const numOfRows = static_cast<long>(images.x->numOfRows());
        Window window{0, numOfCols, 0, numOfRows, numOfCols, numOfRows};
        if (!isCoarsest) {
            constexpr long around = 5;
            window.colsBegin = std::max(2 * best.x - around, 0l);
            window.colsEnd = std::min(2 * best.x + around + 1, numOfCols);
            window.rowsBegin = std::max(2 * best.y - around, 0l);
            window.rowsEnd = std::min(2 * best.y + around + 1, numOfRows);
        }
        ShapeMatcher const matcher(maskToShape(mask, gradients),
                                   m_matching.similarityMeasure.get() == ShapeBasedMatching2D::NORMALIZED_ABS);

        LevelSearch search(nullptr);
        search.setTotalWork(m_poses.size() * images.x.plans().size());
        setCurrentChild(&search);
        best = matcher.search(images, window, m_poses, search.context, [&](unsigned long numOfPoses) {
            search.addDoneWork(numOfPoses);
            return !search.isCancelled();
        });
        removeChild();
        nextStep();
        if (isCancelled())
            return false;
        if (best.x < 0)
            best = Match{best.score, 0, 0, 0, {0, 0}}; // no position has a score
        if (level == 0)
            store(best, matcher.center());
        return true;
    }

    void store(Match const& best, math::Vector2<double> const& center)
    {
        Direction const direction = Direction::ofDegrees(best.at.rotation);
        double const scaledCosine = best.at.scale * direction.cosine;
        double const scaledSine = best.at.scale * direction.sine;
        storeResult(m_matching.outputTx,
                    static_cast<double>(best.x) - (scaledCosine * center[0] - scaledSine * center[1]));
        storeResult(m_matching.outputTy,
                    static_cast<double>(best.y) - (scaledSine * center[0] + scaledCosine * center[1]));
        storeResult(m_matching.outputScale, best.at.scale);
        storeResult(m_matching.outputRotation, best.at.rotation);
    }

    ShapeBasedMatching2D& m_matching;
    PoseRange m_poses;
    Pyramid m_pyramids[5];
};

class ShapeBasedMatchingRunner : public ScalarRunner<ShapeBasedMatching2D>
{
    void runOn(ShapeBasedMatching2D& matching) const override
    {
        if (matching.numOfLevel.get() == 0) {
            storeResult(matching.outputTx, 0);
            storeResult(matching.outputTy, 0);
            storeResult(matching.outputScale, 1);
            storeResult(matching.outputRotation, 0);
            return;
        }
        ShapeBasedMatchingPrivate(matching).run();
    }
};

QEL_REGISTER_RUNNER(ShapeBasedMatching2D, ShapeBasedMatchingRunner)

} // namespace

} // namespace qel::registration
