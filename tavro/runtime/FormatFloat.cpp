#include "tavro/runtime/FormatFloat.h"

#include "tavro/runtime/DecimalInternal.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Utf8.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Vz {

namespace {

constexpr int SignificantDigits = 18;
constexpr int GeneralDigits = 15;
constexpr int LongestExponent = 4;

enum class TMark { Optional, Required, Point, Exponent, Literal };

struct TToken {
    TMark Mark;
    std::string_view Text; ///< of a literal
};

struct TSection {
    std::vector<TToken> Tokens;
    int WholePlaces = 0; ///< digits' places before and after the point
    int FractionPlaces = 0;
    int WholeRequired = 0; ///< digits always shown before and after the point
    int FractionRequired = 0;
    bool Grouped = false;
    bool HasPoint = false;
    bool Scientific = false;
    char ExponentMark = 'E';
    bool PlusShown = false;
    int ExponentPlaces = 0;

    bool IsEmpty() const { return Tokens.empty(); }
};

/// Reads a picture, and finds everything that is wrong with it before anything is formatted.
class TPictureReader {
public:
    explicit TPictureReader(std::string_view text)
        : FText(text) {}

    /// The sections, of which FCount are there.
    std::array<TSection, 3> Read() {
        while (FAt < FText.size())
            ReadOne();
        return FSections;
    }

private:
    TSection& Section() { return FSections[FCount - 1]; }

    [[noreturn]] void Fail(const std::string& what, std::size_t at) const {
        throw EConvertError("number picture " + QuotedForMessage(FText) + ": " + what + " at character " +
                            std::to_string(at + 1));
    }

    void ReadOne() {
        switch (const char c = FText[FAt]) {
        case '0':
        case '#':
            return ReadPlace(c == '0');
        case '.':
            return ReadPoint();
        case ',':
            // Said by the presence of a token only where there is nothing else: a lone comma is a picture.
            Section().Grouped = true;
            return Take(TMark::Literal, 0, 1);
        case ';':
            if (FCount == FSections.size()) Fail("fourth section", FAt);
            ++FCount;
            ++FAt;
            return;
        case '\'':
        case '"':
            return ReadQuoted(c);
        default:
            return IsExponent() ? ReadExponent() : Take(TMark::Literal, 1, 1);
        }
    }

    void Take(TMark mark, std::size_t shown, std::size_t length) {
        Section().Tokens.push_back({mark, FText.substr(FAt, shown)});
        FAt += length;
    }

    void ReadPlace(bool required) {
        TSection& section = Section();
        if (section.Scientific) Fail("digit behind the exponent", FAt);
        if (section.HasPoint) {
            ++section.FractionPlaces;
            if (required) section.FractionRequired = section.FractionPlaces;
        } else {
            ++section.WholePlaces;
            if (required || section.WholeRequired > 0) ++section.WholeRequired;
        }
        Take(required ? TMark::Required : TMark::Optional, 0, 1);
    }

    void ReadPoint() {
        if (Section().HasPoint) Fail("second decimal point", FAt);
        if (Section().Scientific) Fail("decimal point behind the exponent", FAt);
        Section().HasPoint = true;
        Take(TMark::Point, 0, 1);
    }

    void ReadQuoted(char quote) {
        const std::size_t end = FText.find(quote, FAt + 1);
        if (end == std::string_view::npos) Fail("quote that is not closed", FAt);
        ++FAt;
        const std::size_t length = end - FAt;
        Take(TMark::Literal, length, length + 1);
    }

    bool IsExponent() const {
        const std::string_view mark = FText.substr(FAt, 2);
        return mark == "E+" || mark == "E-" || mark == "e+" || mark == "e-";
    }

    void ReadExponent() {
        TSection& section = Section();
        const std::size_t first = FAt + 2;
        const std::size_t zeros = std::min(FText.find_first_not_of('0', first), FText.size()) - first;
        if (section.Scientific) Fail("second exponent", FAt);
        if (section.WholePlaces + section.FractionPlaces == 0) Fail("exponent before any digit", FAt);
        if (zeros == 0) Fail("exponent without a zero", FAt);
        if (zeros > LongestExponent) Fail("exponent of more than four zeros", FAt);
        section.Scientific = true;
        section.ExponentMark = FText[FAt];
        section.PlusShown = FText[FAt + 1] == '+';
        section.ExponentPlaces = static_cast<int>(zeros);
        Take(TMark::Exponent, 0, 2 + zeros);
    }

