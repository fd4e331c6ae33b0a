#pragma once

#include <exception>

namespace Vz {

/// One update of an object, for the time of a scope: BeginUpdate at its start, EndUpdate at its end, also
/// when an exception passes. What a notice raises that EndUpdate sends reaches the code around the scope;
/// while another exception already passes, that one goes on and the notice's is dropped.
template <class T> class TUpdateScope {
public:
    explicit TUpdateScope(T& object)
        : FObject(object) {
        FObject.BeginUpdate();
    }
    ~TUpdateScope() noexcept(false) {
        try {
            FObject.EndUpdate();
        } catch (...) { // two exceptions at once would end the program
            if (std::uncaught_exceptions() == FExceptions) throw;
        }
    }
    TUpdateScope(const TUpdateScope&) = delete;
    TUpdateScope& operator=(const TUpdateScope&) = delete;

private:
    T& FObject;
    const int FExceptions = std::uncaught_exceptions();
};

} // namespace Vz
