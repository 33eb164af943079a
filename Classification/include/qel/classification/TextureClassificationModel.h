#pragma once

#include <qel/Data.h>
#include <qel/Export.h>
#include <qel/String.h>

namespace qel::classification {

class TextureClassificationModelPrivate;

/// A classifier of textures: which measures are taken of the window around a voxel and how, and, once it is trained,
/// what tells the classes apart.
///
/// TextureClassificationCreate makes one, TextureClassificationTrain fills it, TextureClassificationApply uses it. It
/// is the host's: it is deleted as any object, and outlives the runs that use it. Two runs that write to it do not go
/// at once.
class QEL_API TextureClassificationModel
{
public:
    /// A model without measures, which is of use once it has read a file.
    TextureClassificationModel();
    TextureClassificationModel(TextureClassificationModel const&) = delete;
    TextureClassificationModel& operator=(TextureClassificationModel const&) = delete;
    virtual ~TextureClassificationModel();

    /// A report for people: the settings, and which features the training has chosen. Throws InvalidCall where the
    /// model was not trained.
    String getInfo() const;

    /// Writes the model as an object file. `mode`: BINARY; the modes 1 and 2 make an empty file. Throws
    /// SerializationException where the file exists and `overwrite` is false, where it cannot be opened or written, and
    /// on another mode.
    void write(String const& path, WriteMode const& mode, bool overwrite) const;

    /// Takes over the model of an object file. Of a file whose name ends in ".txt" or ".xml" nothing is read. Throws
    /// SerializationException where there is no such file, where it cannot be opened, and where it is no model or
    /// damaged: part of this model is then lost.
    void read(String const& path);

    /// Inside of the library.
    TextureClassificationModelPrivate* getPrivate() const;

private:
    TextureClassificationModelPrivate* m_private;
};

} // namespace qel::classification
