// A host of libquelide whose images are its own: vectors that the library reads and writes through ImageModel.
#include <cmath>
#include <cstring>
#include <iostream>
#include <qel/quelide.h>
#include <vector>

using Size = unsigned long;

/// Any voxel type and any five sizes. Rows are copied and nothing else moves, so it serves many threads at once.
class VectorImage : public qel::ImageModel
{
public:
    bool reserve(qel::VoxelTypes const& type, Size columns, Size rows, Size plans, Size times, Size spectra) override
    {
        m_type = type;
        m_n = {columns, rows, plans, times, spectra};
        m_bytes.assign(at(0, 0, 0, 0, spectra), 0);
        return true;
    }
    bool readRowAt(Size count, unsigned char* to, Size x, Size y, Size z, Size t, Size s) const override
    {
        return has(count, x, y, z, t, s) && std::memcpy(to, &m_bytes[at(x, y, z, t, s)], at(count, 0, 0, 0, 0));
    }
    bool writeRowAt(Size count, unsigned char const* from, Size x, Size y, Size z, Size t, Size s) override
    {
        return has(count, x, y, z, t, s) && std::memcpy(&m_bytes[at(x, y, z, t, s)], from, at(count, 0, 0, 0, 0));
    }
    // Nothing points into the vector: false tells the library to copy.
    bool getRowAt(Size, unsigned char*&, Size, Size, Size, Size, Size) const override { return false; }
    bool getConstRowAt(Size, unsigned char const*&, Size, Size, Size, Size, Size) const override { return false; }
    bool getPreferedSize(Size&, Size&, Size&, Size&, Size&) override { return false; }
    Size getNumOf(qel::Components const& axis) const override { return m_n[axis]; }
    qel::VoxelTypes getVoxelType() const override { return m_type; }
    bool setInterpretation(qel::Interpretations const& meaning) override { return m_meaning = meaning, true; }
    qel::Interpretations getInterpretation() const override { return m_meaning; }
    // This host works in voxels: it keeps no calibration, and says so.
    bool setOriginOf(qel::Components const&, double) override { return false; }
    double getOriginOf(qel::Components const&) const override { return 0; }
    bool setSpacingOf(qel::Components const&, double) override { return false; }
    double getSpacingOf(qel::Components const&) const override { return 1; }
    bool setSpatialUnitName(qel::String const&) override { return false; }
    qel::String getSpatialUnitName() const override { return ""; }
    bool setTemporalUnitName(qel::String const&) override { return false; }
    qel::String getTemporalUnitName() const override { return ""; }

private:
    bool has(Size count, Size x, Size y, Size z, Size t, Size s) const
    {
        return x + count <= m_n[0] && y < m_n[1] && z < m_n[2] && t < m_n[3] && s < m_n[4];
    }
    Size at(Size x, Size y, Size z, Size t, Size s) const
    {
        return ((((s * m_n[3] + t) * m_n[2] + z) * m_n[1] + y) * m_n[0] + x) * qel::helper::getSizeOf(m_type);
    }
    qel::VoxelTypes m_type = qel::QEL_UINT8;
    qel::Interpretations m_meaning = qel::QEL_VALUE;
    std::vector<Size> m_n = {0, 0, 0, 0, 0}; // the five sizes
    std::vector<unsigned char> m_bytes;
};

struct ConsoleProgress : qel::algorithms::InteractionInterface
{
    void updateProgress(double percent) override { std::cout << std::lround(percent) << " %" << std::endl; }
    bool isCancelRequested() override { return false; }
    unsigned short getProgressPeriod() override { return 50; }
    unsigned short getCancelPeriod() override { return 50; }
};

int main()
try {
    VectorImage distance, disk;
    distance.reserve(qel::QEL_FLOAT32, 2000, 2000, 1, 1, 1);
    std::vector<float> row(2000);
    for (Size y = 0; y < 2000; ++y) {
        for (Size x = 0; x < 2000; ++x)
            row[x] = std::hypot(static_cast<float>(x) - 1000, static_cast<float>(y) - 1000);
        distance.writeRowAt(2000, reinterpret_cast<unsigned char*>(row.data()), 0, y, 0, 0, 0);
    }

    // An algorithm by its class: properties are members. Given an interaction, this thread polls while others compute.
    qel::Ref<qel::segmentation::Threshold> const threshold(qel::segmentation::Threshold::New());
    threshold->input = &distance;
    threshold->highLevel = 500;
    threshold->output = &disk;
    ConsoleProgress progress;
    threshold->run(&progress);

    // Another by its name alone: its properties are found by name, too.
    qel::Ref<qel::BaseAlgorithm> const statistics(qel::AlgoInfo::fromName("IntensityStatistics")->createInstance());
    dynamic_cast<qel::Property<qel::ImageModel const*>&>(*statistics->getPropertyfromName("input")) = &disk;
    statistics->run();
    auto* const sum = statistics->getPropertyfromName("outputSumOfIntensityValues");
    std::cout << "voxels in the disk: " << dynamic_cast<qel::Property<qel::Scalar>&>(*sum).get().asDouble() << '\n';
    threshold->output = nullptr;
    threshold->run(); // refused, and the handler prints why
} catch (qel::Exception const& error) {
    std::cout << error.what().c_str();
}
