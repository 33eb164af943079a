#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// The command line is wrong: one line on standard error, exit status 2.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A file or the machine failed: the text on standard error, exit status 1. The library's own errors are
/// qel::Exception.
class HostError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The user interrupted: exit status 130.
class Interrupted
{};

} // namespace host
