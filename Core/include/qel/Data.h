#pragma once

#include <qel/Object.h>
#include <qel/Ref.h>
#include <qel/String.h>

namespace qel {

/// How an object file is written.
enum WriteMode : int
{
    BINARY = 0 ///< the object file of magic "QELO"
};

/// Base of every object that can live in a file of its own.
///
/// A concrete class brings its own `operator==` and a static `BaseNew()`, by which it is registered (see ObjectInfo).
class QEL_API Data : public Object
{
public:
    ~Data() noexcept(false) override;

    /// Reads the whole file at `path`, header included, into this object.
    virtual void read(String const& path) = 0;
    /// Writes this object to `path`. Throws SerializationException where the file exists and `overwrite` is false,
    /// where it cannot be opened, and on an unknown `mode`.
    virtual void write(String const& path, WriteMode const& mode, bool overwrite) const = 0;
    /// True when `other` is of the same class and has the same content.
    virtual bool operator==(Data const& other) const = 0;

    /// Reads an object file of any registered class: makes an object of the class that the file names, and lets it read
    /// the file. Null where that class is registered but no Data.
    ///
    /// Throws SerializationException where there is no such file, where it cannot be opened or has another magic
    /// number than "QELO", where its class name is longer than the file, and where the class reports it; RuntimeError
    /// where no class of that name is registered.
    static Ref<Data> load(String const& path);

protected:
    Data();
    Data(Data const& other);
    Data& operator=(Data const& other);
};

} // namespace qel
