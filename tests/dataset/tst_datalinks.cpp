// Data sources and data links: which notifications each link receives, in which order, for the
// dataset's state changes, moves and edits; DisableControls; the field data link of a control.
#include "ClientDataSet.h"
#include "DataSource.h"
#include "Exceptions.h"

#include <QtTest>

using namespace mattoni;

namespace {

class RecordingLink : public TDataLink
{
public:
    QStringList log;

    QStringList take()
    {
        const QStringList l = log;
        log.clear();
        return l;
    }

protected:
    void ActiveChanged() override { log << QStringLiteral("ActiveChanged"); }
    void CheckBrowseMode() override { log << QStringLiteral("CheckBrowseMode"); }
    void DataSetChanged() override { log << QStringLiteral("DataSetChanged"); }
    void DataSetScrolled(int distance) override { log << QStringLiteral("DataSetScrolled %1").arg(distance); }
    void EditingChanged() override { log << QStringLiteral("EditingChanged"); }
    void LayoutChanged() override { log << QStringLiteral("LayoutChanged"); }
    void RecordChanged(TField *field) override
    {
        log << QStringLiteral("RecordChanged ") + (field ? field->FieldName() : QStringLiteral("-"));
    }
    void UpdateData() override { log << QStringLiteral("UpdateData"); }
};

// A control as far as a field data link sees it: something with a setFocus slot.
class FakeControl : public QObject
{
    Q_OBJECT
public:
    int focused = 0;
public slots:
    void setFocus() { ++focused; }
};

void makeDataSet(TClientDataSet &ds)
{
    ds.FieldDefs().Add(QStringLiteral("ID"), ftInteger, 0, true);
    ds.FieldDefs().Add(QStringLiteral("NOME"), ftString, 20);
    ds.CreateDataSet();
    for (int i = 1; i <= 3; ++i)
        ds.AppendRecord({i, QStringLiteral("n%1").arg(i)});
    ds.First();
}

struct Step
{
    const char *name;
    std::function<void(TClientDataSet &, TDataSource &, TClientDataSet &)> run;
    QStringList expected;
};

TField *nome(TDataSet &ds)
{
    return ds.FieldByName(QStringLiteral("NOME"));
}

const QList<Step> &steps()
{
    static const QList<Step> list = {
        {"open", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Close(); ds.CreateDataSet(); }, {"ActiveChanged", "ActiveChanged"}},
        {"next", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Next(); }, {"CheckBrowseMode", "DataSetScrolled 1"}},
        {"next at the end", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Last(); ds.Next(); },
         {"CheckBrowseMode", "DataSetChanged", "CheckBrowseMode"}},
        {"move by", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.MoveBy(2); }, {"CheckBrowseMode", "DataSetScrolled 2"}},
        {"edit", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Edit(); },
         {"CheckBrowseMode", "EditingChanged", "RecordChanged -"}},
        {"field change", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Edit(); nome(ds)->setAsString(QStringLiteral("x")); },
         {"CheckBrowseMode", "EditingChanged", "RecordChanged -", "RecordChanged NOME"}},
        {"post", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Edit(); nome(ds)->setAsString(QStringLiteral("x")); ds.Post(); },
         {"CheckBrowseMode", "EditingChanged", "RecordChanged -", "RecordChanged NOME", "UpdateData",
          "CheckBrowseMode", "EditingChanged", "DataSetChanged"}},
        {"insert", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Insert(); },
         {"CheckBrowseMode", "EditingChanged", "DataSetChanged"}},
        {"cancel", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Append(); ds.Cancel(); },
         {"CheckBrowseMode", "EditingChanged", "DataSetChanged", "CheckBrowseMode", "EditingChanged", "DataSetChanged"}},
        {"delete", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Delete(); }, {"CheckBrowseMode", "DataSetChanged"}},
        {"close", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Close(); }, {"ActiveChanged"}},
        {"close while editing", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.Edit(); ds.Close(); },
         {"CheckBrowseMode", "EditingChanged", "RecordChanged -", "ActiveChanged", "EditingChanged"}},
        {"disabled moves and edits", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) {
             ds.DisableControls();
             ds.Next();
             ds.Edit();
             nome(ds)->setAsString(QStringLiteral("y"));
             ds.Post();
             ds.Last();
             ds.EnableControls();
         }, {"DataSetChanged"}},
        {"enabled in another state", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) {
             ds.DisableControls();
             ds.Edit();
             ds.EnableControls();
         }, {"EditingChanged", "DataSetChanged"}},
        {"nested disable", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) {
             ds.DisableControls();
             ds.DisableControls();
             ds.Next();
             ds.EnableControls();
             QVERIFY(ds.ControlsDisabled());
             ds.EnableControls();
         }, {"DataSetChanged"}},
        {"closed and reopened while disabled", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) {
             ds.DisableControls();
             ds.Close();
             ds.CreateDataSet();
             ds.EnableControls();
         }, {"LayoutChanged"}},
        {"label of a field", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { nome(ds)->setDisplayLabel(QStringLiteral("Nome")); },
         {"LayoutChanged"}},
        {"filter", [](TClientDataSet &ds, TDataSource &, TClientDataSet &) { ds.setFilter(QStringLiteral("ID > 1")); ds.setFiltered(true); },
         {"CheckBrowseMode", "CheckBrowseMode", "DataSetChanged"}},
        {"source disabled", [](TClientDataSet &ds, TDataSource &src, TClientDataSet &) { src.setEnabled(false); ds.Next(); src.setEnabled(true); },
         {"ActiveChanged", "ActiveChanged"}},
        {"dataset swapped", [](TClientDataSet &, TDataSource &src, TClientDataSet &other) {
             makeDataSet(other);
             src.setDataSet(&other);
         }, {"ActiveChanged", "ActiveChanged"}},
    };
    return list;
}

} // namespace

