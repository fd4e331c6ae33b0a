#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Vz {

struct TProp;

/// Root of the class tree: destroyed through its base, never copied.
class TObject {
public:
    virtual ~TObject() = default;
    TObject(const TObject&) = delete;
    TObject& operator=(const TObject&) = delete;

protected:
    TObject() = default;
};

/// An object with a value: it can take over another one's, publishes properties, and may have one text that
/// is its whole value (path data, for example).
class TPersistent : public TObject {
public:
    /// Takes over the value of `source`. Raises EInvalidCast when the class cannot take one of source's
    /// class; this one, being the root's, takes none.
    virtual void Assign(const TPersistent& source);

    /// The published properties of the object's class, in stream order; empty where the class publishes none.
    virtual std::span<const TProp> GetPropTable() const;

    /// Properties that every component has beside those of its class; they stream before those. Empty by
    /// default. A class may publish one of them too, to declare its default; it still streams once, here.
    virtual std::span<const TProp> GetCommonProps() const;

    /// The value as one text. Raises EInvalidOperation for a class that has no such text, the default.
    virtual std::string ToText() const;

    /// Replaces the value by what `text` says. Raises EConvertError, and changes nothing, when it cannot be
    /// read; EInvalidOperation for a class that has no such text, the default.
    virtual void FromText(std::string_view text);
};

} // namespace Vz
