#pragma once

#include <qel/String.h>

#include <memory>
#include <string>

namespace qel {

class ImageModel;

namespace tools::details {

class QelRawImageHeader;

/// A raw image file: a preamble of 12 bytes (magic, version, size of the header), the header, and the voxels row by row
/// with no padding. Numbers stand in the machine's byte order.
///
/// Failures are RuntimeErrors.
class QelRawImage
{
public:
    QelRawImage();
    virtual ~QelRawImage();

    /// Writes a whole file. One that was partly written when it failed stays on the disk.
    void writeImage(ImageModel const* image, String const& path, bool overwrite, unsigned int version);

    /// Reads a whole file. `image` is reserved only after the file is known to hold as many voxels as its header says.
    void readImage(String const& path, ImageModel* image);

private:
    std::string magic;
    unsigned int version;
    unsigned int headerSize;
    std::unique_ptr<QelRawImageHeader> header;
};

} // namespace tools::details
} // namespace qel
