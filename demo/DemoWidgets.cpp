// Pieces the demo's pages share.
#include "DemoWidgets.h"

#include "DataSet.h"
#include "DataSource.h"
#include "Exceptions.h"
#include "Fields.h"
#include "ImageList.h"
#include "fm_MessageBox.h"
#include "winutil.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>

using namespace mattoni;

QLabel *IntroLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("QLabel { color: palette(window-text); padding: 2px 0 6px 0; }"));
    return label;
}

void AddColumns(TCustomDBGrid *grid, std::initializer_list<ColumnLook> looks)
{
    for (const ColumnLook &look : looks) {
        TColumn *column = grid->Columns().Add();
        column->setFieldName(QLatin1String(look.field));
        column->Title()->setCaption(QString::fromUtf8(look.title));
        column->setWidth(look.width);
    }
}

void ShowAverage(TField *field)
{
    if (auto *number = qobject_cast<TNumericField *>(field))
        number->setDisplayFormat(QStringLiteral("0.00"));
}

void DrawStateImages(TCustomImageList *images)
{
    // A coloured tile with the state's initial: inactive, lettura, redazione, inserimento, chiave.
    struct Tile
    {
        QColor colour;
        const char *letter;
    };
    const Tile tiles[] = {{QColor(0x9e, 0x9e, 0x9e), "-"}, {QColor(0x2e, 0x7d, 0x32), "L"},
                          {QColor(0xef, 0x6c, 0x00), "R"}, {QColor(0x15, 0x65, 0xc0), "I"},
                          {QColor(0x6a, 0x1b, 0x9a), "K"}};
    for (const Tile &tile : tiles) {
        QPixmap image(images->Width(), images->Height());
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(tile.colour);
        p.drawRoundedRect(QRectF(image.rect()).adjusted(1, 1, -1, -1), 4, 4);
        QFont font = p.font();
        font.setBold(true);
        font.setPixelSize(images->Height() - 8);
        p.setFont(font);
        p.setPen(Qt::white);
        p.drawText(image.rect(), Qt::AlignCenter, QLatin1String(tile.letter));
        p.end();
        images->Add(image);
    }
}

void RunGuarded(const std::function<void()> &action)
{
    try {
        action();
    } catch (const EAbort &) {
    } catch (const Exception &e) {
        BoxErrore(e.Message());
    }
}

namespace {

struct ActionLook
{
    TDbAction action;
    const char *text;
    QStyle::StandardPixmap icon;
    const char *shortcut;
};

const ActionLook actionLooks[] = {
    {dbPrev, "Precedente", QStyle::SP_ArrowUp, "Ctrl+Up"},
    {dbSucc, "Successivo", QStyle::SP_ArrowDown, "Ctrl+Down"},
    {dbInsert, "Nuovo", QStyle::SP_FileIcon, "Ctrl+N"},
    {dbEdit, "Modifica", QStyle::SP_FileDialogDetailedView, "F2"},
    {dbPost, "Salva", QStyle::SP_DialogSaveButton, "Ctrl+S"},
    {dbCancel, "Annulla", QStyle::SP_DialogCancelButton, nullptr},
    {dbDelete, "Elimina", QStyle::SP_TrashIcon, nullptr},
    {dbRefresh, "Aggiorna", QStyle::SP_BrowserReload, "F5"},
};

} // namespace

DataToolbar::DataToolbar(TDataSource *source, TDbActionSet actions, QWidget *parent)
    : QToolBar(parent)
    , m_source(source)
    , m_state(new TDBStateButton)
{
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setIconSize(QSize(16, 16));
    auto *images = new TCustomImageList(20, 20, this);
    DrawStateImages(images);
    m_state->setImages(images);
    m_state->setDataSource(source);
    addWidget(m_state);
    addSeparator();
    for (const ActionLook &look : actionLooks) {
        if (!actions.Contains(look.action))
            continue;
        if (look.action == dbInsert || look.action == dbRefresh)
            addSeparator();
        QAction *action = addAction(QApplication::style()->standardIcon(look.icon), QString::fromUtf8(look.text));
        if (look.shortcut)
            action->setShortcut(QKeySequence(QString::fromLatin1(look.shortcut)));
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, [this, a = look.action] { Run(a); });
        m_actions[look.action] = action;
    }
    if (actions.Contains(dbSearch)) {
        addSeparator();
        m_search = new QLineEdit;
        m_search->setPlaceholderText(QStringLiteral("Cerca per cognome"));
        m_search->setClearButtonEnabled(true);
        m_search->setMaximumWidth(200);
        addWidget(m_search);
        connect(m_search, &QLineEdit::textEdited, this, [this] { Search(); });
    }
    m_link.OnActiveChanged = [this] { UpdateActions(); };
    m_link.OnEditingChanged = [this] { UpdateActions(); };
    m_link.OnDataSetChanged = [this] { UpdateActions(); };
    m_link.setDataSource(source);
    UpdateActions();
}

