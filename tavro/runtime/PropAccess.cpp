#include "tavro/runtime/PropAccess.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/PropText.h"
#include "tavro/runtime/Strings.h"
#include "tavro/runtime/Utf8.h"

#include <utility>

namespace Vz {

namespace {

constexpr int DeepestPath = 8; ///< owned objects within owned objects; there is one level in practice

const TProp* FindRow(std::span<const TProp> rows, std::string_view name) {
    for (const TProp& row : rows)
        if (row.Name == name) return &row;
    return nullptr;
}

void AppendProps(TPersistent& object, const std::string& prefix, int depth, std::vector<TNamedProp>& list) {
    for (const TProp* const row : ListRows(object)) {
        const std::string path = prefix + std::string(row->Name);
        if (row->Type.Kind != TValueKind::Object) {
            list.push_back({path, {&object, row}});
        } else if (TPersistent* owned = row->GetObject(object); owned && depth < DeepestPath) {
            AppendProps(*owned, path + ".", depth + 1, list);
        }
    }
}

void SetText(const TPropRef& ref, std::string_view text) {
    switch (ref.Prop->Type.Kind) {
    case TValueKind::Event:
        throw EPropertyError("is an event and has no value");
    case TValueKind::Object:
        throw EPropertyError("is an object: its properties are set one by one");
    case TValueKind::TextObject:
        return SetObjectText(ref, text);
    case TValueKind::Strings:
        return SetListItems(ref, TextToItems(text));
    default:
        return ref.Prop->Set(*ref.Object, TextToValue(ref.Prop->Type, text));
    }
}

} // namespace

std::vector<const TProp*> ListRows(const TPersistent& object) {
    std::vector<const TProp*> rows;
    const auto common = object.GetCommonProps();
    for (const TProp& row : common)
        rows.push_back(&row);
    for (const TProp& row : object.GetPropTable())
        if (!FindRow(common, row.Name)) rows.push_back(&row);
    return rows;
}

const TProp* FindMainProp(const TPersistent& object) {
    for (const TProp& row : object.GetPropTable())
        if (row.Main != TQuantity::None) return &row;
    return nullptr;
}

const TProp* FindProp(const TPersistent& object, std::string_view name) {
    if (const TProp* row = FindRow(object.GetCommonProps(), name)) return row;
    return FindRow(object.GetPropTable(), name);
}

TPropRef ResolveProp(TPersistent& object, std::string_view path) {
    TPersistent* at = &object;
    std::string_view rest = path;
    for (;;) {
        const std::size_t dot = rest.find('.');
        const TProp* row = FindProp(*at, rest.substr(0, dot));
        if (!row) throw EPropertyError("there is no property " + QuotedForMessage(path));
        if (dot == std::string_view::npos) return {at, row};
        if (!row->GetObject) throw EPropertyError("there is no property " + QuotedForMessage(path));
        at = row->GetObject(*at);
        if (!at)
            throw EPropertyError(QuotedForMessage(path) + " cannot be reached: " + std::string(row->Name) +
                                 " is not there");
        rest.remove_prefix(dot + 1);
    }
}

std::vector<TNamedProp> ListProps(TPersistent& object) {
    std::vector<TNamedProp> list;
    AppendProps(object, "", 1, list);
    return list;
}

bool IsPropStored(const TPersistent& object, const TProp& prop) {
    if (prop.Type.Kind == TValueKind::Event) return false;
    if (prop.Stored) return prop.Stored(object);
    if (prop.GetObject) {
        const TPersistent* owned = prop.GetObject(object);
        if (!owned) return false;
        if (prop.Type.Kind == TValueKind::Strings) return static_cast<const TStrings*>(owned)->GetCount() > 0;
        return prop.Type.Kind == TValueKind::Object || !owned->ToText().empty();
    }
    return std::holds_alternative<std::monostate>(prop.Default) || prop.Get(object) != prop.Default;
}

std::string GetPropText(const TPropRef& ref) {
    const TValueKind kind = ref.Prop->Type.Kind;
    if (kind == TValueKind::Event || kind == TValueKind::Object)
        throw EPropertyError(std::string(ref.Prop->Name) + " has no text");
    if (!ref.Prop->GetObject) return ValueToText(ref.Prop->Get(*ref.Object));
    const TPersistent* owned = ref.Prop->GetObject(*ref.Object);
    if (!owned) return {};
    return kind == TValueKind::Strings ? ItemsToText(static_cast<const TStrings*>(owned)->GetItems())
                                       : owned->ToText();
}

std::string GetPropText(TPersistent& object, std::string_view path) {
    return GetPropText(ResolveProp(object, path));
}

void SetPropText(TPersistent& object, std::string_view path, std::string_view text) {
    const TPropRef ref = ResolveProp(object, path);
    const std::string name(path);
    try {
        SetText(ref, text);
    } catch (const EConvertError& error) {
        const bool quoted = error.GetReason().find(QuotedForMessage(text)) != std::string::npos;
        throw EConvertError(name + ": " + (quoted ? "" : QuotedForMessage(text) + ": ") + error.GetReason());
    } catch (const EVZError& error) {
        throw EPropertyError(name + ": " + error.GetReason());
    } catch (const Exception& error) {
        throw EPropertyError(name + ": " + error.what());
    }
}

void SetObjectText(const TPropRef& ref, std::string_view text) {
    if (!ref.Prop->NewObject) {
        if (TPersistent* owned = ref.Prop->GetObject(*ref.Object)) owned->FromText(text);
        return;
    }
    const auto value = ref.Prop->NewObject();
    value->FromText(text);
    ref.Prop->SetObject(*ref.Object, *value);
}

void SetListItems(const TPropRef& ref, std::vector<std::string> items) {
    TStrings value;
    value.SetItems(std::move(items));
    ref.Prop->SetObject(*ref.Object, value);
}

} // namespace Vz
