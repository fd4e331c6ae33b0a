#include "hosts/qt/VzFileWidget.h"

#include "tavro/VZSVGControl.h"
#include "tavro/runtime/Resources.h"

#include <QFile>
#include <QFileInfo>

using namespace Vz;

namespace {

/// The file's content. Raises EReadError.
std::string contentOf(const QString& name) {
    const QString path = name.startsWith(u"qrc:/") ? name.mid(3) : name;
    const std::string shown = name.toStdString();
    if (!QFileInfo::exists(path)) throw EReadError("there is no such file", {shown});
    if (!QFileInfo(path).isFile()) throw EReadError("it is no file", {shown});
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) throw EReadError(file.errorString().toStdString(), {shown});
    const QByteArray bytes = file.read(VzFileWidget::MaxBytes + 1);
    if (file.error() != QFileDevice::NoError) throw EReadError(file.errorString().toStdString(), {shown});
    if (bytes.size() > VzFileWidget::MaxBytes) throw EReadError("it is too large", {shown});
    return bytes.toStdString();
}

} // namespace

VzFileWidget::VzFileWidget(std::unique_ptr<TVZSVGControl> component, const TTable& table, QWidget* parent,
                           const char* fileProperty)
    : VzWidget(std::move(component), table, parent)
    , property(fileProperty) {}

bool VzFileWidget::isPropertyStored(const char* name) const {
    return qstrcmp(name, property) == 0 ? !named.isEmpty() : VzWidget::isPropertyStored(name);
}

bool VzFileWidget::setFile(const QString& name) {
    if (name == named && (loaded || name.isEmpty())) return false;
    const bool isChange = name != named;
    named = name;
    load();
    return isChange;
}

void VzFileWidget::load() {
    loaded = false;
    auto& control = static_cast<TVZSVGControl&>(component());
    try {
        const std::string name = named.toStdString();
        if (named.isEmpty())
            showNoFile();
        else if (FindResource(name))
            control.LoadSVGResource(name);
        else
            control.LoadFromText(contentOf(named), name);
        loaded = !named.isEmpty();
    } catch (const std::exception& error) {
        qWarning("%s: %s: %s", metaObject()->className(), property, error.what());
    }
}

void VzFileWidget::showEvent(QShowEvent* event) {
    VzWidget::showEvent(event);
    if (!named.isEmpty() && !loaded) load();
}
