// Image lists and their change links.
#include "ImageList.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QApplication>

namespace mattoni {

TChangeLink::~TChangeLink()
{
    if (m_sender)
        m_sender->UnRegisterChanges(this);
}

void TChangeLink::Change()
{
    if (OnChange)
        OnChange(m_sender);
}

TCustomImageList::TCustomImageList(QObject *owner) : QObject(owner) {}

TCustomImageList::TCustomImageList(int width, int height, QObject *owner)
    : QObject(owner), m_width(width), m_height(height)
{
}

TCustomImageList::~TCustomImageList()
{
    for (TChangeLink *link : std::as_const(m_links))
        link->m_sender = nullptr;
}

void TCustomImageList::setWidth(int value)
{
    if (value == m_width)
        return;
    m_width = value;
    m_images.clear();
    Change();
}

void TCustomImageList::setHeight(int value)
{
    if (value == m_height)
        return;
    m_height = value;
    m_images.clear();
    Change();
}

QPixmap TCustomImageList::Fit(const QPixmap &image) const
{
    if (image.width() == m_width && image.height() == m_height)
        return image;
    return image.scaled(m_width, m_height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

int TCustomImageList::Add(const QPixmap &images)
{
    if (images.isNull() || m_width <= 0 || m_height <= 0)
        return -1;
    const int first = Count();
    const int count = std::max(1, images.width() / m_width);
    if (count == 1) {
        m_images.append(Fit(images));
    } else {
        for (int i = 0; i < count; ++i)
            m_images.append(Fit(images.copy(i * m_width, 0, m_width, images.height())));
    }
    Change();
    return first;
}

void TCustomImageList::Replace(int index, const QPixmap &image)
{
    if (index < 0 || index >= Count())
        return;
    m_images[index] = Fit(image);
    Change();
}

void TCustomImageList::Delete(int index)
{
    if (index < 0 || index >= Count())
        return;
    m_images.removeAt(index);
    Change();
}

void TCustomImageList::Clear()
{
    if (m_images.isEmpty())
        return;
    m_images.clear();
    Change();
}

bool TCustomImageList::GetBitmap(int index, QPixmap &image) const
{
    if (index < 0 || index >= Count())
        return false;
    image = m_images.at(index);
    return true;
}

void TCustomImageList::Draw(QPainter *painter, int x, int y, int index, bool enabled) const
{
    if (index < 0 || index >= Count())
        return;
    if (enabled) {
        painter->drawPixmap(x, y, m_images.at(index));
        return;
    }
    QStyleOption option;
    option.palette = QApplication::palette();
    painter->drawPixmap(x, y, QApplication::style()->generatedIconPixmap(QIcon::Disabled, m_images.at(index), &option));
}

void TCustomImageList::RegisterChanges(TChangeLink *value)
{
    if (!value || value->m_sender == this)
        return;
    if (value->m_sender)
        value->m_sender->UnRegisterChanges(value);
    value->m_sender = this;
    m_links.append(value);
}

void TCustomImageList::UnRegisterChanges(TChangeLink *value)
{
    if (!value || value->m_sender != this)
        return;
    value->m_sender = nullptr;
    m_links.removeOne(value);
}

void TCustomImageList::Change()
{
    if (OnChange)
        OnChange(this);
    const QList<TChangeLink *> links = m_links;
    for (TChangeLink *link : links) {
        if (m_links.contains(link))
            link->Change();
    }
    emit changed();
}

} // namespace mattoni
