// Pieces the demo's pages share: the intro line of a page, grid columns, the pictures of the
// dataset states, errors shown to the user, and a data-entry toolbar built on the library's
// dataset actions.
#pragma once

#include "AMAdvLed.h"
#include "DBGrid.h"
#include "DBToolClass.h"

#include <QToolBar>

#include <functional>
#include <initializer_list>
#include <map>

class QAction;
class QLabel;
class QLineEdit;

namespace mattoni {
class TCustomImageList;
class TDataSet;
class TDataSource;
} // namespace mattoni

// The short line that tells what a page is for.
QLabel *IntroLabel(const QString &text);

struct ColumnLook
{
    const char *field;
    const char *title;
    int width;
};
void AddColumns(mattoni::TCustomDBGrid *grid, std::initializer_list<ColumnLook> looks);

// A grade average with two decimals.
void ShowAverage(mattoni::TField *field);

// One picture per dataset state, from dsInactive on, at the list's size.
void DrawStateImages(mattoni::TCustomImageList *images);

// Runs an action of the user; an error raised by it goes to BoxErrore (EAbort, the silent one,
// to nobody).
void RunGuarded(const std::function<void()> &action);

// A toolbar of dataset actions (TDbAction) for one data source: the state button first, then one
// button per action, enabled as the dataset's state allows. OnBeforeAction may carry an action
// out itself; OnAfterAction learns whether it failed.
class DataToolbar : public QToolBar
{
public:
    DataToolbar(mattoni::TDataSource *source, mattoni::TDbActionSet actions, QWidget *parent = nullptr);

    mattoni::TDBStateButton *StateButton() const { return m_state; }
    QAction *Action(mattoni::TDbAction action) const;
    // The text dbSearch looks for in SearchField.
    QLineEdit *SearchBox() const { return m_search; }
    QString SearchField;

    std::function<void(QObject *Sender, mattoni::TDbAction Action, bool &ActionIsDone)> OnBeforeAction;
    std::function<void(QObject *Sender, mattoni::TDbAction Action, bool &Error)> OnAfterAction;

private:
    void Run(mattoni::TDbAction action);
    void Search();
    void UpdateActions();

    mattoni::TDataSource *m_source;
    mattoni::TDBStateButton *m_state;
    QLineEdit *m_search = nullptr;
    mattoni::TToolDataLink m_link;
    std::map<mattoni::TDbAction, QAction *> m_actions;
};

// The look of the LEDs chosen in "Impostazioni", kept in the settings store (section "Aspetto")
// and followed by every LED of the demo that asks for it.
class LedLook : public QObject
{
    Q_OBJECT
public:
    static LedLook &Instance();

    mattoni::TAMAdvLed::TLedType LedType() const { return m_type; }
    mattoni::TAMAdvLed::TBorder BorderStyle() const { return m_border; }
    bool Ctl3D() const { return m_ctl3D; }
    void Set(mattoni::TAMAdvLed::TLedType type, mattoni::TAMAdvLed::TBorder border, bool ctl3D);

    // The LED takes the look now and at every change.
    void Follow(mattoni::TAMAdvLed *led);

signals:
    void changed();

private:
    LedLook();
    void Apply(mattoni::TAMAdvLed *led) const;

    mattoni::TAMAdvLed::TLedType m_type = mattoni::TAMAdvLed::ltRound;
    mattoni::TAMAdvLed::TBorder m_border = mattoni::TAMAdvLed::brLowered;
    bool m_ctl3D = true;
};
