#include "tavro/graphics/PathData.h"

#include "tavro/graphics/NumberText.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace Vz {
namespace {

/// One letter of the grammar.
struct TCommand {
    char Letter; ///< the absolute form
    TVerb Verb;
    const char* Form; ///< a number for each letter: x and y of a point, X or Y alone, n plain, f a flag
};
constexpr TCommand Commands[] = {
    {'M', TVerb::Move, "xy"},   {'L', TVerb::Line, "xy"},      {'H', TVerb::Line, "X"},
    {'V', TVerb::Line, "Y"},    {'C', TVerb::Cubic, "xyxyxy"}, {'S', TVerb::Cubic, "xyxy"},
    {'Q', TVerb::Quad, "xyxy"}, {'T', TVerb::Quad, "xy"},      {'A', TVerb::Arc, "nnnffxy"},
    {'Z', TVerb::Close, ""},
};

constexpr std::size_t LetterCount = 128;

/// The places of the commands by their letters, of both forms; NoCommand elsewhere.
constexpr std::uint8_t NoCommand = 255;
constexpr auto CommandsByLetter = [] {
    std::array<std::uint8_t, LetterCount> places{};
    places.fill(NoCommand);
    for (std::size_t i = 0; i < std::size(Commands); ++i)
        for (const char form : {0, 'a' - 'A'}) {
            const auto letter = static_cast<unsigned char>(Commands[i].Letter + form);
            places[letter] = static_cast<std::uint8_t>(i);
        }
    return places;
}();

const TCommand* FindCommand(char letter) {
    const auto place = static_cast<unsigned char>(letter);
    if (place >= LetterCount || CommandsByLetter[place] == NoCommand) return nullptr;
    return &Commands[CommandsByLetter[place]];
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

/// Reads path data (SVG 1.1, 8.3.9) into figures, up to the first fault. Steps with numbers beyond double's
/// range are passed over.
class TPathReader {
public:
    TPathReader(std::string_view text, TFigures& figures)
        : FBegin(text.data())
        , FText(FBegin)
        , FEnd(FBegin + text.size())
        , FFigures(figures) {}

    /// True at the end, false at a fault, which Reason and Offset then tell.
    bool Read() {
        for (SkipBlanks(); FText != FEnd; SkipBlanks()) {
            const TCommand* const command = FindCommand(*FText);
            if (command == nullptr) return Fail("a command letter was expected");
            if (!FHasMoved && command->Verb != TVerb::Move) return Fail("path data begins with M or m");
            FHasMoved = true;
            const bool isRelative = *FText++ >= 'a';
            SkipBlanks();
            if (!ReadSteps(*command, isRelative)) return false;
        }
        return true;
    }

    const char* Reason() const { return FReason; }
    std::size_t Offset() const { return static_cast<std::size_t>(FText - FBegin); }

private:
    bool Fail(const char* reason) {
        FReason = reason;
        return false;
    }

    void SkipBlanks() {
        while (FText != FEnd && IsBlank(*FText))
            ++FText;
    }

    /// True where a comma was passed.
    bool SkipSeparator() {
        SkipBlanks();
        if (FText == FEnd || *FText != ',') return false;
        ++FText;
        SkipBlanks();
        return true;
    }

    bool StartsNumber() const {
        return FText != FEnd &&
               ((*FText >= '0' && *FText <= '9') || *FText == '.' || *FText == '-' || *FText == '+');
    }

    bool ReadSteps(const TCommand& command, bool isRelative) {
        if (command.Verb == TVerb::Close) {
            AddClose();
            return true;
        }
        const TCommand* step = &command;
        bool hasComma = false;
        do {
            double numbers[7];
            if (!ReadNumbers(*step, isRelative, numbers)) return false;
            Add(*step, numbers);
            // Pairs that follow a moveto's first are linetos.
            if (step->Verb == TVerb::Move) step = &Commands[1];
            hasComma = SkipSeparator();
        } while (hasComma || StartsNumber());
        return true;
    }

    bool ReadNumbers(const TCommand& command, bool isRelative, double* numbers) {
        for (const char* form = command.Form; *form != '\0'; ++form, ++numbers) {
            if (form != command.Form) SkipSeparator();
            if (*form == 'f') {
                if (FText == FEnd || (*FText != '0' && *FText != '1'))
                    return Fail("a flag, 0 or 1, was expected");
                *numbers = *FText++ - '0';
                continue;
            }
            const char* const end = ScanNumber(FText, FEnd, *numbers);
            if (end == FText) return Fail("a number was expected");
            FText = end;
            if (isRelative && *form != 'n')
                *numbers += *form == 'x' || *form == 'X' ? FCurrent.X : FCurrent.Y;
        }
        return true;
    }

    void Add(const TCommand& command, double* n) {
        switch (command.Letter) {
        case 'H':
            n[1] = FCurrent.Y;
            return AddStep(TVerb::Line, n);
        case 'V':
            n[1] = n[0];
            n[0] = FCurrent.X;
            return AddStep(TVerb::Line, n);
        case 'S':
        case 'T': {
            const TPointD control = Reflected(command.Verb);
            std::copy_backward(n, n + NumberCount(command.Verb) - 2, n + NumberCount(command.Verb));
            n[0] = control.X;
            n[1] = control.Y;
            break;
        }
        case 'A':
            n[0] = std::abs(n[0]);
            n[1] = std::abs(n[1]);
            break;
        default:
            break;
        }
        AddStep(command.Verb, n);
    }

    /// The last control point seen from the other side of the current point, where the step before was of
    /// this kind.
    TPointD Reflected(TVerb verb) const {
        if (FLast != verb) return FCurrent;
        return {2 * FCurrent.X - FControl.X, 2 * FCurrent.Y - FControl.Y};
    }

    void AddStep(TVerb verb, const double* numbers) {
        FLast = TVerb::Close;
        const double* const end = numbers + NumberCount(verb);
        if (!std::all_of(numbers, end, [](double n) { return std::isfinite(n); })) return;
        // Only where the first moveto was passed over.
        if (FFigures.IsEmpty() && verb != TVerb::Move) {
            FCurrent = FStart = {end[-2], end[-1]};
            return FFigures.MoveTo(end[-2], end[-1]);
        }
        FFigures.Verbs.push_back(verb);
        FFigures.Numbers.insert(FFigures.Numbers.end(), numbers, end);
        FCurrent = {end[-2], end[-1]};
        FLast = verb;
        if (verb == TVerb::Move) FStart = FCurrent;
        if (verb == TVerb::Cubic || verb == TVerb::Quad) FControl = {end[-4], end[-3]};
    }

    void AddClose() {
        FLast = TVerb::Close;
        if (FFigures.IsEmpty()) return;
        FFigures.Close();
        FCurrent = FStart;
    }

    const char* FBegin;
    const char* FText;
    const char* FEnd;
    TFigures& FFigures;
    const char* FReason = "";
    TPointD FStart, FCurrent, FControl;
    TVerb FLast = TVerb::Close;
    bool FHasMoved = false;
};

/// Lines and columns of a place in the text, both from 1, columns in characters.
TSourcePlace PlaceOf(std::string_view text, std::size_t offset) {
    TSourcePlace place{{}, 1, 1};
    for (const char c : text.substr(0, offset)) {
        if (c == '\n') {
            ++place.Line;
            place.Column = 1;
        } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            ++place.Column;
        }
    }
    return place;
}

/// Writes steps, each with as few characters as its numbers and the grammar allow.
class TPathWriter {
public:
    std::string Text;

