#pragma once

#include <qel/String.h>

namespace qel {

class ExceptionPrivate;

/// Root of all errors of the library. It derives from no standard exception.
///
/// An exception is a sequence of levels, the deepest (where it was thrown) first; each layer above may add one.
class QEL_API Exception
{
public:
    /// One level.
    struct QEL_API exceptionInfo
    {
        String message;         ///< what happened
        String fileName;        ///< source path of the throw site
        unsigned long line = 0; ///< line of the throw site
        String algorithmName;   ///< the algorithm that was left, in a level added by it
        String libraryName;     ///< the library of that algorithm

        exceptionInfo();
        exceptionInfo(exceptionInfo const& other);
        exceptionInfo& operator=(exceptionInfo const& other);
        ~exceptionInfo();
    };

    /// The class's title, a newline, and `getInfo(true)`.
    virtual String what() const = 0;
    /// With `all`: one line a level, "#1 Error : ..." and then "#2 From ..." and so on. Without: message and algorithm
    /// of the first level, each followed by a blank.
    virtual String getInfo(bool all) const;
    virtual ~Exception();

    /// Adds a level behind the others.
    void addInfoLevel(exceptionInfo const& info);
    /// How many levels there are: at least 1.
    unsigned long getNumOfInfoLevels() const;
    /// The level `index`, counted from 0, the deepest first. The index is not checked.
    exceptionInfo const& getInfoLevel(unsigned long index) const;

protected:
    explicit Exception(exceptionInfo const& info);
    Exception(Exception const& other);
    Exception& operator=(Exception const& other);

    /// `title`, a newline, and `getInfo(true)`.
    String titled(char const* title) const;

private:
    ExceptionPrivate* m_private;
};

/// Base of the errors that happen while the library works.
class QEL_API ProcessingException : public Exception
{
public:
    String what() const override = 0;
    ~ProcessingException() override;

protected:
    explicit ProcessingException(exceptionInfo const& info);
    ProcessingException(ProcessingException const& other);
    ProcessingException& operator=(ProcessingException const& other);
};

/// An index or a direction is out of its range. Title "Bad index :".
class QEL_API BadIndex : public ProcessingException
{
public:
    explicit BadIndex(exceptionInfo const& info);
    BadIndex(BadIndex const& other);
    BadIndex& operator=(BadIndex const& other);
    String what() const override;
    ~BadIndex() override;
};

/// Something went wrong that should not, a foreign exception inside a run for instance. Title "Unexpected error :".
class QEL_API UnexpectedError : public ProcessingException
{
public:
    explicit UnexpectedError(exceptionInfo const& info);
    UnexpectedError(UnexpectedError const& other);
    UnexpectedError& operator=(UnexpectedError const& other);
    String what() const override;
    ~UnexpectedError() override;
};

/// A file cannot be found, opened, read or written. Title "File system error :".
class QEL_API FileSystemError : public ProcessingException
{
public:
    explicit FileSystemError(exceptionInfo const& info);
    FileSystemError(FileSystemError const& other);
    FileSystemError& operator=(FileSystemError const& other);
    String what() const override;
    ~FileSystemError() override;
};

/// Memory was refused. Title "Memory error :".
class QEL_API MemoryError : public ProcessingException
{
public:
    explicit MemoryError(exceptionInfo const& info);
    MemoryError(MemoryError const& other);
    MemoryError& operator=(MemoryError const& other);
    String what() const override;
    ~MemoryError() override;
};

/// An operation met a state in which it cannot work. Title "Runtime error :".
class QEL_API RuntimeError : public ProcessingException
{
public:
    explicit RuntimeError(exceptionInfo const& info);
    RuntimeError(RuntimeError const& other);
    RuntimeError& operator=(RuntimeError const& other);
    String what() const override;
    ~RuntimeError() override;
};

/// An operation was called that does not suit the object or its arguments. Title "Invalid call :".
class QEL_API InvalidCall : public ProcessingException
{
public:
    explicit InvalidCall(exceptionInfo const& info);
    InvalidCall(InvalidCall const& other);
    InvalidCall& operator=(InvalidCall const& other);
    String what() const override;
    ~InvalidCall() override;
};

/// A property breaks one of its rules. Deliberately no ProcessingException. Title "Rule exception :".
class QEL_API RuleException : public Exception
{
public:
    explicit RuleException(exceptionInfo const& info);
    RuleException(RuleException const& other);
    RuleException& operator=(RuleException const& other);
    String what() const override;
    ~RuleException() override;
};

/// An object file cannot be read or written. Deliberately no ProcessingException. Title "Serialization exception :".
class QEL_API SerializationException : public Exception
{
public:
    explicit SerializationException(exceptionInfo const& info);
    SerializationException(SerializationException const& other);
    SerializationException& operator=(SerializationException const& other);
    String what() const override;
    ~SerializationException() override;
};

} // namespace qel
