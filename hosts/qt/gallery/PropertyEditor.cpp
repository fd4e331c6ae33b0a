#include "hosts/qt/gallery/PropertyEditor.h"

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDoubleSpinBox>
#include <QFontDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>
#include <QWheelEvent>

#include <limits>

namespace {

QHBoxLayout* rowOf(QWidget* owner) {
    auto* const row = new QHBoxLayout(owner);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    return row;
}

/// A field that is scrolled past must not take the wheel for itself.
template <class Base> class Calm : public Base {
public:
    explicit Calm(QWidget* parent)
        : Base(parent) {
        this->setFocusPolicy(Qt::StrongFocus);
    }

protected:
    void wheelEvent(QWheelEvent* event) override {
        if (this->hasFocus())
            Base::wheelEvent(event);
        else
            event->ignore();
    }
};

/// Numbers by their shortest text.
class NumberBox final : public Calm<QDoubleSpinBox> {
public:
    explicit NumberBox(QWidget* parent)
        : Calm(parent) {
        setLocale(QLocale::c());
        setDecimals(9);
        setRange(-double(std::numeric_limits<float>::max()), double(std::numeric_limits<float>::max()));
        setStepType(AdaptiveDecimalStepType);
        setKeyboardTracking(false);
    }
    QString textFromValue(double value) const override {
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    }
    double valueFromText(const QString& text) const override { return QLocale::c().toDouble(text); }
    QValidator::State validate(QString& text, int&) const override {
        bool isNumber = false;
        QLocale::c().toDouble(text, &isNumber);
        return isNumber ? QValidator::Acceptable : QValidator::Intermediate;
    }
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override { return {80, Calm::minimumSizeHint().height()}; }
};

class NumberEditor final : public PropertyEditor {
public:
    explicit NumberEditor(QWidget* parent)
        : PropertyEditor(parent)
        , box(new NumberBox(this)) {
        rowOf(this)->addWidget(box);
        setFocusProxy(box);
        connect(box, &QDoubleSpinBox::valueChanged, this, [this](double value) { Q_EMIT edited(value); });
    }
    void setValue(const QVariant& value) override {
        const QSignalBlocker blocker(box);
        box->setValue(value.toDouble());
    }

private:
    NumberBox* box;
};

class IntegerEditor final : public PropertyEditor {
public:
    explicit IntegerEditor(QWidget* parent)
        : PropertyEditor(parent)
        , box(new Calm<QSpinBox>(this)) {
        box->setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
        box->setKeyboardTracking(false);
        box->setMinimumWidth(80);
        rowOf(this)->addWidget(box);
        setFocusProxy(box);
        connect(box, &QSpinBox::valueChanged, this, [this](int value) { Q_EMIT edited(value); });
    }
    void setValue(const QVariant& value) override {
        const QSignalBlocker blocker(box);
        box->setValue(value.toInt());
    }

private:
    QSpinBox* box;
};

class SwitchEditor final : public PropertyEditor {
public:
    explicit SwitchEditor(QWidget* parent)
        : PropertyEditor(parent)
        , box(new QCheckBox(this)) {
        rowOf(this)->addWidget(box);
        setFocusProxy(box);
        connect(box, &QCheckBox::toggled, this, [this](bool value) { Q_EMIT edited(value); });
    }
    void setValue(const QVariant& value) override {
        const QSignalBlocker blocker(box);
        box->setChecked(value.toBool());
    }

private:
    QCheckBox* box;
};

/// A swatch of the colour upon chequers.
QIcon swatch(const QColor& color) {
    QPixmap pixmap(32, 32);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::white);
    QPainter painter(&pixmap);
    painter.fillRect(0, 0, 8, 8, Qt::lightGray);
    painter.fillRect(8, 8, 8, 8, Qt::lightGray);
    painter.fillRect(0, 0, 16, 16, color);
    painter.setPen(QPen(QColor(128, 128, 128), 0.5));
    painter.drawRect(QRectF(0.25, 0.25, 15.5, 15.5));
    return pixmap;
}

