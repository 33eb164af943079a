#pragma once

#include <qel/Exception.h>

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <typeinfo>

/// The statement throws exactly this type, and the message of its deepest level reads exactly so.
#define EXPECT_QEL_THROW(statement, ExceptionType, text)                                                               \
    EXPECT_TRUE((::qel::test::throwsText<ExceptionType>([&] { statement; }, ::qel::test::deepestMessage, text)))

/// The statement throws exactly this type, and its whole what() reads exactly so.
#define EXPECT_QEL_WHAT(statement, ExceptionType, text)                                                                \
    EXPECT_TRUE((::qel::test::throwsText<ExceptionType>([&] { statement; }, ::qel::test::wholeText, text)))

namespace qel::test {

inline std::string deepestMessage(Exception& exception) { return exception.getInfoLevel(0).message.c_str(); }

inline std::string wholeText(Exception& exception) { return exception.what().c_str(); }

template <class ExceptionType, class Statement>
testing::AssertionResult throwsText(Statement&& statement, std::string (*textOf)(Exception&), std::string const& text)
{
    try {
        statement();
    } catch (Exception& exception) {
        if (typeid(exception) != typeid(ExceptionType))
            return testing::AssertionFailure() << "expected another type of exception than " << typeid(exception).name()
                                               << ": " << exception.what().c_str();
        if (textOf(exception) != text)
            return testing::AssertionFailure() << "expected the text\n" << text << "\ngot\n" << textOf(exception);
        return testing::AssertionSuccess();
    } catch (std::exception& exception) {
        return testing::AssertionFailure() << "a standard exception was thrown: " << exception.what();
    } catch (...) {
        return testing::AssertionFailure() << "something unknown was thrown";
    }
    return testing::AssertionFailure() << "nothing was thrown";
}

} // namespace qel::test
