#include "hosts/qt/VzWidget.h"

#include "hosts/qt/Accessible.h"
#include "hosts/qt/PropVariant.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/graphics/Bitmap.h"

#include <QKeyEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWheelEvent>

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

using namespace Vz;

namespace {

constexpr double DegreesPerNotch = 15; // of a usual wheel; Qt counts eighths of a degree

TShiftState shiftState(Qt::KeyboardModifiers modifiers) {
    TShiftState state;
    if (modifiers & Qt::ShiftModifier) state.Include(TShiftKey::Shift);
    if (modifiers & Qt::AltModifier) state.Include(TShiftKey::Alt);
    if (modifiers & Qt::ControlModifier) state.Include(TShiftKey::Ctrl);
    return state;
}

/// The component's pixel that a point lies in.
QPoint pixelAt(QPointF point) { return {int(std::floor(point.x())), int(std::floor(point.y()))}; }

std::optional<TMouseButton> mouseButton(Qt::MouseButton button) {
    switch (button) {
    case Qt::LeftButton:
        return TMouseButton::Left;
    case Qt::RightButton:
        return TMouseButton::Right;
    case Qt::MiddleButton:
        return TMouseButton::Middle;
    default:
        return {};
    }
}

std::optional<TKey> controlKey(int key) {
    static constexpr std::pair<Qt::Key, TKey> Keys[] = {
        {Qt::Key_Left, TKey::Left},    {Qt::Key_Right, TKey::Right},   {Qt::Key_Up, TKey::Up},
        {Qt::Key_Down, TKey::Down},    {Qt::Key_PageUp, TKey::PageUp}, {Qt::Key_PageDown, TKey::PageDown},
        {Qt::Key_Home, TKey::Home},    {Qt::Key_End, TKey::End},       {Qt::Key_Enter, TKey::Enter},
        {Qt::Key_Return, TKey::Enter}, {Qt::Key_Space, TKey::Space},   {Qt::Key_Escape, TKey::Escape},
    };
    for (const auto& [qt, ours] : Keys)
        if (qt == key) return ours;
    return {};
}

QCursor qtCursor(TCursor cursor) {
    switch (cursor) {
    case TCursor::Hand:
        return Qt::PointingHandCursor;
    case TCursor::Cross:
        return Qt::CrossCursor;
    default:
        return Qt::ArrowCursor;
    }
}

/// Runs what may raise at the edge to Qt's event loop, which no exception may cross.
template <class F> void guarded(const QObject& object, F action) {
    try {
        action();
    } catch (const std::exception& error) {
        qWarning("%s: %s", object.metaObject()->className(), error.what());
    }
}

/// One property of the component that the widget shows as its own.
struct TBoundProp {
    TPropRef Ref;
    QVariant Fresh; ///< its value in a fresh component
};

/// A property whose notify signal somebody is connected to, and its value at the last look.
struct TWatched {
    int Row;
    QVariant Value;
};

} // namespace

/// The component's host: turns what became stale into updates of the widget.
class VzWidget::THost final : public THeadlessHost {
public:
    THost(VzWidget& widget, std::unique_ptr<TControl> component)
        : THeadlessHost(*component)
        , FWidget(widget)
        , Component(std::move(component)) {
        Size = {Component->GetWidth(), Component->GetHeight()};
    }

    void RegionStale(std::span<const TRect> rects) override {
        THeadlessHost::RegionStale(rects);
        for (const TRect& rect : rects)
            FWidget.update(rect.Left, rect.Top, rect.Width(), rect.Height());
        LookLater();
    }
    void SizeWanted(int width, int height) override {
        THeadlessHost::SizeWanted(width, height);
        FWidget.resize(width, height);
    }
    void CursorWanted(TCursor cursor) override {
        THeadlessHost::CursorWanted(cursor);
        if (cursor == TCursor::Default)
            FWidget.unsetCursor();
        else
            FWidget.setCursor(qtCursor(cursor));
    }

    /// The watched properties are looked at when control returns to the event loop, unless a setter of the
    /// widget does so at once.
    void LookLater() {
        if (Watched.empty() || IsLookPlanned || Setting > 0) return;
        IsLookPlanned = true;
        QMetaObject::invokeMethod(
            &FWidget,
            [this] {
                IsLookPlanned = false;
                FWidget.followWatched();
            },
            Qt::QueuedConnection);
    }
    void Attach(int row) {
        if (Attached[size_t(row)]) return;
        Attached[size_t(row)] = true;
        const TProp* const event = FindProp(*Component, Table.Events[size_t(row)]);
        event->Attach(*Component, [this, row] { FWidget.notifyEvent(row); });
    }

private:
    VzWidget& FWidget;

public:
    std::unique_ptr<TControl> Component;
    QSize Size;
    TTable Table{};
    std::vector<TBoundProp> Props;
    std::vector<bool> Attached; ///< by event
    std::vector<TWatched> Watched;
    bool MayBeUnwatched = false; ///< somebody disconnected since Watched was gone through
    bool IsLookPlanned = false;
    int Setting = 0; ///< how many setters of the widget are under way
};