    void Add(TVerb verb, const double* numbers) {
        if (verb != FVerb || verb == TVerb::Move || verb == TVerb::Close) {
            Text += "MLQCAZ"[static_cast<int>(verb)];
            FNeedsBlank = false;
        }
        FVerb = verb;
        for (int i = 0; i < NumberCount(verb); ++i)
            AddNumber(numbers[i]);
    }

private:
    void AddNumber(double number) {
        const std::size_t begin = Text.size();
        AppendNumber(Text, number);
        const char first = Text[begin];
        if (FNeedsBlank && first != '-' && !(first == '.' && FHasPoint)) Text.insert(begin, 1, ' ');
        FNeedsBlank = true;
        FHasPoint = Text.find_first_of(".e", begin) != std::string::npos;
    }

    TVerb FVerb = TVerb::Close;
    bool FNeedsBlank = false;
    bool FHasPoint =
        false; ///< the number before has a point or an exponent, so that a point begins another one
};

/// Figures while they are read. How many there will be is not known before; so all paths but the longest are
/// read into the same memory, and copied where they are to stay.
class TWorkFigures {
public:
    explicit TWorkFigures(std::size_t textSize)
        : FFigures(textSize <= MostKept ? FKept : FOwn) {
        FFigures.Clear();
    }
    TFigures& Get() { return FFigures; }

private:
    static constexpr std::size_t MostKept = 4096; ///< characters
    static thread_local TFigures FKept;
    TFigures FOwn;
    TFigures& FFigures;
};
thread_local TFigures TWorkFigures::FKept;

} // namespace

