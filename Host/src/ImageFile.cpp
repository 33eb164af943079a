#include "ImageFile.h"

#include "Errors.h"
#include "ForwardingImage.h"
#include "PictureFile.h"
#include "Signals.h"
#include "Suggestion.h"
#include "TextForms.h"

#include <qel/AlgoInfo.h>
#include <qel/BaseAlgorithm.h>
#include <qel/ImageModelAdapter.h>
#include <qel/Property.h>
#include <qel/Ref.h>

#include <cctype>
#include <memory>

namespace host {

namespace {

qel::Components const axes[] = {qel::COLUMNS, qel::ROWS, qel::PLANS, qel::TIME_SERIES, qel::SPECTRAL_SERIES};

/// What a reader fills: it reserves and writes in the type of the file, and the voxels arrive in the type that the
/// command line wants. A signal ends the reading.
class ReadTarget : public ForwardingImage
{
public:
    ReadTarget(qel::ImageModel& image, std::optional<qel::VoxelTypes> wanted)
        : ForwardingImage(image)
        , m_image(image)
        , m_wanted(wanted)
    {}

    bool reserve(qel::VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override
    {
        qel::VoxelTypes const kept = m_wanted.value_or(type);
        if (kept != type && type > qel::QEL_FLOAT64)
            throw HostError("complex voxels cannot be cast to " + nameOf(kept));
        if (!m_image.reserve(kept, columns, rows, plans, timeSeries, spectralSeries))
            return false;
        m_adapter = std::make_unique<qel::ImageModelAdapter>(&m_image, type);
        forwardTo(*m_adapter->getImage());
        return true;
    }

    bool writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column, unsigned long row,
                    unsigned long plan, unsigned long time, unsigned long spectral) override
    {
        signals::check();
        return ForwardingImage::writeRowAt(numOfVoxels, source, column, row, plan, time, spectral);
    }

private:
    qel::ImageModel& m_image;
    std::optional<qel::VoxelTypes> m_wanted;
    std::unique_ptr<qel::ImageModelAdapter> m_adapter;
};

/// What a writer reads from. A signal ends the writing.
class WriteSource : public ForwardingImage
{
public:
    using ForwardingImage::ForwardingImage;

    bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override
    {
        signals::check();
        return ForwardingImage::readRowAt(numOfVoxels, destination, column, row, plan, time, spectral);
    }

    bool getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                       unsigned long rowIndex, unsigned long plan, unsigned long time,
                       unsigned long spectral) const override
    {
        signals::check();
        return ForwardingImage::getConstRowAt(numOfVoxels, row, column, rowIndex, plan, time, spectral);
    }
};

std::string extensionOf(std::string const& path)
{
    std::size_t const name = path.rfind('/') + 1;
    std::size_t const point = path.rfind('.');
    if (point == std::string::npos || point <= name)
        return "";
    std::string extension = path.substr(point + 1);
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

bool isRawImage(std::string const& path) { return extensionOf(path) == "qeli"; }

template <class T> void set(qel::BaseAlgorithm& algorithm, char const* name, T value)
{
    dynamic_cast<qel::Property<T>&>(*algorithm.getPropertyfromName(name)).set(value);
}

} // namespace

void readImageFile(std::string const& path, std::optional<qel::VoxelTypes> wanted, qel::memory::InMemoryImage& image)
{
    signals::check();
    ReadTarget target(image, wanted);
    if (!isRawImage(path)) {
        // A picture says nothing of the size of its voxels: they count as one unit.
        for (qel::Components const axis : axes)
            image.setSpacingOf(axis, 1.0);
        pictures().read(path, target);
        return;
    }
    qel::Ref<qel::BaseAlgorithm> const load(qel::AlgoInfo::fromName("LoadQelRawImage")->createInstance());
    set(*load, "filePath", toQelString(path));
    set<qel::ImageModel*>(*load, "output", &target);
    load->run();
}

void readImage(ImageArgument const& argument, qel::memory::InMemoryImage& image)
{
    readImageFile(argument.path, argument.type, image);
    if (argument.interpretation)
        image.setInterpretation(*argument.interpretation);
    for (std::size_t i = 0; i < 3; ++i) {
        if (argument.spacing)
            image.setSpacingOf(axes[i], (*argument.spacing)[i]);
        if (argument.origin)
            image.setOriginOf(axes[i], (*argument.origin)[i]);
    }
    if (argument.unit)
        image.setSpatialUnitName(toQelString(*argument.unit));
}

void checkWritable(std::string const& path)
{
    if (isRawImage(path) || pictures().canWrite(path))
        return;
    std::vector<std::string> known{"qeli"};
    for (std::string const& extension : pictures().extensions()) {
        if (pictures().canWrite("x." + extension))
            known.push_back(extension);
    }
    throw UsageError(unknownName("writable image format for the extension", extensionOf(path), known) + " (" + path +
                     ")");
}

void writeImageFile(qel::ImageModel& image, std::optional<qel::VoxelTypes> type, std::string const& path,
                    std::string const& temporary)
{
    signals::check();
    if (type && *type != image.getVoxelType() && image.getVoxelType() > qel::QEL_FLOAT64)
        throw HostError("complex voxels cannot be cast to " + nameOf(*type));
    qel::ImageModelAdapter adapter(&image, type.value_or(image.getVoxelType()));
    WriteSource source(*adapter.getImage());
    if (!isRawImage(path)) {
        pictures().write(source, path, temporary);
        return;
    }
    qel::Ref<qel::BaseAlgorithm> const save(qel::AlgoInfo::fromName("SaveQelRawImage")->createInstance());
    set<qel::ImageModel const*>(*save, "input", &source);
    set(*save, "filePath", toQelString(temporary));
    set(*save, "overwrite", true);
    save->run();
}

std::string sizesOf(qel::ImageModel const& image)
{
    std::vector<std::string> sizes;
    for (qel::Components const axis : axes)
        sizes.push_back(std::to_string(image.getNumOf(axis)));
    return joined(sizes, "_");
}

} // namespace host
