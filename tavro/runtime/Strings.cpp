#include "tavro/runtime/Strings.h"

#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace Vz {

namespace {

std::vector<std::string> SplitLines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find_first_of("\r\n");
        lines.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) break;
        const bool pair = text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n';
        text.remove_prefix(end + (pair ? 2 : 1));
    }
    return lines;
}

} // namespace

TStrings::TStrings(std::initializer_list<std::string_view> items)
    : FItems(items.begin(), items.end()) {}

const std::string& TStrings::GetItem(int index) const {
    CheckIndex(index, GetCount());
    return FItems[static_cast<std::size_t>(index)];
}

void TStrings::SetItem(int index, std::string_view item) {
    CheckIndex(index, GetCount());
    std::string& place = FItems[static_cast<std::size_t>(index)];
    if (place == item) return;
    place = item;
    Changed();
}

int TStrings::Add(std::string_view item) {
    Insert(GetCount(), item);
    return GetCount() - 1;
}

void TStrings::Insert(int index, std::string_view item) {
    CheckIndex(index, GetCount() + 1);
    FItems.insert(FItems.begin() + index, std::string(item));
    Changed();
}

void TStrings::Delete(int index) {
    CheckIndex(index, GetCount());
    FItems.erase(FItems.begin() + index);
    Changed();
}

void TStrings::Clear() { SetItems({}); }

int TStrings::IndexOf(std::string_view item) const {
    const auto found = std::find(FItems.begin(), FItems.end(), item);
    return found == FItems.end() ? -1 : static_cast<int>(found - FItems.begin());
}

void TStrings::Assign(const TPersistent& source) {
    if (const auto* other = dynamic_cast<const TStrings*>(&source))
        SetItems(other->FItems);
    else
        TPersistent::Assign(source);
}

void TStrings::SetItems(std::vector<std::string> items) {
    if (items == FItems) return;
    FItems = std::move(items);
    Changed();
}

std::string TStrings::GetText() const {
    std::string text;
    for (const std::string& item : FItems)
        text.append(item).append("\r\n");
    return text;
}

void TStrings::SetText(std::string_view text) { SetItems(SplitLines(text)); }

void TStrings::EndUpdate() {
    assert(FUpdateCount > 0);
    if (--FUpdateCount == 0 && std::exchange(FHasChanged, false)) Raise(FOnChange, *this);
}

void TStrings::CheckIndex(int index, int count) const {
    if (index >= 0 && index < count) return;
    throw EArgumentOutOfRange("index " + std::to_string(index) + " outside a list of " +
                              std::to_string(GetCount()) + " items");
}

void TStrings::Changed() {
    FHasChanged = true;
    if (FUpdateCount > 0) return;
    FHasChanged = false;
    Raise(FOnChange, *this);
}

} // namespace Vz