class tst_DataLinks : public QObject
{
    Q_OBJECT
private slots:
    void notifications_data()
    {
        QTest::addColumn<int>("step");
        for (int i = 0; i < steps().size(); ++i)
            QTest::newRow(steps()[i].name) << i;
    }
    void notifications()
    {
        QFETCH(int, step);
        TClientDataSet ds, other;
        makeDataSet(ds);
        TDataSource source;
        source.setDataSet(&ds);
        RecordingLink first, second;
        first.setDataSource(&source);
        second.setDataSource(&source);
        QCOMPARE(first.take(), QStringList{"ActiveChanged"});
        second.take();
        steps()[step].run(ds, source, other);
        // Every link of the source hears the same, in the same order.
        QCOMPARE(first.log, steps()[step].expected);
        QCOMPARE(second.log, steps()[step].expected);
    }

    void linkStateFollowsTheSource()
    {
        TClientDataSet ds;
        makeDataSet(ds);
        TDataSource source;
        RecordingLink link;
        link.setDataSource(&source);
        QVERIFY(!link.Active());
        source.setDataSet(&ds);
        QVERIFY(link.Active());
        QCOMPARE(link.DataSet(), &ds);
        ds.Edit();
        QVERIFY(link.Editing());
        QCOMPARE(source.State(), dsEdit);
        link.setReadOnly(true);
        QVERIFY(!link.Editing());
        ds.Cancel();
        link.setReadOnly(false);

        source.setAutoEdit(false);
        QVERIFY(!link.Edit());
        QCOMPARE(ds.State(), dsBrowse);
        source.setAutoEdit(true);
        QVERIFY(link.Edit());
        QCOMPARE(ds.State(), dsEdit);
        ds.Cancel();

        // The source's own events.
        QList<TDataSetState> states;
        QStringList changes;
        int updates = 0;
        source.OnStateChange = [&](TDataSource *s) { states << s->State(); };
        source.OnDataChange = [&](TDataSource *, TField *f) { changes << (f ? f->FieldName() : QStringLiteral("-")); };
        source.OnUpdateData = [&](TDataSource *) { ++updates; };
        ds.Edit();
        nome(ds)->setAsString(QStringLiteral("z"));
        ds.Post();
        QCOMPARE(states, QList<TDataSetState>({dsEdit, dsBrowse}));
        QCOMPARE(changes, QStringList({"-", "NOME", "-"}));
        QCOMPARE(updates, 1);

        link.take();
        {
            TClientDataSet gone;
            makeDataSet(gone);
            source.setDataSet(&gone);
            link.take();
        }
        QCOMPARE(source.DataSet(), nullptr);
        QCOMPARE(link.take(), QStringList{"ActiveChanged"});
        QVERIFY(!link.Active());
    }

    void fieldDataLink()
    {
        TClientDataSet ds;
        makeDataSet(ds);
        TDataSource source;
        source.setDataSet(&ds);
        FakeControl control;
        TFieldDataLink link;
        link.setControl(&control);
        QStringList events;
        link.OnActiveChange = [&](TFieldDataLink *) { events << QStringLiteral("active"); };
        link.OnDataChange = [&](TFieldDataLink *l) {
            events << QStringLiteral("data ") + (l->Field() ? l->Field()->AsString() : QStringLiteral("-"));
        };
        link.OnEditingChange = [&](TFieldDataLink *l) { events << QStringLiteral("editing %1").arg(l->Editing()); };
        QString pending;
        link.OnUpdateData = [&](TFieldDataLink *l) {
            events << QStringLiteral("update");
            l->Field()->setAsString(pending);
        };
        link.setFieldName(QStringLiteral("NOME"));
        link.setDataSource(&source);
        QCOMPARE(link.Field(), nome(ds));
        QCOMPARE(events, QStringList({"data n1", "active"}));
        events.clear();

        // Another field's change is not this link's business.
        QVERIFY(link.Edit());
        ds.FieldByName(QStringLiteral("ID"))->setAsInteger(10);
        QCOMPARE(events, QStringList({"editing 1", "data n1"}));
        events.clear();

        // The control typed something: Post writes it first.
        pending = QStringLiteral("scritto");
        link.Modified();
        ds.Post();
        QCOMPARE(nome(ds)->AsString(), QStringLiteral("scritto"));
        QCOMPARE(events, QStringList({"update", "editing 0", "data scritto"}));
        events.clear();

        // Nothing modified: UpdateRecord writes nothing.
        ds.Edit();
        ds.Post();
        QVERIFY(!events.contains(QStringLiteral("update")));

        // A read-only field cannot be edited through the link.
        nome(ds)->setReadOnly(true);
        QVERIFY(!link.CanModify());
        QVERIFY(!link.Edit());
        QCOMPARE(ds.State(), dsBrowse);
        nome(ds)->setReadOnly(false);

        // A required field left empty puts the focus on its control before the error.
        nome(ds)->setRequired(true);
        ds.Append();
        ds.FieldByName(QStringLiteral("ID"))->setAsInteger(4);
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, ds.Post());
        QCOMPARE(control.focused, 1);
        ds.Cancel();

        ds.Close();
        QCOMPARE(link.Field(), nullptr);
    }
};

QTEST_GUILESS_MAIN(tst_DataLinks)
#include "tst_datalinks.moc"
