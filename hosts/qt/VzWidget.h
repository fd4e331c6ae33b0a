#pragma once

#include "tavro/controls/Control.h"

#include <QVariant>
#include <QWidget>

#include <functional>
#include <memory>
#include <span>

/// A widget that shows a component of the library and hands it the mouse, the wheel and the keys. The typed
/// widgets (VzSpeedometer, VzCircularClock ...) derive from it; by itself it shows any component, such as a
/// form with instruments on it.
///
/// The component is painted into a bitmap of device pixels, of which only what became stale is painted anew;
/// its background stays transparent. Widget and component follow each other's size, the component follows
/// whether the widget is enabled. Lengths are Qt's device-independent pixels.
///
/// What an instrument looks like is its properties' affair, so that a form looks alike on every desktop: its
/// colours do not follow the palette, nor its texts the widget's font, and a dial turns clockwise in a layout
/// from right to left, too. Palette, style and layout direction decide how the focus frame is drawn, and the
/// palette what fills the background where a program asks for that (setAutoFillBackground).
class VzWidget : public QWidget {
    Q_OBJECT
public:
    /// Owns the component, which must not have a parent. The widget's preferred size is the component's size
    /// at this moment.
    explicit VzWidget(std::unique_ptr<Vz::TControl> component, QWidget* parent = nullptr);
    ~VzWidget() override;

    /// The component itself, with the library's own properties and events. Changes made to it directly are
    /// seen by the widget: the picture follows, and notify signals come when control returns to the event
    /// loop.
    Vz::TControl& component() const;

    /// Whether a form has to keep a property of the component, by its Qt name, as the component's own rules
    /// of declared defaults and stored values say. False for a property that is not the component's.
    virtual bool isPropertyStored(const char* name) const;
    /// The component's own name of a property that the widget shows (`Max` of "maximum", `Labels` of
    /// "labels"); empty for a property that is not the component's.
    QByteArray componentProperty(const char* name) const;

    /// The component's size when it was made.
    QSize sizeHint() const override;
    /// 16 x 16.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// A press and release of the left button inside of the widget.
    void clicked();

protected:
    /// What a typed widget says of itself: its properties of the component, in the order of the Q_PROPERTY
    /// lines, and its events, by the component's own names.
    struct TTable {
        const QMetaObject* Meta;
        std::span<const char* const> Properties;
        std::span<const char* const> Events;
        std::span<const char* const> EventSignals; ///< as a method signature of Meta, a row for each event
    };
    VzWidget(std::unique_ptr<Vz::TControl> component, const TTable& table, QWidget* parent);

    /// The row-th property's value: bool, qlonglong, double, QColor, int for an enumeration or a set,
    /// QDateTime, QString, QStringList or QFont (PropVariant.h).
    QVariant read(int row) const;
    /// Sets it through the component's setter. What that refuses is reported by qWarning; the property is
    /// then as it was.
    void write(int row, const QVariant& value);
    /// Gives the property the value that a fresh component has, or what the component makes by itself where
    /// that is another one, such as the numbers of a changed scale. A path of the user's own goes together
    /// with the choice of it.
    void resetAt(int row);
    /// Emits the notify signal of the row-th property, the signal of the row-th event.
    virtual void notifyProperty(int row) {}
    virtual void notifyEvent(int row) {}

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void connectNotify(const QMetaMethod& signal) override;
    void disconnectNotify(const QMetaMethod& signal) override;

private:
    class THost;

    void start(const TTable& table);
    int rowOf(const char* name) const;
    void change(const std::function<void()>& action);
    void followWatched();
    void dropUnwatched();
    void paintComponent(QPainter& painter);
    void handOver(QMouseEvent& event,
                  void (Vz::TControl::*handle)(Vz::TMouseButton, Vz::TShiftState, int, int));

    std::unique_ptr<THost> host;
};
