#include "hosts/qt/gallery/GalleryWindow.h"

#include "hosts/qt/WidgetList.h"
#include "hosts/qt/gallery/CardGrid.h"
#include "hosts/qt/gallery/Forms.h"
#include "hosts/qt/gallery/Inspector.h"
#include "hosts/qt/gallery/PropertyRow.h"
#include "tavro/VZSVGControl.h"
#include "tavro/runtime/FormFile.h"
#include <VzSVGControl.h>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QBoxLayout>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMetaProperty>
#include <QMimeData>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <QUrl>

#include <algorithm>

namespace {

constexpr int DefaultSide = 200;
constexpr int FrameMs = 16;
constexpr int FiguresMs = 1000;
constexpr int MessageMs = 8000;

/// A drawing for the control that has none of its own.
constexpr const char* Sample = R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 200 200">
<defs><linearGradient id="sky" x2="0" y2="1"><stop stop-color="#2b6cb0"/><stop offset="1" stop-color="#90cdf4"/>
</linearGradient><clipPath id="round"><circle cx="100" cy="100" r="92"/></clipPath></defs>
<g clip-path="url(#round)"><rect width="200" height="200" fill="url(#sky)"/>
<circle cx="136" cy="66" r="24" fill="#fbd38d"/>
<path d="M-10 160L50 84L84 122L122 70L210 170V210H-10Z" fill="#2f4858"/>
<path d="M50 84L66 102L54 108L40 98ZM122 70L140 92L124 100L108 90Z" fill="#f7fafc"/>
<path d="M0 158C40 138 72 178 112 160S176 150 210 168V210H0Z" fill="#38a169"/></g></svg>)svg";

void showSample(VzSVGControl& control) {
    control.instrument().LoadFromText(Sample, "sample");
    control.setStretch(true);
}

} // namespace

GalleryWindow::GalleryWindow(QWidget* parent)
    : QMainWindow(parent)
    , cards(new CardGrid)
    , scroll(new QScrollArea)
    , inspecting(new Inspector) {
    setAcceptDrops(true);
    resize(1280, 800);
    addBar();
    addMenus();

    scroll->setWidget(cards);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* const splitter = new QSplitter(Qt::Horizontal);
    splitter->addWidget(scroll);
    splitter->addWidget(inspecting);
    splitter->setStretchFactor(0, 1);
    splitter->setCollapsible(0, false);
    splitter->setHandleWidth(1);
    splitter->setSizes({900, 380});
    static_cast<QBoxLayout*>(centralWidget()->layout())->addWidget(splitter, 1);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addPermanentWidget(figures);

    connect(cards, &CardGrid::reached, this,
            [this](InstrumentCard* card) { scroll->ensureWidgetVisible(card); });
    connect(inspecting, &Inspector::message, this, &GalleryWindow::tell);
    connect(inspecting, &Inspector::filled, this, &GalleryWindow::orderTabs);
    ticking.setTimerType(Qt::PreciseTimer);
    ticking.setInterval(FrameMs);
    connect(&ticking, &QTimer::timeout, this, &GalleryWindow::tick);
    figuring.setInterval(FiguresMs);
    meter.watch(*this);
    connect(&figuring, &QTimer::timeout, this, &GalleryWindow::showFigures);

    setTheme(Theme::Light);
    showAll();
    setMoving(true);
}

GalleryWindow::~GalleryWindow() = default;

// Cards.

InstrumentCard* GalleryWindow::newCard(VzWidget* instrument, const QString& name) {
    auto* const card = new InstrumentCard(instrument, name, cards);
    card->setTheme(theme);
    card->setGround(ground);
    connect(card, &InstrumentCard::picked, this, [this, card] { select(card); });
    return card;
}

