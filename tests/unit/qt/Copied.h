#pragma once

#include "tavro/controls/Control.h"
#include "tavro/runtime/PropAccess.h"

#include <QJsonObject>
#include <QWidget>

#include <functional>
#include <memory>

/// Every property of a component that has a text, but its place: the text by the name.
inline QJsonObject valuesOf(Vz::TComponent& component) {
    QJsonObject values;
    for (const Vz::TNamedProp& prop : Vz::ListProps(component)) {
        const Vz::TValueKind kind = prop.Ref.Prop->Type.Kind;
        if (kind != Vz::TValueKind::Event && kind != Vz::TValueKind::Object)
            values[QString::fromStdString(prop.Path)] = QString::fromStdString(Vz::GetPropText(prop.Ref));
    }
    return values;
}

/// Takes a widget in which one copied instrument stands.
using TAdd = std::function<void(const char* name, std::unique_ptr<QWidget> parent)>;

/// Made by copy_test.cpp.
void addCopies(const TAdd& add);
