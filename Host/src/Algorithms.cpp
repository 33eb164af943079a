#include "Algorithms.h"

#include "Errors.h"
#include "Suggestion.h"
#include "TextForms.h"

#include <qel/AlgoInfo.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <typeinfo>

#include <cxxabi.h>

namespace host {

namespace {

qel::AlgoInfo* findInfo(std::string const& name)
{
    for (unsigned long i = 0; i < qel::AlgoInfo::getNumOfAlgorithms(); ++i) {
        qel::AlgoInfo* const info = qel::AlgoInfo::fromIndex(i);
        if (toStdString(info->getName()) == name)
            return info;
    }
    return nullptr;
}

} // namespace

std::string nameSpaceOf(qel::BaseAlgorithm const& algorithm)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const text(
        abi::__cxa_demangle(typeid(algorithm).name(), nullptr, nullptr, &status), std::free);
    std::string name = status == 0 ? text.get() : "";
    std::string const own = "qel::";
    if (name.compare(0, own.size(), own) == 0)
        name.erase(0, own.size());
    std::size_t const end = name.rfind("::");
    return end == std::string::npos ? "" : name.substr(0, end);
}

std::vector<AlgorithmName> allAlgorithms()
{
    std::vector<AlgorithmName> all;
    for (unsigned long i = 0; i < qel::AlgoInfo::getNumOfAlgorithms(); ++i) {
        qel::AlgoInfo* const info = qel::AlgoInfo::fromIndex(i);
        qel::Ref<qel::BaseAlgorithm> const algorithm(info->createInstance());
        all.push_back({toStdString(info->getName()), nameSpaceOf(*algorithm)});
    }
    std::sort(all.begin(), all.end(), [](AlgorithmName const& a, AlgorithmName const& b) {
        return a.nameSpace != b.nameSpace ? a.nameSpace < b.nameSpace : a.name < b.name;
    });
    return all;
}

qel::Ref<qel::BaseAlgorithm> createAlgorithm(std::string const& name)
{
    if (qel::AlgoInfo* const info = findInfo(name))
        return info->createInstance();
    std::vector<std::string> names;
    for (AlgorithmName const& algorithm : allAlgorithms())
        names.push_back(algorithm.name);
    throw UsageError(unknownName("algorithm", name, names));
}

} // namespace host
