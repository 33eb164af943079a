#include <qel/Exception.h>

#include <string>
#include <string_view>
#include <vector>

#include "Core/private/ClassicText.h"
#include "Core/private/Throw.h"

namespace qel {

class ExceptionPrivate
{
public:
    std::vector<Exception::exceptionInfo> levels;
};

Exception::exceptionInfo::exceptionInfo() = default;
Exception::exceptionInfo::exceptionInfo(exceptionInfo const& other) = default;
Exception::exceptionInfo& Exception::exceptionInfo::operator=(exceptionInfo const& other) = default;
Exception::exceptionInfo::~exceptionInfo() = default;

Exception::Exception(exceptionInfo const& info)
    : m_private(new ExceptionPrivate{{info}})
{}

Exception::Exception(Exception const& other)
    : m_private(new ExceptionPrivate(*other.m_private))
{}

Exception& Exception::operator=(Exception const& other)
{
    m_private->levels = other.m_private->levels;
    return *this;
}

Exception::~Exception() { delete m_private; }

void Exception::addInfoLevel(exceptionInfo const& info) { m_private->levels.push_back(info); }

unsigned long Exception::getNumOfInfoLevels() const { return m_private->levels.size(); }

Exception::exceptionInfo const& Exception::getInfoLevel(unsigned long index) const { return m_private->levels[index]; }

namespace {

void writeMessageAndAlgorithm(ClassicStream& stream, Exception::exceptionInfo const& level)
{
    for (String const* text : {&level.message, &level.algorithmName})
        if (text->length() != 0)
            stream << *text << ' ';
}

} // namespace

String Exception::getInfo(bool all) const
{
    ClassicStream stream;
    if (!all) {
        writeMessageAndAlgorithm(stream, m_private->levels.front());
        return stream.text();
    }
    unsigned long number = 0;
    for (exceptionInfo const& level : m_private->levels) {
        ++number;
        stream << '#' << number << ' ' << (number == 1 ? "Error : " : "From ");
        writeMessageAndAlgorithm(stream, level);
        stream << '\n';
    }
    return stream.text();
}

String Exception::titled(char const* title) const
{
    ClassicStream stream;
    stream << title << '\n' << getInfo(true);
    return stream.text();
}

Exception::exceptionInfo throwing::firstLevel(String const& message, char const* file, unsigned long line)
{
    // A compiler that is called with relative paths, as caches of objects do, counts from the build folder.
    std::string_view start(file);
    while (start.substr(0, 3) == "../")
        start.remove_prefix(3);
    std::string path(start);
    if (auto const dot = path.rfind('.'); dot != std::string::npos)
        path.resize(dot);
    Exception::exceptionInfo info;
    info.message = message;
    info.fileName = toString(path);
    info.line = line;
    return info;
}

ProcessingException::ProcessingException(exceptionInfo const& info)
    : Exception(info)
{}
ProcessingException::ProcessingException(ProcessingException const& other) = default;
ProcessingException& ProcessingException::operator=(ProcessingException const& other) = default;
ProcessingException::~ProcessingException() = default;

BadIndex::BadIndex(exceptionInfo const& info)
    : ProcessingException(info)
{}
BadIndex::BadIndex(BadIndex const& other) = default;
BadIndex& BadIndex::operator=(BadIndex const& other) = default;
BadIndex::~BadIndex() = default;

String BadIndex::what() const { return titled("Bad index :"); }

UnexpectedError::UnexpectedError(exceptionInfo const& info)
    : ProcessingException(info)
{}
UnexpectedError::UnexpectedError(UnexpectedError const& other) = default;
UnexpectedError& UnexpectedError::operator=(UnexpectedError const& other) = default;
UnexpectedError::~UnexpectedError() = default;

String UnexpectedError::what() const { return titled("Unexpected error :"); }

FileSystemError::FileSystemError(exceptionInfo const& info)
    : ProcessingException(info)
{}
FileSystemError::FileSystemError(FileSystemError const& other) = default;
FileSystemError& FileSystemError::operator=(FileSystemError const& other) = default;
FileSystemError::~FileSystemError() = default;

String FileSystemError::what() const { return titled("File system error :"); }

MemoryError::MemoryError(exceptionInfo const& info)
    : ProcessingException(info)
{}
MemoryError::MemoryError(MemoryError const& other) = default;
MemoryError& MemoryError::operator=(MemoryError const& other) = default;
MemoryError::~MemoryError() = default;

String MemoryError::what() const { return titled("Memory error :"); }

RuntimeError::RuntimeError(exceptionInfo const& info)
    : ProcessingException(info)
{}
RuntimeError::RuntimeError(RuntimeError const& other) = default;
RuntimeError& RuntimeError::operator=(RuntimeError const& other) = default;
RuntimeError::~RuntimeError() = default;

String RuntimeError::what() const { return titled("Runtime error :"); }

InvalidCall::InvalidCall(exceptionInfo const& info)
    : ProcessingException(info)
{}
InvalidCall::InvalidCall(InvalidCall const& other) = default;
InvalidCall& InvalidCall::operator=(InvalidCall const& other) = default;
InvalidCall::~InvalidCall() = default;

String InvalidCall::what() const { return titled("Invalid call :"); }

RuleException::RuleException(exceptionInfo const& info)
    : Exception(info)
{}
RuleException::RuleException(RuleException const& other) = default;
RuleException& RuleException::operator=(RuleException const& other) = default;
RuleException::~RuleException() = default;

String RuleException::what() const { return titled("Rule exception :"); }

SerializationException::SerializationException(exceptionInfo const& info)
    : Exception(info)
{}
SerializationException::SerializationException(SerializationException const& other) = default;
SerializationException& SerializationException::operator=(SerializationException const& other) = default;
SerializationException::~SerializationException() = default;

String SerializationException::what() const { return titled("Serialization exception :"); }

} // namespace qel
