// The vocabulary of a data-entry toolbar (dataset actions and the events around them) and two
// controls that show the state of a dataset: a tool button whose image and hint follow the state,
// and an image that does the same. Both listen to their data source through TToolDataLink.
#pragma once

#include "DataSource.h"
#include "mattoni_widgets_export.h"

#include <QLabel>
#include <QPixmap>
#include <QToolButton>

#include <functional>
#include <initializer_list>
#include <memory>

namespace mattoni {

class TCustomImageList;

namespace detail {
class StateLinks;
}

// What a toolbar button does to its dataset. Nothing in the library dispatches these: they are
// the shared names that applications build their toolbars on.
enum TDbAction {
    dbNone, dbEdit, dbPost, dbInsert, dbAppend, dbCancel, dbDelete, dbRefresh, dbSearch, dbPrev,
    dbSucc, dbViewPrev, dbViewSucc, dbAssegna
};
inline constexpr int DbActionCount = dbAssegna + 1;

// A set of actions, one bit per action ordinal.
class TDbActionSet
{
public:
    constexpr TDbActionSet() = default;
    constexpr TDbActionSet(std::initializer_list<TDbAction> actions)
    {
        for (TDbAction a : actions)
            m_bits |= Bit(a);
    }
    constexpr bool Contains(TDbAction action) const { return (m_bits & Bit(action)) != 0; }
    constexpr bool IsEmpty() const { return m_bits == 0; }
    constexpr TDbActionSet &Include(TDbAction action)
    {
        m_bits |= Bit(action);
        return *this;
    }
    constexpr TDbActionSet &Exclude(TDbAction action)
    {
        m_bits &= quint16(~Bit(action));
        return *this;
    }
    constexpr quint16 Bits() const { return m_bits; }
    friend constexpr TDbActionSet operator+(TDbActionSet a, TDbActionSet b) { return FromBits(a.m_bits | b.m_bits); }
    friend constexpr TDbActionSet operator-(TDbActionSet a, TDbActionSet b) { return FromBits(a.m_bits & ~b.m_bits); }
    friend constexpr TDbActionSet operator*(TDbActionSet a, TDbActionSet b) { return FromBits(a.m_bits & b.m_bits); }
    friend constexpr bool operator==(TDbActionSet a, TDbActionSet b) = default;

private:
    static constexpr quint16 Bit(TDbAction action) { return quint16(1u << unsigned(action)); }
    static constexpr TDbActionSet FromBits(unsigned bits)
    {
        TDbActionSet s;
        s.m_bits = quint16(bits & ((1u << DbActionCount) - 1));
        return s;
    }
    quint16 m_bits = 0;
};

// Before an action: a handler that carried the action out itself sets ActionIsDone, and the
// caller skips its own handling.
using TBeforeActionEvent = std::function<void(QObject *Sender, bool &ActionIsDone)>;
using TAfterActionEvent = std::function<void(QObject *Sender, bool &Error)>;
using TEvent = std::function<void()>;

// The hint of a dataset state: "Inattivo", "Modalità lettura", "Modalità redazione",
// "Modalità inserimento"; empty for the states after dsInsert.
MATTONI_WIDGETS_EXPORT QString DataSetStateName(TDataSetState state);

// A data link that turns its notifications into three plain events. Each override calls its
// event only when one is assigned, and nothing else.
class MATTONI_WIDGETS_EXPORT TToolDataLink : public TDataLink
{
public:
    TToolDataLink() = default;

    TEvent OnEditingChanged;
    TEvent OnDataSetChanged;
    TEvent OnActiveChanged;

protected:
    void EditingChanged() override;
    void DataSetChanged() override;
    void ActiveChanged() override;
};

// A tool button that shows the state of its data source's dataset: image number ordinal(State)
// of its image list and the state's name as hint. It refreshes when editing starts or ends and
// when the dataset opens or closes, not when the cursor moves.
class MATTONI_WIDGETS_EXPORT TDBStateButton : public QToolButton
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(mattoni::TCustomImageList *Images READ Images WRITE setImages)
    Q_PROPERTY(int ImageIndex READ ImageIndex WRITE setImageIndex)
    Q_PROPERTY(QString Hint READ Hint WRITE setHint)

public:
    explicit TDBStateButton(QWidget *owner = nullptr);
    ~TDBStateButton() override;

    TDataSource *DataSource() const;
    void setDataSource(TDataSource *value);
    // The images the button takes its picture from, one per dataset state from dsInactive on.
    TCustomImageList *Images() const;
    void setImages(TCustomImageList *value);
    int ImageIndex() const { return m_imageIndex; }
    void setImageIndex(int value);
    QString Hint() const { return toolTip(); }
    void setHint(const QString &value) { setToolTip(value); }

    void StateChange();
    // Shows image ImageIndex of Images and repaints.
    void RefreshControl();

private:
    std::unique_ptr<detail::StateLinks> m_links;
    int m_imageIndex = -1;
};

// An image that shows the state of its data source's dataset: image number ordinal(State) of its
// image list, at the list's size, with the state's name as hint. A change in the image list shows
// only at the next change of state.
class MATTONI_WIDGETS_EXPORT TDBImageState : public QLabel
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(mattoni::TCustomImageList *Images READ Images WRITE setImages)
    Q_PROPERTY(QString Hint READ Hint WRITE setHint)

public:
    explicit TDBImageState(QWidget *owner = nullptr);
    ~TDBImageState() override;

    TDataSource *DataSource() const;
    void setDataSource(TDataSource *value);
    TCustomImageList *Images() const;
    void setImages(TCustomImageList *value);
    QString Hint() const { return toolTip(); }
    void setHint(const QString &value) { setToolTip(value); }
    // The picture shown: the state's image, or the blank 1x1 bitmap in clBtnFace.
    QPixmap Picture() const { return m_picture; }

    void StateChange();

private:
    void ImageListChange();

    QPixmap m_blank;
    QPixmap m_picture;
    std::unique_ptr<detail::StateLinks> m_links;
};

} // namespace mattoni
