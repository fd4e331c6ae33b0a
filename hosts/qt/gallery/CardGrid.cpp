#include "hosts/qt/gallery/CardGrid.h"

#include "hosts/qt/gallery/InstrumentCard.h"

#include <QKeyEvent>

#include <algorithm>

namespace {

constexpr int Spacing = 16;

/// How far an arrow key goes in a row of `columns` cards; 0 for another key.
qsizetype stepOf(int key, int columns) {
    switch (key) {
    case Qt::Key_Left:
        return -1;
    case Qt::Key_Right:
        return 1;
    case Qt::Key_Up:
        return -columns;
    case Qt::Key_Down:
        return columns;
    default:
        return 0;
    }
}

} // namespace

bool holdsWords(const QString& text, const QString& words) {
    const QStringList parts = words.split(u' ', Qt::SkipEmptyParts);
    return std::ranges::all_of(parts,
                               [&](const QString& part) { return text.contains(part, Qt::CaseInsensitive); });
}

CardGrid::CardGrid(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("cards"));
}

void CardGrid::setCards(std::vector<InstrumentCard*> cards) {
    // Later, as one of them may be what calls.
    for (InstrumentCard* old : all) {
        old->hide();
        old->deleteLater();
    }
    all = std::move(cards);
    for (InstrumentCard* card : all) {
        card->setParent(this);
        card->show();
    }
    arrange();
}

int CardGrid::filter(const QString& text) {
    int count = 0;
    for (InstrumentCard* card : all) {
        const bool isFound = holdsWords(card->searchText(), text);
        card->setVisible(isFound);
        count += isFound;
    }
    arrange();
    return count;
}

std::vector<InstrumentCard*> CardGrid::shownCards() const {
    std::vector<InstrumentCard*> result;
    std::ranges::copy_if(all, std::back_inserter(result), [](const auto* card) { return !card->isHidden(); });
    return result;
}

void CardGrid::setTabStop(const InstrumentCard* card) {
    for (InstrumentCard* each : all)
        each->setFocusPolicy(each == card ? Qt::StrongFocus : Qt::ClickFocus);
}

void CardGrid::arrange() {
    const auto shown = shownCards();
    if (shown.empty()) return setMinimumHeight(0);
    QSize least;
    for (const InstrumentCard* card : shown)
        least = least.expandedTo(card->sizeHint());
    columns = std::max(1, (width() - Spacing) / (least.width() + Spacing));
    // A row is filled, as long as the cards keep their shape.
    const int room = (width() - Spacing) / columns - Spacing;
    const int cardWidth = std::clamp(room, least.width(), least.width() * 5 / 4);
    const int used = columns * (cardWidth + Spacing) - Spacing;
    const int left = std::max(Spacing, (width() - used) / 2);
    for (int i = 0; i < int(shown.size()); ++i)
        shown[size_t(i)]->setGeometry(left + i % columns * (cardWidth + Spacing),
                                      Spacing + i / columns * (least.height() + Spacing), cardWidth,
                                      least.height());
    const int rows = (int(shown.size()) + columns - 1) / columns;
    setMinimumSize(least.width() + 2 * Spacing, Spacing + rows * (least.height() + Spacing));
}

void CardGrid::resizeEvent(QResizeEvent*) { arrange(); }

void CardGrid::keyPressEvent(QKeyEvent* event) {
    const auto shown = shownCards();
    const auto focused = std::ranges::find_if(shown, [](const auto* card) { return card->hasFocus(); });
    const qsizetype step = stepOf(event->key(), columns);
    const qsizetype target = focused - shown.begin() + step;
    if (step == 0 || focused == shown.end() || target < 0 || target >= qsizetype(shown.size()))
        return QWidget::keyPressEvent(event);
    setTabStop(shown[size_t(target)]);
    shown[size_t(target)]->setFocus(Qt::OtherFocusReason);
    Q_EMIT reached(shown[size_t(target)]);
}
