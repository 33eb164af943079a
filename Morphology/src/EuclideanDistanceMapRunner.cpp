#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ImageToQuantificationFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Morphology/private/EuclideanDistanceMapScalarPrivate.h"
#include "Morphology/private/InitDistanceMapScalar.h"

#include <qel/Ref.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/point_operations/CopyImage.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>
#include <vector>

namespace qel::morphology {

namespace {

struct InitDistMap
{
    EuclideanDistanceMapScalarPrivate& implementation;
    Lattice const& lattice;
    float* map;
};

struct InitDistMapDispatcher
{
    template <class T> static void run(InitDistMap* start)
    {
        start->implementation.runOn<T>(start->lattice, start->map);
    }
};

class EuclideanDistanceMapRunner : public ScalarRunner<EuclideanDistanceMap>
{
    void runOn(EuclideanDistanceMap& map) const override { EuclideanDistanceMapScalarPrivate(map).run(); }
};

} // namespace

void EuclideanDistanceMapScalarPrivate::run()
{
    Publication const publication(*this);
    setNumOfSteps(4);
    ImageModel const* const input = m_map.input;
    ImageModel* const output = m_map.output;
    Lattice const lattice = Lattice::of(*input);
    // Distances spread over memory, by index: rows of the output image may lie anywhere.
    memory::InMemoryImage map;
    map.reserve(QEL_FLOAT32, lattice.size[0], lattice.size[1], lattice.size[2], 1, 1);
    // What the copy to the output would change stays as the rules left it.
    rules::copyCalibration(*output, map);
    map.setInterpretation(output->getInterpretation());
    nextStep();

    InitDistMap start{*this, lattice, reinterpret_cast<float*>(map.getInternalBuffer())};
    tmpl_dispatch::Visitor1Args<BinaryVoxelTypes, InitDistMapDispatcher, InitDistMap*>()(input->getVoxelType(), &start);
    if (isCancelled())
        return;
    nextStep();

    Ref<point_operations::CopyImage> const copy(point_operations::CopyImage::New(this));
    copy->input = &map;
    copy->output = output;
    copy->run();
    removeChild();
}

template <class T> void EuclideanDistanceMapScalarPrivate::runOn(Lattice const& lattice, float* map)
{
    using Body = InitDistanceMapScalar<T>;
    bool const isOutside = m_map.regionType == OUTSIDE;
    Body body(lattice, isOutside, map);
    ImageToQuantificationFilter3d<T, SimdVec::arch_scalar_tag, Body> filter(nullptr, &body);
    // A block reads one voxel more on each side. Slabs of whole plans join in the order of the voxels, and so do
    // stripes of whole rows where a plan is large.
    constexpr unsigned long whole = std::numeric_limits<long>::max();
    bool const isDeep = lattice.size[2] >= 32;
    filter.setPartitionerInformation(
        boost::make_shared<PartitionerInfoFixed>(whole, isDeep ? whole : 32, isDeep ? 16 : 1));
    if (m_map.borderCondition == ZERO)
        filter.setInput(m_map.input, access::FixedBorderCondition<T>::New(T(isOutside)));
    else
        filter.setInput(m_map.input, access::MirrorBorderCondition<T>::New());
    setCurrentChild(&filter);
    filter.run();
    removeChild();
    if (isCancelled())
        return;
    nextStep();
    std::size_t numOfPoints = 0;
    for (auto const& part : body.parts)
        numOfPoints += part.size();
    std::vector<InterfacePoint> points;
    points.reserve(numOfPoints);
    for (auto& part : body.parts) {
        points.insert(points.end(), part.begin(), part.end());
        std::vector<InterfacePoint>().swap(part);
    }
    // In the order of the voxels the outcome is that of one thread.
    auto const isBefore = [](InterfacePoint const& a, InterfacePoint const& b) { return a.voxel < b.voxel; };
    if (!std::is_sorted(points.begin(), points.end(), isBefore))
        std::stable_sort(points.begin(), points.end(), isBefore);
    euclidianPropagation(lattice, points, map, [this] { return isCancelled(); });
}

QEL_REGISTER_RUNNER(EuclideanDistanceMap, EuclideanDistanceMapRunner)

} // namespace qel::morphology
