#include "Segmentation/private/Texture/TextureChannels.h"

#include "Core/private/Throw.h"

namespace qel::segmentation::details {

TextureChannels channelsOf(std::vector<TextureFeatureTypes> const& features, unsigned long numOfDirections)
{
    TextureChannels channels;
    for (TextureFeatureTypes const feature : features) {
        if (!isCooccurrence(feature) && !isHistogram(feature))
            QEL_THROW(InvalidCall, "There is no texture feature " << static_cast<int>(feature) << ".");
        channels.channelOf[feature] = static_cast<long>(channels.numOfOutputs);
        channels.numOfOutputs += isForEachDirection(feature) ? numOfDirections : 1;
    }
    addSourceChannels(channels, numOfDirections);
    return channels;
}

void addSourceChannels(TextureChannels& channels, unsigned long numOfDirections)
{
    channels.numOfChannels = channels.numOfOutputs;
    for (int measure = COOC_FirstMeasure; measure <= COOC_LastMeasure; measure += 4) {
        bool const hasSummary = channels.has(measure + 1) || channels.has(measure + 2) || channels.has(measure + 3);
        if (channels.has(measure) || !hasSummary)
            continue;
        channels.channelOf[static_cast<std::size_t>(measure)] = static_cast<long>(channels.numOfChannels);
        channels.numOfChannels += numOfDirections;
    }
}

} // namespace qel::segmentation::details
