// "Copy as C++" of every instrument in several states makes one source, and the values of all properties a
// file beside it; copied_main.cpp and that source become a program, which finds the same values.

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/WidgetList.h"
#include "hosts/qt/gallery/CppText.h"
#include "tavro/package/Package.h"
#include "tests/unit/qt/Copied.h"

#include <QColor>
#include <QDateTime>
#include <QFile>
#include <QFont>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaProperty>

#include <gtest/gtest.h>

#include <memory>

namespace {

/// What each property is set to, by its type; a setter may clamp or refuse a value.
struct TState {
    const char* Name;
    double Number; ///< added, where the instrument is not to be brought to nonsense
    QString Text;
    QStringList List;
    QDateTime Time;
    QColor Color;
    QFont Font;
    bool AreSetsEmpty;
};

QFont fontOf(const QStringList& families, double points, int weight, bool isItalic) {
    QFont font;
    if (!families.isEmpty()) font.setFamilies(families);
    if (points > 0) font.setPointSizeF(points);
    if (weight > 0) font.setWeight(QFont::Weight(weight));
    if (isItalic) font.setItalic(true);
    return font;
}

const std::vector<TState>& states() {
    static const std::vector<TState> all{
        {"plain",
         0.25,
         QStringLiteral("plain"),
         {QStringLiteral("a"), QStringLiteral("b")},
         QDateTime(QDate(2026, 3, 15), QTime(15, 30, 45)),
         QColor(1, 2, 3),
         fontOf({QStringLiteral("Noto Sans")}, 14, 700, true),
         false},
        {"awkward",
         1.0 / 3,
         QStringLiteral("\"q\" 'q' \\n \\ ?\?/ \n\r\t\u0001"
                        "1 \u007f\u0085 \u00e4\u20ac \U0001F600 %1 */ //"),
         {QString(), QStringLiteral("\",\n\""), QStringLiteral("\u0663\u05d0"), QString()},
         QDateTime(QDate(899, 8, 9), QTime(0, 8, 9, 7)),
         QColor(255, 254, 0, 7),
         fontOf({QStringLiteral("A, \"b\" \\"), QStringLiteral("\u00e4")}, 0.1, 0, false),
         true},
        {"large", 1e30, QString(400, QChar(u'\u00fc')), QStringList(300, QStringLiteral("x")),
         QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59, 999)), QColor(0, 0, 0, 0),
         fontOf({}, 1e6, 1000, false), false},
    };
    return all;
}

QVariant valueOf(const TState& state, const QMetaProperty& property, const QVariant& now) {
    if (property.isFlagType()) return state.AreSetsEmpty ? 0 : now.toInt() & ~2;
    if (property.isEnumType()) return now.toInt() == 1 ? 0 : 1;
    switch (property.metaType().id()) {
    case QMetaType::Bool:
        return !now.toBool();
    case QMetaType::Int:
        return now.toInt() + 1;
    case QMetaType::Double:
        return now.toDouble() + state.Number;
    case QMetaType::QColor:
        return state.Color;
    case QMetaType::QDateTime:
        return state.Time;
    case QMetaType::QFont:
        return state.Font;
    case QMetaType::QStringList:
        return state.List;
    default:
        const QByteArray name = property.name();
        if (name.endsWith("Path")) return QStringLiteral("M0 0L5 %1").arg(state.List.size());
        if (name == "transform") return QStringLiteral("matrix(1 0 0 1 0.1 -5)");
        if (name == "formatStr") return QStringLiteral("0.0 \"\u00b5\\\"");
        return state.Text;
    }
}

/// As the gallery gives it: an include, an empty line, statements.
struct TCopy {
    QString Include;
    QString Statements;
};

TCopy copyOf(const VzWidget& widget) {
    const QString text = cppText(widget);
    const qsizetype gap = text.indexOf(QStringLiteral("\n\n"));
    EXPECT_GT(gap, 0);
    return {text.left(gap + 1), text.mid(gap + 2)};
}

TEST(GalleryCopy, MakesASourceOfEveryInstrument) {
    Vz::RegisterComponentClasses();
    QString includes = QStringLiteral("#include \"tests/unit/qt/Copied.h\"\n\n");
    QString parts;
    QString calls;
    QJsonArray expected;
    for (const TVzWidgetClass& kind : vzWidgetClasses())
        for (const TState& state : states()) {
            const std::unique_ptr<VzWidget> widget(kind.Create(nullptr));
            const QMetaObject& meta = *widget->metaObject();
            for (int row = meta.propertyOffset(); row < meta.propertyCount(); ++row) {
                const QMetaProperty property = meta.property(row);
                property.write(widget.get(), valueOf(state, property, property.read(widget.get())));
            }
            const TCopy copy = copyOf(*widget);
            if (!includes.contains(copy.Include)) includes += copy.Include;
            const QString name = QLatin1String(kind.Name) + u'_' + QLatin1String(state.Name);
            parts += QStringLiteral("struct %1 : QWidget {\n%1() {\n%2}\n};\n\n").arg(name, copy.Statements);
            calls += QStringLiteral("    add(\"%1\", std::make_unique<%1>());\n").arg(name);
            expected << QJsonObject{{QStringLiteral("name"), name},
                                    {QStringLiteral("values"), valuesOf(widget->component())}};
        }
    QFile source(QStringLiteral(TAVRO_QT_TESTS_OUTPUT "/copied.cpp"));
    ASSERT_TRUE(source.open(QIODevice::WriteOnly));
    source.write((includes + u'\n' + parts + QStringLiteral("void addCopies(const TAdd& add) {\n") + calls +
                  QStringLiteral("}\n"))
                     .toUtf8());
    QFile values(QStringLiteral(TAVRO_QT_TESTS_OUTPUT "/copied.json"));
    ASSERT_TRUE(values.open(QIODevice::WriteOnly));
    values.write(QJsonDocument(expected).toJson());
}

} // namespace
