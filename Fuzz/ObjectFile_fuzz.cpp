// Object files of any origin: read, or refused in words. What was read has a report or says why not, survives a round
// trip, and can be used as if it were one's own.
#include "Fuzz/MemoryFile.h"
#include "Fuzz/Require.h"

#include "Classification/private/TextureClassificationModelPrivate.h"

#include <qel/Data.h>
#include <qel/Exception.h>
#include <qel/Ref.h>
#include <qel/classification/TextureClassificationApply.h>
#include <qel/classification/TextureClassificationModel.h>
#include <qel/classification/TextureClassificationTrain.h>
#include <qel/memory/InMemoryImage.h>

#include <tbb/global_control.h>

#include <cmath>

using namespace qel;
using classification::TextureClassificationModel;
using fuzz::MemoryFile;
using fuzz::require;

namespace {

/// Does it, and says whether it was done; a refusal must have words.
template <class Attempt> bool isDone(Attempt const& attempt)
{
    try {
        attempt();
        return true;
    } catch (Exception const& error) {
        require(error.what().length() > 0, "a refusal has words");
        return false;
    }
}

/// Whether it is within a moment that a model is used, or refused for its size.
bool isQuick(TextureClassificationModel const& model)
{
    auto const& parameters = *model.getPrivate();
    auto const isSmallOrAbsurd = [](double size, double small, double absurd) {
        return !(size > small) || size >= absurd;
    };
    // An open range becomes that of the image, in the training.
    auto const bins = [](double min, double max, double size) { return (min > max ? 255 : max - min) / size; };
    double const cooccurrenceBins =
        bins(parameters.minGreyLevelCooccurrence, parameters.maxGreyLevelCooccurrence, parameters.binSizeCooccurrence);
    double const histogramBins =
        bins(parameters.minGreyLevelHistogram, parameters.maxGreyLevelHistogram, parameters.binSizeHistogram);
    // Application swaps the ends of an open range.
    double const swappedBins =
        std::abs(parameters.maxGreyLevelHistogram - parameters.minGreyLevelHistogram) / parameters.binSizeHistogram;
    return isSmallOrAbsurd(parameters.radius, 4, 1e6) && isSmallOrAbsurd(cooccurrenceBins, 256, 1e6) &&
           isSmallOrAbsurd(histogramBins, 4096, 1e12) && isSmallOrAbsurd(swappedBins, 4096, 1e12) &&
           parameters.getNumOfDirections() <= 16;
}

/// An image with some texture, and labels for some of it.
memory::InMemoryImage image(bool isLabel)
{
    memory::InMemoryImage picture;
    picture.reserve(QEL_UINT8, 5, 4, 2, 1, 1);
    for (int i = 0; i < 5 * 4 * 2; ++i)
        picture.getInternalBuffer()[i] = static_cast<unsigned char>(isLabel ? i % 3 : i * i * 7);
    picture.setInterpretation(isLabel ? QEL_LABEL : QEL_VALUE);
    return picture;
}

void apply(TextureClassificationModel const& model)
{
    memory::InMemoryImage const input = image(false);
    memory::InMemoryImage output;
    isDone([&] {
        Ref<classification::TextureClassificationApply> application(classification::TextureClassificationApply::New());
        application->input = &input;
        application->classificationModel = &model;
        application->classifiedImage = &output;
        application->run();
    });
}

bool train(TextureClassificationModel& model)
{
    memory::InMemoryImage const input = image(false);
    memory::InMemoryImage const labels = image(true);
    return isDone([&] {
        Ref<classification::TextureClassificationTrain> training(classification::TextureClassificationTrain::New());
        training->input = &input;
        training->mask = &labels;
        training->classificationModel = &model;
        training->run();
    });
}

void useModel(MemoryFile const& file, MemoryFile const& copy)
{
    TextureClassificationModel model;
    if (!isDone([&] { model.read(file.path()); }))
        return;
    isDone([&] { model.getInfo(); });
    model.write(copy.path(), BINARY, true);
    std::string const written = copy.content();
    TextureClassificationModel again;
    again.read(copy.path());
    again.write(copy.path(), BINARY, true);
    require(copy.content() == written, "what was written is read and written alike");
    if (!isQuick(model))
        return;
    apply(model);
    if (train(model)) {
        require(model.getInfo().length() > 0, "a trained model has a report");
        apply(model);
    }
}

void useData(MemoryFile const& file, MemoryFile const& copy)
{
    Ref<Data> data;
    if (!isDone([&] { data = Data::load(file.path()); }) || !data)
        return;
    data->write(copy.path(), BINARY, true);
    std::string const written = copy.content();
    Data::load(copy.path())->write(copy.path(), BINARY, true);
    require(copy.content() == written, "what was written is read and written alike");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static tbb::global_control const oneThread(tbb::global_control::max_allowed_parallelism, 1);
    static MemoryFile const file;
    static MemoryFile const copy;
    file.assign(data, size);
    useModel(file, copy);
    useData(file, copy);
    return 0;
}
