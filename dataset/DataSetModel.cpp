// The dataset shown to Qt's item views.
#include "DataSetModel.h"

#include "Exceptions.h"
#include "Fields.h"

namespace mattoni {

class TDataSetModel::Link : public TDataLink
{
public:
    explicit Link(TDataSetModel *model) : m_model(model) {}

protected:
    void ActiveChanged() override { m_model->LinkActiveChanged(); }
    void DataSetChanged() override { m_model->LinkDataSetChanged(); }
    void DataSetScrolled(int) override { m_model->CheckCurrentRow(); }
    void LayoutChanged() override { m_model->LinkLayoutChanged(); }

private:
    TDataSetModel *m_model;
};

TDataSetModel::TDataSetModel(QObject *parent) : QAbstractTableModel(parent), m_link(std::make_unique<Link>(this)) {}

TDataSetModel::~TDataSetModel()
{
    // The link leaves its source quietly: a model being destroyed resets nothing.
    Observe(nullptr);
    m_link.reset();
}

TDataSource *TDataSetModel::DataSource() const
{
    return m_link->DataSource();
}

void TDataSetModel::setDataSource(TDataSource *source)
{
    m_link->setDataSource(source);
    Observe(DataSet());
    Reset();
}

TDataSet *TDataSetModel::DataSet() const
{
    return m_link->Active() ? m_link->DataSet() : nullptr;
}

void TDataSetModel::setFieldNames(const QStringList &names)
{
    if (names == m_fieldNames)
        return;
    m_fieldNames = names;
    Reset();
}

QList<QPointer<TField>> TDataSetModel::CurrentColumns() const
{
    QList<QPointer<TField>> columns;
    TDataSet *ds = DataSet();
    if (!ds)
        return columns;
    if (m_fieldNames.isEmpty()) {
        for (TField *f : ds->Fields()) {
            if (f->Visible())
                columns.append(f);
        }
    } else {
        for (const QString &name : m_fieldNames) {
            if (TField *f = ds->FindField(name))
                columns.append(f);
        }
    }
    return columns;
}

TField *TDataSetModel::FieldAt(int column) const
{
    return column >= 0 && column < m_columns.size() ? m_columns.at(column).data() : nullptr;
}

int TDataSetModel::ColumnOf(const TField *field) const
{
    for (int i = 0; i < m_columns.size(); ++i) {
        if (field && m_columns.at(i) == field)
            return i;
    }
    return -1;
}

TBookmark TDataSetModel::BookmarkAt(int row) const
{
    TDataSet *ds = DataSet();
    return ds ? ds->RowBookmark(row) : TBookmark();
}

int TDataSetModel::RowOf(const TBookmark &bookmark) const
{
    TDataSet *ds = DataSet();
    return ds ? ds->BookmarkRow(bookmark) : -1;
}

int TDataSetModel::CurrentRow() const
{
    TDataSet *ds = DataSet();
    return ds ? ds->CurrentRow() : -1;
}

void TDataSetModel::setCurrentRow(int row)
{
    TDataSet *ds = DataSet();
    if (!ds || row == ds->CurrentRow())
        return;
    ds->setRecNo(row + 1);
}

int TDataSetModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int TDataSetModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant TDataSetModel::data(const QModelIndex &index, int role) const
{
    TDataSet *ds = DataSet();
    TField *field = FieldAt(index.column());
    if (!ds || !field || !index.isValid() || index.row() >= ds->RowCount())
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case ValueRole:
        break;
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(field->Alignment() | Qt::AlignVCenter);
    default:
        return QVariant();
    }
    try {
        TRecordScope scope(ds, index.row());
        if (role == Qt::DisplayRole)
            return field->DisplayText();
        if (role == Qt::EditRole)
            return field->Text();
        return field->Value();
    } catch (const Exception &) {
        // A value that cannot be shown (an OnGetText or a calculation that fails) shows empty.
        return QVariant();
    }
}

bool TDataSetModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    TDataSet *ds = DataSet();
    TField *field = FieldAt(index.column());
    if (!ds || !field || !index.isValid() || (role != Qt::EditRole && role != ValueRole))
        return false;
    try {
        if (index.row() != ds->CurrentRow())
            ds->setRecNo(index.row() + 1);
        if (index.row() != ds->CurrentRow() || !m_link->Edit())
            return false;
        if (role == Qt::EditRole)
            field->setText(value.toString());
        else
            field->setValue(value);
        return true;
    } catch (const Exception &e) {
        emit editError(e.Message());
        return false;
    }
}

