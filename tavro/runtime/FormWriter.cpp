#include "tavro/runtime/FormFile.h"

#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"
#include "tavro/runtime/Strings.h"
#include "tavro/runtime/Utf8.h"

#include <utility>

namespace Vz {

namespace {

constexpr std::size_t LongLine = 100; ///< a list that would go beyond gets a line an item
constexpr int Indent = 2;

/// In single quotes, with control characters as their numbers outside.
std::string Quoted(std::string_view text) {
    std::string quoted;
    bool open = false;
    const auto toggle = [&](bool wanted) {
        if (open != wanted) quoted += '\'';
        open = wanted;
    };
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        const bool control = code < ' ' || code == 0x7F;
        toggle(!control);
        if (control)
            quoted += '#' + std::to_string(code);
        else if (c == '\'')
            quoted += "''";
        else
            quoted += c;
    }
    toggle(false);
    return quoted.empty() ? "''" : quoted;
}

class TFormWriter {
public:
    std::string Write(const TComponent& root) {
        WriteObject(root, 0);
        return std::move(FText);
    }

private:
    void WriteObject(const TComponent& component, int depth) {
        if (depth >= MaxFormDepth)
            throw EWriteError("components are nested deeper than " + std::to_string(MaxFormDepth));
        if (++FObjects > MaxFormObjects)
            throw EWriteError("more than " + std::to_string(MaxFormObjects) + " components");
        const std::string indent(static_cast<std::size_t>(depth * Indent), ' ');
        const std::string& name = component.GetName();
        FText += indent + "object " + (name.empty() ? "" : name + ": ");
        FText.append(component.ClassName()) += '\n';
        FSubject = name.empty() ? std::string(component.ClassName()) : name;
        WriteProps(component, indent + std::string(Indent, ' '));
        for (const TComponent* child : component.GetChildComponents())
            WriteObject(*child, depth + 1);
        FText += indent + "end\n";
        if (FText.size() > MaxFormSize)
            throw EWriteError("the form would be longer than " + std::to_string(MaxFormSize) + " bytes");
    }

    /// `prefix` is what stands in front of the name: blanks, and the path of an owned object.
    void WriteProps(const TPersistent& object, const std::string& prefix) {
        for (const TProp* const row : ListRows(object))
            if (IsPropStored(object, *row)) WriteProp(object, *row, prefix + std::string(row->Name));
    }

    void WriteProp(const TPersistent& object, const TProp& row, const std::string& path) {
        const TPersistent* owned = row.GetObject ? row.GetObject(object) : nullptr;
        if (row.GetObject && !owned) return;
        if (row.Type.Kind == TValueKind::Object) return WriteProps(*owned, path + ".");
        FText += path + " = ";
        if (row.Type.Kind == TValueKind::Strings)
            WriteList(static_cast<const TStrings&>(*owned), path);
        else if (owned)
            FText += Quoted(Checked(owned->ToText(), path));
        else
            WriteValue(row.Get(object), path);
        FText += '\n';
    }

    void WriteValue(const TValue& value, const std::string& path) {
        if (!CanReadBack(value)) Fail(path, QuotedForMessage(ValueToText(value)));
        const auto* text = std::get_if<std::string_view>(&value);
        FText += text ? Quoted(*text) : ValueToText(value);
    }

    void WriteList(const TStrings& list, const std::string& path) {
        std::vector<std::string> items;
        std::size_t length = path.size() + 5;
        for (const std::string& item : list.GetItems()) {
            items.push_back(Quoted(Checked(item, path)));
            length += items.back().size() + 1;
        }
        const std::size_t margin = path.find_first_not_of(' ') + Indent;
        const std::string between = length > LongLine ? "\n" + std::string(margin, ' ') : " ";
        FText += '(';
        for (const std::string& item : items) {
            if (&item != &items.front() || length > LongLine) FText += between;
            FText += item;
        }
        FText += ')';
    }

    std::string_view Checked(std::string_view text, const std::string& path) const {
        if (FindBadUtf8(text) != std::string_view::npos) Fail(path, QuotedForMessage(text));
        return text;
    }

    [[noreturn]] void Fail(const std::string& path, const std::string& value) const {
        throw EWriteError(FSubject + ": " + path.substr(path.find_first_not_of(' ')) + " is " + value +
                          ", which a form cannot hold");
    }

    std::string FText;
    std::string FSubject; ///< name of the component at hand, or its class
    int FObjects = 0;
};

} // namespace

std::string WriteForm(const TComponent& root) { return TFormWriter().Write(root); }

void SaveForm(const TComponent& root, const std::filesystem::path& file) {
    WriteFileAtomically(file, WriteForm(root));
}

} // namespace Vz
