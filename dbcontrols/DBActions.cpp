// Standard dataset actions and their dispatch to the focused data-aware control.
#include "DBActions.h"

#include "DataSet.h"

#include <QApplication>
#include <QWidget>

namespace mattoni {

TDataSetAction::TDataSetAction(QObject *parent)
    : QAction(parent)
{
    const auto follow = [this] { UpdateTarget(m_link.DataSource()); };
    m_link.OnActiveChanged = follow;
    m_link.OnEditingChanged = follow;
    m_link.OnDataSetChanged = follow;
    connect(this, &QAction::triggered, this, &TDataSetAction::Triggered);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) { FocusChanged(now); });
    // Without a target nothing can be done yet.
    setEnabled(false);
}

TDataSetAction::~TDataSetAction() = default;

void TDataSetAction::setDataSource(TDataSource *value)
{
    m_dataSource = value;
    m_link.setDataSource(value);
    if (value)
        UpdateTarget(value);
    else
        FocusChanged(QApplication::focusWidget());
}

TDataSet *TDataSetAction::TargetDataSet(QObject *Target)
{
    if (auto *source = qobject_cast<TDataSource *>(Target))
        return source->Enabled() ? source->DataSet() : nullptr;
    return qobject_cast<TDataSet *>(Target);
}

bool TDataSetAction::HandlesTarget(QObject *Target) const
{
    if (!Target)
        return false;
    // An action bound to a source works on that source only.
    if (m_dataSource)
        return Target == m_dataSource.data() || Target == m_dataSource->DataSet();
    return TargetDataSet(Target) != nullptr;
}

void TDataSetAction::ExecuteTarget(QObject *Target)
{
    if (TDataSet *dataSet = TargetDataSet(Target); dataSet && CanExecute(dataSet))
        Execute(dataSet);
}

void TDataSetAction::UpdateTarget(QObject *Target)
{
    // Without a source of its own the action follows the source of the control that asked last,
    // so that it stays enabled as that dataset moves and changes state.
    if (auto *source = qobject_cast<TDataSource *>(Target); source && !m_dataSource && m_link.DataSource() != source)
        m_link.setDataSource(source);
    TDataSet *dataSet = TargetDataSet(Target);
    setEnabled(dataSet && CanExecute(dataSet));
}

void TDataSetAction::Triggered()
{
    if (m_dataSource)
        ExecuteTarget(m_dataSource);
    else
        DispatchDataSetAction(QApplication::focusWidget(), this, true);
}

void TDataSetAction::FocusChanged(QWidget *now)
{
    if (m_dataSource)
        return;
    if (!DispatchDataSetAction(now, this, false)) {
        m_link.setDataSource(nullptr);
        setEnabled(false);
    }
}

bool DispatchDataSetAction(QWidget *Control, QAction *Action, bool execute)
{
    const char *method = execute ? "ExecuteAction" : "UpdateAction";
    for (QWidget *w = Control; w; w = w->parentWidget()) {
        const QMetaObject *meta = w->metaObject();
        if (meta->indexOfMethod(QByteArray(method) + "(QAction*)") < 0)
            continue;
        bool taken = false;
        QMetaObject::invokeMethod(w, method, Qt::DirectConnection, Q_RETURN_ARG(bool, taken), Q_ARG(QAction *, Action));
        if (taken)
            return true;
    }
    return false;
}

namespace {

// A dataset action goes to the link's source when it may work on it.
bool PassToSource(const TDataLink &Link, QAction *Action, void (TDataSetAction::*step)(QObject *))
{
    auto *action = qobject_cast<TDataSetAction *>(Action);
    if (!action || !Link.DataSource() || !action->HandlesTarget(Link.DataSource()))
        return false;
    (action->*step)(Link.DataSource());
    return true;
}

} // namespace

bool DataLinkExecuteAction(const TDataLink &Link, QAction *Action)
{
    return PassToSource(Link, Action, &TDataSetAction::ExecuteTarget);
}

bool DataLinkUpdateAction(const TDataLink &Link, QAction *Action)
{
    return PassToSource(Link, Action, &TDataSetAction::UpdateTarget);
}

// --- The commands ------------------------------------------------------------------------------

namespace {

bool Browsing(TDataSet *d) { return d->Active() && d->State() == dsBrowse; }
bool Editing(TDataSet *d) { return d->State() == dsEdit || d->State() == dsInsert; }

} // namespace

#define MATTONI_DATASET_ACTION(Name, caption, can, run)                                                      \
    Name::Name(QObject *parent)                                                                              \
        : TDataSetAction(parent)                                                                             \
    {                                                                                                        \
        setText(QStringLiteral(caption));                                                                    \
    }                                                                                                        \
    bool Name::CanExecute(TDataSet *d) const { return can; }                                                 \
    void Name::Execute(TDataSet *d) { run; }

MATTONI_DATASET_ACTION(TDataSetFirst, "Primo", d->Active() && !d->Bof(), d->First())
MATTONI_DATASET_ACTION(TDataSetPrior, "Precedente", d->Active() && !d->Bof(), d->Prior())
MATTONI_DATASET_ACTION(TDataSetNext, "Successivo", d->Active() && !d->Eof(), d->Next())
MATTONI_DATASET_ACTION(TDataSetLast, "Ultimo", d->Active() && !d->Eof(), d->Last())
MATTONI_DATASET_ACTION(TDataSetInsert, "Nuovo", Browsing(d) && d->CanModify(), d->Insert())
MATTONI_DATASET_ACTION(TDataSetDelete, "Elimina", Browsing(d) && d->CanModify() && !d->IsEmpty(), d->Delete())
MATTONI_DATASET_ACTION(TDataSetEdit, "Modifica", Browsing(d) && d->CanModify() && !d->IsEmpty(), d->Edit())
MATTONI_DATASET_ACTION(TDataSetPost, "Salva", Editing(d), d->Post())
MATTONI_DATASET_ACTION(TDataSetCancel, "Annulla", Editing(d), d->Cancel())

#undef MATTONI_DATASET_ACTION

} // namespace mattoni
