#include "Request.h"

#include "UsageError.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/PropText.h"

#include <algorithm>
#include <iterator>

namespace Vz::Tool {

namespace {

/// An option: its name, its argument as shown (empty: it has none), who accepts it, and what it does.
struct TOption {
    std::string_view Name;
    std::string_view Argument;
    std::string_view Help;
    unsigned Accepts;
    void (*Take)(TRequest& request, std::string_view argument);
};

[[noreturn]] void RaiseMalformed(std::string_view option, std::string_view text, std::string_view expected) {
    throw TUsageError(std::string(option) + " takes " + std::string(expected) + ", not " + Quoted(text));
}

/// A whole text as a number or colour, in the notation of property values.
template <class T> std::optional<T> ReadAs(std::string_view text) {
    try {
        return TValueTraits<T>::FromValue(TextToValue(TValueTraits<T>::Type, text));
    } catch (const EConvertError&) {
        return std::nullopt;
    }
}

/// Cuts off and gives what stands before the next separator.
std::string_view NextField(std::string_view& rest, char separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

TEdit& AddEdit(TRequest& request, TEditKind kind, std::string text) {
    TEdit& edit = request.Edits.emplace_back();
    edit.Kind = kind;
    edit.Text = std::move(text);
    return edit;
}

void TakeSet(TRequest& request, std::string_view argument) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string_view::npos || equals == 0) RaiseMalformed("--set", argument, "NAME=VALUE");
    TEdit& edit = AddEdit(request, TEditKind::Set, "--set " + std::string(argument));
    edit.Name = argument.substr(0, equals);
    edit.Value = argument.substr(equals + 1);
}

/// A word of --click behind the place: a button or a key that is held.
bool TakeClickWord(TEdit& edit, std::string_view word) {
    static constexpr std::pair<std::string_view, TMouseButton> buttons[] = {
        {"left", TMouseButton::Left}, {"right", TMouseButton::Right}, {"middle", TMouseButton::Middle}};
    static constexpr std::pair<std::string_view, TShiftKey> keys[] = {
        {"shift", TShiftKey::Shift}, {"ctrl", TShiftKey::Ctrl}, {"alt", TShiftKey::Alt}};
    for (const auto& [name, button] : buttons)
        if (word == name) {
            edit.Button = button;
            return true;
        }
    for (const auto& [name, key] : keys)
        if (word == name) {
            edit.Shift.Include(key);
            return true;
        }
    return false;
}

void TakeClick(TRequest& request, std::string_view argument) {
    constexpr std::string_view expected = "X,Y[,left|right|middle][,shift][,ctrl][,alt]";
    std::string_view rest = argument;
    const auto x = ReadAs<int>(NextField(rest, ','));
    const auto y = ReadAs<int>(NextField(rest, ','));
    if (!x || !y) RaiseMalformed("--click", argument, expected);
    TEdit& edit = AddEdit(request, TEditKind::Click, "--click " + std::string(argument));
    edit.X = *x;
    edit.Y = *y;
    if (argument.ends_with(',')) RaiseMalformed("--click", argument, expected);
    while (!rest.empty())
        if (!TakeClickWord(edit, NextField(rest, ','))) RaiseMalformed("--click", argument, expected);
}

void TakeBeginUpdate(TRequest& request, std::string_view) {
    AddEdit(request, TEditKind::BeginUpdate, "--begin-update");
}

void TakeEndUpdate(TRequest& request, std::string_view) {
    AddEdit(request, TEditKind::EndUpdate, "--end-update");
}

void TakeArtwork(TRequest& request, std::string_view argument) {
    if (argument.empty()) RaiseMalformed("--artwork", argument, "an SVG file's name");
    AddEdit(request, TEditKind::Artwork, "--artwork " + std::string(argument)).Value = argument;
}

void TakeOutput(TRequest& request, std::string_view argument) {
    if (argument.empty()) RaiseMalformed("-o", argument, "a file's name");
    request.Output = argument;
}

void TakeSize(TRequest& request, std::string_view argument) {
    std::string_view rest = argument;
    const auto width = ReadAs<int>(NextField(rest, 'x'));
    const auto height = ReadAs<int>(rest);
    if (!width || !height || *width < 1 || *height < 1)
        RaiseMalformed("--size", argument, "WIDTHxHEIGHT in whole pixels");
    request.Picture.Size = TPictureSize{*width, *height};
}

void TakeScale(TRequest& request, std::string_view argument) {
    const auto scale = ReadAs<double>(argument);
    if (!scale || !(*scale > 0)) RaiseMalformed("--scale", argument, "a number above 0");
    request.Picture.Scale = *scale;
}

void TakeBackground(TRequest& request, std::string_view argument) {
    const auto color = ReadAs<TVZGPColor>(argument);
    if (!color) RaiseMalformed("--background", argument, "a colour as 0xAARRGGBB");
    request.Picture.Background = *color;
}

void TakeJson(TRequest& request, std::string_view) { request.Json = true; }
void TakeHelp(TRequest& request, std::string_view) { request.Help = true; }

constexpr TOption Options[] = {
    {"--set", "NAME=VALUE", "assign a published property; Font.Size=8 reaches into an owned object",
     AcceptsEdits, TakeSet},
    {"--click", "X,Y[,BUTTON][,KEY...]",
     "press and release left, right or middle there, with shift, ctrl, alt", AcceptsEdits, TakeClick},
    {"--begin-update", "", "open the component's update counter", AcceptsEdits, TakeBeginUpdate},
    {"--end-update", "", "close it; the two need not balance", AcceptsEdits, TakeEndUpdate},
    {"--artwork", "FILE.svg", "give an instrument another artwork from here on", AcceptsEdits, TakeArtwork},
    {"-o", "FILE", "write to FILE, - for standard output", AcceptsOutput, TakeOutput},
    {"--size", "WxH", "the control's bounds; its own when left out", AcceptsPicture, TakeSize},
    {"--scale", "S", "device pixels a control pixel, default 1", AcceptsPicture, TakeScale},
    {"--background", "COLOUR", "0xAARRGGBB, default transparent", AcceptsPicture, TakeBackground},
    {"--json", "", "as a JSON array", AcceptsJson, TakeJson},
    {"--help", "", "show this", ~0u, TakeHelp},
};

const TOption& FindOption(const TCommand& command, std::string_view word) {
    if (word == "-h") word = "--help";
    const auto* const option = std::ranges::find(Options, word, &TOption::Name);
    if (option == std::end(Options)) throw TUsageError("unknown option " + Quoted(word));
    if (!(option->Accepts & command.Accepts) && option->Take != TakeHelp)
        throw TUsageError(Quoted(command.Name) + " takes no " + std::string(word));
    return *option;
}

void TakePlainWord(const TCommand& command, TRequest& request, std::string_view word) {
    if ((command.Accepts & AcceptsSource) && request.Source.empty() && !word.empty())
        request.Source = word;
    else if ((command.Accepts & NeedsArtwork) && request.Artwork.empty() && !word.empty())
        request.Artwork = word;
    else if (command.Accepts & AcceptsNames)
        request.Names.emplace_back(word);
    else
        throw TUsageError("unexpected argument " + Quoted(word));
}

} // namespace

