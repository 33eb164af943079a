#pragma once

#include <qel/Export.h>
#include <qel/String.h>

namespace qel::devices {

class CpuPrivate;

/// What the library knows of the machine: instruction levels, cores, caches and memory.
///
/// It is read once, when the library is loaded; from then on all operations but `getAvailableMemory` and `getInfo` only
/// hand out what was found. Nothing here throws: what could not be found out is 0, false or the empty name.
class QEL_API Cpu
{
public:
    /// The one shared description. Before the library is loaded, and after it is unloaded, it is one of zeros.
    static Cpu const& getDevice();

    Cpu(Cpu const&) = delete;
    Cpu& operator=(Cpu const&) = delete;

    /// The brand string of the processor.
    String getDeviceName() const;
    /// The word size in bits that the library is built for.
    unsigned int getArchitecture() const;

    /// Bytes of memory of the machine.
    unsigned long getTotalMemory() const;
    /// Bytes that are free now, buffers and page cache included. Asks the system at each call.
    unsigned long getAvailableMemory() const;

    bool hasMMX() const;
    bool hasMMXExt() const;
    bool hasSSE() const;
    /// 16 times the major version plus the minor: 66 (SSE 4.2), 65 (SSE 4.1), 49 (SSSE3), 48 (SSE3), 32 (SSE2),
    /// 16 (SSE) or 0.
    unsigned int getSSELevel() const;
    bool hasAVX() const;
    /// 2 (AVX2), 1 (AVX) or 0.
    unsigned int getAVXLevel() const;

    unsigned int getNumOfCores() const;
    unsigned int getLogicalProcessors() const;

    /// Kilobytes (1024 bytes) of a cache: 0 L1 instruction, 1 L1 data, 2 L2, 3 L3. 0 for any other index.
    unsigned int getCacheSize(int index) const;
    /// Bytes of a line of a cache, by the same indices. 0 for any other index.
    unsigned int getCacheLineSize(int index) const;

    /// All of the above as labelled lines for a reader.
    String getInfo() const;

private:
    friend class CpuPrivate;
    explicit Cpu(CpuPrivate const* description);
    ~Cpu();

    CpuPrivate const* private_;
};

} // namespace qel::devices
