#include "Describe.h"

#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

namespace Vz::Tool {

namespace {

struct TRow {
    std::string Name;
    TValueType Type;
    std::optional<std::string> Default;
    std::optional<std::string> Value;
    bool IsStored = false;
    TQuantity Main = TQuantity::None;
};

void AppendRows(TPersistent& object, const std::string& prefix, std::vector<TRow>& rows);

/// The rows of an owned object's properties; true where one of them is stored, and so the object.
bool AppendParts(TPersistent& owned, const std::string& prefix, std::vector<TRow>& rows) {
    const auto first = std::ssize(rows);
    AppendRows(owned, prefix, rows);
    return std::any_of(rows.begin() + first, rows.end(), [](const TRow& row) { return row.IsStored; });
}

void AppendRows(TPersistent& object, const std::string& prefix, std::vector<TRow>& rows) {
    for (const TProp& prop : object.GetPropTable()) {
        const std::size_t index = rows.size();
        TRow& row = rows.emplace_back();
        row.Name = prefix + std::string(prop.Name);
        row.Type = prop.Type;
        row.Main = prop.Main;
        if (prop.Default.index() != 0) row.Default = ValueToText(prop.Default);
        if (prop.Type.Kind == TValueKind::Object) {
            TPersistent* const owned = prop.GetObject(object);
            const bool isStored = owned && AppendParts(*owned, std::string(row.Name) + '.', rows);
            rows[index].IsStored = isStored; // `row` may have moved
        } else if (prop.Type.Kind != TValueKind::Event) {
            row.IsStored = IsPropStored(object, prop);
            row.Value = GetPropText({&object, &prop});
        }
    }
}

std::vector<TRow> RowsOf(TComponent& fresh) {
    std::vector<TRow> rows;
    AppendRows(fresh, "", rows);
    return rows;
}

/// A text in one line of tab-separated fields.
std::string Field(const std::optional<std::string>& text) {
    std::string field;
    for (const char c : text.value_or(""))
        if (c == '\n' || c == '\t' || c == '\r')
            field += c == '\n' ? "\\n" : c == '\t' ? "\\t" : "\\r";
        else
            field += c;
    return field;
}

std::string JsonText(std::string_view text) {
    constexpr std::string_view hex = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            json += {'\\', c};
        else if (code < 0x20)
            json += {'\\', 'u', '0', '0', hex[code >> 4], hex[code & 15]};
        else
            json += c;
    }
    return json + '"';
}

std::string JsonOrNull(const std::optional<std::string>& text) { return text ? JsonText(*text) : "null"; }

/// What a main value tells, in the order of TQuantity.
constexpr std::string_view Quantities[] = {"",          "Value",  "Speed",  "Pressure", "Temperature",
                                           "Supply",    "Charge", "Height", "Heading",  "Position",
                                           "TimeOfDay", "Date",   "Lamps",  "Switch"};
static_assert(std::size(Quantities) == std::size_t(TQuantity::Switch) + 1);
std::string_view NameOf(TQuantity quantity) { return Quantities[static_cast<std::size_t>(quantity)]; }

std::string JsonMembers(const TEnumType& type) {
    std::string json;
    for (const std::string_view member : type.Members)
        json += (json.empty() ? "" : ", ") + JsonText(member);
    return ", \"members\": [" + json + ']';
}

} // namespace

std::string DescribeAsLines(TComponent& fresh) {
    std::string text;
    for (const TRow& row : RowsOf(fresh))
        text += row.Name + '\t' + std::string(row.Type.Name) + '\t' + Field(row.Default) + '\t' +
                (row.IsStored ? "stored" : "-") + '\t' + Field(row.Value) + '\n';
    return text;
}

std::string DescribeAsJson(TComponent& fresh) {
    std::string json;
    for (const TRow& row : RowsOf(fresh)) {
        json += json.empty() ? "[\n" : ",\n";
        json += "  {\"name\": " + JsonText(row.Name) + ", \"type\": " + JsonText(row.Type.Name) +
                ", \"default\": " + JsonOrNull(row.Default) +
                ", \"stored\": " + (row.IsStored ? "true" : "false") +
                ", \"value\": " + JsonOrNull(row.Value) +
                (row.Type.Members ? JsonMembers(*row.Type.Members) : "") +
                (row.Main == TQuantity::None ? "}" : ", \"main\": " + JsonText(NameOf(row.Main)) + '}');
    }
    return json.empty() ? "[]\n" : json + "\n]\n";
}

} // namespace Vz::Tool
