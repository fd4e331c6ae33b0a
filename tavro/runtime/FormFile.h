#pragma once

#include "tavro/runtime/Component.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace Vz {

// Form files: a component with its properties and the components inside it, as UTF-8 text.
//
//     object Dashboard: TVZForm
//       Width = 640
//       object Speed: TVZSpeedometer
//         Max = 200
//         Parts = [spFrame, spBackface, spNeedle]
//         Font.Size = 14
//         FormatStr = '0.0'
//       end
//     end
//
// One property a line, all of them before the objects inside; plain values as PropText.h says; strings and
// path data in single quotes, a quote doubled, control characters as #13#10 outside the quotes; a string list
// as ('a' 'b'), also over several lines. `object CLASS` is a component without a name. Comments run from //
// to the line's end and are not kept. Lines end in LF or CR LF; a byte order mark in front is skipped. The
// same property twice in one object is a fault, and so is a name twice in one owner.

/// Bounds of a form, read or written: nesting of objects and their number, the outermost counted, and the
/// size of its text in bytes.
inline constexpr int MaxFormDepth = 64;
inline constexpr int MaxFormObjects = 4096;
inline constexpr std::size_t MaxFormSize = std::size_t{16} << 20;

/// Creates what `text` describes. The classes must be registered; what stands inside an object is owned by
/// it. Each component's properties are set one by one in the order of the text, as a program would, outside
/// of any update batch; then the objects inside it are made. All or nothing: the first fault in the text's
/// order is raised, after everything made has been destroyed again, with `sourceName`, line and column:
/// EReadError for the form of the text, EClassNotFound, EPropertyError for a property that there is not or
/// that refused its value, EConvertError for a value that cannot be read.
std::unique_ptr<TComponent> ReadForm(std::string_view text, std::string_view sourceName = {});

/// Sets the properties of a component that is there already, which must be of the outermost object's class,
/// and adds the objects inside. A fault, raised as by ReadForm, leaves `target` as it was: everything is
/// tried on a component of its own first.
void ReadFormInto(TComponent& target, std::string_view text, std::string_view sourceName = {});

/// The same from a file; also EReadError when it cannot be read or is too long.
std::unique_ptr<TComponent> LoadForm(const std::filesystem::path& file);
void LoadFormInto(TComponent& target, const std::filesystem::path& file);

/// The component as text, its own name in front; of each component the properties that IsPropStored names,
/// the common ones first. Raises EWriteError, naming component and property, for a value that cannot be read
/// back (a number that is not finite, broken UTF-8), and beyond the bounds above.
std::string WriteForm(const TComponent& root);

/// Writes the same to a file, whole or not at all. Also EWriteError when it cannot be written; the old file
/// stays.
void SaveForm(const TComponent& root, const std::filesystem::path& file);

} // namespace Vz
