#include <qel/devices/Cpu.h>

#include "Core/private/CpuPrivate.h"

namespace qel::devices {

Cpu::Cpu(CpuPrivate const* description)
    : private_(description)
{}
Cpu::~Cpu() = default;

Cpu const& Cpu::getDevice() { return CpuPrivate::getInstance().device; }

String Cpu::getDeviceName() const { return String(private_->deviceName.c_str()); }
unsigned int Cpu::getArchitecture() const { return 8 * sizeof(void*); }

unsigned long Cpu::getTotalMemory() const { return private_->totalMemory; }

unsigned long Cpu::getAvailableMemory() const
{
    unsigned long total = 0;
    unsigned long available = 0;
    CpuPrivate::getTotalAndFreeMem(total, available);
    return available;
}

bool Cpu::hasMMX() const { return private_->identification.flags[CPU_FEATURE_MMX] != 0; }
bool Cpu::hasMMXExt() const { return private_->identification.flags[CPU_FEATURE_MMXEXT] != 0; }
bool Cpu::hasSSE() const { return private_->sse; }
unsigned int Cpu::getSSELevel() const { return private_->sseLevel; }
bool Cpu::hasAVX() const { return private_->avx; }
unsigned int Cpu::getAVXLevel() const { return private_->avxLevel; }

unsigned int Cpu::getNumOfCores() const { return private_->numOfCores; }
unsigned int Cpu::getLogicalProcessors() const { return private_->logicalProcessors; }

unsigned int Cpu::getCacheSize(int index) const { return private_->getCacheSize(index); }
unsigned int Cpu::getCacheLineSize(int index) const { return private_->getCacheLineSize(index); }

String Cpu::getInfo() const
{
    unsigned long total = 0;
    unsigned long available = 0;
    bool const known = CpuPrivate::getTotalAndFreeMem(total, available);
    return String(private_->getInfo(known ? &available : nullptr).c_str());
}

} // namespace qel::devices
