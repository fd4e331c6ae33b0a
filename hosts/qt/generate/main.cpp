// Writes the typed widget of one component class from the class's property table.
//
//   tavro_qt_widget CLASS CLASS-HEADER FOLDER      FOLDER/VzName.h and FOLDER/VzName.cpp
//
// CLASS is as C++ names it, `Plant::TBoiler`; in Vz where it names no namespace. RegisterWidgetClasses, in
// another source of the same program, makes it known (tavro_add_widgets in cmake/TavroWidgets.cmake writes
// one).
//
// The names follow Qt's habits: Min is `minimum`, its signal minimumChanged, its slot setMinimum. A property
// whose name a QWidget has already gets another one, from the table below.

#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/svg/Control.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <set>
#include <sstream>

using namespace Vz;

/// Registers the classes of which widgets are written.
void RegisterWidgetClasses();

namespace {

/// Our name and Qt's, where that is not ours with a small letter in front.
constexpr std::pair<std::string_view, std::string_view> QtNames[] = {
    {"Min", "minimum"},
    {"Max", "maximum"},
    {"Font", "textFont"},
    {"OnChange", "changed"},
};
/// What a QWidget has; a property of such a name needs a row above.
constexpr std::string_view Taken[] = {
    "font",    "enabled", "size",    "pos",      "rect",   "style",   "cursor", "visible",  "geometry",
    "layout",  "palette", "mask",    "width",    "height", "x",       "y",      "update",   "show",
    "hide",    "close",   "parent",  "window",   "grab",   "raise",   "lower",  "scroll",   "move",
    "resize",  "locale",  "clicked", "read",     "write",  "event",   "screen", "children", "host",
    "repaint", "render",  "actions", "property", "source", "artwork",
};

/// The widget that the typed one is derived from.
std::string BaseOf(const TComponent& component) {
    if (dynamic_cast<const TVZSVGCustomInstrument*>(&component)) return "VzInstrumentWidget";
    if (dynamic_cast<const TVZSVGControl*>(&component)) return "VzPictureWidget";
    return "VzWidget";
}

std::string LowerFirst(std::string_view name) {
    std::string result(name);
    result[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(result[0])));
    return result;
}

std::string UpperFirst(std::string_view name) {
    std::string result(name);
    result[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(result[0])));
    return result;
}

/// `Font.Size` of an owned object is fontSize.
std::string QtName(std::string_view path) {
    for (const auto& [ours, qt] : QtNames)
        if (ours == path) return std::string(qt);
    std::string name;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find('.', start), path.size());
        name += name.empty() ? LowerFirst(path.substr(start, end - start))
                             : UpperFirst(path.substr(start, end - start));
        start = end + 1;
    }
    if (std::ranges::find(Taken, name) != std::end(Taken))
        throw EPropertyError("a widget has a " + name + " of its own: " + std::string(path) +
                             " needs another name");
    return name;
}

/// `TVZSpeedometer.TPart` is Part, `TSVGDesign` is Design.
std::string EnumName(std::string_view name) {
    name.remove_prefix(name.rfind('.') == name.npos ? 0 : name.rfind('.') + 1);
    for (const std::string_view prefix : {"TVZ", "TSVG", "T"})
        if (name.starts_with(prefix)) return std::string(name.substr(prefix.size()));
    return std::string(name);
}

/// A property as the widget has it.
struct TWidgetProp {
    std::string Path; ///< in the component
    std::string Name; ///< in the widget
    const TProp* Prop = nullptr;
    std::string Type;    ///< of the value
    std::string Param;   ///< of the setter's parameter
    std::string FromAny; ///< what makes a Type of `read(row)`
    std::string ToAny = "value";
    std::string Enum; ///< the enumeration to declare
};

std::optional<TWidgetProp> Describe(const std::string& path, const TProp& prop) {
    TWidgetProp result{path, QtName(path), &prop, {}, {}, {}};
    const auto is = [&](std::string type, std::string param, std::string fromAny) {
        result.Type = std::move(type);
        result.Param = std::move(param);
        result.FromAny = std::move(fromAny);
    };
    switch (prop.Type.Kind) {
    case TValueKind::Boolean:
        is("bool", "bool ", ".toBool()");
        break;
    case TValueKind::Integer:
        is("int", "int ", ".toInt()");
        break;
    case TValueKind::Single:
    case TValueKind::Double:
        is("double", "double ", ".toDouble()");
        break;
    case TValueKind::Color:
        is("QColor", "const QColor& ", ".value<QColor>()");
        break;
    case TValueKind::DateTime:
        is("QDateTime", "const QDateTime& ", ".toDateTime()");
        break;
    case TValueKind::Text:
    case TValueKind::TextObject:
        is("QString", "const QString& ", ".toString()");
        break;
    case TValueKind::Strings:
        is("QStringList", "const QStringList& ", ".toStringList()");
        break;
    case TValueKind::Enumeration:
    case TValueKind::Set: {
        result.Enum = EnumName(prop.Type.Members->Name);
        const std::string type = EnumName(prop.Type.Name);
        is(type, type + ' ', ".toInt()");
        result.ToAny = "int(value)";
        break;
    }
    case TValueKind::Object:
        if (prop.Type.Name != "TSVGFont") return {};
        is("QFont", "const QFont& ", ".value<QFont>()");
        break;
    default:
        return {};
    }
    return result;
}

