#pragma once

#include "tavro/controls/Mouse.h"
#include "tavro/graphics/Color.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vz::Tool {

enum class TEditKind { Set, Click, BeginUpdate, EndUpdate, Artwork };

/// One edit of a component, in the order of the command line.
struct TEdit {
    TEditKind Kind = TEditKind::Set;
    std::string Text;  ///< as given, for trace
    std::string Name;  ///< Set: the property's path, `Font.Size`
    std::string Value; ///< Set; Artwork: the SVG file
    int X = 0;         ///< Click: control pixel
    int Y = 0;
    TMouseButton Button = TMouseButton::Left;
    TShiftState Shift;
};

struct TPictureSize {
    int Width = 0;
    int Height = 0;
};

/// The options of `render`.
struct TPictureOptions {
    std::optional<TPictureSize> Size; ///< the control's bounds, in control pixels; its own where absent
    double Scale = 1;                 ///< device pixels a control pixel
    TVZGPColor Background = 0;
};

/// A command line, taken apart.
struct TRequest {
    std::string Source; ///< class, form file or SVG file
    std::vector<TEdit> Edits;
    TPictureOptions Picture;
    std::optional<std::string> Output; ///< `-` is standard output
    std::vector<std::string> Names;    ///< of properties
    std::string Artwork;               ///< of `check`: the SVG file
    bool Json = false;
    bool Help = false;
};

/// What a command takes beside its name; a sum of these.
enum TAccepts : unsigned {
    AcceptsSource = 1,
    AcceptsNames = 2,
    AcceptsEdits = 4,
    AcceptsOutput = 8,
    AcceptsPicture = 16,
    AcceptsJson = 32,
    NeedsArtwork = 64,
};

/// A command of the tool.
struct TCommand {
    std::string_view Name;
    std::string_view Arguments; ///< as the usage line shows them
    std::string_view Help;
    unsigned Accepts = 0; ///< a sum of TAccepts
    void (*Run)(const TRequest& request) = nullptr;
};

/// Takes the words behind the command's name apart. Raises TUsageError.
TRequest ParseRequest(const TCommand& command, const std::vector<std::string_view>& words);

/// The options that a command with these TAccepts takes, a line each; empty where there are none.
std::string OptionsHelp(unsigned accepts);

} // namespace Vz::Tool
