#pragma once

#include "tavro/graphics/PathData.h"
#include "tavro/instruments/ColorFunctions.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/instruments/Tables.h"
#include "tavro/runtime/Updates.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Font.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Shapes.h"
#include "tavro/svg/model/TextElements.h"

#include <type_traits>

namespace Vz {

// What the sources of instruments are written with; Instrument.h says what each does.

template <class T> T* TVZSVGCustomInstrument::Find(std::string_view id) const {
    return GetDocument().Find<T>(id);
}

template <class F> void TVZSVGCustomInstrument::EditDocument(F edits) {
    const TUpdateScope update(GetDocument());
    edits();
}

template <class T> bool TVZSVGCustomInstrument::Store(T& field, const T& value) {
    if constexpr (std::is_floating_point_v<T>)
        if (value != value) return false;
    if (field == value) return false;
    field = value;
    return true;
}

template <class T, class F>
void TVZSVGCustomInstrument::Change(T& field, const T& value, F edits, TReach reach) {
    if (!Store(field, value)) return;
    EditDocument(edits);
    if (reach == TReach::Picture) MarkBuffersStale();
    Invalidate();
}

template <class T, class F> void TVZSVGCustomInstrument::Change(T& field, const T& value, F edits) {
    Change(field, value, edits, TReach::Picture);
}

} // namespace Vz