class ColorEditor final : public PropertyEditor {
public:
    explicit ColorEditor(QWidget* parent)
        : PropertyEditor(parent)
        , button(new QToolButton(this))
        , text(new QLineEdit(this)) {
        QHBoxLayout* const row = rowOf(this);
        row->addWidget(button);
        row->addWidget(text);
        text->setMinimumWidth(80);
        button->setObjectName(QStringLiteral("flat"));
        button->setToolTip(tr("Choose a colour"));
        setFocusProxy(button); // the first of the two, or the Tab key leaves it out
        connect(button, &QToolButton::clicked, this, [this] { choose(); });
        connect(text, &QLineEdit::editingFinished, this, [this] { readText(); });
    }
    void setSpokenName(const QString& name, const QString& description) override {
        PropertyEditor::setSpokenName(tr("%1: choose").arg(name), description);
        text->setAccessibleName(name);
        text->setAccessibleDescription(description);
    }
    std::vector<QWidget*> fields() const override { return {button, text}; }
    void setValue(const QVariant& value) override {
        color = value.value<QColor>();
        button->setIcon(swatch(color));
        text->setText(color.name(QColor::HexArgb).toUpper());
    }

private:
    void choose() {
        const QColor chosen =
            QColorDialog::getColor(color, window(), QString(), QColorDialog::ShowAlphaChannel);
        if (chosen.isValid() && chosen != color) Q_EMIT edited(chosen);
    }
    void readText() {
        const QColor typed(text->text().trimmed());
        if (typed.isValid() && typed.rgba() != color.rgba())
            Q_EMIT edited(typed);
        else
            setValue(color);
    }

    QToolButton* button;
    QLineEdit* text;
    QColor color;
};

class EnumEditor final : public PropertyEditor {
public:
    EnumEditor(const QMetaEnum& members, QWidget* parent)
        : PropertyEditor(parent)
        , box(new Calm<QComboBox>(this)) {
        for (int i = 0; i < members.keyCount(); ++i)
            box->addItem(QString::fromLatin1(members.key(i)), members.value(i));
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(8);
        rowOf(this)->addWidget(box);
        setFocusProxy(box);
        connect(box, &QComboBox::currentIndexChanged, this,
                [this](int) { Q_EMIT edited(box->currentData()); });
    }
    /// A box of choices says its choice, and is named by the label beside it that it is the buddy of: by a
    /// hidden one, as the visible one is not beside it.
    void setSpokenName(const QString& name, const QString& description) override {
        PropertyEditor::setSpokenName(name, description);
        auto* const label = new QLabel(name, this);
        label->setBuddy(box);
        label->hide();
    }
    void setValue(const QVariant& value) override {
        const QSignalBlocker blocker(box);
        box->setCurrentIndex(box->findData(value.toInt()));
    }

private:
    QComboBox* box;
};

class SetEditor final : public PropertyEditor {
public:
    SetEditor(const QMetaEnum& members, QWidget* parent)
        : PropertyEditor(parent) {
        auto* const column = new QVBoxLayout(this);
        column->setContentsMargins(0, 2, 0, 2);
        column->setSpacing(3);
        for (int i = 0; i < members.keyCount(); ++i) {
            auto* const box = new QCheckBox(QString::fromLatin1(members.key(i)), this);
            const int bit = members.value(i);
            connect(box, &QCheckBox::toggled, this, [this, bit](bool isIn) {
                mask = isIn ? mask | bit : mask & ~bit;
                Q_EMIT edited(mask);
            });
            column->addWidget(box);
            boxes.emplace_back(box, bit);
        }
        if (!boxes.empty()) setFocusProxy(boxes.front().first);
    }
    void setSpokenName(const QString& name, const QString& description) override {
        for (const auto& [box, bit] : boxes) {
            box->setAccessibleName(name + u' ' + box->text());
            box->setAccessibleDescription(description);
        }
    }
    std::vector<QWidget*> fields() const override {
        std::vector<QWidget*> found;
        for (const auto& [box, bit] : boxes)
            found.push_back(box);
        return found;
    }
    void setValue(const QVariant& value) override {
        mask = value.toInt();
        for (const auto& [box, bit] : boxes) {
            const QSignalBlocker blocker(box);
            box->setChecked(mask & bit);
        }
    }

private:
    std::vector<std::pair<QCheckBox*, int>> boxes;
    int mask = 0;
};

class TextEditor final : public PropertyEditor {
public:
    explicit TextEditor(QWidget* parent)
        : PropertyEditor(parent)
        , line(new QLineEdit(this)) {
        line->setMinimumWidth(80);
        rowOf(this)->addWidget(line);
        setFocusProxy(line);
        connect(line, &QLineEdit::editingFinished, this, [this] {
            if (line->isModified()) Q_EMIT edited(line->text());
        });
    }
    void setValue(const QVariant& value) override {
        line->setText(value.toString());
        line->setCursorPosition(0);
    }

private:
    QLineEdit* line;
};

