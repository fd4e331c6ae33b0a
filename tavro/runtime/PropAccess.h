#pragma once

#include "tavro/runtime/Props.h"

#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// A property of an object, found by name: the object that has it (an owned one for `Font.Size`) and its row.
struct TPropRef {
    TPersistent* Object = nullptr;
    const TProp* Prop = nullptr;
};

/// The same with the name that leads there from the outermost object.
struct TNamedProp {
    std::string Path;
    TPropRef Ref;
};

/// All rows of an object in stream order: the common ones, then those of its class that are no common ones.
std::vector<const TProp*> ListRows(const TPersistent& object);

/// The row of the object's main value, or null.
const TProp* FindMainProp(const TPersistent& object);

/// The row of that name (exact case) among the object's common properties and those of its class, or null.
const TProp* FindProp(const TPersistent& object, std::string_view name);

/// Follows a path such as `Font.Size` from `object`. Raises EPropertyError, naming the path, when a name of
/// it is unknown, one before the last is no owned object, or that object is not there at present.
TPropRef ResolveProp(TPersistent& object, std::string_view path);

/// Every property that has a value and every event, in stream order: the common ones first, in the place of
/// an owned object with properties of its own these properties.
std::vector<TNamedProp> ListProps(TPersistent& object);

/// True when a stream writes the property now. An event: never. Otherwise, where the row has a stored
/// predicate, it alone decides; else a plain value is written when it differs from the declared default or
/// none is declared, an owned list or text when it is not empty, and an owned object as far as its own
/// properties are.
bool IsPropStored(const TPersistent& object, const TProp& prop);

/// The property's value as text (see PropText.h); an owned text or list that is not there gives an empty one.
/// Raises EPropertyError for an event and for an owned object, which have none.
std::string GetPropText(const TPropRef& ref);
std::string GetPropText(TPersistent& object, std::string_view path);

/// Reads `text` and sets the property through its setter. Raises EConvertError beginning with the path when
/// the text cannot be read or the setter refuses it so, EPropertyError as ResolveProp, for an event, for an
/// owned object, and for what else the setter raises. The object is then as it was.
void SetPropText(TPersistent& object, std::string_view path, std::string_view text);

/// The two steps of SetPropText that form files share: an owned object's value from a text, a list from its
/// items.
void SetObjectText(const TPropRef& ref, std::string_view text);
void SetListItems(const TPropRef& ref, std::vector<std::string> items);

} // namespace Vz
