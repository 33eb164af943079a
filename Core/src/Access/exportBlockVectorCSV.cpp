#include <fstream>
#include <locale>
#include <qel/profiler/exportBlockVectorCSV.h>

namespace qel::profiler {

namespace {

template <class Blocks> bool exportBlockVectorCSVTemp(Blocks const& blocks, char const* fileName, char separator)
{
    if (fileName == nullptr)
        return false;
    std::ofstream file;
    // The host's locale may group digits.
    file.imbue(std::locale::classic());
    file.open(fileName, std::ios::out | std::ios::trunc);
    if (!file.is_open())
        return false;

    file << "Columns begin" << separator << "Columns end" << separator;
    file << "Rows begin" << separator << "Rows end" << separator;
    file << "Plans begin" << separator << "Plans end" << separator;
    file << "SpectralSeries begin" << separator << "SpectralSeries end" << separator;
    file << "TimeSeries begin" << separator << "TimeSeries end" << std::endl;

    for (access::Block const& block : blocks) {
        file << block.colsBegin() << separator << block.colsEnd() << separator;
        file << block.rowsBegin() << separator << block.rowsEnd() << separator;
        file << block.plansBegin() << separator << block.plansEnd() << separator;
        file << block.spectralSeriesBegin() << separator << block.spectralSeriesEnd() << separator;
        file << block.timeSeriesBegin() << separator << block.timeSeriesEnd() << std::endl;
    }
    file.close();
    return true;
}

} // namespace

bool exportBlockVectorCSV(
    tbb::concurrent_vector<access::Block2d, tbb::cache_aligned_allocator<access::Block2d>> const& blocks,
    char const* fileName, char separator)
{
    return exportBlockVectorCSVTemp(blocks, fileName, separator);
}

bool exportBlockVectorCSV(
    tbb::concurrent_vector<access::Block3d, tbb::cache_aligned_allocator<access::Block3d>> const& blocks,
    char const* fileName, char separator)
{
    return exportBlockVectorCSVTemp(blocks, fileName, separator);
}

} // namespace qel::profiler