/// One item a line.
class ListEditor final : public PropertyEditor {
public:
    explicit ListEditor(QWidget* parent)
        : PropertyEditor(parent)
        , lines(new QPlainTextEdit(this)) {
        lines->setTabChangesFocus(true);
        lines->setLineWrapMode(QPlainTextEdit::NoWrap);
        lines->setFixedHeight(lines->fontMetrics().lineSpacing() * 5 + 16);
        rowOf(this)->addWidget(lines);
        setFocusProxy(lines);
        connect(lines, &QPlainTextEdit::textChanged, this, [this] {
            const QString text = lines->toPlainText();
            Q_EMIT edited(text.isEmpty() ? QStringList() : text.split(u'\n'));
        });
    }
    void setValue(const QVariant& value) override {
        const QString text = value.toStringList().join(u'\n');
        if (text == lines->toPlainText()) return; // the cursor stays
        const QSignalBlocker blocker(lines);
        lines->setPlainText(text);
    }

private:
    QPlainTextEdit* lines;
};

/// What of a font is set; the rest is the artwork's.
QString fontWords(const QFont& font) {
    const uint set = font.resolveMask();
    QStringList words;
    if (set & (QFont::FamilyResolved | QFont::FamiliesResolved)) words << font.families().value(0);
    if (set & QFont::SizeResolved) words << QString::number(font.pointSizeF());
    if (set & QFont::WeightResolved && font.weight() != QFont::Normal)
        words << QString::number(font.weight());
    if (set & QFont::StyleResolved && font.italic()) words << QObject::tr("italic");
    return words.isEmpty() ? QObject::tr("As in the artwork") : words.join(u' ');
}

class FontEditor final : public PropertyEditor {
public:
    explicit FontEditor(QWidget* parent)
        : PropertyEditor(parent)
        , button(new QPushButton(this)) {
        button->setMinimumWidth(80);
        button->setToolTip(tr("Choose a font"));
        rowOf(this)->addWidget(button);
        setFocusProxy(button);
        connect(button, &QPushButton::clicked, this, [this] { choose(); });
    }
    void setValue(const QVariant& value) override {
        font = value.value<QFont>();
        button->setText(fontWords(font));
        button->setAccessibleDescription(button->text()); // the name is the property's
    }

private:
    void choose() {
        bool isChosen = false;
        const QFont chosen = QFontDialog::getFont(&isChosen, font, window());
        if (isChosen) Q_EMIT edited(chosen);
    }

    QPushButton* button;
    QFont font;
};

class TimeEditor final : public PropertyEditor {
public:
    explicit TimeEditor(QWidget* parent)
        : PropertyEditor(parent)
        , box(new Calm<QDateTimeEdit>(this)) {
        box->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        box->setDateRange(QDate(100, 1, 1), QDate(9999, 12, 31));
        box->setCalendarPopup(true);
        box->setKeyboardTracking(false);
        box->setMinimumWidth(80);
        rowOf(this)->addWidget(box);
        setFocusProxy(box);
        connect(box, &QDateTimeEdit::dateTimeChanged, this,
                [this](const QDateTime& value) { Q_EMIT edited(value); });
    }
    void setValue(const QVariant& value) override {
        const QSignalBlocker blocker(box);
        box->setDateTime(value.toDateTime());
    }

private:
    QDateTimeEdit* box;
};

} // namespace

void PropertyEditor::setSpokenName(const QString& name, const QString& description) {
    focusProxy()->setAccessibleName(name);
    focusProxy()->setAccessibleDescription(description);
}

bool PropertyEditor::isBusy() const { return isAncestorOf(QApplication::focusWidget()); }

PropertyEditor* makePropertyEditor(const QMetaProperty& property, QWidget* parent) {
    if (property.isFlagType()) return new SetEditor(property.enumerator(), parent);
    if (property.isEnumType()) return new EnumEditor(property.enumerator(), parent);
    switch (property.metaType().id()) {
    case QMetaType::Bool:
        return new SwitchEditor(parent);
    case QMetaType::Int:
        return new IntegerEditor(parent);
    case QMetaType::Double:
        return new NumberEditor(parent);
    case QMetaType::QColor:
        return new ColorEditor(parent);
    case QMetaType::QStringList:
        return new ListEditor(parent);
    case QMetaType::QFont:
        return new FontEditor(parent);
    case QMetaType::QDateTime:
        return new TimeEditor(parent);
    default:
        return new TextEditor(parent);
    }
}
