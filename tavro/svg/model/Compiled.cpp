#include "tavro/svg/model/CompiledInternal.h"

#include "tavro/svg/model/KeptByHashInternal.h"

namespace Vz {

namespace {

void AddPaint(THash& hash, const TComputedPaint& paint) {
    hash.Add(std::uint64_t{paint.Color} << 8 | static_cast<std::uint64_t>(paint.Kind));
    if (paint.Server) hash.Add(std::hash<std::string>()(*paint.Server));
}

/// The value that is kept already and equal, else this one, which others may then find.
template <class T>
std::shared_ptr<const T> KeepOnce(TKeptByHash<const T>& kept, const THash& hash, T&& value) {
    auto found =
        kept.Find(hash.Get(), [&](const std::shared_ptr<const T>& other) { return *other == value; });
    if (!found) {
        // Not make_shared: what is gone must not hold memory for as long as it has an entry.
        found.reset(new T(std::forward<T>(value)));
        kept.Add(hash.Get(), found);
    }
    return found;
}

} // namespace

std::shared_ptr<const TComputedStyle> TSVGGraphicElement::TCompiled::KeepStyle(const TComputedStyle& style) {
    thread_local TKeptByHash<const TComputedStyle> kept;
    THash hash;
    AddPaint(hash, style.Fill);
    AddPaint(hash, style.Stroke);
    hash.Add(style.FillOpacity).Add(style.StrokeOpacity).Add(style.StrokeWidth);
    return KeepOnce(kept, hash, TComputedStyle(style));
}

std::shared_ptr<const TSVGGraphicElement::TCompiled> TSVGGraphicElement::TCompiled::Keep(TCompiled value) {
    thread_local TKeptByHash<const TCompiled> kept;
    THash hash;
    hash.Add(std::bit_cast<std::uintptr_t>(value.Style.get())).Add(value.Opacity);
    hash.Add(std::uint64_t{value.Enabled} << 1 | std::uint64_t{value.HasList});
    for (const TDrawStep& step : value.List.Steps)
        for (const double number : step.Figures->Numbers)
            hash.Add(number);
    return KeepOnce(kept, hash, std::move(value));
}

} // namespace Vz
