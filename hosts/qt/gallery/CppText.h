#pragma once

#include <QString>

class VzWidget;

/// The lines of C++ that make the widget as it is now: the include, the widget, and a setter for each
/// property that differs from its default.
QString cppText(const VzWidget& widget);
