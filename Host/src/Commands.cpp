#include "Commands.h"

#include "Algorithms.h"
#include "Errors.h"
#include "ImageFile.h"
#include "LineSetHandlers.h"
#include "Outputs.h"
#include "PropertyHandler.h"
#include "TextForms.h"

#include <qel/Exception.h>
#include <qel/Property.h>
#include <qel/classification/TextureClassificationModel.h>
#include <qel/devices/Cpu.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>

namespace host {

namespace {

std::vector<std::string> levelsOf(qel::BaseAlgorithm const& algorithm)
{
    std::vector<std::string> levels;
    for (LevelName const& level : levelNames) {
        if (algorithm.isOptimLevelSupported(level.level))
            levels.emplace_back(level.name);
    }
    return levels;
}

char const* directionName(Direction direction) { return direction == Direction::Input ? "input" : "output"; }

/// One line for each entry of a JSON object, as `name = value`; arrays of numbers as on the command line.
std::string asLines(Json const& object)
{
    std::string text;
    for (auto const& [key, value] : object.items()) {
        std::vector<std::string> words;
        for (Json const& entry : value.is_array() ? value : Json::array({value})) {
            if (entry.is_string())
                words.push_back(entry.get<std::string>());
            else
                words.push_back(entry.is_number_float() ? formOf(entry.get<double>()) : toText(entry));
        }
        text += key + " = " + joined(words, "_") + "\n";
    }
    return text;
}

/// The class of the object in an object file; empty where the file is none.
std::string classOfObjectFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    char magic[4] = {};
    std::uint64_t length = 0;
    if (!file.read(magic, sizeof magic) || std::memcmp(magic, "QELO", sizeof magic) != 0)
        return "";
    // No class has a name this long: the length is not one, and nothing is allocated for it.
    if (!file.read(reinterpret_cast<char*>(&length), sizeof length) || length == 0 || length > 1000)
        throw HostError("the object file " + path + " is damaged");
    std::string name(length, '\0');
    if (!file.read(name.data(), static_cast<std::streamsize>(length)))
        throw HostError("the object file " + path + " is damaged");
    return name;
}

Json scalarResult(qel::BaseAlgorithm const& algorithm, char const* name)
{
    return jsonOf(dynamic_cast<qel::Property<qel::Scalar>&>(*algorithm.getPropertyfromName(name)).get());
}

Json describe(qel::memory::InMemoryImage& image)
{
    Json object{{"kind", "image"}};
    Json sizes = Json::array();
    Json spacing = Json::array();
    Json origin = Json::array();
    unsigned long voxels = 1;
    for (int i = qel::COLUMNS; i <= qel::SPECTRAL_SERIES; ++i) {
        auto const axis = static_cast<qel::Components>(i);
        sizes.push_back(image.getNumOf(axis));
        spacing.push_back(jsonOf(image.getSpacingOf(axis)));
        origin.push_back(jsonOf(image.getOriginOf(axis)));
        voxels *= std::min(image.getNumOf(axis), 1UL);
    }
    object["sizes"] = sizes;
    object["type"] = nameOf(image.getVoxelType());
    object["interpretation"] = nameOf(image.getInterpretation());
    object["spacing"] = spacing;
    object["origin"] = origin;
    object["spatialUnit"] = jsonOf(image.getSpatialUnitName());
    object["temporalUnit"] = jsonOf(image.getTemporalUnitName());
    // An image without voxels, or with complex ones, has no extrema.
    if (voxels > 0 && image.getVoxelType() <= qel::QEL_FLOAT64) {
        qel::Ref<qel::BaseAlgorithm> const extrema = createAlgorithm("IntensityExtrema");
        dynamic_cast<qel::Property<qel::ImageModel const*>&>(*extrema->getPropertyfromName("input")).set(&image);
        extrema->run();
        object["minimum"] = scalarResult(*extrema, "outputMinimum");
        object["maximum"] = scalarResult(*extrema, "outputMaximum");
    }
    return object;
}

/// Whether a model is trained, and its report if it is.
void describeModel(std::string const& path, Json& object)
{
    qel::classification::TextureClassificationModel model;
    model.read(toQelString(path));
    std::string report;
    try {
        report = toStdString(model.getInfo());
    } catch (qel::InvalidCall const&) { // a model that was not trained has none
    }
    object["trained"] = !report.empty();
    if (!report.empty())
        object["report"] = report;
}

} // namespace

