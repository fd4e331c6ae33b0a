#include "Commands.h"
#include "Output.h"
#include "UsageError.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace {

using namespace Vz::Tool;

constexpr int BadInput = 1;
constexpr int WrongUsage = 2;

/// Prints `tavro: ` and what is wrong, as one line.
void Complain(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    std::fprintf(stderr, "tavro: %s\n", text.c_str());
}

void Run(const TCommand& command, const std::vector<std::string_view>& words) {
    const TRequest request = ParseRequest(command, words);
    if (request.Help)
        Print(HelpOf(command));
    else
        command.Run(request);
}

int RunGuarded(const TCommand& command, const std::vector<std::string_view>& words) {
    try {
        Run(command, words);
        return 0;
    } catch (const TUsageError& error) {
        Complain(error.what());
        std::fputs(UsageOf(command).c_str(), stderr);
        return WrongUsage;
    } catch (const Vz::Exception& error) {
        Complain(error.what());
    } catch (const std::bad_alloc&) {
        Complain("out of memory");
    } catch (const std::exception& error) {
        Complain(error.what());
    }
    return BadInput;
}

/// What stands in place of a command: help, version, or nothing.
int RunWithoutCommand(std::string_view word) {
    if (word == "--help" || word == "-h" || word == "help") {
        Print(Help());
    } else if (word == "--version") {
        Print("tavro " TAVRO_VERSION "\n");
    } else {
        Complain(word.empty() ? "a command is missing" : "unknown command " + Quoted(word));
        std::string names;
        for (const TCommand& command : GetCommands())
            names += ' ' + std::string(command.Name);
        std::fprintf(stderr, "commands:%s; tavro --help says more\n", names.c_str());
        return WrongUsage;
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    try {
        Vz::RegisterComponentClasses();
        const std::vector<std::string_view> words(arguments + std::min(count, 1), arguments + count);
        const std::string_view first = words.empty() ? std::string_view() : words.front();
        if (const TCommand* const command = FindCommand(first))
            return RunGuarded(*command, {words.begin() + 1, words.end()});
        return RunWithoutCommand(first);
    } catch (const std::exception& error) {
        Complain(error.what());
        return BadInput;
    }
}
