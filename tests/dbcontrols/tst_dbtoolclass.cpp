// The dataset state controls following a real dataset through its states, and letting go of
// data sources and image lists that are destroyed.
#include "ClientDataSet.h"
#include "DBToolClass.h"
#include "DataSource.h"
#include "Graphics.h"
#include "ImageList.h"

#include <QtTest>

using namespace mattoni;

namespace {

// One image per state, each filled with its own colour.
const QColor StateColours[] = {Qt::black, Qt::green, Qt::yellow, Qt::red, Qt::blue};

void FillImages(TCustomImageList &list, int count)
{
    for (int i = 0; i < count; ++i) {
        QPixmap image(list.Width(), list.Height());
        image.fill(StateColours[i]);
        list.Add(image);
    }
}

QColor Colour(const QPixmap &pixmap)
{
    return pixmap.toImage().pixelColor(0, 0);
}

struct Data
{
    TClientDataSet ds;
    TDataSource source;

    Data()
    {
        ds.FieldDefs().Add(QStringLiteral("ID"), ftInteger);
        source.setDataSet(&ds);
    }

    // An in-memory dataset keeps no rows once closed: each opening makes two again.
    void Open()
    {
        ds.CreateDataSet();
        ds.AppendRecord({1});
        ds.AppendRecord({2});
    }

    // Takes the dataset to State: closed, browsing, editing, inserting or setting a key.
    void Enter(TDataSetState state)
    {
        if (state == dsInactive) {
            ds.Close();
            return;
        }
        if (!ds.Active())
            Open();
        if (ds.State() != dsBrowse)
            ds.Cancel();
        if (state == dsEdit)
            ds.Edit();
        if (state == dsInsert)
            ds.Insert();
        if (state == dsSetKey) {
            ds.setIndexFieldNames(QStringLiteral("ID"));
            ds.SetKey();
        }
    }
};

} // namespace

class tst_DBToolClass : public QObject
{
    Q_OBJECT

private slots:
    void states_data()
    {
        QTest::addColumn<int>("stateNumber");
        QTest::addColumn<QString>("hint");
        QTest::newRow("closed") << int(dsInactive) << "Inattivo";
        QTest::newRow("browse") << int(dsBrowse) << "Modalità lettura";
        QTest::newRow("edit") << int(dsEdit) << "Modalità redazione";
        QTest::newRow("insert") << int(dsInsert) << "Modalità inserimento";
        QTest::newRow("set key") << int(dsSetKey) << "";
    }

    void states()
    {
        QFETCH(int, stateNumber);
        const auto state = TDataSetState(stateNumber);
        QFETCH(QString, hint);
        Data data;
        TCustomImageList full(16, 12), short3(10, 8);
        FillImages(full, 5);
        FillImages(short3, 3);
        TDBStateButton button;
        button.setImages(&full);
        TDBImageState image, blankImage;
        image.setImages(&full);
        blankImage.setImages(&short3);
        button.setDataSource(&data.source);
        image.setDataSource(&data.source);
        blankImage.setDataSource(&data.source);

        // Away and back, so that the state is reached by a notification whatever it is.
        data.Enter(state == dsBrowse ? dsInactive : dsBrowse);
        data.Enter(state);

        QCOMPARE(button.Hint(), hint);
        QCOMPARE(button.ImageIndex(), int(state));
        QCOMPARE(Colour(button.icon().pixmap(16, 12)), StateColours[state]);
        QCOMPARE(image.Hint(), hint);
        QCOMPARE(image.size(), QSize(16, 12));
        QCOMPARE(Colour(image.Picture()), StateColours[state]);
        // Three images only: from dsInsert on the picture is the blank bitmap, the size the list's.
        QCOMPARE(blankImage.size(), QSize(10, 8));
        if (int(state) < 3) {
            QCOMPARE(Colour(blankImage.Picture()), StateColours[state]);
        } else {
            QCOMPARE(blankImage.Picture().size(), QSize(1, 1));
            QCOMPARE(Colour(blankImage.Picture()), TColorToQColor(clBtnFace));
        }
    }

    // Moving between records is no change of state; only editing and activity refresh.
    void refreshOnlyOnStateChanges()
    {
        Data data;
        TCustomImageList list;
        FillImages(list, 5);
        TDBImageState image;
        image.setImages(&list);
        TDBStateButton button;
        button.setImages(&list);
        image.setDataSource(&data.source);
        button.setDataSource(&data.source);
        data.Open();
        image.setHint(QStringLiteral("mano"));
        button.setHint(QStringLiteral("mano"));
        data.ds.Next();
        QCOMPARE(image.Hint(), QStringLiteral("mano"));
        QCOMPARE(button.Hint(), QStringLiteral("mano"));
        // A new image list shows only at the next change of state.
        TCustomImageList other(8, 8);
        FillImages(other, 5);
        image.setImages(&other);
        list.Clear();
        QCOMPARE(image.size(), QSize(16, 16));
        data.ds.Edit();
        QCOMPARE(image.size(), QSize(8, 8));
        QCOMPARE(image.Hint(), QStringLiteral("Modalità redazione"));
    }

    void withoutDataSourceOrImages()
    {
        Data data;
        TDBStateButton button;
        TDBImageState image;
        button.setHint(QStringLiteral("x"));
        button.StateChange();
        QCOMPARE(button.Hint(), QStringLiteral("x"));
        QCOMPARE(button.ImageIndex(), -1);
        image.setDataSource(&data.source);
        data.Open();
        QVERIFY(image.Hint().isEmpty());
        QVERIFY(image.Picture().isNull());
    }

    void removedComponents()
    {
        Data data;
        TDBStateButton button;
        TDBImageState image;
        {
            auto source = std::make_unique<TDataSource>();
            source->setDataSet(&data.ds);
            auto list = std::make_unique<TCustomImageList>();
            FillImages(*list, 5);
            button.setDataSource(source.get());
            button.setImages(list.get());
            image.setDataSource(source.get());
            image.setImages(list.get());
            data.Open();
            QCOMPARE(button.Hint(), QStringLiteral("Modalità lettura"));
        }
        QCOMPARE(button.DataSource(), nullptr);
        QCOMPARE(button.Images(), nullptr);
        QCOMPARE(image.DataSource(), nullptr);
        QCOMPARE(image.Images(), nullptr);
        // The source let its dataset go before it went: the last state shown is "Inattivo".
        QCOMPARE(button.Hint(), QStringLiteral("Inattivo"));
        data.ds.Edit();
        QCOMPARE(button.Hint(), QStringLiteral("Inattivo"));
        QVERIFY(button.icon().isNull());
    }

    void actionSet()
    {
        TDbActionSet set{dbEdit, dbAssegna};
        QVERIFY(set.Contains(dbAssegna) && !set.Contains(dbNone));
        QCOMPARE(set.Bits(), quint16(0x2002));
        QCOMPARE((set + TDbActionSet{dbPost}) - TDbActionSet{dbEdit}, (TDbActionSet{dbPost, dbAssegna}));
        set.Exclude(dbEdit).Exclude(dbAssegna);
        QVERIFY(set.IsEmpty());
        QCOMPARE(int(DbActionCount), 14);
    }
};

QTEST_MAIN(tst_DBToolClass)
#include "tst_dbtoolclass.moc"
