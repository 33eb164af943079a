#include <qel/BaseAlgorithm.h>

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/BaseAlgorithmPrivate.h"
#include "Core/private/Runnable.h"
#include "Core/private/Throw.h"

#include <qel/AlgoInfo.h>
#include <qel/BaseProperty.h>
#include <qel/EnumInfo.h>
#include <qel/Exception.h>
#include <qel/devices/Cpu.h>

#include <algorithm>
#include <exception>

namespace qel {

BaseAlgorithm::BaseAlgorithm(algorithms::AbstractPrivateImplementation* parent)
    : m_private(new algorithms::BaseAlgorithmPrivate(this, parent))
{
    // Only now: from here on other threads reach this object through its parent.
    if (parent)
        parent->setCurrentChild(this);
}

BaseAlgorithm::~BaseAlgorithm() { delete m_private; }

void BaseAlgorithm::applyAllRules()
{
    for (BaseProperty* property : m_private->inputs)
        property->applyRules();
    for (BaseProperty* property : m_private->outputs)
        property->applyRules();
}

void BaseAlgorithm::run(algorithms::InteractionInterface* interaction)
{
    if (m_private->running.exchange(true))
        return;

    auto const settle = [this] {
        lockAllProperties(false);
        m_private->running = false;
    };
    auto const level = [this](char const* message) {
        Exception::exceptionInfo info = throwing::firstLevel(String(message), __FILE__, __LINE__);
        info.algorithmName = getInfo()->getName();
        info.libraryName = getInfo()->getLibName();
        return info;
    };
    try {
        lockAllProperties(true);
        applyAllRules();
        if (interaction)
            m_private->runPolled(*interaction);
        else
            m_private->runInternal();
        settle();
    } catch (Exception& error) {
        settle();
        error.addInfoLevel(level(""));
        throw;
    } catch (std::exception const& error) {
        settle();
        throw UnexpectedError(level(error.what()));
    } catch (...) {
        settle();
        throw UnexpectedError(level("undefined exception"));
    }
}

bool BaseAlgorithm::running() const { return m_private->running; }
double BaseAlgorithm::getProgress() const { return m_private->getProgress(); }
void BaseAlgorithm::cancelExecution() { m_private->cancelExecution(); }
bool BaseAlgorithm::isExecutionCancelled() const { return m_private->isExecutionCancelled(); }

void BaseAlgorithm::setAutoCpuDispatch(bool automatic) { m_private->autoCpuDispatch = automatic; }
void BaseAlgorithm::setOptimLevel(OptimLevelType const& level) { m_private->optimLevel = level; }

bool BaseAlgorithm::isOptimLevelSupported(OptimLevelType const& level) const
{
    auto const& runners = AlgoInfoPrivate::getPrivate(getInfo())->getAllRunner();
    return std::any_of(runners.begin(), runners.end(),
                       [&](auto const& runner) { return runner->getOptimType() == level; });
}

OptimLevelType BaseAlgorithm::getMostPerformantAvailableOptimLevel() const
{
    EnumInfo const& levels = helper::optimLevelTypeInfo();
    for (unsigned long index = levels.getNumOfValues(); index-- > 0;) {
        auto const level = static_cast<OptimLevelType>(levels.getValueFromValueIndex(index));
        if (isOptimLevelSupported(level))
            return level;
    }
    // A class without any runner: the search ended before the first value.
    return static_cast<OptimLevelType>(levels.getValueFromValueIndex(static_cast<unsigned long>(-1)));
}

void BaseAlgorithm::setMaximumExtraMemoryUsage(int percent) { m_private->maxExtraMemory = percent; }
int BaseAlgorithm::getMaximumExtraMemoryUsage() const { return m_private->maxExtraMemory; }

unsigned long BaseAlgorithm::getMaximumExtraMemoryUsageInBytes() const
{
    // The total is in bytes already: the shift makes the limit a very high one, on purpose. It may wrap.
    unsigned long const scaled =
        (devices::Cpu::getDevice().getTotalMemory() << 20) * static_cast<unsigned long>(getMaximumExtraMemoryUsage());
    return static_cast<unsigned long>(static_cast<double>(scaled) / 100.0);
}

unsigned long BaseAlgorithm::getNumOfInputProperties() const { return m_private->inputs.size(); }
unsigned long BaseAlgorithm::getNumOfOutputProperties() const { return m_private->outputs.size(); }
unsigned long BaseAlgorithm::getNumOfProperties() const { return m_private->inputs.size() + m_private->outputs.size(); }
BaseProperty* BaseAlgorithm::getInputProperty(unsigned long index) const { return m_private->inputs[index]; }
BaseProperty* BaseAlgorithm::getOutputProperty(unsigned long index) const { return m_private->outputs[index]; }

BaseProperty* BaseAlgorithm::getPropertyfromName(String const& name) const
{
    for (auto const* properties : {&m_private->inputs, &m_private->outputs})
        for (BaseProperty* property : *properties)
            if (property && property->getName() == name)
                return property;
    return nullptr;
}

algorithms::BaseAlgorithmPrivate* BaseAlgorithm::getPrivate() const { return m_private; }

void BaseAlgorithm::addInput(BaseProperty* property) { m_private->inputs.push_back(property); }
void BaseAlgorithm::addOutput(BaseProperty* property) { m_private->outputs.push_back(property); }

void BaseAlgorithm::lockAllProperties(bool locked)
{
    for (auto const* properties : {&m_private->inputs, &m_private->outputs})
        for (BaseProperty* property : *properties)
            if (property)
                property->lock(locked);
}

} // namespace qel
