#pragma once

#include "tavro/runtime/Events.h"
#include "tavro/runtime/Object.h"
#include "tavro/runtime/Value.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Vz {

class TSVGGraphicElement;
class TVZGPCanvas;

enum class TSVGFontStyle : std::uint8_t { fsArtwork, fsNormal, fsItalic };

template <> struct EnumNames<TSVGFontStyle> {
    static constexpr std::string_view Name = "TSVGFontStyle";
    static constexpr std::string_view Members[] = {"fsArtwork", "fsNormal", "fsItalic"};
};

/// The settings of a font that are applied to text elements. Each may be left open: then the artwork's own
/// holds.
class TSVGFont : public TPersistent {
public:
    static constexpr std::string_view TypeName = "TSVGFont";

    TSVGFont() = default;
    /// A font as one would make it for a canvas; the canvas is not kept.
    explicit TSVGFont(const TVZGPCanvas&) {}
    /// What the element's own style sets of a font; the rest is open.
    explicit TSVGFont(const TSVGGraphicElement& element);

    /// A CSS family list. Default "": the artwork's.
    const std::string& GetFamily() const { return FFamily; }
    void SetFamily(std::string_view value);
    /// Height of the em in artwork units. Default 0: the artwork's. Negative and not finite values are
    /// ignored.
    float GetSize() const { return FSize; }
    void SetSize(float value);
    /// 1..1000, 400 normal, 700 bold. Default 0: the artwork's. Clamped to 0..1000.
    std::int32_t GetWeight() const { return FWeight; }
    void SetWeight(std::int32_t value);
    /// Default fsArtwork: the artwork's.
    TSVGFontStyle GetStyle() const { return FStyle; }
    void SetStyle(TSVGFontStyle value);
    /// True where it leaves everything open.
    bool IsOpen() const {
        return FFamily.empty() && FSize == 0 && FWeight == 0 && FStyle == TSVGFontStyle::fsArtwork;
    }

    /// Copies all settings, with one OnChange where any differs. Raises EInvalidCast where source is no
    /// font.
    void Assign(const TPersistent& source) override;
    std::span<const TProp> GetPropTable() const override;

    /// Raised after each change of a setting.
    TNotifyEvent OnChange;

private:
    template <class T, class U> void Change(T& field, const U& value);

    std::string FFamily;
    float FSize = 0;
    std::int32_t FWeight = 0;
    TSVGFontStyle FStyle = TSVGFontStyle::fsArtwork;
};

} // namespace Vz
