#include "tavro/runtime/Resources.h"

#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>

namespace Vz {

namespace {

using TTexts = std::map<std::string, std::string, std::less<>>;

/// What programs added.
struct TAdded {
    std::shared_mutex Mutex;
    TTexts Texts; ///< grows only, so that views of it stay valid

    static TAdded& Get() {
        static TAdded& added = *std::make_unique<TAdded>().release(); // outlives all who hold a view
        return added;
    }
};

std::optional<std::string_view> FindIn(const TTexts& texts, std::string_view name) {
    for (const TResource& resource : GetResourceTable())
        if (resource.Name == name) return resource.Data;
    if (const auto found = texts.find(name); found != texts.end()) return found->second;
    return std::nullopt;
}

/// All or none.
void Add(TTexts&& texts) {
    TAdded& added = TAdded::Get();
    const std::unique_lock lock(added.Mutex);
    for (const auto& [name, data] : texts) {
        const auto known = FindIn(added.Texts, name);
        if (known && *known != data)
            throw EInvalidOperation("there is a resource \"" + name + "\" already, with another content");
    }
    std::erase_if(texts, [&](const auto& text) { return FindIn(added.Texts, text.first).has_value(); });
    added.Texts.merge(texts);
}

bool IsSvg(const std::filesystem::path& file) {
    std::string ending = file.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return ending == ".svg";
}

} // namespace

void AddResource(std::string_view name, std::string_view data) {
    if (name.empty()) throw EArgumentOutOfRange("a resource needs a name");
    if (data.size() > MaxResourceSize)
        throw EArgumentOutOfRange("the resource \"" + std::string(name) + "\" has " +
                                  std::to_string(data.size()) + " bytes, more than " +
                                  std::to_string(MaxResourceSize));
    TTexts one;
    one.emplace(name, data);
    Add(std::move(one));
}

void AddResourceFolder(const std::filesystem::path& folder) {
    TTexts texts;
    std::error_code error;
    std::filesystem::directory_iterator file(folder, error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
        if (std::error_code unknown; !IsSvg(file->path()) || file->is_directory(unknown)) continue;
        const std::string text = ReadWholeFile(file->path(), MaxResourceSize);
        const auto [known, isNew] = texts.try_emplace(file->path().stem().string(), text);
        if (!isNew && known->second != text) // "a.svg" and "a.SVG"
            throw EInvalidOperation("there is a resource \"" + known->first +
                                    "\" already, with another content");
    }
    if (error) throw EReadError("the folder cannot be read: " + error.message(), {folder.string()});
    Add(std::move(texts));
}

std::optional<std::string_view> FindResource(std::string_view name) {
    TAdded& added = TAdded::Get();
    const std::shared_lock lock(added.Mutex);
    return FindIn(added.Texts, name);
}

std::string_view GetResource(std::string_view name) {
    if (const auto data = FindResource(name)) return *data;
    throw EResNotFound("resource \"" + std::string(name) + "\" not found");
}

} // namespace Vz