QAction *DataToolbar::Action(TDbAction action) const
{
    const auto found = m_actions.find(action);
    return found == m_actions.end() ? nullptr : found->second;
}

void DataToolbar::Run(TDbAction action)
{
    TDataSet *ds = m_source->DataSet();
    if (!ds)
        return;
    bool done = false;
    bool error = false;
    try {
        if (OnBeforeAction)
            OnBeforeAction(this, action, done);
        if (!done) {
            switch (action) {
            case dbPrev: ds->Prior(); break;
            case dbSucc: ds->Next(); break;
            case dbInsert: ds->Insert(); break;
            case dbEdit: ds->Edit(); break;
            case dbPost: ds->Post(); break;
            case dbCancel: ds->Cancel(); break;
            case dbDelete: ds->Delete(); break;
            case dbRefresh:
                ds->Close();
                ds->Open();
                break;
            default: break;
            }
        }
    } catch (const EAbort &) {
        error = true;
    } catch (const Exception &e) {
        error = true;
        BoxErrore(e.Message());
    }
    if (OnAfterAction)
        OnAfterAction(this, action, error);
}

void DataToolbar::Search()
{
    TDataSet *ds = m_source->DataSet();
    const QString text = m_search->text().trimmed();
    if (!ds || !ds->Active() || text.isEmpty() || SearchField.isEmpty())
        return;
    RunGuarded([&] {
        ds->CheckBrowseMode();
        ds->Locate(SearchField, text, TLocateOptions(loCaseInsensitive) | loPartialKey);
    });
}

void DataToolbar::UpdateActions()
{
    const TDataSet *ds = m_source->DataSet();
    const bool active = ds && ds->Active();
    const bool browsing = active && ds->State() == dsBrowse;
    const bool editing = active && (ds->State() == dsEdit || ds->State() == dsInsert);
    const bool empty = !active || ds->IsEmpty();
    const auto enable = [this](TDbAction a, bool on) {
        if (QAction *action = Action(a))
            action->setEnabled(on);
    };
    enable(dbPrev, browsing && !ds->Bof());
    enable(dbSucc, browsing && !ds->Eof());
    enable(dbInsert, browsing);
    enable(dbEdit, browsing && !empty);
    enable(dbPost, editing);
    enable(dbCancel, editing);
    enable(dbDelete, browsing && !empty);
    enable(dbRefresh, browsing);
    if (m_search)
        m_search->setEnabled(browsing);
}

LedLook &LedLook::Instance()
{
    static LedLook look;
    return look;
}

LedLook::LedLook()
{
    bool ok = false;
    const int type = LoadRegistryString(QStringLiteral("Aspetto"), QStringLiteral("FormaLed")).toInt(&ok);
    if (ok && type >= TAMAdvLed::ltDiamond && type <= TAMAdvLed::ltCheck)
        m_type = TAMAdvLed::TLedType(type);
    const int border = LoadRegistryString(QStringLiteral("Aspetto"), QStringLiteral("BordoLed")).toInt(&ok);
    if (ok && border >= TAMAdvLed::brDefault && border <= TAMAdvLed::brLowered)
        m_border = TAMAdvLed::TBorder(border);
    m_ctl3D = LoadRegistryString(QStringLiteral("Aspetto"), QStringLiteral("Led3D")) != QLatin1String("0");
}

void LedLook::Set(TAMAdvLed::TLedType type, TAMAdvLed::TBorder border, bool ctl3D)
{
    m_type = type;
    m_border = border;
    m_ctl3D = ctl3D;
    SaveRegistryString(QStringLiteral("Aspetto"), QStringLiteral("FormaLed"), QString::number(type));
    SaveRegistryString(QStringLiteral("Aspetto"), QStringLiteral("BordoLed"), QString::number(border));
    SaveRegistryString(QStringLiteral("Aspetto"), QStringLiteral("Led3D"), ctl3D ? QStringLiteral("1") : QStringLiteral("0"));
    emit changed();
}

void LedLook::Follow(TAMAdvLed *led)
{
    Apply(led);
    connect(this, &LedLook::changed, led, [this, led] { Apply(led); });
}

void LedLook::Apply(TAMAdvLed *led) const
{
    led->setLedType(m_type);
    // The border before the 3-D switch: a raised or lowered border turns 3-D on again.
    led->setBorderStyle(m_border);
    led->setCtl3D(m_ctl3D);
}
