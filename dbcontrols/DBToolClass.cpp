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
// What both state controls keep

namespace detail {

// The data link of a state control, the image list it refers to with its change link, and the
// watches that let go of either when it is destroyed ("removed from the form").
class StateLinks
{
public:
    StateLinks(QObject *control, const TEvent &stateChange, const std::function<void()> &imagesChanged)
        : m_control(control), m_imagesChanged(imagesChanged)
    {
        m_dataLink.OnEditingChanged = stateChange;
        m_dataLink.OnActiveChanged = stateChange;
        m_changeLink.OnChange = [this](QObject *) { m_imagesChanged(); };
    }

    TDataSource *DataSource() const { return m_dataLink.DataSource(); }
    void setDataSource(TDataSource *value)
    {
        m_dataLink.setDataSource(value);
        Watch(m_sourceWatch, value);
    }
    TCustomImageList *Images() const { return m_images; }
    void setImages(TCustomImageList *value)
    {
        if (m_changeLink.Sender())
            m_changeLink.Sender()->UnRegisterChanges(&m_changeLink);
        m_images = value;
        if (value)
            value->RegisterChanges(&m_changeLink);
        Watch(m_imagesWatch, value);
    }

private:
    void Watch(QMetaObject::Connection &watch, QObject *component)
    {
        QObject::disconnect(watch);
        if (component)
            watch = QObject::connect(component, &QObject::destroyed, m_control, [this](QObject *c) { Removed(c); });
    }
    // The removed object is already past its own destructor: only pointers are compared here.
    void Removed(QObject *component)
    {
        if (component == static_cast<QObject *>(m_dataLink.DataSource()))
            m_dataLink.setDataSource(nullptr);
        if (component == static_cast<QObject *>(m_images)) {
            m_images = nullptr;
            m_imagesChanged();
        }
    }

    QObject *m_control;
    std::function<void()> m_imagesChanged;
    TToolDataLink m_dataLink;
    TChangeLink m_changeLink;
    TCustomImageList *m_images = nullptr;
    QMetaObject::Connection m_sourceWatch;
    QMetaObject::Connection m_imagesWatch;
};

} // namespace detail

// ---------------------------------------------------------------------------------------------
// TDBStateButton

// A toolbar redraws its buttons when its image list changes.
TDBStateButton::TDBStateButton(QWidget *owner)
    : QToolButton(owner),
      m_links(std::make_unique<detail::StateLinks>(this, [this] { StateChange(); }, [this] { RefreshControl(); }))
{
}

TDBStateButton::~TDBStateButton() = default;

TDataSource *TDBStateButton::DataSource() const
{
    return m_links->DataSource();
}

void TDBStateButton::setDataSource(TDataSource *value)
{
    m_links->setDataSource(value);
}

TCustomImageList *TDBStateButton::Images() const
{
    return m_links->Images();
}

void TDBStateButton::setImages(TCustomImageList *value)
{
    if (value == m_links->Images())
        return;
    m_links->setImages(value);
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
    TDataSource *source = m_links->DataSource();
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
    if (Images() && Images()->GetBitmap(m_imageIndex, image)) {
        setIconSize(image.size());
        setIcon(QIcon(image));
    } else {
        setIcon(QIcon());
    }
    update();
}

// ---------------------------------------------------------------------------------------------
// TDBImageState

TDBImageState::TDBImageState(QWidget *owner)
    : QLabel(owner), m_blank(1, 1),
      m_links(std::make_unique<detail::StateLinks>(this, [this] { StateChange(); }, [this] { ImageListChange(); }))
{
    m_blank.fill(TColorToQColor(clBtnFace));
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

TDBImageState::~TDBImageState() = default;

TDataSource *TDBImageState::DataSource() const
{
    return m_links->DataSource();
}

void TDBImageState::setDataSource(TDataSource *value)
{
    m_links->setDataSource(value);
}

TCustomImageList *TDBImageState::Images() const
{
    return m_links->Images();
}

void TDBImageState::setImages(TCustomImageList *value)
{
    m_links->setImages(value);
}

// Deliberately empty: a new image list shows at the next change of state, not at once.
void TDBImageState::ImageListChange() {}

void TDBImageState::StateChange()
{
    TDataSource *source = m_links->DataSource();
    TCustomImageList *images = Images();
    if (!source || !images)
        return;
    setFixedSize(images->Width(), images->Height());
    m_picture = m_blank;
    const int state = int(source->State());
    if (state < images->Count())
        images->GetBitmap(state, m_picture);
    setPixmap(m_picture);
    update();
    setHint(DataSetStateName(source->State()));
}

} // namespace mattoni
