// Data sources and data links.
#include "DataSource.h"

#include "DataSet.h"
#include "Fields.h"

namespace mattoni {

namespace {

bool isEditMode(TDataSetState state)
{
    return state == dsEdit || state == dsInsert || state == dsSetKey;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// TDataSource

TDataSource::TDataSource(QObject *owner) : QObject(owner) {}

TDataSource::~TDataSource()
{
    OnStateChange = nullptr;
    OnDataChange = nullptr;
    setDataSet(nullptr);
    while (!m_dataLinks.isEmpty())
        RemoveDataLink(m_dataLinks.last());
}

void TDataSource::setDataSet(TDataSet *dataSet)
{
    if (dataSet == m_dataSet)
        return;
    // The links see the old dataset go (inactive) before the new one comes.
    if (m_dataSet) {
        m_dataSet->RemoveDataSource(this);
        m_dataSet = nullptr;
        UpdateState();
    }
    m_dataSet = dataSet;
    if (dataSet) {
        dataSet->AddDataSource(this);
        UpdateState();
    }
    emit dataSetChanged();
}

void TDataSource::setEnabled(bool value)
{
    if (value == m_enabled)
        return;
    m_enabled = value;
    UpdateState();
}

void TDataSource::Edit()
{
    if (m_autoEdit && m_state == dsBrowse)
        m_dataSet->Edit();
}

bool TDataSource::IsLinkedTo(const TDataSet *dataSet) const
{
    return dataSet && m_dataSet == dataSet;
}

void TDataSource::UpdateState()
{
    const TDataSetState next = m_enabled && m_dataSet ? m_dataSet->State() : dsInactive;
    if (next == m_state)
        return;
    const TDataSetState prior = m_state;
    m_state = next;
    const QList<TDataLink *> links = m_dataLinks;
    for (TDataLink *link : links) {
        if (m_dataLinks.contains(link))
            link->DataEvent(deUpdateState, 0);
    }
    if (OnStateChange)
        OnStateChange(this);
    if (prior == dsInactive && OnDataChange)
        OnDataChange(this, nullptr);
}

void TDataSource::DataEvent(TDataEvent event, qintptr info)
{
    if (event == deUpdateState) {
        UpdateState();
        return;
    }
    if (m_state == dsInactive)
        return;
    const QList<TDataLink *> links = m_dataLinks;
    for (TDataLink *link : links) {
        if (m_dataLinks.contains(link))
            link->DataEvent(event, info);
    }
    switch (event) {
    case deFieldChange:
    case deRecordChange:
        if (OnDataChange)
            OnDataChange(this, reinterpret_cast<TField *>(info));
        break;
    case deDataSetChange:
    case deDataSetScroll:
    case deLayoutChange:
        if (OnDataChange)
            OnDataChange(this, nullptr);
        break;
    case deUpdateRecord:
        if (OnUpdateData)
            OnUpdateData(this);
        break;
    default:
        break;
    }
}

void TDataSource::AddDataLink(TDataLink *link)
{
    m_dataLinks.append(link);
    link->m_dataSource = this;
    link->UpdateState();
}

void TDataSource::RemoveDataLink(TDataLink *link)
{
    m_dataLinks.removeOne(link);
    link->m_dataSource = nullptr;
    link->UpdateState();
}

// ---------------------------------------------------------------------------------------------
// TDataLink

TDataLink::TDataLink() = default;

TDataLink::~TDataLink()
{
    if (m_dataSource) {
        m_dataSource->m_dataLinks.removeOne(this);
        m_dataSource = nullptr;
    }
}

void TDataLink::setDataSource(TDataSource *source)
{
    if (source == m_dataSource)
        return;
    if (m_dataSource)
        m_dataSource->RemoveDataLink(this);
    if (source)
        source->AddDataLink(this);
}

TDataSet *TDataLink::DataSet() const
{
    return m_dataSource ? m_dataSource->DataSet() : nullptr;
}

void TDataLink::setReadOnly(bool value)
{
    if (value == m_readOnly)
        return;
    m_readOnly = value;
    UpdateState();
}

bool TDataLink::Edit()
{
    if (!m_readOnly && m_dataSource)
        m_dataSource->Edit();
    return m_editing;
}

void TDataLink::UpdateRecord()
{
    m_updating = true;
    try {
        UpdateData();
    } catch (...) {
        m_updating = false;
        throw;
    }
    m_updating = false;
}

void TDataLink::DataSetChanged()
{
    RecordChanged(nullptr);
}

void TDataLink::DataSetScrolled(int)
{
    DataSetChanged();
}

void TDataLink::FocusControl(TField **) {}

void TDataLink::LayoutChanged()
{
    DataSetChanged();
}

void TDataLink::RecordChanged(TField *) {}

void TDataLink::UpdateState()
{
    SetActive(m_dataSource && m_dataSource->State() != dsInactive);
    SetEditing(m_dataSource && isEditMode(m_dataSource->State()) && !m_readOnly);
}

void TDataLink::SetActive(bool value)
{
    if (value == m_active)
        return;
    m_active = value;
    ActiveChanged();
}

void TDataLink::SetEditing(bool value)
{
    if (value == m_editing)
        return;
    m_editing = value;
    EditingChanged();
}

void TDataLink::DataEvent(TDataEvent event, qintptr info)
{
    if (event == deUpdateState) {
        UpdateState();
        return;
    }
    if (!m_active)
        return;
    switch (event) {
    case deFieldChange:
    case deRecordChange:
        if (!m_updating)
            RecordChanged(reinterpret_cast<TField *>(info));
        break;
    case deDataSetChange:
        DataSetChanged();
        break;
    case deDataSetScroll:
        DataSetScrolled(int(info));
        break;
    case deLayoutChange:
        LayoutChanged();
        break;
    case deUpdateRecord:
        UpdateRecord();
        break;
    case deCheckBrowseMode:
        CheckBrowseMode();
        break;
    case deFocusControl:
        FocusControl(reinterpret_cast<TField **>(info));
        break;
    default:
        break;
    }
}

// ---------------------------------------------------------------------------------------------
// TFieldDataLink

TFieldDataLink::TFieldDataLink() = default;

void TFieldDataLink::setFieldName(const QString &name)
{
    if (name == m_fieldName)
        return;
    m_fieldName = name;
    UpdateField();
}

bool TFieldDataLink::CanModify() const
{
    return !ReadOnly() && m_field && m_field->CanModify();
}

bool TFieldDataLink::Edit()
{
    if (CanModify())
        TDataLink::Edit();
    return m_editing;
}

void TFieldDataLink::Reset()
{
    RecordChanged(nullptr);
}

void TFieldDataLink::UpdateField()
{
    TField *field = nullptr;
    if (Active() && !m_fieldName.isEmpty())
        field = DataSet()->FieldByName(m_fieldName);
    SetField(field);
}

void TFieldDataLink::SetField(TField *field)
{
    if (field == m_field)
        return;
    m_field = field;
    EditingChanged();
    RecordChanged(nullptr);
}

void TFieldDataLink::SetEditing(bool value)
{
    if (value == m_editing)
        return;
    m_editing = value;
    m_modified = false;
    if (OnEditingChange)
        OnEditingChange(this);
}

void TFieldDataLink::ActiveChanged()
{
    UpdateField();
    if (OnActiveChange)
        OnActiveChange(this);
}

void TFieldDataLink::EditingChanged()
{
    SetEditing(TDataLink::Editing() && CanModify());
}

void TFieldDataLink::FocusControl(TField **field)
{
    if (!field || !*field || *field != m_field || !m_control)
        return;
    // QWidget::setFocus is a slot: the core library focuses a control without knowing widgets.
    if (QMetaObject::invokeMethod(m_control, "setFocus"))
        *field = nullptr;
}

void TFieldDataLink::LayoutChanged()
{
    UpdateField();
}

void TFieldDataLink::RecordChanged(TField *field)
{
    if (field && field != m_field)
        return;
    if (OnDataChange)
        OnDataChange(this);
    m_modified = false;
}

void TFieldDataLink::UpdateData()
{
    if (!m_modified)
        return;
    if (m_field && OnUpdateData)
        OnUpdateData(this);
    m_modified = false;
}

} // namespace mattoni
