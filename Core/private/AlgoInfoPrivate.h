#pragma once

#include <vector>

#include <boost/shared_ptr.hpp>

#include <qel/String.h>

namespace qel {

class AlgoInfo;
class BaseAlgorithm;
class Runnable;

/// What stands behind an AlgoInfo, and the registry of all algorithm classes.
class AlgoInfoPrivate
{
public:
    using Creator = BaseAlgorithm* (*)();

    AlgoInfoPrivate(String const& name, String const& libName, Creator creator);

    /// All registered algorithm classes. Filled by static initialisation, and only read later.
    static std::vector<AlgoInfo*>& allAlgorithms();
    static AlgoInfoPrivate* getPrivate(AlgoInfo* info);

    /// The runners of the class, one for each level.
    std::vector<boost::shared_ptr<Runnable>>& getAllRunner() { return m_runners; }

    String const name;
    String const libName;
    Creator const creator;

private:
    std::vector<boost::shared_ptr<Runnable>> m_runners;
};

} // namespace qel