VzWidget::VzWidget(std::unique_ptr<TControl> component, QWidget* parent)
    : VzWidget(std::move(component), {&staticMetaObject, {}, {}, {}}, parent) {}

VzWidget::VzWidget(std::unique_ptr<TControl> component, const TTable& table, QWidget* parent)
    : QWidget(parent)
    , host(std::make_unique<THost>(*this, std::move(component))) {
    installAccessibleFactory();
    start(table);
}

VzWidget::~VzWidget() { host->Component->SetHost(nullptr); }

void VzWidget::start(const TTable& table) {
    host->Table = table;
    host->Attached.resize(table.Events.size());
    for (const char* path : table.Properties) {
        const TPropRef ref = ResolveProp(*host->Component, path);
        host->Props.push_back({ref, propToVariant(ref)});
    }
    resize(host->Size);
    setMouseTracking(true);
    host->Component->SetOnClick([this](TObject&) { Q_EMIT clicked(); });
    if (host->Component->TakesKeys()) setFocusPolicy(Qt::StrongFocus);
}

TControl& VzWidget::component() const { return *host->Component; }

QSize VzWidget::sizeHint() const { return host->Size; }
QSize VzWidget::minimumSizeHint() const { return {16, 16}; }

// Properties.

QVariant VzWidget::read(int row) const { return propToVariant(host->Props[size_t(row)].Ref); }

void VzWidget::write(int row, const QVariant& value) {
    change([&] { propFromVariant(host->Props[size_t(row)].Ref, value); });
}

void VzWidget::resetAt(int row) {
    const TBoundProp& prop = host->Props[size_t(row)];
    change([&] {
        if (prop.Ref.Prop->Reset)
            prop.Ref.Prop->Reset(*prop.Ref.Object);
        else
            propFromVariant(prop.Ref, prop.Fresh);
    });
}

/// Runs a change of the component; what it refuses is reported, and who watches is notified at once.
void VzWidget::change(const std::function<void()>& action) {
    ++host->Setting;
    guarded(*this, action);
    --host->Setting;
    followWatched();
}

/// The row of a property by its Qt name; -1 where it is not the component's.
int VzWidget::rowOf(const char* name) const {
    const int row = metaObject()->indexOfProperty(name) - host->Table.Meta->propertyOffset();
    return row < 0 || row >= int(host->Props.size()) ? -1 : row;
}

QByteArray VzWidget::componentProperty(const char* name) const {
    const int row = rowOf(name);
    return row < 0 ? QByteArray() : QByteArray(host->Table.Properties[size_t(row)]);
}

bool VzWidget::isPropertyStored(const char* name) const {
    const int row = rowOf(name);
    if (row < 0) return false;
    const TPropRef& ref = host->Props[size_t(row)].Ref;
    if (ref.Prop->Type.Kind != TValueKind::Object) return IsPropStored(*ref.Object, *ref.Prop);
    TPersistent* const owned = ref.Prop->GetObject(*ref.Object);
    if (!owned) return false;
    for (const TNamedProp& part : ListProps(*owned))
        if (IsPropStored(*part.Ref.Object, *part.Ref.Prop)) return true;
    return false;
}

/// Emits the notify signals of the watched properties that changed since the last look.
void VzWidget::followWatched() {
    if (host->Setting > 0) return;
    dropUnwatched();
    // By index: whoever is notified may connect and disconnect.
    for (size_t i = 0; i < host->Watched.size(); ++i) {
        TWatched& watched = host->Watched[i];
        QVariant now = read(watched.Row);
        if (now == watched.Value) continue;
        watched.Value = std::move(now);
        notifyProperty(watched.Row);
    }
}

void VzWidget::connectNotify(const QMetaMethod& signal) {
    if (!host) return;
    const TTable& table = host->Table;
    const int first = table.Meta->propertyOffset();
    for (int row = 0; row < int(table.Properties.size()); ++row) {
        if (table.Meta->property(first + row).notifySignal() != signal) continue;
        const auto isIt = [&](const TWatched& watched) { return watched.Row == row; };
        if (std::none_of(host->Watched.begin(), host->Watched.end(), isIt))
            host->Watched.push_back({row, read(row)});
        return;
    }
    for (int row = 0; row < int(table.EventSignals.size()); ++row)
        if (signal.methodSignature() == table.EventSignals[size_t(row)]) host->Attach(row);
}