void GalleryWindow::showAll() {
    std::vector<InstrumentCard*> all;
    setWindowTitle(tr("Tavro gallery"));
    if (side == 0) side = DefaultSide;
    for (const TVzWidgetClass& kind : vzWidgetClasses()) {
        all.push_back(newCard(kind.Create(nullptr), classWords(kind.Name)));
        if (auto* const plain = qobject_cast<VzSVGControl*>(&all.back()->instrument())) showSample(*plain);
    }
    // What has nothing to show by itself stands at the end.
    std::stable_partition(all.begin(), all.end(),
                          [](const auto* card) { return !card->drivenProperty().isEmpty(); });
    setCards(std::move(all), QSize(side, side));
    moveTo(moment);
}

/// Takes cards of a size, or of their own where that is empty.
void GalleryWindow::setCards(std::vector<InstrumentCard*> value, QSize size) {
    for (InstrumentCard* card : value)
        card->setInstrumentSize(size.isEmpty() ? card->instrument().size() : size);
    selected = nullptr;
    cards->setCards(std::move(value));
    followCards();
    select(cards->cards().empty() ? nullptr : cards->cards().front());
    findCards(search->text());
}

void GalleryWindow::select(InstrumentCard* card) {
    if (selected) selected->setSelected(false);
    selected = card;
    if (selected) selected->setSelected(true);
    cards->setTabStop(selected);
    inspecting->setCard(selected);
}

