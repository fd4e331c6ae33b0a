#include "Icon.h"

#include "tavro/VZSVGControl.h"
#include "tavro/controls/Control.h"

#include <VzWidget.h>

#include <QDateTime>
#include <QPixmap>

#include <memory>

namespace {

constexpr int SizesPx[] = {22, 44, 64};
constexpr double ShownShare = 0.62; // of the scale

/// What the plain control shows, which has no artwork of its own: shapes and a curve over them.
constexpr const char* PlainPicture = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 44 44">
<rect x="4" y="16" width="24" height="24" rx="3" fill="#3584e4"/>
<circle cx="28" cy="16" r="12" fill="#f6b73c" fill-opacity=".92"/>
<path d="M6 34C18 38 12 8 38 26" fill="none" stroke="#20262e" stroke-width="3.2" stroke-linecap="round"/>
</svg>)";

std::unique_ptr<VzWidget> makeModel(const TVzWidgetClass& widgetClass) {
    std::unique_ptr<VzWidget> model(widgetClass.Create(nullptr));
    if (QLatin1String(widgetClass.Folder) == QLatin1String("svg"))
        static_cast<Vz::TVZSVGControl&>(model->component()).LoadFromText(PlainPicture);
    const double minimum = model->property("minimum").toDouble();
    const double maximum = model->property("maximum").toDouble();
    if (maximum > minimum) model->setProperty("value", minimum + ShownShare * (maximum - minimum));
    model->setProperty("time", QDateTime(QDate(2000, 5, 1), QTime(10, 9, 35)));
    return model;
}

QPixmap drawn(VzWidget& model, QSize shape, int sizePx) {
    model.resize(shape.scaled(sizePx, sizePx, Qt::KeepAspectRatio));
    QPixmap pixmap(sizePx, sizePx);
    pixmap.fill(Qt::transparent);
    const QPoint corner((sizePx - model.width()) / 2, (sizePx - model.height()) / 2);
    model.render(&pixmap, corner, {}, QWidget::DrawChildren);
    return pixmap;
}

} // namespace

QIcon vzWidgetIcon(const TVzWidgetClass& widgetClass) {
    QIcon icon;
    try {
        const auto model = makeModel(widgetClass);
        const QSize shape = model->size();
        for (const int sizePx : SizesPx)
            icon.addPixmap(drawn(*model, shape, sizePx));
    } catch (const std::exception& error) {
        qWarning("%s: no icon: %s", widgetClass.Name, error.what());
    }
    return icon;
}