void VzWidget::disconnectNotify(const QMetaMethod&) {
    // Whether somebody else is connected cannot be asked here: a receiver that goes away holds a lock that
    // may be the very one to ask with.
    if (host) host->MayBeUnwatched = true;
}

void VzWidget::dropUnwatched() {
    if (!std::exchange(host->MayBeUnwatched, false)) return;
    const TTable& table = host->Table;
    std::erase_if(host->Watched, [&](const TWatched& watched) {
        return !isSignalConnected(
            table.Meta->property(table.Meta->propertyOffset() + watched.Row).notifySignal());
    });
}

// Painting.

void VzWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    guarded(*this, [&] { paintComponent(painter); });
    if (!hasFocus()) return;
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.backgroundColor = palette().color(backgroundRole());
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void VzWidget::paintComponent(QPainter& painter) {
    const QTransform device = painter.deviceTransform();
    const bool isUpright = device.type() <= QTransform::TxScale && device.m11() > 0;
    const double scale = std::min(isUpright ? device.m11() : devicePixelRatioF(), THeadlessHost::MaxScale);
    host->SetScale(scale);
    const TPixels pixels = host->PaintStale().GetPixels();
    if (pixels.Width == 0 || pixels.Height == 0) return;
    const QImage image(reinterpret_cast<const uchar*>(pixels.Data), pixels.Width, pixels.Height,
                       qsizetype(pixels.Stride) * 4, QImage::Format_ARGB32_Premultiplied);
    painter.save();
    // Device pixel onto device pixel: at a fractional scale the widget may begin within one.
    if (isUpright)
        painter.translate((std::round(device.dx()) - device.dx()) / scale,
                          (std::round(device.dy()) - device.dy()) / scale);
    painter.scale(1 / scale, 1 / scale);
    painter.drawImage(0, 0, image);
    painter.restore();
}

void VzWidget::resizeEvent(QResizeEvent*) {
    guarded(*this, [&] { host->Component->SetBounds(0, 0, width(), height()); });
}

void VzWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    switch (event->type()) {
    case QEvent::EnabledChange:
        guarded(*this, [&] { host->Component->SetEnabled(isEnabled()); });
        break;
    case QEvent::LayoutDirectionChange: // of the focus frame; palette and style repaint by themselves
        update();
        break;
    default:
        break;
    }
}

// Input.

void VzWidget::handOver(QMouseEvent& event, void (TControl::*handle)(TMouseButton, TShiftState, int, int)) {
    const auto button = mouseButton(event.button());
    if (!button) return event.ignore();
    const QPoint at = pixelAt(event.position());
    TShiftState shift = shiftState(event.modifiers());
    if (event.type() == QEvent::MouseButtonDblClick) shift.Include(TShiftKey::Double);
    guarded(*this, [&] { (*host->Component.*handle)(*button, shift, at.x(), at.y()); });
}

void VzWidget::mousePressEvent(QMouseEvent* event) { handOver(*event, &TControl::HandleMouseDown); }
void VzWidget::mouseDoubleClickEvent(QMouseEvent* event) { handOver(*event, &TControl::HandleMouseDown); }
void VzWidget::mouseReleaseEvent(QMouseEvent* event) { handOver(*event, &TControl::HandleMouseUp); }

void VzWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = pixelAt(event->position());
    guarded(*this, [&] { host->Component->HandleMouseMove(shiftState(event->modifiers()), at.x(), at.y()); });
}

void VzWidget::wheelEvent(QWheelEvent* event) {
    const QPoint at = pixelAt(event->position());
    // Alt turns a usual wheel sideways.
    const int turn = event->angleDelta().y() != 0 ? event->angleDelta().y() : event->angleDelta().x();
    bool isHandled = false;
    guarded(*this, [&] {
        isHandled = host->Component->HandleMouseWheel(shiftState(event->modifiers()),
                                                      turn / (8 * DegreesPerNotch), at.x(), at.y());
    });
    event->setAccepted(isHandled);
}

void VzWidget::keyPressEvent(QKeyEvent* event) {
    bool isHandled = false;
    if (const auto key = controlKey(event->key()))
        guarded(*this,
                [&] { isHandled = host->Component->HandleKeyDown(*key, shiftState(event->modifiers())); });
    if (!isHandled) QWidget::keyPressEvent(event);
}
