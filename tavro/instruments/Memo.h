#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace Vz {

/// The answers to the last few questions: what equal instruments would all compute alike is computed once. As
/// many as `Most` are kept.
template <class TQuestion, class TAnswer, std::size_t Most = 32> class TMemo {
public:
    /// The known answer, else what `find` gives, from here on known. Valid until the next call.
    template <class F> const TAnswer& Get(const TQuestion& question, F find) {
        for (const auto& [asked, answer] : FKnown)
            if (asked == question) return answer;
        TAnswer answer = find();
        if (FKnown.size() == Most) FKnown.clear();
        return FKnown.emplace_back(question, std::move(answer)).second;
    }

private:
    std::vector<std::pair<TQuestion, TAnswer>> FKnown;
};

} // namespace Vz
