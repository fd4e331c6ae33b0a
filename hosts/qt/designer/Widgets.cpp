// The plugin of the library's own widgets.

#include <WidgetList.h>

std::span<const TVzWidgetClass> designerWidgetClasses() { return vzWidgetClasses(); }
