// A tree view over a self-referencing dataset: each record is a node, identified by an integer key
// field (DataFieldNodo) and hung under the node whose key its parent field (DataFieldPadre) holds.
// Only the roots are read when the dataset opens; a node's children are read when it is first
// selected or expanded. Selecting a node moves the dataset to its record, and inserts, edits and
// deletes of the dataset's records are carried into the tree.
#pragma once

#include "DataSource.h"
#include "mattoni_widgets_export.h"

#include <QAction>
#include <QHash>
#include <QIcon>
#include <QTreeWidget>
#include <QTreeWidgetItem>

#include <functional>
#include <memory>

class QTimer;

namespace mattoni {

class TCustomDBTreeView;
class TTreeNode;

// The object each node carries: the record's key and parent key, and the node's caption. The
// application derives from it (in OnCreatingDataNode) to give the caption; the base has none.
class MATTONI_WIDGETS_EXPORT TCustomDataNode
{
public:
    TCustomDataNode();
    virtual ~TCustomDataNode();
    TCustomDataNode(const TCustomDataNode &) = delete;
    TCustomDataNode &operator=(const TCustomDataNode &) = delete;

    virtual QString DisplayText(TTreeNode *Node) const;

    // Set by the view from the record when the node is made and whenever it is refreshed.
    QVariant Key() const { return m_key; }
    void setKey(const QVariant &value) { m_key = value; }
    QVariant ParentKey() const { return m_parentKey; }
    void setParentKey(const QVariant &value) { m_parentKey = value; }

private:
    QVariant m_key;
    QVariant m_parentKey;
};

// A node of the view. It owns its data object; the view releases it through
// OnDestroyingDataNode when it removes the node (remove nodes through the view).
class MATTONI_WIDGETS_EXPORT TTreeNode : public QTreeWidgetItem
{
public:
    ~TTreeNode() override;

    TCustomDataNode *Data() const { return m_data.get(); }
    QString Text() const { return text(0); }
    void setText(const QString &value) { QTreeWidgetItem::setText(0, value); }
    int ImageIndex() const { return m_imageIndex; }
    int SelectedIndex() const { return m_selectedIndex; }
    // 0 for a root.
    int Level() const;
    TTreeNode *Parent() const { return static_cast<TTreeNode *>(parent()); }
    bool HasChildren() const { return childCount() > 0; }
    int Count() const { return childCount(); }
    TTreeNode *Item(int index) const { return static_cast<TTreeNode *>(child(index)); }
    TTreeNode *getFirstChild() const { return Item(0); }
    TTreeNode *getNextSibling() const;
    // Whether the view has read this node's children from the dataset.
    bool ChildrenRead() const { return m_childrenRead; }

private:
    friend class TCustomDBTreeView;
    explicit TTreeNode(std::unique_ptr<TCustomDataNode> data);

    std::unique_ptr<TCustomDataNode> m_data;
    int m_imageIndex = -1;
    int m_selectedIndex = -1;
    bool m_childrenRead = false;
};

// The view's link to its data source: it passes the dataset's opening, closing and changes on.
class MATTONI_WIDGETS_EXPORT TCustomTVDataLink : public TDataLink
{
public:
    explicit TCustomTVDataLink(TCustomDBTreeView *Owner);

protected:
    void ActiveChanged() override;
    void DataSetChanged() override;
    // For the view's OnInsertingDataNode and OnEditingDataNode.
    void EditingChanged() override;

private:
    TCustomDBTreeView *m_owner;
};

class MATTONI_WIDGETS_EXPORT TCustomDBTreeView : public QTreeWidget
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(QString DataFieldNodo READ DataFieldNodo WRITE setDataFieldNodo)
    Q_PROPERTY(QString DataFieldPadre READ DataFieldPadre WRITE setDataFieldPadre)
    Q_PROPERTY(bool FetchAll READ FetchAll WRITE setFetchAll)
    Q_PROPERTY(bool AutoExpand READ AutoExpand WRITE setAutoExpand)
    Q_PROPERTY(int ChangeDelay READ ChangeDelay WRITE setChangeDelay)
    Q_PROPERTY(bool HideSelection READ HideSelection WRITE setHideSelection)
    Q_PROPERTY(int Indent READ Indent WRITE setIndent)
    Q_PROPERTY(bool ShowRoot READ ShowRoot WRITE setShowRoot)
    Q_PROPERTY(bool ToolTips READ ToolTips WRITE setToolTips)

public:
    using TTreeViewCreatingDataEvent =
        std::function<void(QObject *Sender, TDataSet *Dataset, TTreeNode *Father, TCustomDataNode *&data)>;
    using TTreeViewNodeEvent = std::function<void(QObject *Sender, TDataSet *Dataset, TTreeNode *node)>;
    using TTreeViewDestroyingDataEvent = std::function<void(QObject *Sender, TCustomDataNode *data)>;

    explicit TCustomDBTreeView(QWidget *parent = nullptr);
    // Removes every node, each data object released through OnDestroyingDataNode.
    ~TCustomDBTreeView() override;