void TVZPathData::SetPathString(std::string_view text) {
    TWorkFigures work(text.size());
    TPathReader reader(text, work.Get());
    if (!reader.Read())
        throw EConvertError(std::string("path data: ") + reader.Reason(), PlaceOf(text, reader.Offset()));
    SetFigures(TFigures(work.Get()));
}

bool TVZPathData::SetPathStringTolerant(std::string_view text) {
    TWorkFigures work(text.size());
    const bool isWhole = TPathReader(text, work.Get()).Read();
    SetFigures(TFigures(work.Get()));
    return isWhole;
}

std::string TVZPathData::GetPathString() const {
    TPathWriter writer;
    const TFigures& figures = GetFigures();
    writer.Text.reserve(figures.Numbers.size() * 6);
    const double* numbers = figures.Numbers.data();
    for (const TVerb verb : figures.Verbs) {
        const double* const end = numbers + NumberCount(verb);
        if (std::all_of(numbers, end, [](double n) { return std::isfinite(n); })) writer.Add(verb, numbers);
        numbers = end;
    }
    return std::move(writer.Text);
}

void TVZPathData::Clear() { SetFigures({}); }

void TVZPathData::ApplyMatrix(const TMatrix& matrix) {
    const TAffine affine = TAffine::FromMatrix(matrix);
    if (!affine.IsFinite() || affine == TAffine{} || GetFigures().IsEmpty()) return;
    Edit().Transform(affine);
    Changed();
}

void TVZPathData::Append(const TVZPathData& other) {
    const std::shared_ptr<const TFigures> added = other.FFigures;
    if (!added || added->IsEmpty()) return;
    Edit().Append(*added);
    Changed();
}

void TVZPathData::Assign(const TPersistent& source) {
    const auto* const other = dynamic_cast<const TVZPathData*>(&source);
    if (other == nullptr) return TPersistent::Assign(source);
    if (other->FFigures == FFigures || other->GetFigures() == GetFigures()) return;
    FFigures = other->FFigures;
    Changed();
}

const TFigures& TVZPathData::NoFigures() {
    static const TFigures none;
    return none;
}

TFigures& TVZPathData::Edit() {
    if (!IsSoleHolder(FFigures)) FFigures = std::make_shared<TFigures>(GetFigures());
    return *FFigures;
}

void TVZPathData::SetFigures(TFigures figures) {
    if (figures == GetFigures()) return;
    figures.Verbs.shrink_to_fit();
    figures.Numbers.shrink_to_fit();
    FFigures = std::make_shared<TFigures>(std::move(figures));
    Changed();
}

void TVZPathData::BeginUpdate() { ++FUpdateCount; }

void TVZPathData::EndUpdate() {
    if (FUpdateCount == 0 || --FUpdateCount > 0 || !FChanged) return;
    Changed();
}

void TVZPathData::Changed() {
    FChanged = FUpdateCount > 0;
    if (!FChanged) Raise(OnChange, *this);
}

} // namespace Vz
