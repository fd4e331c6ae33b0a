#include "tavro/runtime/FormTextInternal.h"

#include "tavro/runtime/Component.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/Utf8.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace Vz {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsWordChar(char c) { return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

/// Offset of the first byte that cannot stand in a form's text at all: broken UTF-8, control characters other
/// than tab, LF, and CR before LF.
std::size_t FindBadByte(std::string_view text) {
    const std::size_t broken = FindBadUtf8(text);
    const std::string_view whole = text.substr(0, broken);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const char c = whole[i];
        const bool newLine = c == '\n' || (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n');
        if ((static_cast<unsigned char>(c) < ' ' && c != '\t' && !newLine) || c == '\x7F') return i;
    }
    return broken;
}

/// Walks over the text and knows line and column. Ends in front of the first bad byte.
class TFormScanner {
public:
    TFormScanner(std::string_view text, std::string_view sourceName)
        : FSourceName(sourceName)
        , FText(text)
        , FBad(FindBadByte(text)) {
        if (FBad != std::string_view::npos) FText = text.substr(0, FBad);
        if (FText.starts_with("\xEF\xBB\xBF")) FAt = 3;
    }

    TFormPlace Place() const { return FPlace; }

    [[noreturn]] void Fail(const std::string& reason, TFormPlace place) const {
        throw EReadError(reason, {FSourceName, place.Line, place.Column});
    }

    /// The next character, or '\0' at the end of the text. The end in front of a bad byte is a fault.
    char Peek(std::size_t ahead = 0) const {
        if (FAt + ahead < FText.size()) return FText[FAt + ahead];
        if (FBad != std::string_view::npos && ahead == 0) Fail("broken UTF-8 or a control character", FPlace);
        return '\0';
    }

    char Next() {
        const char c = FText[FAt++];
        if (c == '\n')
            FPlace = {FPlace.Line + 1, 1};
        else if ((c & '\xC0') != '\x80') // columns count characters, not their later bytes
            ++FPlace.Column;
        return c;
    }

    bool Take(char c) {
        if (Peek() != c) return false;
        Next();
        return true;
    }

    /// Skips blanks and a comment up to the line's end.
    void SkipBlanks() {
        while (Peek() == ' ' || Peek() == '\t' || Peek() == '\r')
            Next();
        if (Peek() != '/' || Peek(1) != '/') return;
        while (Peek() != '\n' && Peek() != '\0')
            Next();
    }

    void SkipLines() {
        for (SkipBlanks(); Peek() == '\n'; SkipBlanks())
            Next();
    }

    /// After what must be the last on its line.
    void EndLine() {
        SkipBlanks();
        if (Peek() != '\n' && Peek() != '\0') Fail("the line should end here", FPlace);
    }

    /// Letters, digits, underscores and, for a property's path, dots.
    std::string Word(bool dots) {
        std::string word;
        while (IsWordChar(Peek()) || (dots && Peek() == '.'))
            word += Next();
        return word;
    }

private:
    std::string FSourceName;
    std::string_view FText;
    std::size_t FBad;
    std::size_t FAt = 0;
    TFormPlace FPlace;
};

class TFormParser {
public:
    TFormParser(std::string_view text, std::string_view sourceName)
        : FScanner(text, sourceName) {}

    void Parse(TFormObject& root) {
        FScanner.SkipLines();
        const TFormPlace place = FScanner.Place();
        if (FScanner.Word(false) != "object") FScanner.Fail("a form begins with 'object'", place);
        ParseObject(root, place, 1);
        FScanner.SkipLines();
        if (FScanner.Peek() != '\0')
            FScanner.Fail("nothing can follow the outermost object", FScanner.Place());
    }

private:
    using TNames = std::unordered_set<std::string>;

    /// The rest of an object, behind the word.
    void ParseObject(TFormObject& object, TFormPlace place, int depth) {
        object.Place = place;
        if (depth > MaxFormDepth)
            FScanner.Fail("objects nested deeper than " + std::to_string(MaxFormDepth), place);
        if (++FObjects > MaxFormObjects)
            FScanner.Fail("more than " + std::to_string(MaxFormObjects) + " objects", place);
        ParseHeader(object);
        TNames known;
        for (;;) {
            FScanner.SkipLines();
            const TFormPlace at = FScanner.Place();
            const std::string word = FScanner.Word(true);
            if (word == "end") return FScanner.EndLine();
            if (word == "object" && !IsAssignment())
                ParseObject(object.Objects.emplace_back(), at, depth + 1);
            else if (!word.empty())
                ParseProperty(object, word, at, known);
            else if (FScanner.Peek() == '\0')
                FScanner.Fail("'end' is missing for the object of line " + std::to_string(place.Line), at);
            else
                FScanner.Fail("a property, an object or 'end' is expected", at);
        }
    }

    bool IsAssignment() {
        FScanner.SkipBlanks();
        return FScanner.Peek() == '=';
    }

