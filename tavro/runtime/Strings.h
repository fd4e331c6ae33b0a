#pragma once

#include "tavro/runtime/Events.h"
#include "tavro/runtime/Object.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// A list of UTF-8 texts that tells its owner of changes: at once, or, between BeginUpdate and the outermost
/// EndUpdate, once at the end where anything changed. Indexes count from 0; one outside the list raises
/// EArgumentOutOfRange.
class TStrings : public TPersistent {
public:
    TStrings() = default;
    explicit TStrings(std::initializer_list<std::string_view> items);

    /// The items as they are, in order.
    int GetCount() const { return static_cast<int>(FItems.size()); }
    const std::vector<std::string>& GetItems() const { return FItems; }
    const std::string& GetItem(int index) const;
    /// Replaces one item; nothing happens when it is equal.
    void SetItem(int index, std::string_view item);

    /// Appends `item` and returns its index.
    int Add(std::string_view item);
    /// Puts `item` before the one at `index`, which may also be the count.
    void Insert(int index, std::string_view item);
    /// Takes the item out; those behind it move up.
    void Delete(int index);
    /// Removes all items; nothing happens when there are none.
    void Clear();
    /// Index of the first item equal to `item` (exact case), or -1.
    int IndexOf(std::string_view item) const;

    /// Replaces all items; nothing happens when the lists are equal. Raises EInvalidCast for another class.
    void Assign(const TPersistent& source) override;
    /// Replaces all items; nothing happens when they are equal.
    void SetItems(std::vector<std::string> items);
    /// True when both hold the same items in the same order (exact case).
    bool Equals(const TStrings& other) const { return FItems == other.FItems; }

    /// All items as one text, each followed by CR LF.
    std::string GetText() const;
    /// Splits `text` at every CR, LF or CR LF; what follows the last of them is an item when it is not empty.
    void SetText(std::string_view text);

    /// Opens and closes a group of changes; nests. An EndUpdate too many is the caller's mistake (asserted).
    void BeginUpdate() { ++FUpdateCount; }
    void EndUpdate();

    /// Raised after each change or group of changes, with the list as sender. Empty by default.
    const TNotifyEvent& GetOnChange() const { return FOnChange; }
    void SetOnChange(TNotifyEvent event) { FOnChange = std::move(event); }

private:
    void CheckIndex(int index, int count) const;
    void Changed();

    std::vector<std::string> FItems;
    TNotifyEvent FOnChange;
    int FUpdateCount = 0;
    bool FHasChanged = false;
};

} // namespace Vz