/// True for a property that every component has, of which a class declares a default: the widget's own stands
/// for it.
bool IsCommon(const TPersistent& object, const TProp& row) {
    return std::ranges::any_of(object.GetCommonProps(),
                               [&](const TProp& common) { return common.Name == row.Name; });
}

/// The class's own properties, an object of other kind than a font by its parts.
void Collect(const TPersistent& object, const std::string& prefix, std::vector<TWidgetProp>& props) {
    for (const TProp& row : object.GetPropTable()) {
        if (IsCommon(object, row)) continue;
        const std::string path = prefix + std::string(row.Name);
        if (auto prop = Describe(path, row))
            props.push_back(std::move(*prop));
        else if (row.Type.Kind == TValueKind::Object)
            if (const TPersistent* const owned = row.GetObject(object)) Collect(*owned, path + '.', props);
    }
}

/// Everything that is written of one class.
class TWidgetWriter {
public:
    TWidgetWriter(const TComponent& component, std::string space, std::string header)
        : FClass(component.ClassName())
        , FSpace(std::move(space))
        , FBase(BaseOf(component))
        , FWidget("Vz" + FClass.substr(FClass.starts_with("TVZ") ? 3 : 1))
        , FHeader(std::move(header)) {
        Collect(component, "", FProps);
        for (const TProp& row : component.GetPropTable())
            if (row.Type.Kind == TValueKind::Event) FEvents.push_back(&row);
        std::set<std::string> names;
        for (const TWidgetProp& prop : FProps)
            if (!names.insert(prop.Name).second)
                throw EPropertyError(FClass + ": two properties are named " + prop.Name);
    }

    const std::string& Widget() const { return FWidget; }

    std::string Header() const {
        std::ostringstream out;
        out << "// Made from the property table of " << FClass << " while the library is built.\n"
            << "#pragma once\n\n#include <" << FBase << ".h>\n\n"
            << "#include <QColor>\n#include <QDateTime>\n#include <QFont>\n#include <QString>\n#include "
               "<QStringList>\n\n"
            << "namespace " << FSpace << " {\nclass " << FClass << ";\n}\n\n"
            << "/// Shows a " << FSpace << "::" << FClass << ". What the properties mean stands in "
            << FHeader << ".\n"
            << "class " << FWidget << " : public " << FBase << " {\n    Q_OBJECT\n";
        for (const TWidgetProp& prop : FProps)
            out << "    Q_PROPERTY(" << prop.Type << ' ' << prop.Name << " READ " << prop.Name << " WRITE set"
                << UpperFirst(prop.Name) << " RESET reset" << UpperFirst(prop.Name) << " NOTIFY " << prop.Name
                << "Changed" << (IsMain(prop) ? " USER true" : "") << ")\n";
        out << "public:\n";
        WriteEnums(out);
        out << "    explicit " << FWidget << "(QWidget* parent = nullptr);\n\n"
            << "    /// The component that is shown.\n    " << FSpace << "::" << FClass
            << "& instrument() const;\n\n";
        for (const TWidgetProp& prop : FProps)
            out << "    " << prop.Type << ' ' << prop.Name << "() const;\n";
        out << "\npublic Q_SLOTS:\n";
        for (const TWidgetProp& prop : FProps)
            out << "    void set" << UpperFirst(prop.Name) << '(' << prop.Param << "value);\n    void reset"
                << UpperFirst(prop.Name) << "();\n";
        out << "\nQ_SIGNALS:\n";
        for (const TWidgetProp& prop : FProps)
            out << "    void " << prop.Name << "Changed(" << prop.Param << "value);\n";
        for (const TProp* event : FEvents)
            out << "    void " << Signal(*event) << "();\n";
        out << "\nprotected:\n    void notifyProperty(int row) override;\n    void notifyEvent(int row) "
               "override;\n};\n";
        if (HasSets()) out << '\n';
        for (const auto& [flags, member] : Sets())
            out << "Q_DECLARE_OPERATORS_FOR_FLAGS(" << FWidget << "::" << flags << ")\n";
        return out.str();
    }

