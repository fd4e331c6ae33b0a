#pragma once

#include <QWidget>

#include <vector>

class InstrumentCard;

/// Cards in rows, as many side by side as there is room for; a scroll area scrolls it upright. It owns the
/// cards.
class CardGrid : public QWidget {
    Q_OBJECT
public:
    explicit CardGrid(QWidget* parent = nullptr);

    const std::vector<InstrumentCard*>& cards() const { return all; }
    /// Takes the cards in place of those that are there, which are deleted.
    void setCards(std::vector<InstrumentCard*> cards);
    /// Only cards whose name holds every word of `text`; how many that are.
    int filter(const QString& text);
    /// Lays the cards out anew after a change of their size.
    void arrange();
    /// The card at which the Tab key stops; the arrow keys go on from there, and take the stop with them.
    void setTabStop(const InstrumentCard* card);

Q_SIGNALS:
    /// An arrow key brought the keyboard to this card.
    void reached(InstrumentCard* card);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::vector<InstrumentCard*> shownCards() const;

    std::vector<InstrumentCard*> all;
    int columns = 1;
};

/// Whether `text` holds every word of `words`, in any case.
bool holdsWords(const QString& text, const QString& words);
