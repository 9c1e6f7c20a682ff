// The Qt Designer plugin of mattoni_widgets: one custom-widget interface per widget, gathered in
// one collection, so that Qt Designer, Qt Creator and QUiLoader create the library's widgets
// from a form.
#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <QIcon>
#include <QObject>

#include <functional>

// What Qt Designer shows and creates for one widget class.
struct MattoniWidgetInfo
{
    const char *className;   // the class, with its namespace, as .ui files name it
    const char *header;      // the header a user's program includes
    const char *objectName;  // the name Designer gives the first one dropped on a form
    int width;               // the size it is dropped with
    int height;
    const char *toolTip;
    const QMetaObject *meta;
    std::function<QWidget *(QWidget *parent)> create;
};

class MattoniWidgetPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    MattoniWidgetPlugin(const MattoniWidgetInfo &info, QObject *parent);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget *createWidget(QWidget *parent) override;
    QString domXml() const override;
    bool isInitialized() const override;
    void initialize(QDesignerFormEditorInterface *core) override;

private:
    MattoniWidgetInfo m_info;
    bool m_initialized = false;
};

class MattoniDesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
public:
    explicit MattoniDesignerPlugin(QObject *parent = nullptr);

    QList<QDesignerCustomWidgetInterface *> customWidgets() const override;

private:
    QList<QDesignerCustomWidgetInterface *> m_widgets;
};
