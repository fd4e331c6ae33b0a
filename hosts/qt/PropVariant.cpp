#include "hosts/qt/PropVariant.h"

#include "tavro/runtime/PropText.h"
#include "tavro/runtime/Strings.h"
#include "tavro/svg/model/Font.h"

#include <QColor>
#include <QDateTime>
#include <QFont>

#include <algorithm>
#include <charconv>
#include <string>

using namespace Vz;

namespace {

QString toQString(std::string_view text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

[[noreturn]] void raise(const TPropRef& ref, const char* expected) {
    throw EConvertError(std::string(ref.Prop->Name) + ": " + expected + " was expected");
}

// Fonts. Every setting may be left open; a QFont says by its resolve mask which are.

/// The names of a CSS family list; a comma within quotes belongs to a name.
QStringList familiesOf(const QString& list) {
    QStringList names;
    for (qsizetype at = 0; at <= list.size();) {
        while (at < list.size() && list[at].isSpace())
            ++at;
        const QChar quote = at < list.size() ? list[at] : QChar();
        const bool isQuoted = quote == u'\'' || quote == u'"';
        qsizetype end = isQuoted ? list.indexOf(quote, at + 1) : -1;
        if (end < 0) end = at; // no quote, or one without its other
        const qsizetype comma = list.indexOf(u',', end);
        const qsizetype stop = comma < 0 ? list.size() : comma;
        names << (end > at ? list.mid(at + 1, end - at - 1) : list.mid(at, stop - at).trimmed());
        at = stop + 1;
    }
    return names;
}

QFont toQFont(const TSVGFont& font) {
    QFont result;
    if (!font.GetFamily().empty()) result.setFamilies(familiesOf(toQString(font.GetFamily())));
    if (font.GetSize() > 0) result.setPointSizeF(font.GetSize());
    if (font.GetWeight() > 0) result.setWeight(static_cast<QFont::Weight>(font.GetWeight()));
    if (font.GetStyle() != TSVGFontStyle::fsArtwork)
        result.setItalic(font.GetStyle() == TSVGFontStyle::fsItalic);
    return result;
}

/// A CSS family list of names of which some need quotes.
std::string toFamilyList(const QStringList& families) {
    QStringList names;
    for (QString family : families) {
        const QChar quote = family.contains(u'\'') ? u'"' : u'\'';
        if (quote == u'"') family.remove(u'"'); // a name with both
        const auto isSpecial = [](QChar c) { return c == u' ' || c == u',' || c == u'\'' || c == u'"'; };
        const bool needsQuotes = std::any_of(family.begin(), family.end(), isSpecial);
        names << (needsQuotes ? quote + family + quote : family);
    }
    return names.join(QStringLiteral(", ")).toStdString();
}

void readQFont(const QFont& font, TSVGFont& value) {
    const uint mask = font.resolveMask();
    if (mask & (QFont::FamilyResolved | QFont::FamiliesResolved))
        value.SetFamily(toFamilyList(font.families()));
    if (mask & QFont::SizeResolved)
        value.SetSize(static_cast<float>(font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize()));
    if (mask & QFont::WeightResolved) value.SetWeight(font.weight());
    if (mask & QFont::StyleResolved)
        value.SetStyle(font.italic() ? TSVGFontStyle::fsItalic : TSVGFontStyle::fsNormal);
}

QVariant objectToVariant(const TPropRef& ref) {
    TPersistent* const owned = ref.Prop->GetObject(*ref.Object);
    switch (ref.Prop->Type.Kind) {
    case TValueKind::Strings: {
        QStringList items;
        if (owned)
            for (const std::string& item : static_cast<const TStrings&>(*owned).GetItems())
                items << toQString(item);
        return items;
    }
    case TValueKind::TextObject:
        return toQString(GetPropText(ref));
    default:
        if (const auto* font = dynamic_cast<const TSVGFont*>(owned)) return toQFont(*font);
        return {};
    }
}

/// The double that is written with the fewest digits that read back to the single.
double shortestDouble(float value) {
    char text[32];
    const auto written = std::to_chars(text, text + sizeof text, value);
    double result = value;
    std::from_chars(text, written.ptr, result);
    return result;
}

QVariant plainToVariant(const TValue& value) {
    struct TVisitor {
        QVariant operator()(std::monostate) const { return {}; }
        QVariant operator()(bool v) const { return v; }
        QVariant operator()(std::int64_t v) const { return qlonglong(v); }
        QVariant operator()(float v) const { return shortestDouble(v); }
        QVariant operator()(double v) const { return v; }
        QVariant operator()(const TColorValue& v) const { return QColor::fromRgba(v.Argb); }
        QVariant operator()(const TEnumValue& v) const { return v.Ordinal; }
        QVariant operator()(const TSetValue& v) const { return int(v.Mask); }
        QVariant operator()(TDateTime v) const { return toQDateTime(v); }
        QVariant operator()(std::string_view v) const { return toQString(v); }
    };
    return std::visit(TVisitor{}, value);
}

/// A plain value as the property's kind; a text is a view of `text`.
TValue plainFromVariant(const TPropRef& ref, const QVariant& value, std::string& text) {
    const TValueType& type = ref.Prop->Type;
    bool isRead = true;
    switch (type.Kind) {
    case TValueKind::Boolean:
        if (value.canConvert<bool>()) return TValue(value.toBool());
        raise(ref, "a Boolean");
    case TValueKind::Single:
    case TValueKind::Double: {
        const double number = value.toDouble(&isRead);
        if (isRead) return TValue(number);
        raise(ref, "a number");
    }
    case TValueKind::Integer:
    case TValueKind::Enumeration:
    case TValueKind::Set: {
        const qlonglong number = value.toLongLong(&isRead);
        if (!isRead) raise(ref, "a whole number");
        if (type.Kind == TValueKind::Integer) return TValue(std::int64_t(number));
        const qlonglong count = qlonglong(type.Members->Members.size());
        const bool isEnumeration = type.Kind == TValueKind::Enumeration;
        if (number < 0 || number >= (isEnumeration ? count : qlonglong(1) << count))
            raise(ref, isEnumeration ? "a member of the enumeration" : "a set of its members");
        if (isEnumeration) return TValue(TEnumValue{type.Members, int(number)});
        return TValue(TSetValue{type.Members, std::uint32_t(number)});
    }
    case TValueKind::Color: {
        const QColor color = value.value<QColor>();
        if (color.isValid()) return TValue(TColorValue{color.rgba()});
        raise(ref, "a colour");
    }
    case TValueKind::DateTime:
        return TValue(fromQDateTime(value.toDateTime()));
    default:
        text = value.toString().toStdString();
        return TValue(std::string_view(text));
    }
}

} // namespace

QVariant propToVariant(const TPropRef& ref) {
    if (ref.Prop->Get) return plainToVariant(ref.Prop->Get(*ref.Object));
    return ref.Prop->GetObject ? objectToVariant(ref) : QVariant();
}

void propFromVariant(const TPropRef& ref, const QVariant& value) {
    const TProp& prop = *ref.Prop;
    switch (prop.Type.Kind) {
    case TValueKind::Strings: {
        std::vector<std::string> items;
        for (const QString& item : value.toStringList())
            items.push_back(item.toStdString());
        SetListItems(ref, std::move(items));
        return;
    }
    case TValueKind::TextObject:
        SetObjectText(ref, value.toString().toStdString());
        return;
    case TValueKind::Object: {
        if (!dynamic_cast<TSVGFont*>(prop.GetObject(*ref.Object))) raise(ref, "another object");
        TSVGFont font;
        readQFont(value.value<QFont>(), font);
        prop.SetObject(*ref.Object, font);
        return;
    }
    default:
        std::string text;
        prop.Set(*ref.Object, plainFromVariant(ref, value, text));
    }
}

QDateTime toQDateTime(TDateTime value) {
    if (!IsValidDateTime(value)) return {};
    const TDate date = DecodeDate(value);
    const TTimeOfDay time = DecodeTime(value);
    return {QDate(date.Year, date.Month, date.Day), QTime(time.Hour, time.Minute, time.Second, time.MSec)};
}

TDateTime fromQDateTime(const QDateTime& value) {
    if (!value.isValid()) throw EConvertError("an invalid date and time");
    const QDateTime local = value.toLocalTime();
    const QDate date = local.date();
    const QTime time = local.time();
    return EncodeDateTime({date.year(), date.month(), date.day()},
                          {time.hour(), time.minute(), time.second(), time.msec()});
}
