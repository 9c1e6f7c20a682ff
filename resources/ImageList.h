// TCustomImageList: a list of images of one size that controls draw from by index (toolbar
// buttons, state images, grid glyphs, LED frames), and TChangeLink, through which a control hears
// that the list changed.
#pragma once

#include "mattoni_widgets_export.h"

#include <QList>
#include <QObject>
#include <QPixmap>

#include <functional>

class QPainter;

namespace mattoni {

class TCustomImageList;

// A control's registration with an image list. The list calls Change on every change; a link
// that is destroyed, or a list that is destroyed, ends the registration on its own.
class MATTONI_WIDGETS_EXPORT TChangeLink
{
public:
    TChangeLink() = default;
    ~TChangeLink();
    TChangeLink(const TChangeLink &) = delete;
    TChangeLink &operator=(const TChangeLink &) = delete;

    // The list the link is registered with; nullptr when none.
    TCustomImageList *Sender() const { return m_sender; }
    void Change();

    std::function<void(QObject *Sender)> OnChange;

private:
    friend class TCustomImageList;
    TCustomImageList *m_sender = nullptr;
};

class MATTONI_WIDGETS_EXPORT TCustomImageList : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int Height READ Height WRITE setHeight)
    Q_PROPERTY(int Width READ Width WRITE setWidth)

public:
    explicit TCustomImageList(QObject *owner = nullptr);
    TCustomImageList(int width, int height, QObject *owner = nullptr);
    ~TCustomImageList() override;

    // Changing the size of the images empties the list.
    int Width() const { return m_width; }
    void setWidth(int value);
    int Height() const { return m_height; }
    void setHeight(int value);
    int Count() const { return int(m_images.size()); }

    // Adds the images of a strip: a picture wider than Width holds Width / Width()
    // images side by side. A picture of another height is scaled. Returns the index of the first
    // image added, -1 for an empty picture.
    int Add(const QPixmap &images);
    void Replace(int index, const QPixmap &image);
    void Delete(int index);
    void Clear();
    // Image Index at the list's size; false (and Image untouched) when there is no such image.
    bool GetBitmap(int index, QPixmap &image) const;
    QPixmap Bitmap(int index) const { return m_images.value(index); }
    void Draw(QPainter *painter, int x, int y, int index, bool enabled = true) const;

    void RegisterChanges(TChangeLink *value);
    void UnRegisterChanges(TChangeLink *value);

    std::function<void(QObject *Sender)> OnChange;

signals:
    void changed();

protected:
    void Change();

private:
    QPixmap Fit(const QPixmap &image) const;

    int m_width = 16;
    int m_height = 16;
    QList<QPixmap> m_images;
    QList<TChangeLink *> m_links;
};

using TImageList = TCustomImageList;

} // namespace mattoni
