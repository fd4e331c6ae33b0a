#include "hosts/qt/VzPictureWidget.h"

#include "tavro/VZSVGControl.h"

#include <QFile>
#include <QFileInfo>

using namespace Vz;

namespace {

constexpr std::string_view Nothing = R"(<svg xmlns="http://www.w3.org/2000/svg"/>)";

/// The file's content. Raises EReadError.
std::string contentOf(const QString& name) {
    const QString path = name.startsWith(u"qrc:/") ? name.mid(3) : name;
    const std::string shown = name.toStdString();
    if (!QFileInfo::exists(path)) throw EReadError("there is no such file", {shown});
    if (!QFileInfo(path).isFile()) throw EReadError("it is no file", {shown});
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) throw EReadError(file.errorString().toStdString(), {shown});
    const QByteArray bytes = file.read(VzPictureWidget::MaxBytes + 1);
    if (file.error() != QFileDevice::NoError) throw EReadError(file.errorString().toStdString(), {shown});
    if (bytes.size() > VzPictureWidget::MaxBytes) throw EReadError("it is too large", {shown});
    return bytes.toStdString();
}

} // namespace

VzPictureWidget::VzPictureWidget(std::unique_ptr<TVZSVGControl> component, const TTable& table,
                                 QWidget* parent)
    : VzWidget(std::move(component), table, parent) {}

bool VzPictureWidget::isPropertyStored(const char* name) const {
    return qstrcmp(name, "source") == 0 ? hasSource() : VzWidget::isPropertyStored(name);
}

void VzPictureWidget::setSource(const QString& value) {
    if (value == named && (loaded || value.isEmpty())) return;
    const bool isChange = value != named;
    named = value;
    load();
    if (isChange) Q_EMIT sourceChanged(named);
}

void VzPictureWidget::load() {
    loaded = false;
    auto& control = static_cast<TVZSVGControl&>(component());
    try {
        if (named.isEmpty())
            control.LoadFromText(Nothing);
        else
            control.LoadFromText(contentOf(named), named.toStdString());
        loaded = hasSource();
    } catch (const std::exception& error) {
        qWarning("%s: source: %s", metaObject()->className(), error.what());
    }
}

void VzPictureWidget::showEvent(QShowEvent* event) {
    VzWidget::showEvent(event);
    if (hasSource() && !loaded) load();
}
