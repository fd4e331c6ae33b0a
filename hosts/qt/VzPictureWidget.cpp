#include "hosts/qt/VzPictureWidget.h"

#include "tavro/VZSVGControl.h"

using namespace Vz;

namespace {

constexpr std::string_view Nothing = R"(<svg xmlns="http://www.w3.org/2000/svg"/>)";

} // namespace

VzPictureWidget::VzPictureWidget(std::unique_ptr<TVZSVGControl> component, const TTable& table,
                                 QWidget* parent)
    : VzFileWidget(std::move(component), table, parent, "source") {}

void VzPictureWidget::setSource(const QString& value) {
    if (setFile(value)) Q_EMIT sourceChanged(value);
}

void VzPictureWidget::showNoFile() { static_cast<TVZSVGControl&>(component()).LoadFromText(Nothing); }
