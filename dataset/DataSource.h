// TDataSource joins a dataset to the controls that show it; each control owns a TDataLink (or a
// TFieldDataLink for one field) whose virtual notifications it overrides.
#pragma once

#include "DB.h"
#include "DataSet.h"
#include "mattoni_core_export.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

namespace mattoni {

class TDataLink;
class TDataSet;
class TField;

class MATTONI_CORE_EXPORT TDataSource : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool AutoEdit READ AutoEdit WRITE setAutoEdit)
    Q_PROPERTY(mattoni::TDataSet *DataSet READ DataSet WRITE setDataSet NOTIFY dataSetChanged)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)

public:
    explicit TDataSource(QObject *owner = nullptr);
    ~TDataSource() override;

    // Whether a control's Edit may switch a browsing dataset to dsEdit (default true).
    bool AutoEdit() const { return m_autoEdit; }
    void setAutoEdit(bool value) { m_autoEdit = value; }
    TDataSet *DataSet() const { return m_dataSet; }
    void setDataSet(TDataSet *dataSet);
    // A disabled source shows its links an inactive dataset.
    bool Enabled() const { return m_enabled; }
    void setEnabled(bool value);
    // The dataset's state; dsInactive without a dataset or when disabled.
    TDataSetState State() const { return m_state; }
    // Edit on the dataset when AutoEdit is on and it is browsing.
    void Edit();
    bool IsLinkedTo(const TDataSet *dataSet) const;
    QList<TDataLink *> DataLinks() const { return m_dataLinks; }

    std::function<void(TDataSource *Sender)> OnStateChange;
    // After a change of record, of a field (Field) or of the whole dataset (Field null).
    std::function<void(TDataSource *Sender, TField *Field)> OnDataChange;
    std::function<void(TDataSource *Sender)> OnUpdateData;

signals:
    void dataSetChanged();

private:
    friend class TDataSet;
    friend class TDataLink;

    void DataEvent(TDataEvent event, qintptr info);
    void UpdateState();
    void AddDataLink(TDataLink *link);
    void RemoveDataLink(TDataLink *link);

    TDataSet *m_dataSet = nullptr;
    QMetaObject::Connection m_dataSetWatch;
    bool m_autoEdit = true;
    bool m_enabled = true;
    TDataSetState m_state = dsInactive;
    QList<TDataLink *> m_dataLinks;
};

class MATTONI_CORE_EXPORT TDataLink
{
public:
    TDataLink();
    virtual ~TDataLink();
    TDataLink(const TDataLink &) = delete;
    TDataLink &operator=(const TDataLink &) = delete;

    TDataSource *DataSource() const { return m_dataSource; }
    void setDataSource(TDataSource *source);
    TDataSet *DataSet() const;
    // The source's dataset is open (and the source enabled).
    bool Active() const { return m_active; }
    // The dataset is in dsEdit, dsInsert or dsSetKey and the link is not read-only.
    bool Editing() const { return m_editing; }
    bool ReadOnly() const { return m_readOnly; }
    void setReadOnly(bool value);
    // Asks the source to edit (AutoEdit permitting) and tells whether the link is now editing.
    bool Edit();
    // Runs UpdateData, with RecordChanged notifications of the link's own writes suppressed.
    void UpdateRecord();

protected:
    virtual void ActiveChanged() {}
    virtual void CheckBrowseMode() {}
    // Defaults to RecordChanged(nullptr).
    virtual void DataSetChanged();
    // Defaults to DataSetChanged.
    virtual void DataSetScrolled(int distance);
    virtual void EditingChanged() {}
    virtual void FocusControl(TField **field);
    // Defaults to DataSetChanged.
    virtual void LayoutChanged();
    // Field is the changed field, or nullptr when the whole record changed.
    virtual void RecordChanged(TField *field);
    // Writes the control's pending value into the fields.
    virtual void UpdateData() {}

private:
    friend class TDataSource;

    void DataEvent(TDataEvent event, qintptr info);
    void UpdateState();
    void SetActive(bool value);
    void SetEditing(bool value);

    TDataSource *m_dataSource = nullptr;
    bool m_active = false;
    bool m_editing = false;
    bool m_readOnly = false;
    bool m_updating = false;
};

// The link of a control that shows one field: it finds the field by name while the dataset is
// open and tells the control when that field (or the record) changes.
class MATTONI_CORE_EXPORT TFieldDataLink : public TDataLink
{
public:
    TFieldDataLink();

    QString FieldName() const { return m_fieldName; }
    void setFieldName(const QString &name);
    // The field of that name while the dataset is open; nullptr otherwise.
    TField *Field() const { return m_field; }
    // The control the link serves, for FocusControl.
    QObject *Control() const { return m_control; }
    void setControl(QObject *control) { m_control = control; }
    // Not read-only, with a field that can be modified.
    bool CanModify() const;
    bool Editing() const { return m_editing; }
    // Edit when the link can modify; whether it is now editing.
    bool Edit();
    // The control changed its value; UpdateData will then write it.
    void Modified() { m_modified = true; }
    // Shows the field's value again, dropping the control's pending change.
    void Reset();

    std::function<void(TFieldDataLink *Sender)> OnActiveChange;
    std::function<void(TFieldDataLink *Sender)> OnDataChange;
    std::function<void(TFieldDataLink *Sender)> OnEditingChange;
    std::function<void(TFieldDataLink *Sender)> OnUpdateData;

protected:
    void ActiveChanged() override;
    void EditingChanged() override;
    void FocusControl(TField **field) override;
    void LayoutChanged() override;
    void RecordChanged(TField *field) override;
    void UpdateData() override;

private:
    void UpdateField();
    void SetField(TField *field);
    void SetEditing(bool value);

    QString m_fieldName;
    TField *m_field = nullptr;
    QPointer<QObject> m_control;
    bool m_editing = false;
    bool m_modified = false;
};

} // namespace mattoni
