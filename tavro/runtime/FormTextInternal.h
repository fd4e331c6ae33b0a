#pragma once

#include "tavro/runtime/Exceptions.h"

#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// Line and column, both from 1.
struct TFormPlace {
    int Line = 1;
    int Column = 1;
};

/// What stands behind an equals sign.
struct TFormValue {
    enum TShape { Plain, Quoted, List };

    TShape Shape = Plain;
    TFormPlace Place;
    std::string Text;               ///< as it stands, or without quotes and escapes
    std::vector<std::string> Items; ///< of a list
};

struct TFormProperty {
    std::string Path;
    TFormPlace Place;
    TFormValue Value;
};

struct TFormObject {
    TFormPlace Place; ///< of the word `object`
    std::string Name;
    TFormPlace NamePlace;
    std::string ClassName;
    TFormPlace ClassPlace;
    bool HasClass = false; ///< false when the text broke off before
    std::vector<TFormProperty> Properties;
    std::vector<TFormObject> Objects;
};

/// A form's text taken apart: everything in front of the first fault in its form, and this fault, if any.
struct TFormText {
    TFormObject Root;
    std::exception_ptr Fault; ///< an EReadError with its place
};

TFormText ParseForm(std::string_view text, std::string_view sourceName);

} // namespace Vz
