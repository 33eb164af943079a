#pragma once

#include <qel/segmentation/TextureFeatureTypes.h>

#include <array>
#include <vector>

namespace qel::segmentation::details {

inline constexpr int numOfTextureFeatures = HISTO_LastMeasure + 1;
inline constexpr int numOfBaseMeasures = (COOC_LastMeasure + 1) / 4;

/// What is computed from a co-occurrence matrix, and of what a value is the summary.
inline bool isCooccurrence(int feature) { return feature >= COOC_FirstMeasure && feature <= COOC_LastMeasure; }
inline bool isHistogram(int feature) { return feature >= HISTO_FirstMeasure && feature <= HISTO_LastMeasure; }
/// The form that has one value for each direction; the others are its mean, deviation and range over the directions.
inline bool isForEachDirection(int feature) { return isCooccurrence(feature) && feature % 4 == 0; }

/// Where each measure goes. A measure for each direction has as many channels as there are directions.
struct TextureChannels
{
    static constexpr long none = -1;

    TextureChannels() { channelOf.fill(none); }

    std::array<long, numOfTextureFeatures> channelOf;
    /// Channels from 0 to this one are output; those behind it are only the source of others.
    unsigned long numOfOutputs = 0;
    unsigned long numOfChannels = 0;

    bool has(int feature) const { return channelOf[static_cast<std::size_t>(feature)] != none; }
};

/// The channels of a list of measures, in its order. Where a measure stands twice, its first channels stay unused.
/// Throws InvalidCall for what is no measure.
TextureChannels channelsOf(std::vector<TextureFeatureTypes> const& features, unsigned long numOfDirections);

/// Gives channels to the measures of which only a summary is wanted, behind the outputs. The outputs must be complete.
void addSourceChannels(TextureChannels& channels, unsigned long numOfDirections);

} // namespace qel::segmentation::details
