#pragma once

#include "hosts/qt/gallery/Motion.h"
#include "hosts/qt/gallery/Theme.h"

#include <QWidget>

class QLabel;
class VzWidget;

/// What an instrument stands on.
enum class Ground { Card, Checker };

/// An instrument with its name beneath. A click, Space or Enter selects it; the arrow keys go to the cards
/// around it.
class InstrumentCard : public QWidget {
    Q_OBJECT
public:
    /// Takes the instrument. `name` is what is written under it.
    InstrumentCard(VzWidget* instrument, const QString& name, QWidget* parent = nullptr);

    VzWidget& instrument() const { return *shown; }
    QString name() const;
    const QString& searchText() const { return searched; }

    /// What the instrument fills, in pixels; it stands in the middle above its name. Default 200 x 200.
    void setInstrumentSize(QSize value);
    void setGround(Ground value);
    void setTheme(Theme value);
    void setSelected(bool value);

    /// Brings the instrument to the moment, unless it is held.
    void moveTo(double seconds);
    /// A held instrument keeps what the user gave it.
    void setHeld(bool value) { held = value; }
    bool isHeld() const { return held; }
    const QByteArray& drivenProperty() const { return motion.property; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void picked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeChildren();

    VzWidget* shown;
    QLabel* label;
    QString searched;
    Motion motion;
    QSize size{200, 200};
    Ground ground = Ground::Card;
    Theme theme = Theme::Light;
    bool selected = false;
    bool held = false;
};

/// "VzCircularClock" in words: "Circular Clock"; "majorMarkersColor": "Major markers color".
QString classWords(const char* className);
QString propertyWords(const char* propertyName);
