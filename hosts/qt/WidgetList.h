#pragma once

#include <span>

class QWidget;
class VzWidget;

/// One of the typed widgets, for what offers them all: Designer, the gallery.
struct TVzWidgetClass {
    const char* Name;   ///< "VzSpeedometer"; its header is of the same name, with ".h"
    const char* Header; ///< of its component: "tavro/instruments/meters/Speedometer.h"
    const char*
        Folder; ///< the last one of Header, which tells the family: "meters"; or the family's own name

    /// Makes one with a fresh component, owned by the parent if there is one.
    VzWidget* (*Create)(QWidget* parent);
};

/// The typed widgets of all component classes, in the order in which the library registers these.
std::span<const TVzWidgetClass> vzWidgetClasses();

/// Those that a plugin for Designer offers; each plugin has one of its own.
std::span<const TVzWidgetClass> designerWidgetClasses();
