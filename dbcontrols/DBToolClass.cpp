// Dataset state controls.
#include "DBToolClass.h"

#include "Graphics.h"
#include "ImageList.h"

namespace mattoni {

QString DataSetStateName(TDataSetState state)
{
    switch (state) {
    case dsInactive: return QStringLiteral("Inattivo");
    case dsBrowse: return QStringLiteral("Modalità lettura");
    case dsEdit: return QStringLiteral("Modalità redazione");
    case dsInsert: return QStringLiteral("Modalità inserimento");
    default: return QString();
    }
}

// ---------------------------------------------------------------------------------------------
// TToolDataLink

void TToolDataLink::EditingChanged()
{
    if (OnEditingChanged)
        OnEditingChanged();
}

void TToolDataLink::DataSetChanged()
{
    if (OnDataSetChanged)
        OnDataSetChanged();
}

void TToolDataLink::ActiveChanged()
{
    if (OnActiveChanged)
        OnActiveChanged();
}

// ---------------------------------------------------------------------------------------------
// Watching the components a control refers to: "removed from the form" is their destruction.

namespace {

void Watch(QObject *control, QMetaObject::Connection &watch, QObject *component,
           const std::function<void(QObject *)> &removed)
{
    QObject::disconnect(watch);
    if (component)
        watch = QObject::connect(component, &QObject::destroyed, control, removed);
}

} // namespace

// ---------------------------------------------------------------------------------------------
// TDBStateButton

TDBStateButton::TDBStateButton(QWidget *owner)
    : QToolButton(owner), m_dataLink(std::make_unique<TToolDataLink>()), m_changeLink(std::make_unique<TChangeLink>())
{
    m_dataLink->OnEditingChanged = [this] { StateChange(); };
    m_dataLink->OnActiveChanged = [this] { StateChange(); };
    // A toolbar redraws its buttons when its image list changes.
    m_changeLink->OnChange = [this](QObject *) { RefreshControl(); };
}

TDBStateButton::~TDBStateButton()
{
    m_dataLink.reset();
}

TDataSource *TDBStateButton::DataSource() const
{
    return m_dataLink->DataSource();
}

void TDBStateButton::setDataSource(TDataSource *value)
{
    m_dataLink->setDataSource(value);
    Watch(this, m_sourceWatch, value, [this](QObject *c) { ComponentRemoved(c); });
}

void TDBStateButton::setImages(TCustomImageList *value)
{
    if (value == m_images)
        return;
    if (m_changeLink->Sender())
        m_changeLink->Sender()->UnRegisterChanges(m_changeLink.get());
    m_images = value;
    if (value)
        value->RegisterChanges(m_changeLink.get());
    Watch(this, m_imagesWatch, value, [this](QObject *c) { ComponentRemoved(c); });
    RefreshControl();
}

void TDBStateButton::setImageIndex(int value)
{
    if (value == m_imageIndex)
        return;
    m_imageIndex = value;
    RefreshControl();
}

void TDBStateButton::StateChange()
{
    TDataSource *source = m_dataLink->DataSource();
    if (!source)
        return;
    const TDataSetState state = source->State();
    setImageIndex(int(state));
    setHint(DataSetStateName(state));
    RefreshControl();
}

void TDBStateButton::RefreshControl()
{
    QPixmap image;
    if (m_images && m_images->GetBitmap(m_imageIndex, image)) {
        setIconSize(image.size());
        setIcon(QIcon(image));
    } else {
        setIcon(QIcon());
    }
    update();
}

void TDBStateButton::ComponentRemoved(QObject *component)
{
    // The removed object is already past its own destructor: only pointers are compared here.
    if (component == static_cast<QObject *>(m_dataLink->DataSource()))
        m_dataLink->setDataSource(nullptr);
    if (component == static_cast<QObject *>(m_images)) {
        m_images = nullptr;
        RefreshControl();
    }
}

// ---------------------------------------------------------------------------------------------
// TDBImageState

TDBImageState::TDBImageState(QWidget *owner)
    : QLabel(owner), m_dataLink(std::make_unique<TToolDataLink>()), m_changeLink(std::make_unique<TChangeLink>()),
      m_blank(1, 1)
{
    m_dataLink->OnEditingChanged = [this] { StateChange(); };
    m_dataLink->OnActiveChanged = [this] { StateChange(); };
    m_changeLink->OnChange = [this](QObject *sender) { ImageListChange(sender); };
    m_blank.fill(TColorToQColor(clBtnFace));
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

TDBImageState::~TDBImageState()
{
    m_changeLink.reset();
    m_dataLink.reset();
}

TDataSource *TDBImageState::DataSource() const
{
    return m_dataLink->DataSource();
}

void TDBImageState::setDataSource(TDataSource *value)
{
    m_dataLink->setDataSource(value);
    Watch(this, m_sourceWatch, value, [this](QObject *c) { ComponentRemoved(c); });
}

void TDBImageState::setImages(TCustomImageList *value)
{
    if (m_changeLink->Sender())
        m_changeLink->Sender()->UnRegisterChanges(m_changeLink.get());
    m_images = value;
    if (value)
        value->RegisterChanges(m_changeLink.get());
    Watch(this, m_imagesWatch, value, [this](QObject *c) { ComponentRemoved(c); });
}

// Deliberately empty: a new image list shows at the next change of state, not at once.
void TDBImageState::ImageListChange(QObject *) {}

void TDBImageState::StateChange()
{
    TDataSource *source = m_dataLink->DataSource();
    if (!source || !m_images)
        return;
    setFixedSize(m_images->Width(), m_images->Height());
    m_picture = m_blank;
    const int state = int(source->State());
    if (state < m_images->Count())
        m_images->GetBitmap(state, m_picture);
    setPixmap(m_picture);
    update();
    setHint(DataSetStateName(source->State()));
}

void TDBImageState::ComponentRemoved(QObject *component)
{
    if (component == static_cast<QObject *>(m_dataLink->DataSource()))
        m_dataLink->setDataSource(nullptr);
    if (component == static_cast<QObject *>(m_images))
        m_images = nullptr;
}

} // namespace mattoni
