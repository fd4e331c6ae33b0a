#include "hosts/qt/gallery/CppText.h"

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/gallery/InstrumentCard.h"
#include "hosts/qt/gallery/PropertyRow.h"

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QMetaProperty>

namespace {

QString quoted(const QString& text) {
    QString result;
    for (const char32_t code : text.toUcs4()) {
        const bool makesTrigraph = code == U'?' && result.endsWith(u'?');
        if (code == U'"' || code == U'\\' || makesTrigraph)
            result += u'\\' + QChar(char16_t(code));
        else if (code == U'\n')
            result += QStringLiteral("\\n");
        else if (code >= 0x20 && code < 0x7F)
            result += QChar(char16_t(code));
        else if (code < 0x20 || (code >= 0x7F && code < 0xA0)) // \u may not name these
            result += QStringLiteral("\\%1").arg(uint(code), 3, 8, QLatin1Char('0'));
        else
            result += code > 0xFFFF ? QStringLiteral("\\U%1").arg(uint(code), 8, 16, QLatin1Char('0'))
                                    : QStringLiteral("\\u%1").arg(uint(code), 4, 16, QLatin1Char('0'));
    }
    return QStringLiteral("QStringLiteral(\"%1\")").arg(result);
}

QString listText(const QStringList& items) {
    QStringList texts;
    for (const QString& item : items)
        texts << quoted(item);
    return u'{' + texts.join(QStringLiteral(", ")) + u'}';
}

QString colorText(const QColor& color) {
    const QString rgb = QStringLiteral("%1, %2, %3").arg(color.red()).arg(color.green()).arg(color.blue());
    return color.alpha() == 255 ? QStringLiteral("QColor(%1)").arg(rgb)
                                : QStringLiteral("QColor(%1, %2)").arg(rgb).arg(color.alpha());
}

QString timeText(const QDateTime& value) {
    const QTime time = value.time();
    return QStringLiteral("QDateTime(QDate(%1), QTime(%2, %3, %4, %5))")
        .arg(QStringLiteral("%1, %2, %3")
                 .arg(value.date().year())
                 .arg(value.date().month())
                 .arg(value.date().day()))
        .arg(time.hour())
        .arg(time.minute())
        .arg(time.second())
        .arg(time.msec());
}

QString numberText(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

QString membersText(const QMetaProperty& property, int value, const QString& scope) {
    const QMetaEnum members = property.enumerator();
    QStringList names;
    for (int i = 0; i < members.keyCount(); ++i)
        if (property.isFlagType() ? (value & members.value(i)) != 0 : value == members.value(i))
            names << scope + QLatin1String(members.key(i));
    return names.isEmpty() ? QStringLiteral("{}") : names.join(QStringLiteral(" | "));
}

/// Statements that make a font of which the rest is left open.
QString fontLines(const QString& name, const QFont& font) {
    QString lines = QStringLiteral("QFont %1;\n").arg(name);
    const uint set = font.resolveMask();
    if (set & (QFont::FamilyResolved | QFont::FamiliesResolved))
        lines += QStringLiteral("%1.setFamilies(%2);\n").arg(name, listText(font.families()));
    if (set & QFont::SizeResolved)
        lines += QStringLiteral("%1.setPointSizeF(%2);\n").arg(name, numberText(font.pointSizeF()));
    if (set & QFont::WeightResolved)
        lines += QStringLiteral("%1.setWeight(QFont::Weight(%2));\n").arg(name).arg(font.weight());
    if (set & QFont::StyleResolved)
        lines +=
            QStringLiteral("%1.setItalic(%2);\n").arg(name, QLatin1String(font.italic() ? "true" : "false"));
    return lines;
}

QString valueText(const QMetaProperty& property, const QVariant& value, const QString& scope) {
    if (property.isEnumType()) return membersText(property, value.toInt(), scope);
    switch (value.metaType().id()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Double:
        return numberText(value.toDouble());
    case QMetaType::QColor:
        return colorText(value.value<QColor>());
    case QMetaType::QStringList:
        return listText(value.toStringList());
    case QMetaType::QDateTime:
        return timeText(value.toDateTime());
    case QMetaType::QString:
        return quoted(value.toString());
    default:
        return value.toString();
    }
}

QString setterText(const QString& variable, const QMetaProperty& property, const QString& argument) {
    QString name = QString::fromLatin1(property.name());
    name[0] = name[0].toUpper();
    return QStringLiteral("%1->set%2(%3);\n").arg(variable, name, argument);
}

} // namespace

QString cppText(const VzWidget& widget) {
    const QMetaObject& meta = *widget.metaObject();
    const QString type = QLatin1String(meta.className());
    const QString words = classWords(meta.className());
    const qsizetype firstWord = words.indexOf(u' ');
    const QString variable =
        words.left(firstWord).toLower() + (firstWord < 0 ? QString() : words.mid(firstWord).remove(u' '));
    QString text = QStringLiteral("#include \"%1.h\"\n\nauto* %2 = new %1(this);\n").arg(type, variable);
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (!widget.isPropertyStored(property.name())) continue;
        const QVariant value = plainValue(widget, property);
        if (value.metaType().id() == QMetaType::QFont) {
            const QString name = QString::fromLatin1(property.name());
            text += fontLines(name, value.value<QFont>()) + setterText(variable, property, name);
        } else {
            text += setterText(variable, property, valueText(property, value, type + QStringLiteral("::")));
        }
    }
    return text;
}
