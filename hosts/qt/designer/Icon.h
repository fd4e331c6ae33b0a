#pragma once

#include <WidgetList.h>

#include <QIcon>

/// The widget's icon for Designer's widget box, drawn by the component itself in several sizes, with a
/// transparent ground. An instrument that is not square keeps its shape. Empty if it cannot be drawn.
QIcon vzWidgetIcon(const TVzWidgetClass& widgetClass);
