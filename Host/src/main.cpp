#include "CommandLine.h"
#include "Errors.h"
#include "Signals.h"

#include <qel/Exception.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

namespace {

int const done = 0;
int const failed = 1;
int const wrongUsage = 2;

int fail(std::string text)
{
    if (text.empty() || text.back() != '\n')
        text += '\n';
    std::fputs(text.c_str(), stderr);
    return failed;
}

int failOnUsage(std::string text)
{
    for (char& c : text) {
        if (c == '\n' || c == '\r')
            c = ' ';
    }
    std::fprintf(stderr, "quelide: %s\n", text.c_str());
    return wrongUsage;
}

int print(std::string const& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        return fail(std::string("quelide: cannot write to standard output: ") + std::strerror(errno));
    return done;
}

int doAll(int argc, char const* const* argv)
{
    try {
        return print(host::doCommandLine(argc, argv));
    } catch (host::UsageError const& error) {
        return failOnUsage(error.what());
    } catch (host::Interrupted const&) {
        return failed;
    } catch (qel::Exception const& error) {
        // A signal that ends the reading of a file passes through the library, and comes out as an error of it.
        return host::signals::received() != 0 ? failed : fail(error.what().c_str());
    } catch (std::bad_alloc const&) {
        return fail("quelide: not enough memory");
    } catch (std::exception const& error) {
        return fail(std::string("quelide: ") + error.what());
    }
}

} // namespace

int main(int argc, char** argv)
{
    host::signals::install();
    int const status = doAll(argc, argv);
    return host::signals::received() != 0 && status != done ? 128 + host::signals::received() : status;
}
