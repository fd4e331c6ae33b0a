// The gallery: a window with every instrument.
//
//   tavro-gallery [--screenshot FILE] [--size WxH] [--dark] [--select CLASS] [FORM]
//
// Exit status: 0; 1 where a file cannot be read or written, or there is no display; 2 for wrong usage.

#include "hosts/qt/gallery/GalleryWindow.h"
#include "hosts/qt/gallery/Stress.h"
#include "tavro/package/Package.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QImage>

#include <cstdio>
#include <optional>

namespace {

constexpr double ScreenshotMoment = 10.4; // seconds into the motion, where nothing stands at an end

enum ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

int fail(ExitStatus status, const QString& text) {
    std::fprintf(stderr, "tavro-gallery: %s\n", qUtf8Printable(text));
    return status;
}

/// "1280x800"
std::optional<QSize> readSize(const QString& text) {
    const QStringList parts = text.split(u'x');
    if (parts.size() != 2) return {};
    const QSize size(parts[0].toInt(), parts[1].toInt());
    const bool isSensible =
        size.width() >= 100 && size.height() >= 100 && size.width() <= 10000 && size.height() <= 10000;
    return isSensible ? std::optional(size) : std::nullopt;
}

void addOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(QStringLiteral("A window with every instrument."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("form"), QStringLiteral("A form file to show."),
                                 QStringLiteral("[FORM]"));
    QCommandLineOption stress(QStringLiteral("stress"),
                              QStringLiteral("Measures a window of so many gauges."), QStringLiteral("N"));
    stress.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({
        {QStringLiteral("screenshot"),
         QStringLiteral("Draws the window at a fixed moment into a file and ends."), QStringLiteral("FILE")},
        {QStringLiteral("size"), QStringLiteral("The window's size, 1280x800."), QStringLiteral("WxH")},
        {QStringLiteral("dark"), QStringLiteral("The dark colours.")},
        {QStringLiteral("select"), QStringLiteral("The class of the instrument to inspect."),
         QStringLiteral("CLASS")},
        stress,
    });
}

int saveScreenshot(GalleryWindow& window, const QString& file) {
    window.setMoving(false);
    window.moveTo(ScreenshotMoment);
    return window.picture().save(file) ? Done
                                       : fail(Failed, QStringLiteral("%1 cannot be written").arg(file));
}

int run(const QCommandLineParser& parser) {
    if (parser.isSet(QStringLiteral("stress"))) {
        const int count = parser.value(QStringLiteral("stress")).toInt();
        if (count < 1 || count > 10000) return fail(WrongUsage, QStringLiteral("--stress takes 1 to 10000"));
        return runStress(count);
    }
    GalleryWindow window;
    if (const QString text = parser.value(QStringLiteral("size")); !text.isEmpty()) {
        const auto size = readSize(text);
        if (!size) return fail(WrongUsage, QStringLiteral("--size takes a size such as 1280x800"));
        window.resize(*size);
    }
    if (parser.isSet(QStringLiteral("dark"))) window.setTheme(Theme::Dark);
    if (!parser.positionalArguments().isEmpty()) window.openForm(parser.positionalArguments().front());
    const QString picture = parser.value(QStringLiteral("screenshot"));
    if (!picture.isEmpty()) window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    if (const QString name = parser.value(QStringLiteral("select"));
        !name.isEmpty() && !window.selectClass(name))
        return fail(WrongUsage, QStringLiteral("there is no instrument of class %1").arg(name));
    if (!picture.isEmpty()) return saveScreenshot(window, picture);
    return QApplication::exec();
}

/// Whether some option draws without anyone watching.
bool wantsNoDisplay(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        const QByteArrayView word(arguments[i]);
        for (const char* name : {"--screenshot", "--stress", "--help", "--version", "-h", "-v"})
            if (word.startsWith(name)) return true;
    }
    return false;
}

} // namespace

int main(int count, char** arguments) try {
    const bool hasDisplay = qEnvironmentVariableIsSet("DISPLAY") ||
                            qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
                            qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (!hasDisplay) {
        if (!wantsNoDisplay(count, arguments)) return fail(Failed, QStringLiteral("there is no display"));
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication application(count, arguments);
    QApplication::setApplicationName(QStringLiteral("tavro-gallery"));
    QApplication::setApplicationVersion(QStringLiteral(TAVRO_VERSION));
    Vz::RegisterComponentClasses();
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(QApplication::arguments())) return fail(WrongUsage, parser.errorText());
    if (parser.positionalArguments().size() > 1)
        return fail(WrongUsage, QStringLiteral("one form file at most"));
    parser.process(application);
    return run(parser);
} catch (const std::exception& error) {
    return fail(Failed, QString::fromUtf8(error.what()));
}
