#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/Throw.h"
#include "Geometry/private/CenterLineProcessor.h"

#include <qel/Exception.h>
#include <qel/ImageModelAdapter.h>
#include <qel/Ref.h>
#include <qel/analysis/IntensityExtrema.h>
#include <qel/devices/Cpu.h>
#include <qel/geometry/CenterLine3D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>
#include <qel/linear_filtering/kernel_factory.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/morphology/EuclideanDistanceMap.h>
#include <qel/point_operations/CopyImage.h>
#include <qel/point_operations/MaskImageProcessing.h>
#include <qel/segmentation/ThresholdByCriterion.h>

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace qel::geometry {

namespace {

/// The Gaussian that smoothes the distance map.
kernel::Kernel3D smoothingKernel(double sigma)
{
    double const side = 6 * sigma;
    // Each point has three steps and a weight, and the kernel is copied. Memory that is not known does not stop
    // anything.
    unsigned long const available = devices::Cpu::getDevice().getAvailableMemory();
    double const bytes = 3.0 * 32 * side * side * side;
    if (!(side < 1e6) || (available != 0 && !(bytes < static_cast<double>(available))))
        QEL_THROW(UnexpectedError, "The available memory does not hold a kernel of deviation " << sigma << ".");
    unsigned long size = std::max(static_cast<unsigned long>(side), 3UL);
    size += size % 2 == 0;
    kernel::Kernel3D kernel = linear_filtering::kernel_factory::createGaussian3D(size, sigma);
    kernel.normalize();
    return kernel;
}

class CenterLine3DScalarPrivate : public algorithms::AbstractPrivateImplementation
{
public:
    explicit CenterLine3DScalarPrivate(CenterLine3D& algorithm)
        : AbstractPrivateImplementation(&algorithm)
        , m_algorithm(algorithm)
        , m_input(*algorithm.input.get())
        , m_isBinary(m_input.getInterpretation() == QEL_BINARY)
        , m_size{m_input.getNumOf(COLUMNS), m_input.getNumOf(ROWS), m_input.getNumOf(PLANS)}
    {}

    void run()
    {
        Publication const publication(*this);
        setNumOfSteps(8);
        m_algorithm.outputLineSet.get()->setCoords({});
        m_algorithm.outputLineSet.get()->setIndices({});
        memory::InMemoryImage map, lines;
        if (!measureDepth(map))
            return;
        clearFaces(map);
        nextStep();
        std::vector<std::size_t> seeds;
        if (findSeeds(seeds) && findLines(map, seeds, lines))
            store(lines);
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

    /// The smoothed distance map of all objects.
    bool measureDepth(memory::InMemoryImage& map)
    {
        memory::InMemoryImage mask;
        Ref<segmentation::ThresholdByCriterion> const threshold(segmentation::ThresholdByCriterion::New(this));
        threshold->input = &m_input;
        threshold->criterion = m_isBinary ? segmentation::NOT_EQUAL_TO : segmentation::GREATER_THAN;
        threshold->value = Scalar(0);
        threshold->output = &mask;
        if (!runChild(threshold))
            return false;
        {
            memory::InMemoryImage distance;
            Ref<morphology::EuclideanDistanceMap> const measure(morphology::EuclideanDistanceMap::New(this));
            measure->input = &mask;
            measure->output = &distance;
            if (!runChild(measure))
                return false;
            using linear_filtering::FiniteImpulseResponseFilter3D;
            Ref<FiniteImpulseResponseFilter3D> const filter(FiniteImpulseResponseFilter3D::New(this));
            filter->input = &distance;
            filter->kernel3D = smoothingKernel(m_algorithm.euclideanDistanceMapSigmaSmoothing);
            filter->outputMode = linear_filtering::QEL_OUTPUT_MODE_CUSTOM;
            filter->outputCustomType = QEL_FLOAT32;
            filter->output = &map;
            if (!runChild(filter))
                return false;
        }
        Ref<point_operations::MaskImageProcessing> const restore(point_operations::MaskImageProcessing::New(this));
        restore->input = &map;
        restore->inputBinary = &mask;
        restore->output = &map;
        return runChild(restore);
    }

    /// No line runs along the border of the image, and each voxel of an object has all its neighbours in the image.
    void clearFaces(memory::InMemoryImage& map) const
    {
        float* row = reinterpret_cast<float*>(map.getInternalBuffer());
        for (unsigned long plan = 0; plan < m_size[2]; ++plan)
            for (unsigned long i = 0; i < m_size[1]; ++i, row += m_size[0]) {
                if (plan == 0 || plan + 1 == m_size[2] || i == 0 || i + 1 == m_size[1])
                    std::fill_n(row, m_size[0], 0.0F);
                else if (m_size[0] > 0)
                    row[0] = row[m_size[0] - 1] = 0;
            }
    }

    /// The first voxel of each label, in the order of the labels.
    bool findSeeds(std::vector<std::size_t>& seeds)
    {
        Ref<analysis::IntensityExtrema> const extrema(analysis::IntensityExtrema::New(this));
        extrema->input = &m_input;
        if (!runChild(extrema))
            return false;
        Scalar const maximum = extrema->outputMaximum.get();
        unsigned long const numOfLabels = m_isBinary ? 1 : maximum.asUInt64(FLOOR);
        std::unordered_map<std::uint64_t, std::size_t> seedOf;
        scanLabels(seedOf, numOfLabels);
        std::vector<std::pair<std::uint64_t, std::size_t>> sorted(seedOf.begin(), seedOf.end());
        std::sort(sorted.begin(), sorted.end());
        for (auto const& [label, seed] : sorted)
            seeds.push_back(seed);
        return !isCancelled();
    }

    void scanLabels(std::unordered_map<std::uint64_t, std::size_t>& seedOf, unsigned long numOfLabels) const
    {
        if (std::min({m_size[0], m_size[1], m_size[2]}) < 3)
            return;
        bool const isUnsigned = m_input.getVoxelType() == QEL_UINT64;
        ImageModelAdapter const labels(const_cast<ImageModel*>(&m_input), isUnsigned ? QEL_UINT64 : QEL_INT64);
        std::vector<std::uint64_t> row(m_size[0] - 2);
        for (unsigned long plan = 1; plan + 1 < m_size[2]; ++plan)
            for (unsigned long i = 1; i + 1 < m_size[1]; ++i) {
                if (!labels.getImage()->readRowAt(row.size(), reinterpret_cast<unsigned char*>(row.data()), 1, i, plan,
                                                  0, 0))
                    access::throwReadError();
                std::uint64_t last = 0;
                for (std::size_t column = 0; column < row.size(); ++column) {
                    if (row[column] == last)
                        continue;
                    last = row[column];
                    bool const isLabel = last != 0 && (isUnsigned || m_isBinary || static_cast<std::int64_t>(last) > 0);
                    if (!isLabel)
                        continue;
                    seedOf.try_emplace(m_isBinary ? 1 : last, (plan * m_size[1] + i) * m_size[0] + column + 1);
                    if (seedOf.size() >= numOfLabels)
                        return;
                }
            }
    }

    bool findLines(memory::InMemoryImage const& map, std::vector<std::size_t> const& seeds,
                   memory::InMemoryImage& lines)
    {
        lines.reserve(QEL_UINT8, m_size[0], m_size[1], m_size[2], 1, 1);
        CenterLineVolume volume(m_input);
        volume.map = reinterpret_cast<float const*>(map.getInternalBuffer());
        volume.centerLine = lines.getInternalBuffer();
        std::memset(volume.centerLine, 0, m_size[0] * m_size[1] * m_size[2]);
        CenterLineSettings const settings{m_algorithm.autoMode, m_algorithm.numberOfBranches,
                                          m_algorithm.newBranchSensibility, m_algorithm.smoothingIteration};
        setTotalWork(seeds.size());
        for (auto seed = seeds.begin(); seed != seeds.end() && !isCancelled(); ++seed) {
            // A distance of 0, or none, comes of spacings that are none.
            if (volume.map[*seed] > 0)
                CenterLineProcessor(volume, settings, *this).run(*seed);
            addDoneWork(1);
        }
        storeLines(volume);
        setTotalWork(0);
        nextStep();
        return !isCancelled();
    }

    void storeLines(CenterLineVolume const& volume)
    {
        container::Vector<math::Vector3<double>> coords(volume.coords.size());
        std::copy(volume.coords.begin(), volume.coords.end(), coords.begin());
        container::Vector<unsigned long> indices(volume.indices.size());
        std::copy(volume.indices.begin(), volume.indices.end(), indices.begin());
        m_algorithm.outputLineSet.get()->setCoords(coords);
        m_algorithm.outputLineSet.get()->setIndices(indices);
    }

    void store(memory::InMemoryImage& lines)
    {
        if (m_isBinary) {
            rules::copyCalibration(m_input, lines);
            lines.setInterpretation(QEL_BINARY);
            Ref<point_operations::CopyImage> const copy(point_operations::CopyImage::New(this));
            copy->input = &lines;
            copy->output = m_algorithm.outputImage;
            runChild(copy);
        } else {
            Ref<point_operations::MaskImageProcessing> const mask(point_operations::MaskImageProcessing::New(this));
            mask->input = &m_input;
            mask->inputBinary = &lines;
            mask->output = m_algorithm.outputImage;
            if (runChild(mask))
                m_algorithm.outputImage.get()->setInterpretation(m_input.getInterpretation());
        }
    }

    CenterLine3D& m_algorithm;
    ImageModel const& m_input;
    bool const m_isBinary;
    unsigned long const m_size[3];
};

class ScalarCenterline3DRunner : public ScalarRunner<CenterLine3D>
{
    void runOn(CenterLine3D& algorithm) const override { CenterLine3DScalarPrivate(algorithm).run(); }
};

} // namespace

QEL_REGISTER_RUNNER(CenterLine3D, ScalarCenterline3DRunner)

} // namespace qel::geometry
