#pragma once

#include "Morphology/private/HitOrMissKernels.h"

// One text for all instruction sets: GCC makes vectors of these loops. `Arch` keeps the instances of the units apart.

namespace qel::morphology::details {

// Pieces of a row that stay in the fastest cache, and how much packets may read and write beyond their end.
inline constexpr long pieceLength = 1024;
inline constexpr long padding = 32;

template <class Arch> long lengthOfPiece(long first, long count)
{
    return count - first < pieceLength ? count - first : pieceLength;
}

/// matches[x] = 255 where the columns codes[x - 1], codes[x] and codes[x + 1] make a pattern that matches, 0 elsewhere.
/// Each instruction set has its own.
template <class Arch> struct ColumnMatcher
{
    static void run(unsigned char const* codes, unsigned char* matches, long count, MatchBytes const& bytes);
};

/// With packets of bytes. `lookUp(table, index)`: of each index below 128 the byte of the table at its lowest four
/// bits, whose 16 bytes stand in the packet again and again.
template <class Arch, class Packet, Packet (*lookUp)(Packet, Packet)>
void matchPackets(unsigned char const* codes, unsigned char* matches, long count, MatchBytes const& bytes)
{
    static constexpr unsigned char bits[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    auto const repeated = [](unsigned char const* sixteen) {
        Packet packet;
        for (unsigned long begin = 0; begin < sizeof(Packet); begin += 16)
            __builtin_memcpy(reinterpret_cast<char*>(&packet) + begin, sixteen, 16);
        return packet;
    };
    Packet const parts[4] = {repeated(bytes), repeated(bytes + 16), repeated(bytes + 32), repeated(bytes + 48)};
    Packet const bitOf = repeated(bits);
    for (long x = 0; x < count; x += static_cast<long>(sizeof(Packet))) {
        Packet left, centre, right;
        __builtin_memcpy(&left, codes + x - 1, sizeof(Packet));
        __builtin_memcpy(&centre, codes + x, sizeof(Packet));
        __builtin_memcpy(&right, codes + x + 1, sizeof(Packet));
        Packet const index = left | right << 3;
        Packet const lower = index << 3 < 0 ? lookUp(parts[1], index) : lookUp(parts[0], index);
        Packet const upper = index << 3 < 0 ? lookUp(parts[3], index) : lookUp(parts[2], index);
        Packet const byte = index << 2 < 0 ? upper : lower;
        Packet const bit = lookUp(bitOf, centre);
        Packet const match = (byte & bit) == bit;
        __builtin_memcpy(matches + x, &match, sizeof(Packet));
    }
}

/// The lowest bits of three voxels of a column, `Distance` bits apart.
template <class Arch, int Distance, class T>
void codeColumns(T const* __restrict above, T const* __restrict middle, T const* __restrict below,
                 unsigned char* __restrict codes, long count)
{
    for (long x = 0; x < count; ++x)
        codes[x] =
            static_cast<unsigned char>((above[x] & 1) | (middle[x] & 1) << Distance | (below[x] & 1) << (2 * Distance));
}

/// Patterns of three plans from the columns of each, whose bits stand three apart; from column -1 on.
template <class Arch>
void joinPlans(unsigned char const* __restrict first, unsigned char const* __restrict second,
               unsigned char const* __restrict third, unsigned int* __restrict patterns, long count)
{
    for (long x = 0; x < count; ++x) {
        unsigned int const inFirst = static_cast<unsigned int>(first[x] | first[x + 1] << 1 | first[x + 2] << 2);
        unsigned int const inSecond = static_cast<unsigned int>(second[x] | second[x + 1] << 1 | second[x + 2] << 2);
        unsigned int const inThird = static_cast<unsigned int>(third[x] | third[x + 1] << 1 | third[x + 2] << 2);
        patterns[x] = inFirst | inSecond << 9 | inThird << 18;
    }
}

template <class Arch>
void lookUpPatterns(unsigned int const* __restrict patterns, unsigned int const* __restrict words,
                    unsigned char* __restrict matches, long count)
{
    for (long x = 0; x < count; ++x)
        matches[x] = static_cast<unsigned char>(-(words[patterns[x] / 32] >> patterns[x] % 32 & 1));
}

template <class Arch, class T>
void act(MatchingActions<T> const& actions, unsigned char const* __restrict matches, T const* __restrict in,
         T* __restrict out, long count)
{
    MatchingAction<T> const base = actions.otherwise;
    auto const flip = static_cast<T>(actions.onMatch.flip ^ base.flip);
    auto const keep = static_cast<T>(actions.onMatch.keep ^ base.keep);
    auto const add = static_cast<T>(actions.onMatch.add ^ base.add);
    for (long x = 0; x < count; ++x) {
        auto const match = static_cast<T>(static_cast<signed char>(matches[x]));
        out[x] = static_cast<T>(((in[x] ^ base.flip ^ (match & flip)) & (base.keep ^ (match & keep))) +
                                (base.add ^ (match & add)));
    }
}

template <class Arch, class T>
void matchInPlane(T const* const* rows, T* out, long count, MatchBytes const& bytes, MatchingActions<T> const& actions)
{
    unsigned char matches[pieceLength + padding], codes[pieceLength + padding + 2] = {};
    for (long first = 0; first < count; first += pieceLength) {
        long const length = lengthOfPiece<Arch>(first, count);
        codeColumns<Arch, 1>(rows[0] + first - 1, rows[1] + first - 1, rows[2] + first - 1, codes, length + 2);
        ColumnMatcher<Arch>::run(codes + 1, matches, length, bytes);
        act<Arch>(actions, matches, rows[1] + first, out + first, length);
    }
}

template <class Arch, class T>
void matchInSpace(T const* const* rows, T* out, long count, unsigned int const* words,
                  MatchingActions<T> const& actions)
{
    unsigned char matches[pieceLength], codes[3][pieceLength + 2];
    unsigned int patterns[pieceLength];
    for (long first = 0; first < count; first += pieceLength) {
        long const length = lengthOfPiece<Arch>(first, count);
        for (int plan = 0; plan < 3; ++plan)
            codeColumns<Arch, 3>(rows[3 * plan] + first - 1, rows[3 * plan + 1] + first - 1,
                                 rows[3 * plan + 2] + first - 1, codes[plan], length + 2);
        joinPlans<Arch>(codes[0], codes[1], codes[2], patterns, length);
        lookUpPatterns<Arch>(patterns, words, matches, length);
        act<Arch>(actions, matches, rows[4] + first, out + first, length);
    }
}

/// How many of `N` rows are not 0, and what was counted before.
template <class Arch, int N, bool First, class T>
void addForeground(T const* const* rows, int const* chosen, long offset, unsigned char* __restrict counts, long count)
{
    T const* row[N];
    for (int i = 0; i < N; ++i)
        row[i] = rows[chosen[i]] + offset;
    for (long x = 0; x < count; ++x) {
        unsigned char number = First ? static_cast<unsigned char>(0) : counts[x];
        for (int i = 0; i < N; ++i)
            number = static_cast<unsigned char>(number + (row[i][x] != 0));
        counts[x] = number;
    }
}

template <class Arch, class T>
void countForeground(T const* const* rows, int const* chosen, int numOfChosen, long offset, unsigned char* counts,
                     long count)
{
    int done = numOfChosen < 3 ? 1 : 3;
    if (done == 3)
        addForeground<Arch, 3, true>(rows, chosen, offset, counts, count);
    else
        addForeground<Arch, 1, true>(rows, chosen, offset, counts, count);
    for (; done + 3 <= numOfChosen; done += 3)
        addForeground<Arch, 3, false>(rows, chosen + done, offset, counts, count);
    for (; done < numOfChosen; ++done)
        addForeground<Arch, 1, false>(rows, chosen + done, offset, counts, count);
}

/// Of a voxel of the foreground, it and its neighbours are two where it has one of them.
template <class Arch, bool HasSingle, class T>
void keepTwos(unsigned char const* __restrict whole, unsigned char const* __restrict single, T const* __restrict in,
              T* __restrict out, long count)
{
    for (long x = 0; x < count; ++x) {
        auto const number =
            static_cast<unsigned char>(whole[x] + whole[x + 1] + whole[x + 2] + (HasSingle ? single[x] : 0));
        T const voxel = in[x];
        out[x] = number == 2 ? voxel : T(0);
    }
}

template <class Arch, class T> void keepEnds(T const* const* rows, T* out, long count, NeighborRows const& neighbors)
{
    unsigned char whole[pieceLength + 2], single[pieceLength];
    for (long first = 0; first < count; first += pieceLength) {
        long const length = lengthOfPiece<Arch>(first, count);
        T const* const in = rows[neighbors.middle] + first;
        countForeground<Arch>(rows, neighbors.whole, neighbors.numOfWhole, first - 1, whole, length + 2);
        if (neighbors.numOfSingle == 0) {
            keepTwos<Arch, false>(whole, single, in, out + first, length);
            continue;
        }
        countForeground<Arch>(rows, neighbors.single, neighbors.numOfSingle, first, single, length);
        keepTwos<Arch, true>(whole, single, in, out + first, length);
    }
}

} // namespace qel::morphology::details

namespace qel::morphology {

template <class Arch, class T> HitOrMissKernels<T> hitOrMissKernels()
{
    return {&details::matchInPlane<Arch, T>, &details::matchInSpace<Arch, T>, &details::keepEnds<Arch, T>};
}

} // namespace qel::morphology
