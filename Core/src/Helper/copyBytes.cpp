#include <qel/helper/copyBytes.h>

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

namespace qel::helper {

namespace {

constexpr std::size_t vector = sizeof(__m128i);
constexpr std::size_t atOnce = 4 * vector;

// Sanitizers see what memmove reads and writes, but not what passes the caches.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t shortRange = SIZE_MAX;
#else
constexpr std::size_t shortRange = 1024;
#endif
constexpr std::size_t shortPastCaches = 2048;

bool areApart(unsigned char const* first, unsigned char const* second, std::size_t count)
{
    auto const a = reinterpret_cast<std::uintptr_t>(first);
    auto const b = reinterpret_cast<std::uintptr_t>(second);
    return (a < b ? b - a : a - b) >= count;
}

template <class Store>
void copyVectors(unsigned char* to, unsigned char const* from, std::size_t count, Store const& store)
{
    // Stores are aligned, for those past the caches must be.
    std::size_t const head = -reinterpret_cast<std::uintptr_t>(to) % vector;
    std::memcpy(to, from, head);
    std::size_t done = head;
    for (; done + atOnce <= count; done += atOnce) {
        auto const* const source = reinterpret_cast<__m128i const*>(from + done);
        auto* const target = reinterpret_cast<__m128i*>(to + done);
        __m128i const first = _mm_loadu_si128(source);
        __m128i const second = _mm_loadu_si128(source + 1);
        __m128i const third = _mm_loadu_si128(source + 2);
        __m128i const fourth = _mm_loadu_si128(source + 3);
        store(target, first);
        store(target + 1, second);
        store(target + 2, third);
        store(target + 3, fourth);
    }
    std::memcpy(to + done, from + done, count - done);
}

} // namespace

void copyBytes(unsigned char* to, unsigned char const* from, unsigned long count)
{
    if (count < shortRange || !areApart(to, from, count))
        std::memmove(to, from, count);
    else
        copyVectors(to, from, count, [](__m128i* target, __m128i value) { _mm_store_si128(target, value); });
}

void copyBytesPastCaches(unsigned char* to, unsigned char const* from, unsigned long count)
{
    if (shortRange == SIZE_MAX || count < shortPastCaches || !areApart(to, from, count))
        return copyBytes(to, from, count);
    copyVectors(to, from, count, [](__m128i* target, __m128i value) { _mm_stream_si128(target, value); });
    _mm_sfence();
}

} // namespace qel::helper
