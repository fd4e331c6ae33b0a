#include "Commands.h"

#include "Describe.h"
#include "Edits.h"
#include "Output.h"
#include "Source.h"
#include "Trace.h"
#include "UsageError.h"
#include "tavro/controls/Picture.h"
#include "tavro/instruments/ArtworkCheck.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/svg/model/Document.h"

#include <algorithm>
#include <iterator>

namespace Vz::Tool {

namespace {

void RunClasses(const TRequest&) {
    std::string text;
    for (const TClassEntry& entry : GetClasses())
        text += std::string(entry.Name) + '\n';
    Print(text);
}

void RunDescribe(const TRequest& request) {
    const auto fresh = GetClass(request.Source).Create();
    Print(request.Json ? DescribeAsJson(*fresh) : DescribeAsLines(*fresh));
}

/// Standard output takes PNG.
TPictureFormat FormatOf(const std::string& file) {
    if (file == "-") return TPictureFormat::Png;
    if (const auto format = FindPictureFormat(file)) return *format;
    throw TUsageError("a picture's name ends in .png, .svg or .pdf, unlike " + Quoted(file));
}

void RunRender(const TRequest& request) {
    if (!request.Output) throw TUsageError("'render' needs -o FILE");
    const TPictureFormat format = FormatOf(*request.Output);
    const TSource source(request.Source);
    TControl& control = source.GetControl();
    const auto setSize = [&] {
        if (const auto& size = request.Picture.Size)
            control.SetBounds(control.GetLeft(), control.GetTop(), size->Width, size->Height);
    };
    setSize(); // a click means the picture's pixels
    ApplyEdits(request, source);
    setSize();
    WriteOutput(*request.Output,
                DrawPicture(control, format, request.Picture.Scale, request.Picture.Background));
}

void RunDocument(const TRequest& request) {
    const TSource source(request.Source);
    ApplyEdits(request, source);
    WriteOutput(request.Output.value_or("-"), source.GetDocument().WriteText());
}

void RunForm(const TRequest& request) {
    const TSource source(request.Source);
    ApplyEdits(request, source);
    WriteOutput(request.Output.value_or("-"), WriteForm(source.GetComponent()));
}

void RunGet(const TRequest& request) {
    const TSource source(request.Source);
    ApplyEdits(request, source);
    TComponent& component = source.GetComponent();
    std::string text;
    for (const std::string& name : request.Names)
        text += name + '=' + GetPropText(component, name) + '\n';
    if (request.Names.empty())
        for (const TNamedProp& prop : ListProps(component))
            if (prop.Ref.Prop->Type.Kind != TValueKind::Event)
                text += prop.Path + '=' + GetPropText(prop.Ref) + '\n';
    Print(text);
}

void RunTrace(const TRequest& request) { Trace(request, TSource(request.Source)); }

/// As a compiler names a fault, so that an editor finds its place.
std::string TextOf(const TArtworkFault& fault, const std::string& file) {
    return file + ':' + std::to_string(fault.Line) + ':' + std::to_string(fault.Column) + ": " +
           (fault.IsWarning ? "warning: " : "") + fault.Text + '\n';
}

void RunCheck(const TRequest& request) {
    GetClass(request.Source); // a class, not a file
    const TSource source(request.Source);
    const TVZSVGCustomInstrument& instrument = source.GetInstrument();
    const std::string svg = ReadWholeFile(request.Artwork, TSVGDocument::MaxTextSize);
    const auto faults = CheckArtwork(instrument, svg, request.Artwork);
    std::string text;
    for (const TArtworkFault& fault : faults)
        text += TextOf(fault, request.Artwork);
    Print(text);
    if (!std::ranges::all_of(faults, &TArtworkFault::IsWarning))
        throw EReadError(request.Artwork + " does not serve as the artwork of a " + request.Source);
}

constexpr unsigned Edited = AcceptsSource | AcceptsEdits;

constexpr TCommand Commands[] = {
    {"classes", "", "the registered component classes, one name per line", 0, RunClasses},
    {"describe", "CLASS [--json]", "its published properties in declaration order",
     AcceptsSource | AcceptsJson, RunDescribe},
    {"render", "SOURCE [edits] [options] -o FILE", "a picture: .png, .svg or .pdf, by FILE's ending",
     Edited | AcceptsOutput | AcceptsPicture, RunRender},
    {"document", "SOURCE [edits] [-o FILE]", "the live SVG document after the edits", Edited | AcceptsOutput,
     RunDocument},
    {"form", "SOURCE [edits] [-o FILE]", "a form file: only what differs from the defaults",
     Edited | AcceptsOutput, RunForm},
    {"get", "SOURCE [edits] [NAME...]", "a NAME=VALUE line for each property named, or for all",
     Edited | AcceptsNames, RunGet},
    {"trace", "SOURCE [edits]", "each edit, and under it the events that it raised", Edited, RunTrace},
    {"check", "CLASS FILE.svg",
     "what an artwork for the class lacks or has wrong, a line each; warnings leave the exit status 0",
     AcceptsSource | NeedsArtwork, RunCheck},
};

} // namespace

std::span<const TCommand> GetCommands() { return Commands; }

const TCommand* FindCommand(std::string_view name) {
    const auto* const command = std::ranges::find(Commands, name, &TCommand::Name);
    return command == std::end(Commands) ? nullptr : command;
}

std::string UsageOf(const TCommand& command) {
    const std::string line = "usage: tavro " + std::string(command.Name);
    return command.Arguments.empty() ? line + '\n' : line + ' ' + std::string(command.Arguments) + '\n';
}

std::string Help() {
    std::string text = "usage: tavro COMMAND ...\n\n";
    for (const TCommand& command : Commands) {
        std::string line = "  tavro " + std::string(command.Name) + ' ' + std::string(command.Arguments);
        line.resize(std::max<std::size_t>(line.size() + 1, 50), ' ');
        text += line + std::string(command.Help) + '\n';
    }
    return text +
           "\nSOURCE is a class, a form file (*.form; FILE#NAME picks one component), or an SVG file "
           "(*.svg).\n\nEdits, in the order given:\n" +
           OptionsHelp(AcceptsEdits) + "\nOptions of render:\n" + OptionsHelp(AcceptsPicture) +
           "\nExit status: 0; 1 for bad input; 2 for wrong usage.\n";
}

std::string HelpOf(const TCommand& command) {
    const std::string options = OptionsHelp(command.Accepts);
    return UsageOf(command) + "  " + std::string(command.Help) + '\n' +
           (options.empty() ? "" : '\n' + options);
}

} // namespace Vz::Tool
