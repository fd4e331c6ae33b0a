#pragma once

#include <expat.h>

#include <string_view>

namespace Bench {

/// What reading is measured in (E): expat takes the text apart, and nothing is done with it.
inline void ReadWithExpat(std::string_view text) {
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
    XML_ParserFree(parser);
}

} // namespace Bench
