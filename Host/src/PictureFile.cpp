#include "PictureFile.h"

#include "CheckedFile.h"
#include "Errors.h"
#include "ImageArgument.h"
#include "Signals.h"

#include <qel/ImageModelAdapter.h>

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace host {

namespace {

// Rows go through the host in bands of about this many bytes.
unsigned long const bandBytes = 4UL << 20;

std::optional<qel::VoxelTypes> voxelTypeOf(OIIO::TypeDesc format)
{
    switch (format.basetype) {
    case OIIO::TypeDesc::UINT8:
        return qel::QEL_UINT8;
    case OIIO::TypeDesc::UINT16:
        return qel::QEL_UINT16;
    case OIIO::TypeDesc::UINT32:
        return qel::QEL_UINT32;
    case OIIO::TypeDesc::UINT64:
        return qel::QEL_UINT64;
    case OIIO::TypeDesc::INT8:
        return qel::QEL_INT8;
    case OIIO::TypeDesc::INT16:
        return qel::QEL_INT16;
    case OIIO::TypeDesc::INT32:
        return qel::QEL_INT32;
    case OIIO::TypeDesc::INT64:
        return qel::QEL_INT64;
    case OIIO::TypeDesc::HALF:
    case OIIO::TypeDesc::FLOAT:
        return qel::QEL_FLOAT32;
    case OIIO::TypeDesc::DOUBLE:
        return qel::QEL_FLOAT64;
    default:
        return std::nullopt;
    }
}

OIIO::TypeDesc formatOf(qel::VoxelTypes type)
{
    switch (type) {
    case qel::QEL_UINT8:
        return OIIO::TypeDesc::UINT8;
    case qel::QEL_UINT16:
        return OIIO::TypeDesc::UINT16;
    case qel::QEL_UINT32:
        return OIIO::TypeDesc::UINT32;
    case qel::QEL_UINT64:
        return OIIO::TypeDesc::UINT64;
    case qel::QEL_INT8:
        return OIIO::TypeDesc::INT8;
    case qel::QEL_INT16:
        return OIIO::TypeDesc::INT16;
    case qel::QEL_INT32:
        return OIIO::TypeDesc::INT32;
    case qel::QEL_INT64:
        return OIIO::TypeDesc::INT64;
    case qel::QEL_FLOAT32:
        return OIIO::TypeDesc::FLOAT;
    case qel::QEL_FLOAT64:
        return OIIO::TypeDesc::DOUBLE;
    default:
        return OIIO::TypeDesc::UNKNOWN;
    }
}

// Gathers every `stride`-th voxel of `size` bytes.
void gather(unsigned char const* from, unsigned char* to, unsigned long count, unsigned long size, unsigned long stride)
{
    auto const copy = [&]<std::size_t bytes>() {
        for (unsigned long i = 0; i < count; ++i)
            std::memcpy(to + i * bytes, from + i * stride * bytes, bytes);
    };
    switch (size) {
    case 1:
        return copy.operator()<1>();
    case 2:
        return copy.operator()<2>();
    case 4:
        return copy.operator()<4>();
    default:
        return copy.operator()<8>();
    }
}

void scatter(unsigned char const* from, unsigned char* to, unsigned long count, unsigned long size,
             unsigned long stride)
{
    auto const copy = [&]<std::size_t bytes>() {
        for (unsigned long i = 0; i < count; ++i)
            std::memcpy(to + i * stride * bytes, from + i * bytes, bytes);
    };
    switch (size) {
    case 1:
        return copy.operator()<1>();
    case 2:
        return copy.operator()<2>();
    case 4:
        return copy.operator()<4>();
    default:
        return copy.operator()<8>();
    }
}

// One line of what OpenImageIO says.
std::string firstLine(std::string text, char const* otherwise)
{
    text = text.substr(0, text.find('\n'));
    return text.empty() ? otherwise : text;
}

class PictureReader
{
public:
    PictureReader(std::string const& path)
        : m_path(path)
    {
        OIIO::ImageSpec configuration;
        // The numbers in the file, not a picture made of them.
        configuration.attribute("oiio:UnassociatedAlpha", 1);
        configuration.attribute("oiio:RawColor", 1);
        m_file = OIIO::ImageInput::open(path, &configuration);
        if (!m_file)
            fail(OIIO::geterror());
    }

    void read(qel::ImageModel& image)
    {
        readPages();
        // Channels of one type are read together, channels of different types one by one.
        std::vector<qel::VoxelTypes> types;
        for (int channel = 0; channel < m_first.nchannels; ++channel)
            types.push_back(typeOf(m_first.channelformat(channel)));
        qel::VoxelTypes type = types.front();
        bool mixed = false;
        for (qel::VoxelTypes const other : types) {
            mixed = mixed || other != types.front();
            type = qel::helper::lesserCommonType(type, other);
        }
        auto const columns = static_cast<unsigned long>(m_first.width);
        auto const rows = static_cast<unsigned long>(m_first.height);
        auto const channels = static_cast<unsigned long>(m_first.nchannels);
        if (!image.reserve(type, columns, rows, m_depths.size(), 1, channels))
            throw HostError("not enough memory for the image " + m_path);
        if (mixed) {
            for (unsigned long channel = 0; channel < channels; ++channel) {
                qel::ImageModelAdapter adapter(&image, types[channel]);
                readChannels(*adapter.getImage(), types[channel], channel, channel + 1);
            }
        } else {
            readChannels(image, type, 0, channels);
        }
    }

private:
    [[noreturn]] void fail(std::string const& reason) const
    {
        throw HostError("cannot read the image " + m_path + ": " + firstLine(reason, "the file is damaged"));
    }

    qel::VoxelTypes typeOf(OIIO::TypeDesc format) const
    {
        std::optional<qel::VoxelTypes> const type = voxelTypeOf(format);
        if (!type)
            fail(std::string("its channels have the type ") + format.c_str());
        return *type;
    }

    // Fills m_depths, with one entry for each plan: its subimage and slice.
    void readPages()
    {
        for (int page = 0; m_file->seek_subimage(page, 0); ++page) {
            signals::check();
            OIIO::ImageSpec const spec = m_file->spec();
            if (page == 0)
                m_first = spec;
            if (spec.width < 1 || spec.height < 1 || spec.depth < 1 || spec.nchannels < 1)
                fail("it is empty");
            if (spec.width != m_first.width || spec.height != m_first.height || spec.nchannels != m_first.nchannels ||
                spec.format != m_first.format || spec.channelformats != m_first.channelformats) {
                fail("page " + std::to_string(page + 1) + " differs in size or type from page 1");
            }
            for (int slice = 0; slice < spec.depth; ++slice)
                m_depths.emplace_back(page, slice);
        }
        // Running out of pages is no error of ours.
        m_file->geterror();
        if (m_depths.empty())
            fail("it is empty");
    }

    void readChannels(qel::ImageModel& image, qel::VoxelTypes type, unsigned long begin, unsigned long end)
    {
        auto const columns = static_cast<unsigned long>(m_first.width);
        unsigned long const size = qel::helper::getSizeOf(type);
        unsigned long const channels = end - begin;
        unsigned long const rowBytes = columns * size * channels;
        bool const tiled = m_first.tile_width > 0;
        int bandRows = static_cast<int>(std::clamp(bandBytes / rowBytes, 1UL, 1UL << 20));
        if (tiled)
            bandRows = m_first.tile_height;
        bandRows = std::min(bandRows, m_first.height);
        int const slices = tiled ? std::min(std::max(m_first.tile_depth, 1), m_first.depth) : 1;

        std::vector<unsigned char> band(rowBytes * static_cast<unsigned long>(bandRows) *
                                        static_cast<unsigned long>(slices));
        std::vector<unsigned char> row(channels > 1 ? columns * size : 0);
        unsigned long plan = 0;
        while (plan < m_depths.size()) {
            auto const [page, slice] = m_depths[plan];
            int const slab = std::min(slices, m_first.depth - slice);
            for (int y = 0; y < m_first.height; y += bandRows) {
                signals::check();
                int const count = std::min(bandRows, m_first.height - y);
                readBand(page, slice, slab, y, count, static_cast<int>(begin), static_cast<int>(end), type, band);
                for (int z = 0; z < slab; ++z) {
                    for (int i = 0; i < count; ++i) {
                        unsigned char const* const source =
                            band.data() +
                            rowBytes * (static_cast<unsigned long>(z) * static_cast<unsigned long>(count) +
                                        static_cast<unsigned long>(i));
                        writeRow(image, source, row, columns, size, begin, end, static_cast<unsigned long>(y + i),
                                 plan + static_cast<unsigned long>(z));
                    }
                }
            }
            plan += static_cast<unsigned long>(slab);
        }
    }

    void readBand(int page, int slice, int slab, int y, int count, int begin, int end, qel::VoxelTypes type,
                  std::vector<unsigned char>& band)
    {
        // Pages of one file may start elsewhere.
        OIIO::ImageSpec const spec = m_file->spec_dimensions(page, 0);
        bool const good =
            m_first.tile_width > 0
                ? m_file->read_tiles(page, 0, spec.x, spec.x + spec.width, spec.y + y, spec.y + y + count,
                                     spec.z + slice, spec.z + slice + slab, begin, end, formatOf(type), band.data())
                : m_file->read_scanlines(page, 0, spec.y + y, spec.y + y + count, spec.z + slice, begin, end,
                                         formatOf(type), band.data());
        if (!good)
            fail(m_file->geterror());
    }

    void writeRow(qel::ImageModel& image, unsigned char const* source, std::vector<unsigned char>& row,
                  unsigned long columns, unsigned long size, unsigned long begin, unsigned long end, unsigned long y,
                  unsigned long plan) const
    {
        for (unsigned long channel = begin; channel < end; ++channel) {
            unsigned char const* voxels = source;
            if (end - begin > 1) {
                gather(source + (channel - begin) * size, row.data(), columns, size, end - begin);
                voxels = row.data();
            }
            if (!image.writeRowAt(columns, voxels, 0, y, plan, 0, channel))
                fail("a row cannot be stored");
        }
    }

    std::string m_path;
    std::unique_ptr<OIIO::ImageInput> m_file;
    OIIO::ImageSpec m_first;
    std::vector<std::pair<int, int>> m_depths;
};

class PictureWriter
{
public:
    PictureWriter(qel::ImageModel const& image, std::string const& path, std::string const& temporary)
        : m_image(image)
        , m_path(path)
        , m_temporary(temporary)
        , m_columns(image.getNumOf(qel::COLUMNS))
        , m_rows(image.getNumOf(qel::ROWS))
        , m_plans(image.getNumOf(qel::PLANS))
        , m_pages(m_plans * image.getNumOf(qel::TIME_SERIES))
        , m_channels(image.getNumOf(qel::SPECTRAL_SERIES))
        , m_type(image.getVoxelType())
    {}

    void write()
    {
        if (m_columns == 0 || m_rows == 0 || m_pages == 0 || m_channels == 0)
            fail("the image is empty");
        unsigned long const limit = 1UL << 30;
        if (m_columns > limit || m_rows > limit || m_pages > limit || m_channels > 65535)
            fail("the image is too large for the format");
        if (formatOf(m_type) == OIIO::TypeDesc::UNKNOWN)
            failOnType();
        m_file = OIIO::ImageOutput::create(m_path);
        if (!m_file)
            fail(OIIO::geterror());
        if (m_pages > 1 && !m_file->supports("multiimage"))
            fail(std::string(m_file->format_name()) + " holds one page, and the image has " + std::to_string(m_pages));

        // The writers of these two see their own errors, and TIFF reads back what it wrote when it adds a page.
        std::string const format = m_file->format_name();
        if (m_file->supports("ioproxy") && m_pages == 1 && format != "tiff" && format != "openexr") {
            m_checked = std::make_unique<CheckedFile>(m_temporary);
            m_file->set_ioproxy(m_checked.get());
        }
        openAndWrite();
        if (m_checked)
            finishChecked();
        verify();
    }

private:
    [[noreturn]] void fail(std::string const& reason) const
    {
        throw HostError("cannot write the image " + m_path + ": " + firstLine(reason, "the disk may be full"));
    }

    [[noreturn]] void failOnType() const
    {
        std::string const format = m_file ? m_file->format_name() : "an image file";
        fail(format + " holds no " + nameOf(m_type) +
             " voxels; store as .qeli, or cast to a type that it holds: quelide convert INPUT OUTPUT,type=TYPE");
    }

    void finishChecked()
    {
        m_file.reset();
        try {
            m_checked->finish();
        } catch (HostError const& error) {
            fail(error.what());
        }
    }

    OIIO::ImageSpec specOfPage(unsigned long page) const
    {
        OIIO::ImageSpec spec(static_cast<int>(m_columns), static_cast<int>(m_rows), static_cast<int>(m_channels),
                             formatOf(m_type));
        // No channel is special: none is divided or multiplied by another.
        spec.alpha_channel = -1;
        spec.attribute("oiio:UnassociatedAlpha", 1);
        if (m_channels == 2 || m_channels > 4) {
            // Names that sort as they are numbered: some formats sort their channels.
            for (std::size_t channel = 0; channel < m_channels; ++channel) {
                std::string const number = std::to_string(channel);
                spec.channelnames[channel] = std::string("s").append(5 - number.size(), '0').append(number);
            }
        }
        if (m_pages > 1 && std::string(m_file->format_name()) == "openexr")
            spec.attribute("oiio:subimagename", std::string("plan").append(std::to_string(page)));
        unsigned long const bytes = m_columns * m_rows * m_pages * m_channels * qel::helper::getSizeOf(m_type);
        if (bytes > (1UL << 31))
            spec.attribute("tiff:bigtiff", 1);
        return spec;
    }

    void openAndWrite()
    {
        std::vector<OIIO::ImageSpec> specs;
        for (unsigned long page = 0; page < m_pages; ++page)
            specs.push_back(specOfPage(page));
        for (unsigned long page = 0; page < m_pages; ++page) {
            bool opened = false;
            if (m_pages == 1)
                opened = m_file->open(m_temporary, specs[0]);
            else if (page == 0)
                opened = m_file->open(m_temporary, static_cast<int>(m_pages), specs.data());
            else
                opened = m_file->open(m_temporary, specs[page], OIIO::ImageOutput::AppendSubimage);
            if (!opened)
                fail(m_file->geterror());
            if (m_file->spec().format != formatOf(m_type))
                failOnType();
            writePage(page);
        }
        if (!m_file->close())
            fail(m_file->geterror());
    }

    void writePage(unsigned long page)
    {
        unsigned long const size = qel::helper::getSizeOf(m_type);
        unsigned long const rowBytes = m_columns * m_channels * size;
        // Whole strips, for formats that compress several rows together.
        unsigned long bandRows = std::max(bandBytes / rowBytes, 1UL);
        bandRows = bandRows > 64 ? bandRows / 64 * 64 : bandRows;
        bandRows = std::min(bandRows, m_rows);
        std::vector<unsigned char> band(bandRows * rowBytes);
        std::vector<unsigned char> row(m_channels > 1 ? m_columns * size : 0);
        for (unsigned long y = 0; y < m_rows; y += bandRows) {
            signals::check();
            if (m_checked && m_checked->hasFailed())
                finishChecked();
            unsigned long const count = std::min(bandRows, m_rows - y);
            for (unsigned long i = 0; i < count; ++i) {
                for (unsigned long channel = 0; channel < m_channels; ++channel) {
                    unsigned char* const place = band.data() + i * rowBytes;
                    unsigned char* const voxels = m_channels > 1 ? row.data() : place;
                    if (!m_image.readRowAt(m_columns, voxels, 0, y + i, page % m_plans, page / m_plans, channel))
                        fail("a row of the image cannot be read");
                    if (m_channels > 1)
                        scatter(row.data(), place + channel * size, m_columns, size, m_channels);
                }
            }
            if (!m_file->write_scanlines(static_cast<int>(y), static_cast<int>(y + count), 0, formatOf(m_type),
                                         band.data()))
                fail(m_file->geterror());
        }
    }

    // Some writers change the type without a word: the header tells what the file really holds.
    void verify() const
    {
        std::unique_ptr<OIIO::ImageInput> const file = OIIO::ImageInput::open(m_temporary);
        if (!file)
            fail(OIIO::geterror());
        OIIO::ImageSpec const spec = file->spec();
        if (spec.format != formatOf(m_type))
            failOnType();
        if (static_cast<unsigned long>(spec.width) != m_columns || static_cast<unsigned long>(spec.height) != m_rows ||
            static_cast<unsigned long>(spec.nchannels) < m_channels ||
            !file->seek_subimage(static_cast<int>(m_pages) - 1, 0))
            fail(std::string(file->format_name()) + " does not hold images of this shape");
    }

    qel::ImageModel const& m_image;
    std::string m_path;
    std::string m_temporary;
    unsigned long m_columns;
    unsigned long m_rows;
    unsigned long m_plans;
    unsigned long m_pages;
    unsigned long m_channels;
    qel::VoxelTypes m_type;
    std::unique_ptr<CheckedFile> m_checked; ///< outlives the writer
    std::unique_ptr<OIIO::ImageOutput> m_file;
};

void read(std::string const& path, qel::ImageModel& image) { PictureReader(path).read(image); }

void write(qel::ImageModel const& image, std::string const& path, std::string const& temporary)
{
    PictureWriter(image, path, temporary).write();
}

bool canWrite(std::string const& path)
{
    bool const can = OIIO::ImageOutput::create(path) != nullptr;
    OIIO::geterror();
    return can;
}

std::vector<std::string> extensions()
{
    // "openexr:exr,sxr;tiff:tif,tiff" and so on.
    std::string const list = OIIO::get_string_attribute("extension_list");
    std::vector<std::string> all;
    std::string word;
    for (char const c : list + ";") {
        if (c == ':') {
            word.clear();
        } else if (c == ',' || c == ';') {
            if (!word.empty())
                all.push_back(word);
            word.clear();
        } else {
            word += c;
        }
    }
    return all;
}

} // namespace

} // namespace host

/// The one entry of the module.
extern "C" __attribute__((visibility("default"))) host::PictureFunctions const* quelidePictureFunctions()
{
    static host::PictureFunctions const functions{host::read, host::write, host::canWrite, host::extensions};
    return &functions;
}
