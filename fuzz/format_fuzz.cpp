// Number pictures: the first line is a number, the rest the picture. A picture is refused for every number or
// for none, and what it shows is bounded by its own length.
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormatFloat.h"

#include <charconv>
#include <cstdlib>
#include <optional>
#include <string>

using namespace Vz;

namespace {

std::optional<std::string> Shown(std::string_view picture, double value) {
    try {
        return FormatFloat(picture, value);
    } catch (const EConvertError&) {
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return 0;
    double value = 0;
    std::from_chars(text.data(), text.data() + end, value);
    const std::string_view picture = text.substr(end + 1);

    const auto shown = Shown(picture, value);
    for (const double other : {0.0, 1.0, -1.0, 123.45, -value})
        if (Shown(picture, other).has_value() != shown.has_value()) std::abort();
    // Each place shows at most one digit and one separator; 18 more digits, sign and exponent come on top.
    if (shown && shown->size() > 2 * picture.size() + 64) std::abort();
    return 0;
}