    void ParseHeader(TFormObject& object) {
        object.NamePlace = object.ClassPlace = Identifier(object.ClassName, "a name or a class");
        FScanner.SkipBlanks();
        if (FScanner.Take(':')) {
            object.Name = std::exchange(object.ClassName, {});
            object.ClassPlace = Identifier(object.ClassName, "a class");
        }
        FScanner.EndLine();
        object.HasClass = true;
    }

    TFormPlace Identifier(std::string& word, const std::string& expected) {
        FScanner.SkipBlanks();
        const TFormPlace place = FScanner.Place();
        word = FScanner.Word(false);
        if (!IsIdentifier(word)) FScanner.Fail(expected + " is expected", place);
        return place;
    }

    void ParseProperty(TFormObject& object, const std::string& path, TFormPlace place, TNames& known) {
        if (!object.Objects.empty()) FScanner.Fail("properties stand in front of the objects inside", place);
        if (!known.insert(path).second) FScanner.Fail(path + " is set twice", place);
        TFormProperty property{path, place, {}};
        FScanner.SkipBlanks();
        if (!FScanner.Take('=')) FScanner.Fail("'=' is expected", FScanner.Place());
        FScanner.SkipBlanks();
        property.Value.Place = FScanner.Place();
        ParseValue(property.Value);
        FScanner.EndLine();
        object.Properties.push_back(std::move(property));
    }

    void ParseValue(TFormValue& value) {
        const char first = FScanner.Peek();
        if (first == '\'' || first == '#') {
            value.Shape = TFormValue::Quoted;
            value.Text = ParseString();
        } else if (first == '(') {
            value.Shape = TFormValue::List;
            ParseList(value.Items);
        } else if (first == '[') {
            ParseSet(value.Text);
        } else {
            ParsePlain(value.Text);
            if (value.Text.empty()) FScanner.Fail("a value is expected", value.Place);
        }
    }

    /// 'text' and #code in any number and order, nothing between them.
    std::string ParseString() {
        std::string text;
        for (;;) {
            if (FScanner.Peek() == '#')
                ParseCode(text);
            else if (FScanner.Peek() == '\'')
                ParseQuoted(text);
            else
                return text;
        }
    }

    void ParseCode(std::string& text) {
        const TFormPlace place = FScanner.Place();
        FScanner.Next();
        char32_t code = 0;
        bool valid = IsDigit(FScanner.Peek());
        while (IsDigit(FScanner.Peek()))
            code = std::min<char32_t>(code * 10 + static_cast<char32_t>(FScanner.Next() - '0'), 0x110000);
        valid = valid && code < 0x110000 && (code < 0xD800 || code >= 0xE000);
        if (!valid) FScanner.Fail("the number of a character is expected after '#'", place);
        AppendUtf8(text, code);
    }

    void ParseQuoted(std::string& text) {
        const TFormPlace place = FScanner.Place();
        FScanner.Next();
        for (;;) {
            const char c = FScanner.Peek();
            if (c == '\n' || c == '\r' || c == '\0')
                FScanner.Fail("the string is not closed on its line", place);
            FScanner.Next();
            if (c == '\'' && !FScanner.Take('\'')) return;
            text += c;
        }
    }

    void ParseList(std::vector<std::string>& items) {
        const TFormPlace place = FScanner.Place();
        FScanner.Next();
        for (;;) {
            FScanner.SkipLines();
            const char c = FScanner.Peek();
            if (c == '\'' || c == '#')
                items.push_back(ParseString());
            else if (FScanner.Take(')'))
                return;
            else if (c == '\0')
                FScanner.Fail("the list is not closed", place);
            else
                FScanner.Fail("a string or ')' is expected", FScanner.Place());
        }
    }

    void ParseSet(std::string& text) {
        const TFormPlace place = FScanner.Place();
        for (;;) {
            FScanner.SkipLines();
            const char c = FScanner.Peek();
            if (c == '\0' || c == '=') FScanner.Fail("the set is not closed", place);
            text += FScanner.Next();
            if (c == ']') return;
            const char next = FScanner.Peek();
            if (IsWordChar(c) && !IsWordChar(next) && next != ',' && next != ']') text += ' ';
        }
    }

    /// Up to a blank, a comment or the line's end.
    void ParsePlain(std::string& text) {
        for (char c = FScanner.Peek(); c > ' ' || c < '\0'; c = FScanner.Peek()) {
            if (c == '/' && FScanner.Peek(1) == '/') return;
            text += FScanner.Next();
        }
    }

    TFormScanner FScanner;
    int FObjects = 0;
};

} // namespace

TFormText ParseForm(std::string_view text, std::string_view sourceName) {
    TFormText form;
    try {
        if (text.size() > MaxFormSize)
            throw EReadError("the form is longer than " + std::to_string(MaxFormSize) + " bytes",
                             {std::string(sourceName)});
        TFormParser(text, sourceName).Parse(form.Root);
    } catch (const EReadError&) {
        form.Fault = std::current_exception();
    }
    return form;
}

} // namespace Vz
