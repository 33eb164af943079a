#pragma once

#include "Classification/private/LDAClassifier.h"
#include "Classification/private/TextureClassificationModelPrivate.h"
#include "Core/tests/Support/Algorithms.h"

#include <qel/classification/TextureClassificationCreate.h>
#include <qel/classification/TextureClassificationModel.h>
#include <qel/classification/TextureClassificationTrain.h>
#include <qel/segmentation/TextureFeatureExtraction2D.h>
#include <qel/segmentation/TextureFeatureExtraction3D.h>

#include <memory>
#include <random>

namespace qel::test {

using classification::LDAClassifier;
using classification::TextureClassificationCreate;
using classification::TextureClassificationModel;
using classification::TextureClassificationModelPrivate;
using classification::TextureClassificationTrain;
using Model = std::unique_ptr<TextureClassificationModel>;

template <class E> container::Vector<E> vectorOf(std::initializer_list<E> elements)
{
    container::Vector<E> vector;
    for (E const& element : elements)
        vector.push_back(element);
    return vector;
}

/// A model of all kinds of measures, over grey levels from 0 to 127.
template <class Adjust> Model createdModel(Adjust const& adjust)
{
    using namespace segmentation;
    Ref<TextureClassificationCreate> create(TextureClassificationCreate::New());
    create->radius = 2;
    create->textureFeaturesGroup = vectorOf({COOC_Contrast, HISTO_Mean, COOC_EntropyMean, HISTO_Stddev,
                                             COOC_CorrelationRange, COOC_InverseDifferenceMoment});
    create->minGreyLevelCooccurrence = 0.0;
    create->maxGreyLevelCooccurrence = 127.0;
    create->binSizeCooccurrence = 16.0;
    create->minGreyLevelHistogram = 0.0;
    create->maxGreyLevelHistogram = 127.0;
    create->binSizeHistogram = 1.0;
    create->direction2DCollection = vectorOf({math::Vector2<int>(1, 0), math::Vector2<int>(1, 1)});
    create->direction3DCollection = vectorOf({math::Vector3<int>(0, 0, 1), math::Vector3<int>(1, -1, 0)});
    adjust(*create);
    TextureClassificationModel* model = nullptr;
    create->classificationModel = &model;
    create->run();
    return Model(model);
}

inline Model createdModel()
{
    return createdModel([](TextureClassificationCreate&) {});
}

inline LDAClassifier& classifierOf(Model const& model)
{
    return dynamic_cast<LDAClassifier&>(*model->getPrivate()->classifier);
}

/// Two textures side by side, the left one of few grey levels. All are from 0 to 127.
template <class T> Picture<T> twoTextures(Shape const& shape, unsigned int seed = 1)
{
    std::mt19937 random(seed);
    Picture<T> picture(shape);
    forEachVoxel(shape, [&](auto c, auto r, auto p, auto t, auto s) {
        unsigned int const value = random() % 128;
        picture.at(c, r, p, t, s) = static_cast<T>(2 * c < shape.columns ? 50 + value % 8 : value);
    });
    return picture;
}

/// Labels of some voxels of each texture: 1 on the left, 2 on the right.
template <class T = unsigned char> Picture<T> someLabels(Shape const& shape)
{
    Picture<T> picture(shape);
    forEachVoxel(shape, [&](auto c, auto r, auto p, auto t, auto s) {
        bool const isLabelled = (c * 7 + r * 3 + p * 5 + t) % 4 == 0;
        picture.at(c, r, p, t, s) = static_cast<T>(isLabelled ? (2 * c < shape.columns ? 1 : 2) : 0);
    });
    return picture;
}

/// All features of all voxels: channels are time series.
inline Picture<double> featuresOf(TextureClassificationModelPrivate const& model, ImageModel const& image)
{
    memory::InMemoryImage features;
    features.reserve(QEL_FLOAT64, 0, 0, 0, 0, 0);
    auto const extract = [&](auto extraction, auto const& directions) {
        extraction->input = &image;
        extraction->radius = model.radius;
        extraction->textureFeaturesGroup = model.measures;
        extraction->minGreyLevelCooccurrence = model.minGreyLevelCooccurrence;
        extraction->maxGreyLevelCooccurrence = model.maxGreyLevelCooccurrence;
        extraction->binSizeCooccurrence = model.binSizeCooccurrence;
        extraction->directionCollection = directions;
        extraction->minGreyLevelHistogram = model.minGreyLevelHistogram;
        extraction->maxGreyLevelHistogram = model.maxGreyLevelHistogram;
        extraction->binSizeHistogram = model.binSizeHistogram;
        extraction->userQuantileRatioHistogram = model.userQuantileRatios;
        extraction->output = &features;
        extraction->run();
    };
    using segmentation::TextureFeatureExtraction2D;
    using segmentation::TextureFeatureExtraction3D;
    if (model.computeMode == classification::MODE_2D)
        extract(Ref<TextureFeatureExtraction2D>(TextureFeatureExtraction2D::New()), model.directions2D);
    else
        extract(Ref<TextureFeatureExtraction3D>(TextureFeatureExtraction3D::New()), model.directions3D);
    return fromImage<double>(features);
}

/// The features of one voxel.
inline Eigen::VectorXd featuresAt(Picture<double> const& features, unsigned long numOfTimes, unsigned long c,
                                  unsigned long r, unsigned long p, unsigned long t)
{
    unsigned long const channels = features.shape.timeSeries / numOfTimes;
    Eigen::VectorXd vector(static_cast<long>(channels));
    for (unsigned long channel = 0; channel < channels; ++channel)
        vector(static_cast<long>(channel)) = features.at(c, r, p, t * channels + channel);
    return vector;
}

inline void train(Model const& model, ImageModel const& image, ImageModel& labels, double leastImprovement = 0.05)
{
    labels.setInterpretation(QEL_LABEL);
    Ref<TextureClassificationTrain> train(TextureClassificationTrain::New());
    train->input = &image;
    train->mask = &labels;
    train->rejectionFeatureSelection = leastImprovement;
    train->classificationModel = model.get();
    train->run();
}

/// The bytes of a model's file.
inline std::string fileOf(Model const& model)
{
    TemporaryFolder const folder;
    std::string const path = folder / "model";
    model->write(path.c_str(), BINARY, false);
    return readFile(path);
}

} // namespace qel::test
