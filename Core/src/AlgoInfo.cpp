#include <qel/AlgoInfo.h>

#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Runnable.h"
#include "Core/private/Throw.h"

namespace qel {

AlgoInfoPrivate::AlgoInfoPrivate(String const& name_, String const& libName_, Creator creator_)
    : name(name_)
    , libName(libName_)
    , creator(creator_)
{}

std::vector<AlgoInfo*>& AlgoInfoPrivate::allAlgorithms()
{
    static std::vector<AlgoInfo*> all;
    return all;
}

AlgoInfoPrivate* AlgoInfoPrivate::getPrivate(AlgoInfo* info) { return info->m_private; }

AlgoInfo::AlgoInfo(char const* name, char const* libName, BaseAlgorithm* (*creator)())
    : m_private(new AlgoInfoPrivate(name, libName, creator))
{}

AlgoInfo::~AlgoInfo() { delete m_private; }

String AlgoInfo::getName() const { return m_private->name; }

String AlgoInfo::getLibName() const { return m_private->libName; }

BaseAlgorithm* AlgoInfo::createInstance() const { return m_private->creator(); }

AlgoInfo* AlgoInfo::fromName(char const* name)
{
    String const wanted(name);
    for (AlgoInfo* info : AlgoInfoPrivate::allAlgorithms())
        if (info->m_private->name == wanted)
            return info;
    QEL_THROW(InvalidCall, "The className " << wanted << " does not exist");
}

unsigned long AlgoInfo::getNumOfAlgorithms() { return AlgoInfoPrivate::allAlgorithms().size(); }

AlgoInfo* AlgoInfo::fromIndex(unsigned long index) { return AlgoInfoPrivate::allAlgorithms()[index]; }

} // namespace qel