Qt::ItemFlags TDataSetModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    const TField *field = FieldAt(index.column());
    if (field && field->CanModify() && !m_link->ReadOnly())
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant TDataSetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal) {
        const TField *field = FieldAt(section);
        if (!field)
            return QVariant();
        if (role == Qt::DisplayRole)
            return field->DisplayLabel();
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(field->Alignment() | Qt::AlignVCenter);
        return QVariant();
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

void TDataSetModel::Observe(TDataSet *dataSet)
{
    if (dataSet == m_observed)
        return;
    if (m_observed)
        m_observed->RemoveRowObserver(this);
    m_observed = dataSet;
    if (dataSet)
        dataSet->AddRowObserver(this);
}

void TDataSetModel::Reset()
{
    beginResetModel();
    m_columns = CurrentColumns();
    TDataSet *ds = DataSet();
    m_rows = ds ? ds->RowCount() : 0;
    m_stale = false;
    endResetModel();
    CheckCurrentRow();
}

bool TDataSetModel::Held()
{
    if (m_stale)
        return true;
    if (m_observed && m_observed->ControlsDisabled()) {
        m_stale = true;
        return true;
    }
    return false;
}

void TDataSetModel::CheckCurrentRow()
{
    const int row = CurrentRow();
    if (row == m_currentRow)
        return;
    m_currentRow = row;
    emit currentRowChanged(row);
}

void TDataSetModel::RowAboutToBeInserted(int row)
{
    m_held = Held();
    if (!m_held)
        beginInsertRows(QModelIndex(), row, row);
}

void TDataSetModel::RowInserted(int)
{
    if (m_held)
        return;
    ++m_rows;
    endInsertRows();
}

void TDataSetModel::RowAboutToBeRemoved(int row)
{
    m_held = Held();
    if (!m_held)
        beginRemoveRows(QModelIndex(), row, row);
}

void TDataSetModel::RowRemoved(int)
{
    if (m_held)
        return;
    --m_rows;
    endRemoveRows();
}

void TDataSetModel::RowAboutToBeMoved(int from, int to)
{
    m_held = Held();
    if (!m_held)
        beginMoveRows(QModelIndex(), from, from, QModelIndex(), to > from ? to + 1 : to);
}

void TDataSetModel::RowMoved(int, int)
{
    if (!m_held)
        endMoveRows();
}

void TDataSetModel::RowChanged(int row)
{
    if (Held() || m_columns.isEmpty() || row < 0 || row >= m_rows)
        return;
    emit dataChanged(index(row, 0), index(row, int(m_columns.size()) - 1));
}

void TDataSetModel::RowsAboutToBeReordered()
{
    m_held = Held();
    if (m_held)
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    m_reorderIndexes.clear();
    m_reorderBookmarks.clear();
    for (const QModelIndex &i : persistentIndexList()) {
        m_reorderIndexes.append(i);
        m_reorderBookmarks.append(BookmarkAt(i.row()));
    }
}

void TDataSetModel::RowsReordered()
{
    if (m_held)
        return;
    for (int i = 0; i < m_reorderIndexes.size(); ++i) {
        const QModelIndex old = m_reorderIndexes.at(i);
        const int row = RowOf(m_reorderBookmarks.at(i));
        changePersistentIndex(old, row >= 0 ? index(row, old.column()) : QModelIndex());
    }
    m_reorderIndexes.clear();
    m_reorderBookmarks.clear();
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void TDataSetModel::RowsAboutToBeReset()
{
    m_held = Held();
    if (!m_held)
        beginResetModel();
}

void TDataSetModel::RowsReset()
{
    if (m_held)
        return;
    m_columns = CurrentColumns();
    TDataSet *ds = DataSet();
    m_rows = ds ? ds->RowCount() : 0;
    endResetModel();
    CheckCurrentRow();
}

void TDataSetModel::LinkActiveChanged()
{
    Observe(m_link->Active() ? m_link->DataSet() : nullptr);
    Reset();
}

void TDataSetModel::LinkDataSetChanged()
{
    TDataSet *ds = DataSet();
    // After controls were disabled, or when a dataset changed its rows without telling.
    if (m_stale || !ds || m_rows != ds->RowCount() || m_columns != CurrentColumns())
        Reset();
    else
        CheckCurrentRow();
}

void TDataSetModel::LinkLayoutChanged()
{
    if (m_stale || m_columns != CurrentColumns()) {
        Reset();
        return;
    }
    if (!m_columns.isEmpty()) {
        emit headerDataChanged(Qt::Horizontal, 0, int(m_columns.size()) - 1);
        if (m_rows > 0)
            emit dataChanged(index(0, 0), index(m_rows - 1, int(m_columns.size()) - 1));
    }
    CheckCurrentRow();
}

} // namespace mattoni