TRequest ParseRequest(const TCommand& command, const std::vector<std::string_view>& words) {
    TRequest request;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].size() < 2 || words[i][0] != '-') {
            TakePlainWord(command, request, words[i]);
            continue;
        }
        const TOption& option = FindOption(command, words[i]);
        std::string_view argument;
        if (!option.Argument.empty()) {
            if (++i == words.size())
                throw TUsageError(std::string(option.Name) + " needs " + std::string(option.Argument));
            argument = words[i];
        }
        option.Take(request, argument);
    }
    if (!request.Help && (command.Accepts & AcceptsSource) && request.Source.empty())
        throw TUsageError(Quoted(command.Name) + " needs a " +
                          (command.Accepts & AcceptsEdits ? "SOURCE" : "CLASS"));
    if (!request.Help && (command.Accepts & NeedsArtwork) && request.Artwork.empty())
        throw TUsageError(Quoted(command.Name) + " needs a FILE");
    return request;
}

std::string OptionsHelp(unsigned accepts) {
    std::string text;
    for (const TOption& option : Options) {
        if (!(option.Accepts & accepts) || option.Take == TakeHelp) continue;
        std::string line = "  " + std::string(option.Name) + ' ' + std::string(option.Argument);
        line.resize(std::max<std::size_t>(line.size() + 1, 34), ' ');
        text += line + std::string(option.Help) + '\n';
    }
    return text;
}

} // namespace Vz::Tool
