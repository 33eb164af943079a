#pragma once

#include <qel/BaseAlgorithm.h>
#include <qel/Ref.h>

#include <string>
#include <vector>

namespace host {

/// A registered algorithm class.
struct AlgorithmName
{
    std::string name;      ///< "Threshold"
    std::string nameSpace; ///< "segmentation", without the library's own namespace
};

/// All that the library has, by namespace and then by name.
std::vector<AlgorithmName> allAlgorithms();

/// Throws UsageError with the nearest name.
qel::Ref<qel::BaseAlgorithm> createAlgorithm(std::string const& name);

/// The namespace of an algorithm's class.
std::string nameSpaceOf(qel::BaseAlgorithm const& algorithm);

/// A level as it is called on the command line, and in the library.
struct LevelName
{
    char const* name;
    qel::OptimLevelType level;
};
inline constexpr LevelName levelNames[] = {
    {"scalar", qel::SCALAR}, {"sse", qel::VEC_SSE}, {"avx", qel::VEC_AVX}, {"gpu", qel::GPU}};

} // namespace host
