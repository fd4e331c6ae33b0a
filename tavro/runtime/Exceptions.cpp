#include "tavro/runtime/Exceptions.h"

#include <utility>

namespace Vz {

namespace {

std::string WithPlace(const TSourcePlace& place, const std::string& reason) {
    const std::string text = PlaceText(place);
    return text.empty() ? reason : text + ": " + reason;
}

} // namespace

Exception::Exception(std::string message)
    : FMessage(std::move(message)) {}

const char* Exception::what() const noexcept { return FMessage.c_str(); }

EVZError::EVZError(const std::string& reason, TSourcePlace place)
    : Exception(WithPlace(place, reason))
    , FReason(reason)
    , FPlace(std::move(place)) {}

std::string PlaceText(const TSourcePlace& place) {
    std::string text = place.Name;
    if (place.Line > 0) {
        if (text.empty()) text = "line";
        text += ':' + std::to_string(place.Line);
        if (place.Column > 0) text += ':' + std::to_string(place.Column);
    }
    return text;
}

} // namespace Vz
