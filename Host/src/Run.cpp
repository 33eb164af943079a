#include "Run.h"

#include "Algorithms.h"
#include "Outputs.h"
#include "Progress.h"
#include "PropertyHandler.h"
#include "Signals.h"
#include "Suggestion.h"

#include <qel/BaseAlgorithm.h>
#include <qel/Ref.h>

#include <tbb/global_control.h>

#include <set>

#include <unistd.h>

namespace host {

namespace {

void assignAll(PropertyHandlers const& handlers, std::vector<std::string> const& assignments)
{
    std::set<std::string> seen;
    for (std::string const& assignment : assignments) {
        std::size_t const equals = assignment.find('=');
        if (equals == std::string::npos)
            throw UsageError("\"" + assignment + "\" is not of the form NAME=VALUE");
        std::string const name = assignment.substr(0, equals);
        PropertyHandler* const handler = findHandler(handlers, name);
        if (!handler)
            throw UsageError(unknownName("property", name, namesOf(handlers)));
        if (!seen.insert(name).second)
            throw UsageError("property " + name + " is given twice");
        if (!handler->takesValue())
            throw UsageError("property " + name + " is a result, which takes no value");
        handler->assign(assignment.substr(equals + 1));
    }
}

std::string resultsAsText(PropertyHandlers const& handlers)
{
    std::string text;
    for (auto const& handler : handlers) {
        if (handler->hasResult())
            text += handler->name() + " = " + handler->text() + "\n";
        if (std::string const report = handler->report(); !report.empty())
            text += report + "\n";
    }
    return text;
}

std::string resultsAsJson(PropertyHandlers const& handlers)
{
    Json object = Json::object();
    for (auto const& handler : handlers) {
        if (handler->hasResult())
            object[handler->name()] = handler->json();
    }
    return toText(object) + "\n";
}

} // namespace

std::string run(RunRequest const& request)
{
    // The wrong words of a command line are found before any file is read.
    qel::Ref<qel::BaseAlgorithm> const algorithm = createAlgorithm(request.algorithm);
    PropertyHandlers const handlers = handlersOf(*algorithm);
    assignAll(handlers, request.assignments);
    for (auto const& handler : handlers)
        handler->connect(handlers);

    std::optional<tbb::global_control> threads;
    if (request.threads)
        threads.emplace(tbb::global_control::max_allowed_parallelism, static_cast<std::size_t>(*request.threads));
    if (request.level) {
        algorithm->setAutoCpuDispatch(false);
        algorithm->setOptimLevel(*request.level);
    }
    if (request.extraMemory)
        algorithm->setMaximumExtraMemoryUsage(*request.extraMemory);

    Outputs outputs;
    for (auto const& handler : handlers)
        handler->expect(outputs);
    for (auto const& handler : handlers)
        handler->prepare();
    signals::check();
    {
        Progress const progress(*algorithm, request.progress.value_or(isatty(STDERR_FILENO) != 0));
        algorithm->run();
    }
    signals::check();
    for (auto const& handler : handlers)
        handler->store(outputs);
    outputs.commit();
    return request.json ? resultsAsJson(handlers) : resultsAsText(handlers);
}

} // namespace host