    std::string Source() const {
        std::ostringstream out;
        out << "#include \"" << FWidget << ".h\"\n\n#include \"" << FHeader << "\"\n\nnamespace {\n\n"
            << "constexpr const char* Properties[] = {";
        for (const TWidgetProp& prop : FProps)
            out << '"' << prop.Path << "\", ";
        out << "};\nconstexpr const char* Events[] = {";
        for (const TProp* event : FEvents)
            out << '"' << event->Name << "\", ";
        out << "};\nconstexpr const char* EventSignals[] = {";
        for (const TProp* event : FEvents)
            out << '"' << Signal(*event) << "()\", ";
        out << "};\n\n} // namespace\n\n"
            << FWidget << "::" << FWidget << "(QWidget* parent)\n    : " << FBase << '(' << FSpace
            << "::" << FClass
            << "::Create(), {&staticMetaObject, Properties, Events, EventSignals}, parent) {}\n\n"
            << FSpace << "::" << FClass << "& " << FWidget << "::instrument() const { return static_cast<"
            << FSpace << "::" << FClass << "&>(component()); }\n\n";
        for (std::size_t row = 0; row < FProps.size(); ++row)
            WriteAccess(out, FProps[row], row);
        WriteNotify(out);
        out << "\n#include \"moc_" << FWidget << ".cpp\"\n";
        return out.str();
    }

private:
    static bool IsMain(const TWidgetProp& prop) { return prop.Prop->Main != TQuantity::None; }
    static std::string Signal(const TProp& event) {
        const std::string name = QtName(event.Name);
        return name.starts_with("on") ? LowerFirst(name.substr(2)) : name;
    }

    /// The sets' names and their members' enumeration.
    std::set<std::pair<std::string, std::string>> Sets() const {
        std::set<std::pair<std::string, std::string>> result;
        for (const TWidgetProp& prop : FProps)
            if (prop.Prop->Type.Kind == TValueKind::Set) result.insert({prop.Type, prop.Enum});
        return result;
    }
    bool HasSets() const { return !Sets().empty(); }

    void WriteEnums(std::ostream& out) const {
        std::set<std::string> done;
        for (const TWidgetProp& prop : FProps) {
            if (prop.Enum.empty() || !done.insert(prop.Enum).second) continue;
            const bool isSet = prop.Prop->Type.Kind == TValueKind::Set;
            out << "    enum " << prop.Enum << " {\n";
            std::size_t ordinal = 0;
            for (const std::string_view member : prop.Prop->Type.Members->Members)
                out << "        " << member << " = " << (isSet ? std::size_t{1} << ordinal++ : ordinal++)
                    << ",\n";
            out << "    };\n";
            if (isSet)
                out << "    Q_DECLARE_FLAGS(" << prop.Type << ", " << prop.Enum << ")\n    Q_FLAG("
                    << prop.Type << ")\n";
            else
                out << "    Q_ENUM(" << prop.Enum << ")\n";
        }
        if (!done.empty()) out << '\n';
    }

    void WriteAccess(std::ostream& out, const TWidgetProp& prop, std::size_t row) const {
        const std::string upper = UpperFirst(prop.Name);
        const std::string read = "read(" + std::to_string(row) + ")" + prop.FromAny;
        out << (prop.Enum.empty() ? "" : FWidget + "::") << prop.Type << ' ' << FWidget << "::" << prop.Name
            << "() const { return " << (prop.Enum.empty() ? read : prop.Type + '(' + read + ')') << "; }\n"
            << "void " << FWidget << "::set" << upper << '(' << prop.Param << "value) { write(" << row << ", "
            << prop.ToAny << "); }\n"
            << "void " << FWidget << "::reset" << upper << "() { resetAt(" << row << "); }\n\n";
    }

    void WriteNotify(std::ostream& out) const {
        out << "void " << FWidget << "::notifyProperty(int row) {\n    switch (row) {\n";
        for (std::size_t row = 0; row < FProps.size(); ++row)
            out << "    case " << row << ": Q_EMIT " << FProps[row].Name << "Changed(" << FProps[row].Name
                << "()); break;\n";
        out << "    }\n}\n\nvoid " << FWidget << "::notifyEvent(int row) {\n    switch (row) {\n";
        for (std::size_t row = 0; row < FEvents.size(); ++row)
            out << "    case " << row << ": Q_EMIT " << Signal(*FEvents[row]) << "(); break;\n";
        out << "    }\n}\n";
    }

    std::string FClass;
    std::string FSpace; ///< its namespace
    std::string FBase;
    std::string FWidget;
    std::string FHeader;
    std::vector<TWidgetProp> FProps;
    std::vector<const TProp*> FEvents;
};

} // namespace

int main(int count, char** arguments) try {
    if (count != 4) {
        std::fputs("usage: tavro_qt_widget CLASS CLASS-HEADER FOLDER\n", stderr);
        return 2;
    }
    RegisterWidgetClasses();
    const std::string_view name = arguments[1];
    const std::size_t colons = name.rfind("::");
    const bool isNamed = colons != name.npos;
    const auto component = GetClass(isNamed ? name.substr(colons + 2) : name).Create();
    const TWidgetWriter writer(*component, std::string(isNamed ? name.substr(0, colons) : "Vz"),
                               arguments[2]);
    const std::string stem = std::string(arguments[3]) + '/' + writer.Widget();
    WriteFileAtomically(stem + ".h", writer.Header());
    WriteFileAtomically(stem + ".cpp", writer.Source());
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "tavro_qt_widget: %s\n", error.what());
    return 1;
}
