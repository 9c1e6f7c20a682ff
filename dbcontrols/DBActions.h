// Standard dataset actions: menu and toolbar commands (first, prior, next, last, insert, delete,
// edit, post, cancel) that work on a data source of their own or, without one, on the dataset of
// the focused data-aware control, which takes them through its ExecuteAction/UpdateAction.
#pragma once

#include "DBToolClass.h"
#include "DataSource.h"
#include "mattoni_widgets_export.h"

#include <QAction>
#include <QPointer>

namespace mattoni {

class MATTONI_WIDGETS_EXPORT TDataSetAction : public QAction
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)

public:
    explicit TDataSetAction(QObject *parent = nullptr);
    ~TDataSetAction() override;

    // The source the action works on; none means the focused data-aware control's source.
    TDataSource *DataSource() const { return m_dataSource; }
    void setDataSource(TDataSource *value);

    // Whether the action can work on Target: a data source, or a dataset linked to none.
    virtual bool HandlesTarget(QObject *Target) const;
    // Carries the action out on Target's dataset.
    void ExecuteTarget(QObject *Target);
    // Enables the action as Target's dataset allows.
    void UpdateTarget(QObject *Target);

protected:
    // Whether the command applies to the dataset now, and the command itself.
    virtual bool CanExecute(TDataSet *DataSet) const = 0;
    virtual void Execute(TDataSet *DataSet) = 0;

private:
    void Triggered();
    void FocusChanged(QWidget *now);
    static TDataSet *TargetDataSet(QObject *Target);

    QPointer<TDataSource> m_dataSource;
    // Follows the own source, so that the action is enabled as its dataset moves and changes state.
    TToolDataLink m_link;
};

// Asks a data-aware control (or the nearest one among its parents) to take Action through its
// ExecuteAction or UpdateAction; false when none takes it.
MATTONI_WIDGETS_EXPORT bool DispatchDataSetAction(QWidget *Control, QAction *Action, bool execute);
// The data-aware controls' side: hands a dataset action to the source of their link.
MATTONI_WIDGETS_EXPORT bool DataLinkExecuteAction(const TDataLink &Link, QAction *Action);
MATTONI_WIDGETS_EXPORT bool DataLinkUpdateAction(const TDataLink &Link, QAction *Action);

#define MATTONI_DATASET_ACTION(Name)                                                                         \
    class MATTONI_WIDGETS_EXPORT Name : public TDataSetAction                                                \
    {                                                                                                        \
        Q_OBJECT                                                                                             \
    public:                                                                                                  \
        explicit Name(QObject *parent = nullptr);                                                            \
                                                                                                             \
    protected:                                                                                               \
        bool CanExecute(TDataSet *DataSet) const override;                                                   \
        void Execute(TDataSet *DataSet) override;                                                            \
    };

MATTONI_DATASET_ACTION(TDataSetFirst)
MATTONI_DATASET_ACTION(TDataSetPrior)
MATTONI_DATASET_ACTION(TDataSetNext)
MATTONI_DATASET_ACTION(TDataSetLast)
MATTONI_DATASET_ACTION(TDataSetInsert)
MATTONI_DATASET_ACTION(TDataSetDelete)
MATTONI_DATASET_ACTION(TDataSetEdit)
MATTONI_DATASET_ACTION(TDataSetPost)
MATTONI_DATASET_ACTION(TDataSetCancel)

#undef MATTONI_DATASET_ACTION

} // namespace mattoni
