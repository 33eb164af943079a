#include "NonlinearFiltering/private/MedianFilter/ColumnHistograms.h"

#include <emmintrin.h>

namespace qel::nonlinear_filtering {

namespace {

/// Row v has ones from place v on: what one more key with the value v adds to a cumulative histogram.
struct CumulativeOnes
{
    alignas(16) unsigned char rows[16][16];
    constexpr CumulativeOnes()
        : rows{}
    {
        for (int value = 0; value < 16; ++value)
            for (int place = value; place < 16; ++place)
                rows[value][place] = 1;
    }
};
constexpr CumulativeOnes ones;

__m128i load(unsigned char const* counts) { return _mm_loadu_si128(reinterpret_cast<__m128i const*>(counts)); }
void store(unsigned char* counts, __m128i value) { _mm_storeu_si128(reinterpret_cast<__m128i*>(counts), value); }

/// 16 counts of 16 bits.
struct Counts
{
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();

    void add(unsigned char const* column)
    {
        __m128i const bytes = load(column);
        low = _mm_add_epi16(low, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
        high = _mm_add_epi16(high, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
    }
    void subtract(unsigned char const* column)
    {
        __m128i const bytes = load(column);
        low = _mm_sub_epi16(low, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
        high = _mm_sub_epi16(high, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
    }
    /// How many of them are `limit` at most. They ascend, and the last one is more.
    int placeOf(int limit) const
    {
        __m128i const limits = _mm_set1_epi16(static_cast<short>(limit));
        int const above =
            _mm_movemask_epi8(_mm_packs_epi16(_mm_cmpgt_epi16(low, limits), _mm_cmpgt_epi16(high, limits)));
        return __builtin_ctz(static_cast<unsigned int>(above) | 0x10000u);
    }
    int at(int place) const
    {
        alignas(16) short counts[16];
        _mm_store_si128(reinterpret_cast<__m128i*>(counts), low);
        _mm_store_si128(reinterpret_cast<__m128i*>(counts + 8), high);
        return counts[place];
    }
};

} // namespace

void moveColumns(ColumnHistograms const& histograms, unsigned char const* entering, unsigned char const* leaving)
{
    unsigned long const columns = histograms.columns;
    unsigned char* const coarse = histograms.coarse;
    unsigned char* const fine = histograms.fine;
    for (unsigned long column = 0; column < columns; ++column) {
        unsigned int const in = entering[column];
        unsigned char* const fineIn = fine + ((in >> 4) * columns + column) * 16;
        store(fineIn, _mm_add_epi8(load(fineIn), load(ones.rows[in & 15])));
        __m128i steps = _mm_add_epi8(load(coarse + column * 16), load(ones.rows[in >> 4]));
        if (leaving) {
            unsigned int const out = leaving[column];
            unsigned char* const fineOut = fine + ((out >> 4) * columns + column) * 16;
            store(fineOut, _mm_sub_epi8(load(fineOut), load(ones.rows[out & 15])));
            steps = _mm_sub_epi8(steps, load(ones.rows[out >> 4]));
        }
        store(coarse + column * 16, steps);
    }
}

void mediansOfColumns(ColumnHistograms const& histograms, unsigned char* medians, unsigned long count)
{
    unsigned long const radius = histograms.radius;
    unsigned long const side = 2 * radius + 1;
    int const rank = static_cast<int>(side * side / 2);

    Counts coarse;
    Counts fine[16];
    unsigned long standsAt[16]; // the window that a fine histogram is of
    for (unsigned long& window : standsAt)
        window = count;
    for (unsigned long column = 0; column < side; ++column)
        coarse.add(histograms.coarse + column * 16);

    for (unsigned long x = 0; x < count; ++x) {
        if (x > 0) {
            coarse.add(histograms.coarse + (x + 2 * radius) * 16);
            coarse.subtract(histograms.coarse + (x - 1) * 16);
        }
        int const step = coarse.placeOf(rank);

        unsigned char const* const columns =
            histograms.fine + static_cast<unsigned long>(step) * histograms.columns * 16;
        Counts sums = fine[step];
        if (standsAt[step] == count || x - standsAt[step] > radius) {
            sums = Counts();
            for (unsigned long column = x; column < x + side; ++column)
                sums.add(columns + column * 16);
        } else {
            for (unsigned long window = standsAt[step]; window < x; ++window) {
                sums.add(columns + (window + side) * 16);
                sums.subtract(columns + window * 16);
            }
        }
        fine[step] = sums;
        standsAt[step] = x;
        int const below = step > 0 ? coarse.at(step - 1) : 0;
        medians[x] = static_cast<unsigned char>(step * 16 + sums.placeOf(rank - below));
    }
}

} // namespace qel::nonlinear_filtering