    TDataSource *DataSource() const;
    void setDataSource(TDataSource *value);
    QString DataFieldNodo() const { return m_dataFieldNodo; }
    void setDataFieldNodo(const QString &value);
    QString DataFieldPadre() const { return m_dataFieldPadre; }
    void setDataFieldPadre(const QString &value);
    // Reads the first level below each root when the tree is built.
    bool FetchAll() const { return m_fetchAll; }
    void setFetchAll(bool value) { m_fetchAll = value; }
    // Expands a node when it is selected and collapses the one left.
    bool AutoExpand() const { return m_autoExpand; }
    void setAutoExpand(bool value) { m_autoExpand = value; }
    // Milliseconds between a new selection and Change; 0 runs it at once.
    int ChangeDelay() const { return m_changeDelay; }
    void setChangeDelay(int value) { m_changeDelay = value; }
    // Hides the selection while the view has no focus.
    bool HideSelection() const { return m_hideSelection; }
    void setHideSelection(bool value);
    int Indent() const { return indentation(); }
    void setIndent(int value) { setIndentation(value); }
    bool ShowRoot() const { return rootIsDecorated(); }
    void setShowRoot(bool value) { setRootIsDecorated(value); }
    // Each node's text as its tool tip, for captions wider than the view.
    bool ToolTips() const { return m_toolTips; }
    void setToolTips(bool value) { m_toolTips = value; }
    // Node images by ImageIndex (SelectedIndex while selected): the node's level.
    QList<QIcon> Images() const { return m_images; }
    void setImages(const QList<QIcon> &value);

    TDataSet *DataSet() const;
    TCustomTVDataLink *DataLink() const { return m_link.get(); }
    // Dataset actions without a source of their own work on the tree's dataset while it has the
    // focus; true when the action was taken.
    Q_INVOKABLE bool ExecuteAction(QAction *Action);
    Q_INVOKABLE bool UpdateAction(QAction *Action);

    // The first root, or none.
    TTreeNode *GetFirstNode() const;
    TTreeNode *Selected() const;
    void setSelected(TTreeNode *node);
    // Every node of the tree, depth first.
    QList<TTreeNode *> Nodes() const;
    // The node whose key is Id, or none.
    TTreeNode *GetNodeFromID(qint64 Id) const;
    // The node's text, from its data object's DisplayText.
    QString GetDisplay(TTreeNode *Node) const;

    // The roots (and with FetchAll their children), after removing every node.
    void initTree();
    void termTree();
    // Reads a node's children when it has none; the dataset returns to the record it was on.
    void initSubTree(TTreeNode *Node);
    // Removes the node with its subtree.
    void termSubTree(TTreeNode *Node);
    // Locate on DataFieldPadre = ParentId: whether a child record was found.
    bool locateChild(qint64 ParentId);
    // The next record of ParentId after the one with key CurrentId, inside a filter on
    // DataFieldPadre; false at the end, where the filter is taken away again.
    bool locateNextChild(qint64 ParentId, qint64 CurrentId);

    // Before a node is made for the current record; the handler creates its data object
    // (Father is null for a root). Left null, the view makes a plain TCustomDataNode.
    TTreeViewCreatingDataEvent OnCreatingDataNode;
    // After the node was added and given its text and images.
    TTreeViewNodeEvent OnAfterCreatingDataNode;
    // A node's data object is about to be deleted (the view deletes it afterwards).
    TTreeViewDestroyingDataEvent OnDestroyingDataNode;
    // After the node of the current record was searched for, with the node found or null.
    TTreeViewNodeEvent OnSearchingDataNode;
    // The dataset went into insert: the record goes under Current, the selected node (or null).
    TTreeViewNodeEvent OnInsertingDataNode;
    // The dataset went into edit on the record of Node (null when it has none).
    TTreeViewNodeEvent OnEditingDataNode;
    // The node of the current record was refreshed after a change of the dataset.
    TTreeViewNodeEvent OnRefreshingDataNode;

protected:
    friend class TCustomTVDataLink;

    virtual void ActiveChanged();
    virtual void DataSetChanged();
    virtual void EditingChanged();
    // A new selection: moves the dataset to the node's record and reads its children once.
    virtual void Change(TTreeNode *Node);

    void focusInEvent(QFocusEvent *event) override;

private:
    class Building;
    class Quiet;
    struct ChildFilter
    {
        bool active = false;
        QString filter;
        bool filtered = false;
    };

    TField *NodoField() const;
    TField *PadreField() const;
    // Makes the node of the current record under Father (null: a root).
    TTreeNode *AddDataNode(TTreeNode *Father);
    void ReadChildren(TTreeNode *Node);
    void ShowIndicators(const QList<TTreeNode *> &nodes);
    void SetImages(TTreeNode *node);
    void ApplyText(TTreeNode *node);
    // Reads key and parent key again from the current record; moves the node when its parent
    // changed (or removes it when the new parent's children are not read yet).
    void RefreshFromRecord(TTreeNode *node);
    // Fires OnDestroyingDataNode for the subtree, bottom up, and forgets its keys.
    void ReleaseSubtree(TTreeNode *node);
    void DeleteNode(TTreeNode *node);
    void RestoreChildFilter();
    void SelectionChanged(QTreeWidgetItem *current, QTreeWidgetItem *previous);
    void ItemExpanded(QTreeWidgetItem *item);
    static bool KeyOf(const QVariant &value, qint64 &key);
    // An empty or null parent field.
    static bool IsRootParent(const TField *padre);

    std::unique_ptr<TCustomTVDataLink> m_link;
    QString m_dataFieldNodo;
    QString m_dataFieldPadre;
    bool m_fetchAll = false;
    bool m_autoExpand = false;
    int m_changeDelay = 0;
    bool m_hideSelection = true;
    bool m_toolTips = true;
    QList<QIcon> m_images;
    QList<QIcon> m_levelIcons;
    bool m_building = false;
    bool m_quiet = false;
    // The key of the node last selected, or last found as the current record's.
    QVariant m_remembered;
    QHash<qint64, TTreeNode *> m_nodes;
    ChildFilter m_childFilter;
    QTimer *m_changeTimer = nullptr;
};

// The ready-to-use data tree view.
class MATTONI_WIDGETS_EXPORT TDBReadTreeView : public TCustomDBTreeView
{
    Q_OBJECT
public:
    explicit TDBReadTreeView(QWidget *parent = nullptr);
};

} // namespace mattoni