/// From the bar over the cards to the inspector, each from left to right and from top to bottom.
void GalleryWindow::orderTabs() {
    std::vector<QWidget*> order{search};
    order.insert(order.end(), buttons.begin(), buttons.end());
    for (InstrumentCard* card : cards->cards()) {
        order.push_back(card);
        if (card->instrument().focusPolicy() != Qt::NoFocus) order.push_back(&card->instrument());
    }
    for (QWidget* field : inspecting->fields())
        order.push_back(field);
    for (size_t i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

bool GalleryWindow::selectClass(const QString& className) {
    const QString name = className.startsWith(u"TVZ") ? QStringLiteral("Vz") + className.mid(3) : className;
    for (InstrumentCard* card : cards->cards())
        if (name == QLatin1String(card->instrument().metaObject()->className())) {
            select(card);
            scroll->ensureWidgetVisible(card);
            return true;
        }
    return false;
}

void GalleryWindow::findCards(const QString& text) {
    const int count = cards->filter(text);
    found->setText(count == 0 ? tr("No instrument of that name") : QString());
    found->setVisible(count == 0);
}

// The look of everything.

void GalleryWindow::setTheme(Theme value) {
    theme = value;
    QApplication::setPalette(themePalette(theme));
    setPalette(themePalette(theme));
    setStyleSheet(themeSheet(theme));
    inspecting->setTheme(theme);
    for (InstrumentCard* card : cards->cards())
        card->setTheme(theme);
    moving->setIcon(signIcon(isMoving() ? Sign::Pause : Sign::Play, themeColors(theme)));
    showChoices();
}

void GalleryWindow::setGround(Ground value) {
    ground = value;
    for (InstrumentCard* card : cards->cards())
        card->setGround(ground);
    showChoices();
}

void GalleryWindow::setInstrumentSize(int value) {
    side = value;
    for (InstrumentCard* card : cards->cards())
        card->setInstrumentSize({side, side});
    cards->arrange();
    if (selected) scroll->ensureWidgetVisible(selected);
    showChoices();
}

/// The buttons show the look that the window has.
void GalleryWindow::showChoices() {
    const int background = ground == Ground::Checker ? 2 : theme == Theme::Dark ? 1 : 0;
    backgrounds->actions()[background]->setChecked(true);
    for (QAction* action : sizes->actions())
        action->setChecked(action->data().toInt() == side);
}

/// The buttons show what the instruments have in common.
void GalleryWindow::followCards() {
    const auto all = [this](const char* property, const QVariant& wanted) {
        int count = 0;
        const bool isSame = std::ranges::all_of(cards->cards(), [&](const InstrumentCard* card) {
            const QVariant value = card->instrument().property(property);
            count += value.isValid();
            return !value.isValid() || value.toInt() == wanted.toInt();
        });
        return isSame && count > 0;
    };
    simple->setChecked(all("design", 1));
    gradients->setChecked(all("enableGradients", true));
    enabled->setChecked(all("enabled", true));
    const auto& shown = cards->cards();
    const QSize first = shown.empty() ? QSize() : shown.front()->instrument().size();
    const bool isOneSquare =
        first.width() == first.height() && std::ranges::all_of(shown, [&](const InstrumentCard* card) {
            return card->instrument().size() == first;
        });
    side = isOneSquare ? first.width() : 0;
    showChoices();
}

/// Sets a property by its name on every instrument that has it; an enumeration's member by its ordinal.
void GalleryWindow::setOnAll(const char* name, const QVariant& value) {
    for (const InstrumentCard* card : cards->cards()) {
        VzWidget& widget = card->instrument();
        const int index = widget.metaObject()->indexOfProperty(name);
        if (index >= 0) widget.metaObject()->property(index).write(&widget, value);
    }
}

void GalleryWindow::setSimpleDesign(bool value) {
    simple->setChecked(value);
    setOnAll("design", value ? 1 : 0);
}

void GalleryWindow::setGradients(bool value) {
    gradients->setChecked(value);
    setOnAll("enableGradients", value);
}

void GalleryWindow::setInstrumentsEnabled(bool value) {
    enabled->setChecked(value);
    for (const InstrumentCard* card : cards->cards())
        card->instrument().setEnabled(value);
}

// Motion.

void GalleryWindow::setMoving(bool value) {
    if (value) {
        clock.start();
        ticking.start();
        figuring.start();
        meter.restart();
    } else {
        ticking.stop();
        figuring.stop();
    }
    figures->setText(value ? tr("Starting") : tr("Motion stopped"));
    moving->setText(value ? tr("Stop motion") : tr("Start motion"));
    moving->setIcon(signIcon(value ? Sign::Pause : Sign::Play, themeColors(theme)));
}

void GalleryWindow::moveTo(double seconds) {
    moment = seconds;
    for (InstrumentCard* card : cards->cards())
        card->moveTo(moment);
}

void GalleryWindow::tick() {
    moment += double(clock.restart()) / 1000;
    attempt([this] {
        for (InstrumentCard* card : cards->cards())
            if (!card->visibleRegion().isEmpty()) card->moveTo(moment);
    });
}

void GalleryWindow::showFigures() {
    const QString text = meter.takeText();
    if (!text.isEmpty()) figures->setText(text);
}

// Files.

void GalleryWindow::openForm(const QString& file) {
    std::vector<LoadedInstrument> loaded = loadInstruments(file);
    std::vector<InstrumentCard*> all;
    for (LoadedInstrument& one : loaded)
        all.push_back(newCard(one.widget.release(), one.name));
    setMoving(false); // the file's values are to be seen
    setCards(std::move(all), {});
    setWindowTitle(tr("%1 - Tavro gallery").arg(QFileInfo(file).fileName()));
    tell(tr("%n instrument(s) from %1", nullptr, int(loaded.size())).arg(file));
}

void GalleryWindow::saveForm(const QString& file) const {
    Vz::SaveForm(*formOf(cards->cards()), file.toStdU16String());
}

void GalleryWindow::saveSelected(const QString& file) const {
    if (selected) Vz::SaveForm(selected->instrument().component(), file.toStdU16String());
}

void GalleryWindow::exportSelected(const QString& file) const {
    if (selected) exportPicture(selected->instrument(), file, 1);
}

void GalleryWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void GalleryWindow::dropEvent(QDropEvent* event) {
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) return attempt([&] { openForm(url.toLocalFile()); });
}

// Telling the user.

void GalleryWindow::tell(const QString& text) { statusBar()->showMessage(text, MessageMs); }

void GalleryWindow::attempt(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        QMessageBox::warning(this, windowTitle(), QString::fromUtf8(error.what()));
    }
}

QImage GalleryWindow::picture() {
    inspecting->refresh();
    QApplication::processEvents(); // what is laid out later
    return grab().toImage();
}