std::string list(bool json)
{
    std::vector<AlgorithmName> const all = allAlgorithms();
    if (json) {
        Json entries = Json::array();
        for (AlgorithmName const& algorithm : all)
            entries.push_back(Json{{"name", algorithm.name}, {"namespace", algorithm.nameSpace}});
        return toText(entries) + "\n";
    }
    std::size_t width = 0;
    for (AlgorithmName const& algorithm : all)
        width = std::max(width, algorithm.name.size());
    std::string text;
    for (AlgorithmName const& algorithm : all)
        text += algorithm.name + std::string(width + 2 - algorithm.name.size(), ' ') + algorithm.nameSpace + "\n";
    return text;
}

std::string info(std::string const& name, bool json)
{
    qel::Ref<qel::BaseAlgorithm> const algorithm = createAlgorithm(name);
    PropertyHandlers const handlers = handlersOf(*algorithm);
    if (json) {
        Json properties = Json::array();
        for (auto const& handler : handlers) {
            Json entry{{"name", handler->name()},
                       {"direction", directionName(handler->direction())},
                       {"kind", handler->kind()},
                       {"default", handler->text()}};
            if (std::vector<std::string> const labels = handler->labels(); !labels.empty())
                entry["labels"] = labels;
            properties.push_back(entry);
        }
        return toText(Json{{"name", name},
                           {"namespace", nameSpaceOf(*algorithm)},
                           {"properties", properties},
                           {"levels", levelsOf(*algorithm)}}) +
               "\n";
    }
    std::string text = "algorithm: " + name + "\nnamespace: " + nameSpaceOf(*algorithm) + "\n";
    for (auto const& handler : handlers) {
        text += std::string(directionName(handler->direction())) + " " + handler->name() + ": " + handler->kind() +
                ", default " + (handler->text().empty() ? "empty" : handler->text());
        if (std::vector<std::string> const labels = handler->labels(); !labels.empty())
            text += ", labels " + joined(labels, " ");
        text += "\n";
    }
    return text + "levels: " + joined(levelsOf(*algorithm), " ") + "\n";
}

std::string show(std::string const& path, bool json)
{
    Json object;
    if (std::string const className = classOfObjectFile(path); !className.empty()) {
        object = Json{{"kind", className}};
        if (className == "TextureClassificationModel")
            describeModel(path, object);
        else if (className == "LineSet3D")
            describeLineSet(path, object);
    } else {
        qel::memory::InMemoryImage image;
        readImageFile(path, std::nullopt, image);
        object = describe(image);
    }
    if (json)
        return toText(object) + "\n";
    std::string report; // lines of its own already
    if (auto const entry = object.find("report"); entry != object.end()) {
        report = entry->get<std::string>();
        object.erase(entry);
    }
    return asLines(object) + report;
}

std::string convert(std::string const& input, std::string const& output)
{
    ImageArgument const source = ImageArgument::parse(input, ImageArgument::Role::Input);
    ImageArgument const target = ImageArgument::parse(output, ImageArgument::Role::Conversion);
    if (source.path.empty() || target.path.empty())
        throw UsageError("convert needs the paths of two image files");
    checkWritable(target.path);
    Outputs outputs;
    outputs.expect(target.path);
    qel::memory::InMemoryImage image;
    readImage(source, image);
    if (target.interpretation)
        image.setInterpretation(*target.interpretation);
    writeImageFile(image, target.type, target.path, outputs.temporaryFor(target.path));
    outputs.commit();
    return "";
}

std::string cpu()
{
    std::string text = toStdString(qel::devices::Cpu::getDevice().getInfo());
    if (text.empty() || text.back() != '\n')
        text += '\n';
    return text;
}

} // namespace host
