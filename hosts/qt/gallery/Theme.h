#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QPalette;

/// The gallery's colours.
enum class Theme { Light, Dark };

/// Beside what a QPalette holds.
struct ThemeColors {
    QColor ground; ///< the window
    QColor card;   ///< panels and fields upon it
    QColor border; ///< around them
    QColor text;
    QColor muted;  ///< text of second rank
    QColor accent; ///< selection, focus, marks
    QColor onAccent;
    QColor hover;
    QColor checkerLight; ///< the chequers that stand for a transparent background
    QColor checkerDark;
    QColor tint; ///< behind what is switched on
    QColor idle; ///< signs on buttons that do nothing now
};

const ThemeColors& themeColors(Theme theme);
QPalette themePalette(Theme theme);
QString themeSheet(Theme theme);

/// The small signs on buttons, drawn in one colour.
enum class Sign { Reset, Play, Pause };
QIcon signIcon(Sign sign, const ThemeColors& colors);
