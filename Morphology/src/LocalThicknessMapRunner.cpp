#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Morphology/private/BallPainter.h"

#include <qel/Ref.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/morphology/EuclideanDistanceMap.h>
#include <qel/morphology/LocalThicknessMap.h>
#include <qel/point_operations/ArithmeticValueProcessing.h>
#include <qel/point_operations/CopyImage.h>

namespace qel::morphology {

namespace {

struct Mask
{
    memory::InMemoryImage const& image;
    Lattice const& lattice;
    BallPainter& painter;
};

struct MaskDispatcher
{
    template <class T> static void run(Mask* mask)
    {
        T const* row = reinterpret_cast<T const*>(mask->image.getInternalBuffer());
        for (unsigned long z = 0; z < mask->lattice.size[2]; ++z)
            for (unsigned long y = 0; y < mask->lattice.size[1]; ++y, row += mask->lattice.size[0])
                mask->painter.addRow(row, y, z);
    }
};

/// The frame's child for the painting: cancelling it stops the loop.
class Painting : public algorithms::AbstractPrivateImplementation
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

class LocalThicknessMapScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    explicit LocalThicknessMapScalarPrivate(LocalThicknessMap& map)
        : AbstractPrivateImplementation(&map)
        , m_map(map)
    {}

    void run()
    {
        Publication const publication(*this);
        setNumOfSteps(5);
        memory::InMemoryImage mask, radii, thickness;
        if (!copy(m_map.input, &mask) || !measureRadii(radii) || !doubleValues(radii, thickness) ||
            !paint(mask, radii, thickness))
            return;
        // What the copy to the output would change stays as the rules left it.
        rules::copyCalibration(*m_map.output.get(), thickness);
        thickness.setInterpretation(m_map.output.get()->getInterpretation());
        copy(&thickness, m_map.output);
    }

private:
    /// Runs a child to its end. False if the run was cancelled.
    template <class Algorithm> bool runChild(Ref<Algorithm> const& child)
    {
        child->run();
        removeChild();
        nextStep();
        return !isCancelled();
    }

    bool copy(ImageModel const* from, ImageModel* to)
    {
        Ref<point_operations::CopyImage> const child(point_operations::CopyImage::New(this));
        child->input = from;
        child->output = to;
        return runChild(child);
    }

    bool measureRadii(memory::InMemoryImage& radii)
    {
        Ref<EuclideanDistanceMap> const child(EuclideanDistanceMap::New(this));
        child->input = m_map.input;
        child->output = &radii;
        return runChild(child);
    }

    bool doubleValues(memory::InMemoryImage const& values, memory::InMemoryImage& doubled)
    {
        Ref<point_operations::ArithmeticValueProcessing> const child(
            point_operations::ArithmeticValueProcessing::New(this));
        child->input = &values;
        child->inputValue = 2;
        child->arithmeticOperator = point_operations::ARITHMETIC_MULTIPLY;
        child->output = &doubled;
        return runChild(child);
    }

    bool paint(memory::InMemoryImage const& image, memory::InMemoryImage const& radii, memory::InMemoryImage& thickness)
    {
        Lattice const lattice = Lattice::of(image);
        BallPainter painter(lattice);
        Mask mask{image, lattice, painter};
        tmpl_dispatch::Visitor1Args<BinaryVoxelTypes, MaskDispatcher, Mask*>()(image.getVoxelType(), &mask);
        Painting painting(nullptr);
        painting.setTotalWork(lattice.size[2]);
        setCurrentChild(&painting);
        painter.paint(reinterpret_cast<float const*>(radii.getInternalBuffer()),
                      reinterpret_cast<float*>(thickness.getInternalBuffer()), painting.context,
                      [&](unsigned long plans) { painting.addDoneWork(plans); });
        removeChild();
        nextStep();
        return !isCancelled();
    }

    LocalThicknessMap& m_map;
};

class LocalThicknessMapRunner : public ScalarRunner<LocalThicknessMap>
{
    void runOn(LocalThicknessMap& map) const override { LocalThicknessMapScalarPrivate(map).run(); }
};

} // namespace

QEL_REGISTER_RUNNER(LocalThicknessMap, LocalThicknessMapRunner)

} // namespace qel::morphology
