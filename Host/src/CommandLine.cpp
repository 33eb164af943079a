#include "CommandLine.h"

#include "Algorithms.h"
#include "Commands.h"
#include "Errors.h"
#include "Run.h"
#include "Suggestion.h"
#include "TextForms.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <functional>

namespace host {

namespace {

int wholeNumber(std::string const& option, std::string const& text, int least)
{
    int value = 0;
    auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < least)
        throw UsageError(option + "=" + text + ": it takes a whole number of at least " + std::to_string(least));
    return value;
}

std::optional<qel::OptimLevelType> levelFromName(std::string const& name)
{
    std::vector<std::string> names{"auto"};
    for (LevelName const& level : levelNames) {
        if (name == level.name)
            return level.level;
        names.emplace_back(level.name);
    }
    if (name != "auto")
        throw UsageError(unknownName("level", name, names));
    return std::nullopt;
}

// The long names of the options of a command.
std::vector<std::string> optionsOf(CLI::App const& command)
{
    std::vector<std::string> names;
    for (CLI::Option const* option : command.get_options()) {
        for (std::string const& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

/// One command: its part of the command line, and what it does.
struct Command
{
    CLI::App* app;
    std::vector<std::pair<std::string, std::string*>> required; ///< positional arguments, by name
    std::function<std::string()> execute;
};

void refuseLeftovers(CLI::App const& command)
{
    std::vector<std::string> extras = command.remaining();
    // The word that ends the options is none itself.
    extras.erase(std::remove(extras.begin(), extras.end(), "--"), extras.end());
    if (extras.empty())
        return;
    std::string const& word = extras.front();
    if (word.size() > 1 && word[0] == '-')
        throw UsageError(
            unknownName("option of " + command.get_name(), word.substr(0, word.find('=')), optionsOf(command)));
    throw UsageError("unexpected argument \"" + word + "\"");
}

} // namespace

std::string doCommandLine(int argc, char const* const* argv)
{
    CLI::App app("Runs the image processing of libquelide over files", "quelide");
    app.set_version_flag("--version", QUELIDE_VERSION);
    app.allow_extras();
    app.require_subcommand(0, 1);
    std::vector<Command> commands;
    auto const addCommand = [&](char const* name, char const* text) -> Command& {
        CLI::App* const command = app.add_subcommand(name, text);
        command->allow_extras();
        commands.push_back({command, {}, {}});
        return commands.back();
    };

    bool json = false;
    std::string first;
    std::string second;
    auto const addJson = [&](Command& command) { command.app->add_flag("--json", json, "print JSON"); };
    auto const addPositional = [&](Command& command, char const* name, std::string& value, char const* text) {
        command.app->add_option(name, value, text);
        command.required.emplace_back(name, &value);
    };

    {
        Command& command = addCommand("list", "every registered algorithm, with its namespace");
        addJson(command);
        command.execute = [&] { return list(json); };
    }
    {
        Command& command = addCommand("info", "the properties of an algorithm, and its levels");
        addPositional(command, "ALGORITHM", first, "the name of the algorithm");
        addJson(command);
        command.execute = [&] { return info(first, json); };
    }
    RunRequest request;
    std::string level = "auto";
    std::string threads;
    std::string extraMemory;
    bool progress = false;
    {
        Command& command = addCommand("run", "runs an algorithm, stores and prints its outputs");
        addPositional(command, "ALGORITHM", request.algorithm, "the name of the algorithm");
        command.app->add_option("NAME_VALUE", request.assignments,
                                "NAME=VALUE for each property; an image is PATH[,KEY=VALUE]... or @OTHER[,save=PATH]");
        command.app->add_option("--level", level, "auto, scalar, sse, avx or gpu");
        command.app->add_option("--threads", threads, "how many threads work at most");
        command.app->add_option("--extra-memory", extraMemory, "percent of the memory for temporary images");
        command.app->add_flag("--progress,!--no-progress", progress, "a progress bar on standard error, or none");
        addJson(command);
        CLI::App const* const runApp = command.app;
        command.execute = [&, runApp] {
            request.level = levelFromName(level);
            if (runApp->count("--threads") > 0)
                request.threads = wholeNumber("--threads", threads, 1);
            if (runApp->count("--extra-memory") > 0)
                request.extraMemory = wholeNumber("--extra-memory", extraMemory, 0);
            if (runApp->count("--progress") > 0)
                request.progress = progress;
            request.json = json;
            return run(request);
        };
    }
    {
        Command& command = addCommand("show", "what an image file or an object file holds");
        addPositional(command, "FILE", first, "the file");
        addJson(command);
        command.execute = [&] { return show(first, json); };
    }
    {
        Command& command = addCommand("convert", "reads one image file and writes another, by extension");
        addPositional(command, "INPUT", first, "PATH[,KEY=VALUE]...");
        addPositional(command, "OUTPUT", second, "PATH[,type=TYPE]");
        command.execute = [&] { return convert(first, second); };
    }
    {
        Command& command = addCommand("cpu", "what the library knows of the processor");
        command.execute = [] { return cpu(); };
    }

    try {
        app.parse(argc, argv);
    } catch (CLI::CallForHelp const&) {
        return app.help();
    } catch (CLI::CallForVersion const& version) {
        return std::string(version.what()) + "\n";
    } catch (CLI::ParseError const& error) {
        throw UsageError(error.what());
    }

    for (Command const& command : commands) {
        if (!command.app->parsed())
            continue;
        refuseLeftovers(*command.app);
        refuseLeftovers(app);
        for (auto const& [name, value] : command.required) {
            if (value->empty())
                throw UsageError(command.app->get_name() + " needs " + name);
        }
        return command.execute();
    }
    std::vector<std::string> names;
    for (Command const& command : commands)
        names.push_back(command.app->get_name());
    std::vector<std::string> const extras = app.remaining();
    if (extras.empty())
        throw UsageError("a command is missing: one of " + joined(names, ", "));
    if (extras.front()[0] == '-')
        refuseLeftovers(app);
    throw UsageError(unknownName("command", extras.front(), names));
}

} // namespace host
