// Form files: whatever the text, reading either makes components or raises one of the library's own
// exceptions; and what was made is written to a text that reads back to the same text.
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/Props.h"
#include "tests/unit/runtime/TestComponents.h"

#include <cstdlib>

using namespace Vz;

namespace {

/// The component's text, or nothing where it holds a value that no form can hold.
std::string TextOf(const TComponent& component) {
    try {
        return WriteForm(component);
    } catch (const EWriteError&) {
        return {};
    }
}

void CheckReadsBack(const std::string& text) {
    if (!text.empty() && WriteForm(*ReadForm(text)) != text) std::abort();
}

void ReadIntoExisting(std::string_view text) {
    const auto form = TTestForm::Create();
    TTestGauge::Create(*form).SetName("Speed");
    form->RefusedWidth = 7;
    const std::string before = WriteForm(*form);
    try {
        ReadFormInto(*form, text);
    } catch (const EVZError&) {
        if (WriteForm(*form) != before) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const TTestClasses classes;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        CheckReadsBack(TextOf(*ReadForm(text, "fuzz.form")));
    } catch (const EVZError& error) {
        if (error.GetPlace().Name != "fuzz.form") std::abort();
    }
    ReadIntoExisting(text);
    return 0;
}
