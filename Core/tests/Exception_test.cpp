#include <qel/Exception.h>

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>

#include "Core/private/Throw.h"
#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/ForeignLocale.h"

using namespace qel;

static_assert(std::is_abstract_v<Exception>);
static_assert(std::is_abstract_v<ProcessingException>);
static_assert(!std::is_base_of_v<std::exception, Exception>);
static_assert(!std::is_base_of_v<ProcessingException, RuleException>);
static_assert(!std::is_base_of_v<ProcessingException, SerializationException>);

namespace {

Exception::exceptionInfo level(char const* message, char const* algorithm = "")
{
    Exception::exceptionInfo info;
    info.message = message;
    info.fileName = "some/file";
    info.line = 12;
    info.algorithmName = algorithm;
    info.libraryName = "Library";
    return info;
}

template <class E> struct Row
{
    using Type = E;
    using Base = ProcessingException;
};
template <> struct Row<RuleException>
{
    using Type = RuleException;
    using Base = Exception;
};
template <> struct Row<SerializationException>
{
    using Type = SerializationException;
    using Base = Exception;
};

template <class E> void expectTitle(char const* title)
{
    SCOPED_TRACE(title);
    static_assert(std::is_base_of_v<typename Row<E>::Base, E>);
    static_assert(!std::is_abstract_v<E>);
    static_assert(!std::is_default_constructible_v<E>);
    static_assert(std::is_constructible_v<E, Exception::exceptionInfo const&>);
    static_assert(!std::is_constructible_v<E, char const*>);

    EXPECT_EQ(std::string(E(level("a text")).what().c_str()), std::string(title) + "\n#1 Error : a text \n");
    EXPECT_THROW(throw E(level("a text")), E);
    EXPECT_THROW(throw E(level("a text")), typename Row<E>::Base);
    EXPECT_THROW(throw E(level("a text")), Exception);
}

} // namespace

TEST(Exception, hasItsTitleAndItsPlaceInTheTree)
{
    expectTitle<BadIndex>("Bad index :");
    expectTitle<UnexpectedError>("Unexpected error :");
    expectTitle<FileSystemError>("File system error :");
    expectTitle<MemoryError>("Memory error :");
    expectTitle<RuntimeError>("Runtime error :");
    expectTitle<InvalidCall>("Invalid call :");
    expectTitle<RuleException>("Rule exception :");
    expectTitle<SerializationException>("Serialization exception :");
}

TEST(Exception, isNotCaughtAsProcessingExceptionWhenARuleOrAFileFailed)
{
    auto const catcher = [](auto const& error) {
        try {
            throw error;
        } catch (ProcessingException const&) {
            return "processing";
        } catch (Exception const&) {
            return "other";
        }
    };
    EXPECT_STREQ(catcher(RuleException(level("x"))), "other");
    EXPECT_STREQ(catcher(SerializationException(level("x"))), "other");
    EXPECT_STREQ(catcher(BadIndex(level("x"))), "processing");
}

TEST(Exception, writesOneLineALevelDeepestFirst)
{
    InvalidCall error(level("deep message"));
    error.addInfoLevel(level("", "Inner"));
    error.addInfoLevel(level("outer message", "Outer"));
    EXPECT_STREQ(error.getInfo(true).c_str(),
                 "#1 Error : deep message \n#2 From Inner \n#3 From outer message Outer \n");
    EXPECT_STREQ(error.what().c_str(),
                 "Invalid call :\n#1 Error : deep message \n#2 From Inner \n#3 From outer message Outer \n");
    EXPECT_EQ(error.getNumOfInfoLevels(), 3u);
}

TEST(Exception, writesTheFirstLevelAloneWhenNotAllAreAsked)
{
    InvalidCall error(level("deep message", "Deep"));
    error.addInfoLevel(level("outer message", "Outer"));
    EXPECT_STREQ(error.getInfo(false).c_str(), "deep message Deep ");
    EXPECT_STREQ(InvalidCall(level("deep message")).getInfo(false).c_str(), "deep message ");
    EXPECT_STREQ(InvalidCall(level("", "Deep")).getInfo(false).c_str(), "Deep ");
    EXPECT_STREQ(InvalidCall(level("")).getInfo(false).c_str(), "");
}

