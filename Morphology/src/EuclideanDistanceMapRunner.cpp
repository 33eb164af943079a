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
    // A block reads one voxel more on each side.
    filter.setPartitionerInformation(boost::make_shared<PartitionerInfoFixed>(1024, 32, 16));
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
    // Blocks join in any order of rows. In the order of the voxels the outcome is that of one thread.
    std::stable_sort(body.points.begin(), body.points.end(),
                     [](InterfacePoint const& a, InterfacePoint const& b) { return a.voxel < b.voxel; });
    euclidianPropagation(lattice, body.points, map, [this] { return isCancelled(); });
}

QEL_REGISTER_RUNNER(EuclideanDistanceMap, EuclideanDistanceMapRunner)

} // namespace qel::morphology
