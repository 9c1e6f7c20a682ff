// TCustomPanel: the bordered panel the composite controls of the library are made of. Its
// children live in its client area, the part inside the single-line border: their coordinates
// count from inside the border, and whatever reaches beyond the client area is clipped.
#pragma once

#include "Color.h"
#include "mattoni_widgets_export.h"

#include <QFrame>

#include <functional>

namespace mattoni {

class MATTONI_WIDGETS_EXPORT TCustomPanel : public QFrame
{
    Q_OBJECT

public:
    explicit TCustomPanel(QWidget *parent = nullptr);
    ~TCustomPanel() override;

    // The background of the client area.
    TColor Color() const { return m_color; }
    void setColor(TColor value);
    // The parent of the panel's children.
    QWidget *ClientArea() const { return m_client; }

    std::function<void(QObject *Sender)> OnResize;
    // The focus came to one of the panel's children from a control of the same window outside it.
    std::function<void(QObject *Sender)> OnEnter;

protected:
    // Lays the children out for the new size, then raises OnResize.
    virtual void Resize();
    void resizeEvent(QResizeEvent *event) override;

private:
    void FocusChanged(QWidget *now);
    void PaintClient();

    QWidget *m_client;
    TColor m_color = clBtnFace;
    bool m_focusInside = false;
    QMetaObject::Connection m_focusWatch;
};

} // namespace mattoni
