#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace Vz {

/// Root of all exceptions that the library raises. Carries one UTF-8 message of one line, without a full
/// stop.
class Exception : public std::exception {
public:
    explicit Exception(std::string message);
    const char* what() const noexcept override;

private:
    std::string FMessage;
};

/// An object is not of the class that the caller asked for.
class EInvalidCast : public Exception {
    using Exception::Exception;
};

/// An index or a number lies outside what the called function takes.
class EArgumentOutOfRange : public Exception {
    using Exception::Exception;
};

/// An operation that the object cannot carry out in its present state.
class EInvalidOperation : public Exception {
    using Exception::Exception;
};

/// A component's name is no identifier or is taken, or a class was registered twice with two meanings.
class EComponentError : public Exception {
    using Exception::Exception;
};

/// A place in outside data. Line and Column count from 1, Column in characters (code points); 0 means
/// unknown.
struct TSourcePlace {
    std::string Name; ///< of the file, stream or resource; empty when it has none
    int Line = 0;
    int Column = 0;

    bool operator==(const TSourcePlace&) const = default;
};

/// A fault in outside data: a file, a stream, a text. Its message begins with the place, where one is known,
/// as `dashboard.form:3:9: `; GetReason() is the message without it.
class EVZError : public Exception {
public:
    explicit EVZError(const std::string& reason, TSourcePlace place = {});
    const std::string& GetReason() const { return FReason; }
    const TSourcePlace& GetPlace() const { return FPlace; }

private:
    std::string FReason;
    TSourcePlace FPlace;
};

/// There is no resource of the name asked for.
class EResNotFound : public EVZError {
    using EVZError::EVZError;
};

/// A text cannot be read as a value, or a value has no text; also a picture that FormatFloat cannot use.
class EConvertError : public EVZError {
    using EVZError::EVZError;
};

/// A file or stream cannot be opened or read, or is not in the form that it should have.
class EReadError : public EVZError {
    using EVZError::EVZError;
};

/// A file or stream cannot be written, or a value cannot be written to it.
class EWriteError : public EVZError {
    using EVZError::EVZError;
};

/// No component class of that name is registered.
class EClassNotFound : public EVZError {
    using EVZError::EVZError;
};

/// There is no published property of that name, or it cannot be set that way.
class EPropertyError : public EVZError {
    using EVZError::EVZError;
};

/// `name:line:column`, as far as known; empty for an unknown place.
std::string PlaceText(const TSourcePlace& place);

} // namespace Vz
