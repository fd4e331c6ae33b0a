#pragma once

#include "hosts/qt/VzWidget.h"

#include <span>

/// A class of typed widget.
struct WidgetKind {
    const QMetaObject* meta;
    VzWidget* (*make)(QWidget* parent);
};

/// Every class that is generated from the property tables, in the order in which the components are
/// registered.
std::span<const WidgetKind> widgetKinds();

/// By the widget's class ("VzSpeedometer") or the component's ("TVZSpeedometer"), or null.
const WidgetKind* findWidgetKind(const QString& className);
