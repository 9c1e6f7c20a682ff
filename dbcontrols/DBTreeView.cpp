// A tree view over a self-referencing dataset, read lazily and kept in step with the dataset.
#include "DBTreeView.h"

#include "DBActions.h"
#include "DataSet.h"
#include "Fields.h"
#include "Strings.h"
#include "Variants.h"

#include <QFocusEvent>
#include <QScopeGuard>
#include <QTimer>

namespace mattoni {

// --- TCustomDataNode ---

TCustomDataNode::TCustomDataNode() = default;
TCustomDataNode::~TCustomDataNode() = default;

QString TCustomDataNode::DisplayText(TTreeNode *) const
{
    return QString();
}

// --- TTreeNode ---

TTreeNode::TTreeNode(std::unique_ptr<TCustomDataNode> data)
    : m_data(std::move(data))
{
}

TTreeNode::~TTreeNode() = default;

int TTreeNode::Level() const
{
    int level = 0;
    for (const QTreeWidgetItem *p = parent(); p; p = p->parent())
        ++level;
    return level;
}

TTreeNode *TTreeNode::getNextSibling() const
{
    if (QTreeWidgetItem *p = parent()) {
        const int index = p->indexOfChild(const_cast<TTreeNode *>(this));
        return static_cast<TTreeNode *>(p->child(index + 1));
    }
    QTreeWidget *view = treeWidget();
    if (!view)
        return nullptr;
    const int index = view->indexOfTopLevelItem(const_cast<TTreeNode *>(this));
    return static_cast<TTreeNode *>(view->topLevelItem(index + 1));
}

// --- TCustomTVDataLink ---

TCustomTVDataLink::TCustomTVDataLink(TCustomDBTreeView *Owner)
    : m_owner(Owner)
{
}

void TCustomTVDataLink::ActiveChanged()
{
    m_owner->ActiveChanged();
}

void TCustomTVDataLink::DataSetChanged()
{
    m_owner->DataSetChanged();
}

void TCustomTVDataLink::EditingChanged()
{
    m_owner->EditingChanged();
}

// --- TCustomDBTreeView ---

// While the view moves the dataset itself: the building flag is up, the dataset's controls are
// silent (so that no grid on the same source follows every step), and afterwards the dataset is
// back on the record it was on.
class TCustomDBTreeView::Building
{
public:
    explicit Building(TCustomDBTreeView *view)
        : m_view(view)
        , m_dataSet(view->DataSet())
        , m_wasBuilding(view->m_building)
    {
        view->m_building = true;
        m_dataSet->DisableControls();
        if (!m_dataSet->Eof() || !m_dataSet->Bof())
            m_bookmark = m_dataSet->GetBookmark();
    }
    ~Building()
    {
        m_view->RestoreChildFilter();
        if (!m_bookmark.isEmpty() && m_dataSet->BookmarkValid(m_bookmark))
            m_dataSet->GotoBookmark(m_bookmark);
        m_dataSet->EnableControls();
        m_view->m_building = m_wasBuilding;
    }
    // Bookmark checked: GotoBookmark cannot raise here.
    Building(const Building &) = delete;
    Building &operator=(const Building &) = delete;

private:
    TCustomDBTreeView *m_view;
    TDataSet *m_dataSet;
    TBookmark m_bookmark;
    bool m_wasBuilding;
};

// While the view changes its items for reasons of its own: selection changes it causes move
// nothing.
class TCustomDBTreeView::Quiet
{
public:
    explicit Quiet(TCustomDBTreeView *view)
        : m_view(view)
        , m_was(view->m_quiet)
    {
        view->m_quiet = true;
    }
    ~Quiet() { m_view->m_quiet = m_was; }
    Quiet(const Quiet &) = delete;
    Quiet &operator=(const Quiet &) = delete;

private:
    TCustomDBTreeView *m_view;
    bool m_was;
};

TCustomDBTreeView::TCustomDBTreeView(QWidget *parent)
    : QTreeWidget(parent)
    , m_link(std::make_unique<TCustomTVDataLink>(this))
    , m_changeTimer(new QTimer(this))
{
    setHeaderHidden(true);
    setColumnCount(1);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformRowHeights(true);
    m_changeTimer->setSingleShot(true);
    connect(m_changeTimer, &QTimer::timeout, this, [this] { Change(Selected()); });
    connect(this, &QTreeWidget::currentItemChanged, this, &TCustomDBTreeView::SelectionChanged);
    connect(this, &QTreeWidget::itemExpanded, this, &TCustomDBTreeView::ItemExpanded);
    setHideSelection(true);
}

TCustomDBTreeView::~TCustomDBTreeView()
{
    // Leave the source first, so that no notification reaches a half-destroyed view.
    m_link->setDataSource(nullptr);
    termTree();
}

TDataSource *TCustomDBTreeView::DataSource() const
{
    return m_link->DataSource();
}

void TCustomDBTreeView::setDataSource(TDataSource *value)
{
    m_link->setDataSource(value);
}

TDataSet *TCustomDBTreeView::DataSet() const
{
    return m_link->DataSet();
}

bool TCustomDBTreeView::ExecuteAction(QAction *Action)
{
    return DataLinkExecuteAction(*m_link, Action);
}

bool TCustomDBTreeView::UpdateAction(QAction *Action)
{
    return DataLinkUpdateAction(*m_link, Action);
}

void TCustomDBTreeView::setDataFieldNodo(const QString &value)
{
    if (m_dataFieldNodo == value)
        return;
    m_dataFieldNodo = value;
    ActiveChanged();
}

void TCustomDBTreeView::setDataFieldPadre(const QString &value)
{
    if (m_dataFieldPadre == value)
        return;
    m_dataFieldPadre = value;
    ActiveChanged();
}

void TCustomDBTreeView::setHideSelection(bool value)
{
    m_hideSelection = value;
    QPalette pal = palette();
    const QPalette base = QApplication::palette(this);
    pal.setColor(QPalette::Inactive, QPalette::Highlight,
                 value ? QColor(Qt::transparent) : base.color(QPalette::Inactive, QPalette::Highlight));
    pal.setColor(QPalette::Inactive, QPalette::HighlightedText,
                 value ? base.color(QPalette::Inactive, QPalette::Text)
                       : base.color(QPalette::Inactive, QPalette::HighlightedText));
    setPalette(pal);
}

void TCustomDBTreeView::setImages(const QList<QIcon> &value)
{
    m_images = value;
    m_levelIcons.clear();
    for (TTreeNode *node : Nodes())
        SetImages(node);
}

TTreeNode *TCustomDBTreeView::GetFirstNode() const
{
    return static_cast<TTreeNode *>(topLevelItem(0));
}

TTreeNode *TCustomDBTreeView::Selected() const
{
    return static_cast<TTreeNode *>(currentItem());
}

void TCustomDBTreeView::setSelected(TTreeNode *node)
{
    setCurrentItem(node);
}

QList<TTreeNode *> TCustomDBTreeView::Nodes() const
{
    QList<TTreeNode *> nodes;
    std::function<void(QTreeWidgetItem *)> walk = [&](QTreeWidgetItem *item) {
        nodes << static_cast<TTreeNode *>(item);
        for (int i = 0; i < item->childCount(); ++i)
            walk(item->child(i));
    };
    for (int i = 0; i < topLevelItemCount(); ++i)
        walk(topLevelItem(i));
    return nodes;
}

bool TCustomDBTreeView::IsRootParent(const TField *padre)
{
    if (padre->IsNull())
        return true;
    switch (padre->DataType()) {
    case ftString: case ftFixedChar: case ftWideString: case ftFixedWideChar: case ftMemo: case ftWideMemo:
        return padre->AsString().isEmpty();
    default:
        return false;
    }
}

bool TCustomDBTreeView::KeyOf(const QVariant &value, qint64 &key)
{
    if (!value.isValid() || VarIsNull(value))
        return false;
    bool ok = false;
    key = value.toLongLong(&ok);
    return ok;
}

TTreeNode *TCustomDBTreeView::GetNodeFromID(qint64 Id) const
{
    return m_nodes.value(Id, nullptr);
}

QString TCustomDBTreeView::GetDisplay(TTreeNode *Node) const
{
    return Node && Node->Data() ? Node->Data()->DisplayText(Node) : QString();
}

TField *TCustomDBTreeView::NodoField() const
{
    return DataSet()->FieldByName(m_dataFieldNodo);
}

TField *TCustomDBTreeView::PadreField() const
{
    return DataSet()->FieldByName(m_dataFieldPadre);
}

void TCustomDBTreeView::ActiveChanged()
{
    if (m_link->Active() && !m_dataFieldNodo.isEmpty() && !m_dataFieldPadre.isEmpty()) {
        initTree();
        scrollToTop();
    } else {
        termTree();
    }
}

void TCustomDBTreeView::SetImages(TTreeNode *node)
{
    const int level = node->Level();
    node->m_imageIndex = level;
    node->m_selectedIndex = level;
    if (m_images.isEmpty()) {
        node->setIcon(0, QIcon());
        return;
    }
    // Both indexes are the level: one icon per level serves every node.
    while (m_levelIcons.size() <= level) {
        const int index = int(m_levelIcons.size());
        QIcon icon;
        if (index < m_images.size())
            for (const QSize &size : m_images[index].availableSizes()) {
                icon.addPixmap(m_images[index].pixmap(size), QIcon::Normal);
                icon.addPixmap(m_images[index].pixmap(size), QIcon::Selected);
            }
        m_levelIcons << icon;
    }
    node->setIcon(0, m_levelIcons[level]);
}

void TCustomDBTreeView::ApplyText(TTreeNode *node)
{
    const QString text = GetDisplay(node);
    node->setText(text);
    if (m_toolTips)
        node->setToolTip(0, text);
}

TTreeNode *TCustomDBTreeView::AddDataNode(TTreeNode *Father)
{
    TDataSet *ds = DataSet();
    TCustomDataNode *created = nullptr;
    if (OnCreatingDataNode)
        OnCreatingDataNode(this, ds, Father, created);
    std::unique_ptr<TCustomDataNode> data(created ? created : new TCustomDataNode);
    data->setKey(NodoField()->Value());
    data->setParentKey(PadreField()->Value());
    qint64 key = 0;
    const bool keyed = KeyOf(data->Key(), key);
    auto *node = new TTreeNode(std::move(data));
    if (Father)
        Father->addChild(node);
    else
        addTopLevelItem(node);
    if (keyed)
        m_nodes.insert(key, node);
    ApplyText(node);
    SetImages(node);
    if (OnAfterCreatingDataNode)
        OnAfterCreatingDataNode(this, ds, node);
    return node;
}

void TCustomDBTreeView::ShowIndicators(const QList<TTreeNode *> &nodes)
{
    // A node whose children are unread shows the expand mark when it has any. Looked up in the
    // unfiltered dataset, one key after the other: the dataset answers repeated look-ups on a
    // column from a table of its values.
    TDataSet *ds = DataSet();
    for (TTreeNode *node : nodes) {
        bool has = false;
        qint64 key = 0;
        if (!node->m_childrenRead && KeyOf(node->Data()->Key(), key))
            has = !VarIsNull(ds->Lookup(m_dataFieldPadre, key, m_dataFieldPadre));
        node->setChildIndicatorPolicy(has || node->childCount() > 0
                                          ? QTreeWidgetItem::ShowIndicator
                                          : QTreeWidgetItem::DontShowIndicatorWhenChildless);
    }
}

void TCustomDBTreeView::initTree()
{
    termTree();
    TDataSet *ds = DataSet();
    if (!ds || !ds->Active())
        return;
    QList<TTreeNode *> roots;
    {
        Building building(this);
        TField *padre = PadreField();
        NodoField(); // raises for a missing key field before any node is made
        ds->First();
        while (!ds->Eof()) {
            // Only an empty or null parent makes a root: 0 is a key like any other.
            if (IsRootParent(padre))
                roots << AddDataNode(nullptr);
            ds->Next();
        }
        if (m_fetchAll) {
            for (int i = 0; i < topLevelItemCount(); ++i)
                ReadChildren(static_cast<TTreeNode *>(topLevelItem(i)));
        }
    }
    ShowIndicators(m_fetchAll ? Nodes() : roots);
}

void TCustomDBTreeView::termTree()
{
    m_changeTimer->stop();
    while (topLevelItemCount() > 0)
        DeleteNode(static_cast<TTreeNode *>(topLevelItem(0)));
    m_remembered = QVariant();
}

void TCustomDBTreeView::termSubTree(TTreeNode *Node)
{
    if (Node)
        DeleteNode(Node);
}

void TCustomDBTreeView::ReleaseSubtree(TTreeNode *node)
{
    for (int i = 0; i < node->childCount(); ++i)
        ReleaseSubtree(node->Item(i));
    qint64 key = 0;
    if (KeyOf(node->Data()->Key(), key) && m_nodes.value(key) == node)
        m_nodes.remove(key);
    if (OnDestroyingDataNode)
        OnDestroyingDataNode(this, node->Data());
}

void TCustomDBTreeView::DeleteNode(TTreeNode *node)
{
    ReleaseSubtree(node);
    delete node;
}

bool TCustomDBTreeView::locateChild(qint64 ParentId)
{
    return DataSet()->Locate(m_dataFieldPadre, ParentId, {});
}

bool TCustomDBTreeView::locateNextChild(qint64 ParentId, qint64 CurrentId)
{
    TDataSet *ds = DataSet();
    if (ds->Eof())
        return false;
    if (!m_childFilter.active) {
        // The first step of a parent: from here on the dataset shows only its children, so each
        // further step is a plain Next instead of a search through the whole dataset.
        m_childFilter = {true, ds->Filter(), ds->Filtered()};
        QString condition = QLatin1Char('[') + m_dataFieldPadre + QStringLiteral("] = ") + IntToStr(ParentId);
        if (m_childFilter.filtered && !m_childFilter.filter.trimmed().isEmpty())
            condition = QLatin1Char('(') + m_childFilter.filter + QStringLiteral(") AND ") + condition;
        ds->setFilter(condition);
        ds->setFiltered(true);
        qint64 current = 0;
        if (!KeyOf(NodoField()->Value(), current) || current != CurrentId)
            ds->Locate(m_dataFieldNodo, CurrentId, {});
    }
    ds->Next();
    if (ds->Eof()) {
        RestoreChildFilter();
        return false;
    }
    return true;
}

void TCustomDBTreeView::RestoreChildFilter()
{
    if (!m_childFilter.active)
        return;
    TDataSet *ds = DataSet();
    const ChildFilter saved = m_childFilter;
    m_childFilter = ChildFilter();
    ds->setFiltered(saved.filtered);
    ds->setFilter(saved.filter);
}

void TCustomDBTreeView::ReadChildren(TTreeNode *Node)
{
    TDataSet *ds = DataSet();
    qint64 parentId = 0;
    if (!KeyOf(Node->Data()->Key(), parentId))
        return;
    if (!ds->Locate(m_dataFieldNodo, parentId, {}))
        return;
    if (Node->childCount() > 0 || Node->m_childrenRead)
        return;
    Node->m_childrenRead = true;
    if (!locateChild(parentId))
        return;
    TField *nodo = NodoField();
    bool more = true;
    while (more) {
        qint64 key = 0;
        const bool keyed = KeyOf(nodo->Value(), key);
        AddDataNode(Node);
        more = keyed && locateNextChild(parentId, key);
    }
    RestoreChildFilter();
}

void TCustomDBTreeView::initSubTree(TTreeNode *Node)
{
    if (!Node || !m_link->Active())
        return;
    {
        Building building(this);
        ReadChildren(Node);
    }
    QList<TTreeNode *> children;
    for (int i = 0; i < Node->childCount(); ++i)
        children << Node->Item(i);
    ShowIndicators(children);
    ShowIndicators({Node});
}

void TCustomDBTreeView::SelectionChanged(QTreeWidgetItem *current, QTreeWidgetItem *previous)
{
    if (m_quiet)
        return;
    if (m_autoExpand && previous && current) {
        bool ancestor = false;
        for (QTreeWidgetItem *p = current->parent(); p && !ancestor; p = p->parent())
            ancestor = p == previous;
        if (!ancestor)
            previous->setExpanded(false);
    }
    if (m_changeDelay > 0)
        m_changeTimer->start(m_changeDelay);
    else
        Change(static_cast<TTreeNode *>(current));
}

void TCustomDBTreeView::Change(TTreeNode *Node)
{
    m_changeTimer->stop();
    m_remembered = Node ? Node->Data()->Key() : QVariant();
    if (!Node || !m_link->Active())
        return;
    TDataSet *ds = DataSet();
    if (!VarSameValue(NodoField()->Value(), Node->Data()->Key())
        && !ds->Locate(m_dataFieldNodo, Node->Data()->Key(), {})) {
        // The record is gone: the parent takes the selection, the node goes.
        if (TTreeNode *parent = Node->Parent())
            setCurrentItem(parent);
        DeleteNode(Node);
        return;
    }
    const TDataSetState state = ds->State();
    if (state != dsEdit && state != dsInsert && state != dsSetKey && Node->childCount() == 0
        && !Node->m_childrenRead)
        initSubTree(Node);
    if (m_autoExpand)
        Node->setExpanded(true);
}

void TCustomDBTreeView::ItemExpanded(QTreeWidgetItem *item)
{
    auto *node = static_cast<TTreeNode *>(item);
    if (node->m_childrenRead || !m_link->Active())
        return;
    const TDataSetState state = DataSet()->State();
    if (state != dsEdit && state != dsInsert && state != dsSetKey)
        initSubTree(node);
}

void TCustomDBTreeView::RefreshFromRecord(TTreeNode *node)
{
    TCustomDataNode *data = node->Data();
    TField *padre = PadreField();
    const QVariant parentKey = padre->Value();
    if (VarSameValue(parentKey, data->ParentKey()))
        return;
    data->setParentKey(parentKey);
    // Another parent: the node moves under it, or to the roots; under a parent whose children
    // are not read yet it goes, and comes back when they are.
    qint64 fatherKey = 0;
    TTreeNode *father = KeyOf(parentKey, fatherKey) ? GetNodeFromID(fatherKey) : nullptr;
    const bool root = IsRootParent(padre);
    if (!root && (!father || !father->m_childrenRead)) {
        DeleteNode(node);
        return;
    }
    const bool wasCurrent = currentItem() == node;
    Quiet quiet(this);
    if (QTreeWidgetItem *old = node->parent())
        old->removeChild(node);
    else
        takeTopLevelItem(indexOfTopLevelItem(node));
    if (root)
        addTopLevelItem(node);
    else
        father->addChild(node);
    std::function<void(TTreeNode *)> relevel = [&](TTreeNode *n) {
        SetImages(n);
        for (int i = 0; i < n->childCount(); ++i)
            relevel(n->Item(i));
    };
    relevel(node);
    if (wasCurrent)
        setCurrentItem(node);
}

void TCustomDBTreeView::DataSetChanged()
{
    if (m_building || !m_link->Active() || m_dataFieldNodo.isEmpty() || m_dataFieldPadre.isEmpty())
        return;
    // Changes that come from the dataset never move it: when the selected node goes, the
    // selection goes, silently, to the node of the current record (or nowhere).
    const QVariant selectedKey = Selected() ? Selected()->Data()->Key() : QVariant();
    Quiet quiet(this);
    const auto reselect = qScopeGuard([&] {
        if (!selectedKey.isValid() || (Selected() && VarSameValue(Selected()->Data()->Key(), selectedKey)))
            return;
        qint64 key = 0;
        setCurrentItem(KeyOf(NodoField()->Value(), key) ? GetNodeFromID(key) : nullptr);
    });
    TDataSet *ds = DataSet();
    const TDataSetState state = ds->State();
    const bool editing = state == dsEdit || state == dsInsert || state == dsSetKey;
    TField *nodo = NodoField();

    // 1. The remembered record is gone: its node goes, and its parent's node shows the change.
    if (!editing && m_remembered.isValid()) {
        if (VarIsNull(ds->Lookup(m_dataFieldNodo, m_remembered, m_dataFieldNodo))) {
            qint64 key = 0;
            TTreeNode *gone = KeyOf(m_remembered, key) ? GetNodeFromID(key) : nullptr;
            m_remembered = QVariant();
            if (gone) {
                const QVariant parentKey = gone->Data()->ParentKey();
                DeleteNode(gone);
                qint64 fatherKey = 0;
                if (TTreeNode *father = KeyOf(parentKey, fatherKey) ? GetNodeFromID(fatherKey) : nullptr) {
                    ApplyText(father);
                    ShowIndicators({father});
                }
            }
        }
    }

    // 2. The node of the current record shows its values again.
    qint64 key = 0;
    const bool keyed = KeyOf(nodo->Value(), key);
    TTreeNode *node = keyed ? GetNodeFromID(key) : nullptr;
    if (OnSearchingDataNode)
        OnSearchingDataNode(this, ds, node);

    if (node) {
        m_remembered = node->Data()->Key();
        RefreshFromRecord(node);
        // The refresh may have removed it, when it moved into an unread branch.
        node = GetNodeFromID(key);
        if (node) {
            if (OnRefreshingDataNode)
                OnRefreshingDataNode(this, ds, node);
            ApplyText(node);
        }
        return;
    }

    // 3. A posted record without a node: a root, or a child of a node whose children are read
    // (an unread branch gets it when it is read).
    if (editing || !keyed)
        return;
    TField *padre = PadreField();
    if (IsRootParent(padre)) {
        ShowIndicators({AddDataNode(nullptr)});
        return;
    }
    qint64 fatherKey = 0;
    TTreeNode *father = KeyOf(padre->Value(), fatherKey) ? GetNodeFromID(fatherKey) : nullptr;
    if (!father || !father->m_childrenRead)
        return;
    TTreeNode *added = AddDataNode(father);
    ShowIndicators({added, father});
}

void TCustomDBTreeView::EditingChanged()
{
    if (!m_link->Editing() || m_building || m_dataFieldNodo.isEmpty())
        return;
    TDataSet *ds = DataSet();
    if (ds->State() == dsInsert) {
        if (OnInsertingDataNode)
            OnInsertingDataNode(this, ds, Selected());
    } else if (ds->State() == dsEdit && OnEditingDataNode) {
        qint64 key = 0;
        OnEditingDataNode(this, ds, KeyOf(NodoField()->Value(), key) ? GetNodeFromID(key) : nullptr);
    }
}

void TCustomDBTreeView::focusInEvent(QFocusEvent *event)
{
    // Qt makes the first item current when a view without one gets the focus: that alone must
    // not move the dataset.
    Quiet quiet(this);
    QTreeWidget::focusInEvent(event);
}

TDBReadTreeView::TDBReadTreeView(QWidget *parent)
    : TCustomDBTreeView(parent)
{
}

} // namespace mattoni
