#include "runtime/Utf8.h"
#include "svg/Document.h"
#include "svg/TextElements.h"

namespace Vz {

namespace {

/// Appends a text with XML's escapes. What XML 1.0 cannot hold (its section 2.2) is left out: control characters, and
/// all from the first byte on that is no UTF-8.
void AppendEscaped(std::string& out, std::string_view text, bool inAttribute) {
    text = text.substr(0, FindBadUtf8(text));
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += inAttribute ? "&quot;" : "\"";
            break;
        case '\n':
        case '\t':
        case '\r':
            // White space of an attribute would come back as blanks.
            if (inAttribute || c == '\r')
                out += "&#" + std::to_string(static_cast<int>(c)) + ";";
            else
                out += c;
            break;
        default:
            if (static_cast<unsigned char>(c) >= ' ') out += c;
            break;
        }
    }
}

/// Writes elements as text, two blanks a level; inside of text no blank is added.
class TSVGWriter final : public IAttributeSink {
public:
    void Write(const TSVGElement& element, int depth);
    std::string Take() { return std::move(FOut); }

    void Put(std::string_view name, std::string_view value) override {
        FOut += ' ';
        FOut += name;
        FOut += "=\"";
        AppendEscaped(FOut, value, true);
        FOut += '"';
    }

private:
    void WriteStyle(const TSVGElement& element);

    std::string FOut;
};

void TSVGWriter::WriteStyle(const TSVGElement& element) {
    // Parts of filters may have an attribute of the same name and another meaning.
    const bool isFilterPart = element.GetTag() == TSVGTag::FilterPart;
    std::string style;
    for (const auto& [property, value] : element.GetStyle().Entries()) {
        const std::string_view name = GetStylePropertyName(property);
        const std::string text = StyleValueText(property, value);
        if (property == TSVGStyleProperty::WhiteSpace)
            Put("xml:space", text.starts_with("pre") ? "preserve" : "default");
        else if (IsPresentationAttribute(property) && !isFilterPart)
            Put(name, text);
        else
            style += (style.empty() ? "" : ";") + std::string(name) + ":" + text;
    }
    if (!style.empty()) Put("style", style);
}

void TSVGWriter::Write(const TSVGElement& element, int depth) {
    if (const auto* const characters = dynamic_cast<const TSVGCharacters*>(&element)) {
        AppendEscaped(FOut, characters->GetText(), false);
        return;
    }
    const bool inText = dynamic_cast<const TSVGCustomText*>(&element) != nullptr;
    const bool belowText = dynamic_cast<const TSVGCustomText*>(element.GetParent()) != nullptr;
    const std::string indent =
        belowText ? std::string() : std::string(static_cast<std::size_t>(depth) * 2, ' ');
    const std::string_view lineEnd = belowText ? "" : "\n";
    const std::string name(element.GetTag() == TSVGTag::TRef ? "tspan" : element.GetTagName());

    FOut += indent + "<" + name;
    if (depth == 0) {
        Put("xmlns", "http://www.w3.org/2000/svg");
        Put("xmlns:xlink", "http://www.w3.org/1999/xlink");
    }
    if (!element.GetId().empty()) Put("id", element.GetId());
    element.WriteAttributes(*this);
    WriteStyle(element);

    const auto* const plain = dynamic_cast<const TSVGPlainElement*>(&element);
    const std::string_view text = plain ? std::string_view(plain->GetText()) : std::string_view();
    if (element.GetChildCount() == 0 && text.empty()) {
        FOut += "/>";
        FOut += lineEnd;
        return;
    }
    FOut += '>';
    AppendEscaped(FOut, text, false);
    if (!inText && text.empty()) FOut += '\n';
    for (const auto& child : element.Children())
        Write(*child, depth + 1);
    if (!inText && text.empty()) FOut += indent;
    FOut += "</" + name + ">";
    FOut += lineEnd;
}

} // namespace

std::string TSVGDocument::WriteText() const {
    TSVGWriter writer;
    writer.Write(*this, 0);
    return writer.Take();
}

} // namespace Vz
