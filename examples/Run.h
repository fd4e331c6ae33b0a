#pragma once

#include <QApplication>
#include <QCommandLineParser>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

/// Shows the window until somebody closes it. `--seconds N` closes it after so long; `--screenshot FILE`
/// saves its picture then (after one second if no number is given). Returns what main has to return.
inline int run(QWidget& window) {
    QCommandLineParser options;
    const QCommandLineOption seconds("seconds", "Close the window after so long.", "N", "1");
    const QCommandLineOption screenshot("screenshot", "Save a picture before it closes.", "FILE");
    options.addHelpOption();
    options.addOptions({seconds, screenshot});
    options.process(*qApp);

    const auto finish = [&] {
        const QString file = options.value(screenshot);
        QApplication::exit(file.isEmpty() || window.grab().save(file) ? 0 : 1);
    };
    if (options.isSet(seconds) || options.isSet(screenshot))
        QTimer::singleShot(int(options.value(seconds).toDouble() * 1000), &window, finish);
    window.show();
    return QApplication::exec();
}