TEST(Exception, hasItsTitleAndLevelLineWithoutAMessage)
{
    EXPECT_STREQ(MemoryError(Exception::exceptionInfo()).what().c_str(), "Memory error :\n#1 Error : \n");
}

TEST(Exception, numbersLevelsInEveryLocale)
{
    test::ForeignLocale const locale;
    InvalidCall error(level("x"));
    for (int i = 1; i < 1000; ++i)
        error.addInfoLevel(level("y"));
    std::string const text = error.getInfo(true).c_str();
    EXPECT_NE(text.find("\n#1000 From y \n"), std::string::npos);
}

TEST(Exception, recordsFileLineAndLibraryWithoutWritingThem)
{
    BadIndex const error(level("m", "a"));
    EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "some/file");
    EXPECT_EQ(error.getInfoLevel(0).line, 12u);
    EXPECT_STREQ(error.getInfoLevel(0).libraryName.c_str(), "Library");
    EXPECT_STREQ(error.what().c_str(), "Bad index :\n#1 Error : m a \n");
}

TEST(Exception, copiesItsWholeSequence)
{
    BadIndex first(level("first"));
    first.addInfoLevel(level("second"));
    BadIndex const copy(first);
    first.addInfoLevel(level("third"));
    EXPECT_STREQ(copy.getInfo(true).c_str(), "#1 Error : first \n#2 From second \n");
    BadIndex assigned(level("other"));
    assigned = copy;
    EXPECT_STREQ(assigned.getInfo(true).c_str(), "#1 Error : first \n#2 From second \n");
    EXPECT_EQ(first.getNumOfInfoLevels(), 3u);
}

TEST(Exception, passesOnWithALevelAddedOnTheWay)
{
    auto const passOn = [] {
        try {
            throw FileSystemError(level("no such file"));
        } catch (Exception& error) {
            error.addInfoLevel(level("", "LoadQelRawImage"));
            throw;
        }
    };
    EXPECT_QEL_WHAT(passOn(), FileSystemError,
                    "File system error :\n#1 Error : no such file \n#2 From LoadQelRawImage \n");
}

TEST(Throw, composesItsMessageAndRecordsWhereItStands)
{
    unsigned long line = 0;
    try {
        line = __LINE__ + 1;
        QEL_THROW(BadIndex, "Value " << 12345678 << " of " << String("a string") << ", " << 0.5 << ".");
    } catch (BadIndex const& error) {
        Exception::exceptionInfo const& info = error.getInfoLevel(0);
        EXPECT_EQ(error.getNumOfInfoLevels(), 1u);
        EXPECT_STREQ(info.message.c_str(), "Value 12345678 of a string, 0.5.");
        EXPECT_STREQ(info.fileName.c_str(), "Core/tests/Exception_test");
        EXPECT_EQ(info.line, line);
        EXPECT_STREQ(info.algorithmName.c_str(), "");
        EXPECT_STREQ(info.libraryName.c_str(), "");
        return;
    }
    FAIL();
}

TEST(Throw, writesNumbersAlikeInEveryLocale)
{
    test::ForeignLocale const locale;
    EXPECT_QEL_THROW(QEL_THROW(BadIndex, 1234567 << " and " << 1234.5), BadIndex, "1234567 and 1234.5");
}

TEST(Throw, cutsTheLastEndingOfThePathOnly)
{
    EXPECT_STREQ(throwing::firstLevel("", "Core/private/Access/Rows.impl.h", 1).fileName.c_str(),
                 "Core/private/Access/Rows.impl");
    EXPECT_STREQ(throwing::firstLevel("", "Core/private/Rules/RuleAssertNotNull.h", 1).fileName.c_str(),
                 "Core/private/Rules/RuleAssertNotNull");
}

TEST(Throw, givesThePathFromTheProjectsRootWhereverTheCompilerCountsFrom)
{
    EXPECT_STREQ(throwing::firstLevel("", "../Core/src/Memory.cpp", 1).fileName.c_str(), "Core/src/Memory");
    EXPECT_STREQ(throwing::firstLevel("", "../../Core/src/Memory.cpp", 1).fileName.c_str(), "Core/src/Memory");
}
