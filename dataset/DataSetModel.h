// TDataSetModel: a dataset shown to Qt's item views. One row per record in the dataset's current
// order (filter applied, the new record of dsInsert included), one column per field. Rows are
// read without moving the dataset's cursor; inserts, deletes, edits, index and filter changes
// reach the views as the model's own signals.
#pragma once

#include "DB.h"
#include "DataSet.h"
#include "DataSource.h"
#include "mattoni_core_export.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QStringList>

#include <memory>

namespace mattoni {

class MATTONI_CORE_EXPORT TDataSetModel : public QAbstractTableModel, private TDataSetRowObserver
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(QStringList FieldNames READ FieldNames WRITE setFieldNames)
    Q_PROPERTY(int CurrentRow READ CurrentRow WRITE setCurrentRow NOTIFY currentRowChanged)

public:
    enum Role {
        // The field's value (Null for a null field).
        ValueRole = Qt::UserRole + 1,
    };

    explicit TDataSetModel(QObject *parent = nullptr);
    ~TDataSetModel() override;

    TDataSource *DataSource() const;
    void setDataSource(TDataSource *source);
    TDataSet *DataSet() const;
    // The fields shown, by name, in order; empty (the default) shows the visible fields.
    QStringList FieldNames() const { return m_fieldNames; }
    void setFieldNames(const QStringList &names);

    TField *FieldAt(int column) const;
    int ColumnOf(const TField *field) const;
    TBookmark BookmarkAt(int row) const;
    int RowOf(const TBookmark &bookmark) const;
    // The row of the dataset's current record; setting it moves the cursor there.
    int CurrentRow() const;
    void setCurrentRow(int row);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    // DisplayRole: the field's DisplayText; EditRole: its Text; ValueRole: its Value;
    // TextAlignmentRole: its Alignment.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    // Moves to the row, puts the dataset in dsEdit (as the data source's AutoEdit allows) and
    // assigns the text (EditRole) or the value (ValueRole). A refused value emits editError.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    // Horizontal: the fields' DisplayLabel.
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

signals:
    void currentRowChanged(int row);
    // A value the dataset refused in setData, with the error's message.
    void editError(const QString &message);

private:
    class Link;
    friend class Link;

    void RowAboutToBeInserted(int row) override;
    void RowInserted(int row) override;
    void RowAboutToBeRemoved(int row) override;
    void RowRemoved(int row) override;
    void RowAboutToBeMoved(int from, int to) override;
    void RowMoved(int from, int to) override;
    void RowChanged(int row) override;
    void RowsAboutToBeReordered() override;
    void RowsReordered() override;
    void RowsAboutToBeReset() override;
    void RowsReset() override;

    // Structural row signals are held back while the dataset's controls are disabled; the
    // model resets once they are enabled again.
    bool Held();
    void Reset();
    void Observe(TDataSet *dataSet);
    QList<QPointer<TField>> CurrentColumns() const;
    void LinkActiveChanged();
    void LinkDataSetChanged();
    void LinkLayoutChanged();
    void CheckCurrentRow();

    std::unique_ptr<Link> m_link;
    QPointer<TDataSet> m_observed;
    QStringList m_fieldNames;
    // Fields of closed datasets go away: the columns watch them.
    QList<QPointer<TField>> m_columns;
    int m_rows = 0;
    bool m_stale = false;
    // Whether the change between a pair of row notifications is held back.
    bool m_held = false;
    int m_currentRow = -1;
    QList<QPersistentModelIndex> m_reorderIndexes;
    QList<TBookmark> m_reorderBookmarks;
};

} // namespace mattoni
