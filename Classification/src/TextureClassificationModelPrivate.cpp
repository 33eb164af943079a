#include "Classification/private/TextureClassificationModelPrivate.h"

#include <type_traits>

#include "Classification/private/LDAClassifier.h"
#include "Core/private/Serialization/BinaryArchive.h"
#include "Core/private/Throw.h"

#include <qel/EnumInfo.h>
#include <qel/Exception.h>

namespace qel::classification {

using segmentation::TextureFeatureTypes;

namespace {

constexpr char LDA_NAME[] = "LDAClassifier";
constexpr unsigned short LDA_VERSION = 1;
constexpr unsigned long NUM_OF_USER_QUANTILES = segmentation::HISTO_QuantileR6 - segmentation::HISTO_QuantileR1 + 1;

void writeDirection(ClassicStream& stream, math::Vector2<int> const& direction)
{
    stream << direction[0] << " - " << direction[1];
}

void writeDirection(ClassicStream& stream, math::Vector3<int> const& direction)
{
    stream << direction[0] << " - " << direction[1] << " - " << direction[2];
}

} // namespace

TextureClassificationModelPrivate::TextureClassificationModelPrivate()
    : classifier(std::make_unique<LDAClassifier>())
{}

TextureClassificationModelPrivate::~TextureClassificationModelPrivate() = default;

bool TextureClassificationModelPrivate::isPerDirection(TextureFeatureTypes measure)
{
    return measure <= segmentation::COOC_LastMeasure && measure % 4 == 0;
}

unsigned long TextureClassificationModelPrivate::getNumOfDirections() const
{
    return computeMode == MODE_2D ? directions2D.size() : directions3D.size();
}

unsigned long TextureClassificationModelPrivate::getLearningSpaceDimension() const
{
    unsigned long dimension = 0;
    for (TextureFeatureTypes const measure : measures)
        dimension += isPerDirection(measure) ? getNumOfDirections() : 1;
    return dimension;
}

String TextureClassificationModelPrivate::getInfo() const
{
    if (!classifier)
        QEL_THROW(InvalidCall, "No classifier defined.");
    EnumInfo const& labels = segmentation::textureFeatureTypesInfo();
    ClassicStream report;
    auto const forEachDirection = [this](auto const& visit) {
        if (computeMode == MODE_2D)
            for (auto const& direction : directions2D)
                visit(direction);
        else
            for (auto const& direction : directions3D)
                visit(direction);
    };

    report << "Compute mode: " << static_cast<int>(computeMode) << '\n';
    report << "Number of classes: " << numOfClasses << '\n';
    report << "radius: " << radius << '\n';
    report << "number of texture Features:" << measures.size() << '\n';
    report << "textureFeaturesGroup:\n";
    for (TextureFeatureTypes const measure : measures)
        report << '\t' << labels.getLabelFromValue(measure) << '\n';
    report << "minGreyLevelCooccurrence: " << minGreyLevelCooccurrence << '\n';
    report << "maxGreyLevelCooccurrence: " << maxGreyLevelCooccurrence << '\n';
    report << "binSizeCooccurrence: " << binSizeCooccurrence << '\n';
    report << "directionCollection:\n";
    forEachDirection([&](auto const& direction) {
        report << '\t';
        writeDirection(report, direction);
        report << '\n';
    });
    report << "minGreyLevelHistogram: " << minGreyLevelHistogram << '\n';
    report << "maxGreyLevelHistogram: " << maxGreyLevelHistogram << '\n';
    report << "binSizeHistogram: " << binSizeHistogram << '\n';
    report << "userQuantileRatioHistogram:\n";
    for (double const ratio : userQuantileRatios)
        report << '\t' << ratio << '\n';

    report << "number of possible features :" << classifier->getLearningSpaceDimension() << '\n';
    report << "number of selected features :" << classifier->getClassicationSpaceDimension() << '\n';
    report << "selected features: \n";
    long index = 0;
    for (TextureFeatureTypes const measure : measures) {
        if (!isPerDirection(measure)) {
            if (classifier->isUsedFeature(index++))
                report << '\t' << labels.getLabelFromValue(measure) << '\n';
            continue;
        }
        forEachDirection([&](auto const& direction) {
            if (!classifier->isUsedFeature(index++))
                return;
            report << '\t' << labels.getLabelFromValue(measure) << ": direction ";
            writeDirection(report, direction);
            report << '\n';
        });
    }
    report << classifier->getInfo();
    return report.text();
}

template <class Archive>
void TextureClassificationModelPrivate::serialize(Archive& archive, [[maybe_unused]] unsigned short version)
{
    auto const check = []([[maybe_unused]] bool isRight) {
        if constexpr (Archive::isReading)
            if (!isRight)
                throw archive::Corrupted();
    };

    // Writing stores nothing here: others may use the model at the same time.
    unsigned char mode = MODE_2D;
    if (version == 1) {
        if (!Archive::isReading && computeMode != MODE_2D)
            QEL_THROW(SerializationException, "TextureClassificationModel version 1 supports only 2D mode.");
    } else {
        mode = static_cast<unsigned char>(computeMode);
        serialization::serialize(archive, mode);
        check(mode <= MODE_3D);
    }
    if constexpr (Archive::isReading)
        computeMode = static_cast<ComputeMode>(mode);
    serialization::serialize(archive, numOfClasses);
    check(numOfClasses >= 0);
    serialization::serialize(archive, radius);

    unsigned long numOfMeasures = measures.size();
    serialization::serialize(archive, numOfMeasures);
    if constexpr (Archive::isReading) {
        archive.checkRoomFor(numOfMeasures, sizeof(unsigned short));
        measures.resize(numOfMeasures);
    }
    bool usesRatios = false;
    for (TextureFeatureTypes& measure : measures) {
        unsigned short value = static_cast<unsigned short>(measure);
        serialization::serialize(archive, value);
        check(value <= segmentation::HISTO_LastMeasure);
        if constexpr (Archive::isReading)
            measure = static_cast<TextureFeatureTypes>(value);
        usesRatios = usesRatios || value >= segmentation::HISTO_QuantileR1;
    }

    serialization::serialize(archive, minGreyLevelCooccurrence);
    serialization::serialize(archive, maxGreyLevelCooccurrence);
    serialization::serialize(archive, binSizeCooccurrence);
    if constexpr (Archive::isReading) {
        directions2D.clear();
        directions3D.clear();
    }
    if (computeMode == MODE_2D)
        serialization::serialize(archive, directions2D);
    else
        serialization::serialize(archive, directions3D);
    serialization::serialize(archive, minGreyLevelHistogram);
    serialization::serialize(archive, maxGreyLevelHistogram);
    serialization::serialize(archive, binSizeHistogram);
    serialization::serialize(archive, userQuantileRatios);
    check(!usesRatios || userQuantileRatios.size() >= NUM_OF_USER_QUANTILES);

    std::string name = LDA_NAME;
    if constexpr (Archive::isReading)
        classifier.reset();
    else if (dynamic_cast<LDAClassifier*>(classifier.get()) == nullptr)
        QEL_THROW(SerializationException, "Unknown classifier.");
    serialization::serialize(archive, name);
    if (name != LDA_NAME)
        QEL_THROW(SerializationException, "Unknown classifier.");
    unsigned short classifierVersion = LDA_VERSION;
    serialization::serialize(archive, classifierVersion);
    check(classifierVersion == LDA_VERSION);
    if constexpr (Archive::isReading) {
        auto lda = std::make_unique<LDAClassifier>();
        lda->serialize(archive);
        // A classifier for other features or classes than the model's would read and write beyond its ends.
        check(lda->getStatus() == LDAClassifier::UNINITIALIZED ||
              (static_cast<unsigned long>(lda->getLearningSpaceDimension()) == getLearningSpaceDimension() &&
               lda->getNumOfClasses() == numOfClasses));
        classifier = std::move(lda);
    } else {
        static_cast<LDAClassifier&>(*classifier).serialize(archive);
    }
}

template void TextureClassificationModelPrivate::serialize(archive::BinaryInputArchive& archive,
                                                           unsigned short version);
template void TextureClassificationModelPrivate::serialize(archive::BinaryOutputArchive& archive,
                                                           unsigned short version);

} // namespace qel::classification
