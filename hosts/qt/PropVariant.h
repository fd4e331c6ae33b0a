#pragma once

#include "tavro/runtime/PropAccess.h"

#include <QVariant>

class QDateTime;
class QFont;

// Published properties as Qt's values.
//
//   Boolean                     bool
//   integer                     qlonglong
//   single, double              double: of a single the one with the same shortest text, 0.1 and not
//                               0.10000000149
//   colour                      QColor
//   enumeration, set            int: the ordinal, the mask
//   date-time                   QDateTime, in local time; a fraction of a day on 1899-12-30 is a time of day
//   string, object with a text  QString
//   string list                 QStringList
//   font                        QFont, of which only the resolved settings count; a point is an artwork unit

/// The property's value; an invalid one for an event and an object that has no such form.
QVariant propToVariant(const Vz::TPropRef& ref);

/// Sets the property through its setter. Raises EConvertError for a value of another kind or out of range,
/// and what the setter raises.
void propFromVariant(const Vz::TPropRef& ref, const QVariant& value);

/// A date and time without a zone as local time, and back to it from any zone. Outside of the years 1 to 9999
/// an invalid one, and EConvertError.
QDateTime toQDateTime(Vz::TDateTime value);
Vz::TDateTime fromQDateTime(const QDateTime& value);