    std::string_view FText;
    std::size_t FAt = 0;
    std::array<TSection, 3> FSections;
    std::size_t FCount = 1;
};

/// The digits that a section shows, before and after the point, and the exponent beside them.
struct TShown {
    std::string Whole;
    std::string Fraction;
    int Exponent = 0;
};

/// Spreads a rounded number over the section's places.
TShown Spread(const TDecimal& decimal, const TSection& section) {
    TShown shown;
    int point = decimal.Exponent;
    if (section.Scientific && !decimal.Digits.empty()) {
        point = section.WholePlaces;
        shown.Exponent = decimal.Exponent - point;
    }
    const std::string& digits = decimal.Digits;
    const auto whole = static_cast<std::size_t>(std::max(point, 0));
    shown.Whole = digits.substr(0, whole);
    if (!digits.empty()) shown.Whole.append(whole - shown.Whole.size(), '0');
    if (digits.size() > whole)
        shown.Fraction =
            std::string(static_cast<std::size_t>(std::max(-point, 0)), '0') + digits.substr(whole);
    const auto required = static_cast<std::size_t>(section.WholeRequired);
    if (shown.Whole.size() < required) shown.Whole.insert(0, required - shown.Whole.size(), '0');
    const auto behind = static_cast<std::size_t>(section.FractionRequired);
    if (shown.Fraction.size() < behind) shown.Fraction.append(behind - shown.Fraction.size(), '0');
    return shown;
}

/// Writes a section's tokens with the digits in their places.
class TSectionWriter {
public:
    TSectionWriter(const TSection& section, const TShown& shown, const TFormatSettings& settings)
        : FSection(section)
        , FShown(shown)
        , FSettings(settings)
        , FPlacesLeft(static_cast<std::size_t>(section.WholePlaces)) {}

    std::string Write() {
        bool behindPoint = false;
        for (const TToken& token : FSection.Tokens) {
            switch (token.Mark) {
            case TMark::Literal:
                FText += token.Text;
                break;
            case TMark::Point:
                behindPoint = true;
                WriteWhole(0);
                if (!FShown.Fraction.empty()) FText += FSettings.DecimalSeparator;
                break;
            case TMark::Exponent:
                WriteExponent();
                break;
            default:
                if (behindPoint)
                    WriteFraction();
                else
                    WriteWhole(--FPlacesLeft);
            }
        }
        return FText;
    }

private:
    /// Writes digits before the point until as many are left as there are places left.
    void WriteWhole(std::size_t left) {
        const std::string& whole = FShown.Whole;
        for (; FWhole + left < whole.size(); ++FWhole) {
            FText += whole[FWhole];
            const std::size_t behind = whole.size() - FWhole - 1;
            if (FSection.Grouped && behind > 0 && behind % 3 == 0) FText += FSettings.ThousandSeparator;
        }
    }

    void WriteFraction() {
        if (FFraction < FShown.Fraction.size()) FText += FShown.Fraction[FFraction++];
    }

    void WriteExponent() {
        FText += FSection.ExponentMark;
        if (FShown.Exponent < 0)
            FText += '-';
        else if (FSection.PlusShown)
            FText += '+';
        const std::string digits = std::to_string(std::abs(FShown.Exponent));
        const auto places = static_cast<std::size_t>(FSection.ExponentPlaces);
        FText.append(places > digits.size() ? places - digits.size() : 0, '0') += digits;
    }

    const TSection& FSection;
    const TShown& FShown;
    const TFormatSettings& FSettings;
    std::string FText;
    std::size_t FPlacesLeft;
    std::size_t FWhole = 0;
    std::size_t FFraction = 0;
};

std::string General(double value, const TFormatSettings& settings) {
    TDecimal decimal = RoundedDecimal(value, SignificantDigits);
    RoundDigits(decimal, GeneralDigits);
    if (decimal.Digits.empty()) decimal.Negative = false;
    return decimal.Exponent > -5 && decimal.Exponent <= GeneralDigits
               ? FixedText(decimal, settings.DecimalSeparator)
               : ScientificText(decimal, settings.DecimalSeparator, 'E');
}

} // namespace

std::string FormatFloat(std::string_view format, double value, const TFormatSettings& settings) {
    const auto sections = TPictureReader(format).Read();
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-INF" : "INF";

    const auto sectionOr0 = [&](std::size_t i) { return sections[i].IsEmpty() ? std::size_t{0} : i; };
    std::size_t chosen = value < 0 ? sectionOr0(1) : value > 0 ? 0 : sectionOr0(2);
    const TSection* section = &sections[chosen];
    TDecimal decimal = RoundedDecimal(value, SignificantDigits);
    if (section->IsEmpty() || (!section->Scientific && decimal.Exponent > SignificantDigits))
        return General(value, settings);

    RoundDigits(decimal,
                section->FractionPlaces + (section->Scientific ? section->WholePlaces : decimal.Exponent));
    if (decimal.Digits.empty()) {
        chosen = sectionOr0(2);
        section = &sections[chosen];
        if (section->IsEmpty()) return "0";
    }
    const bool minus = decimal.Negative && !decimal.Digits.empty() && chosen == 0;
    const TShown shown = Spread(decimal, *section);
    return (minus ? "-" : "") + TSectionWriter(*section, shown, settings).Write();
}

} // namespace Vz
