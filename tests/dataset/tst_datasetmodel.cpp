// The item-model adapter: rows read without moving the cursor, and the model's signals for every
// kind of change, checked by Qt's own model tester.
#include "ClientDataSet.h"
#include "DataSetModel.h"
#include "DataSource.h"
#include "FormatSettings.h"

#include <QAbstractItemModelTester>
#include <QtTest>

using namespace mattoni;

class tst_DataSetModel : public QObject
{
    Q_OBJECT

private:
    TClientDataSet *m_ds = nullptr;
    TDataSource *m_source = nullptr;
    TDataSetModel *m_model = nullptr;
    QAbstractItemModelTester *m_tester = nullptr;

    QString cell(int row, int column, int role = Qt::DisplayRole) const
    {
        return m_model->data(m_model->index(row, column), role).toString();
    }

    QStringList columnTexts(int column) const
    {
        QStringList texts;
        for (int r = 0; r < m_model->rowCount(); ++r)
            texts << cell(r, column);
        return texts;
    }

private slots:
    void init()
    {
        FormatSettings = TFormatSettings::Italian();
        m_ds = new TClientDataSet(this);
        m_ds->FieldDefs().Add(QStringLiteral("ID"), ftInteger);
        m_ds->FieldDefs().Add(QStringLiteral("NOME"), ftString, 20);
        m_ds->FieldDefs().Add(QStringLiteral("IMPORTO"), ftFloat);
        m_ds->CreateDataSet();
        m_ds->AppendRecord({1, "Carla", 10.5});
        m_ds->AppendRecord({2, "Anna", 3});
        m_ds->AppendRecord({3, "Bruno", 7.25});
        m_ds->First();
        m_source = new TDataSource(this);
        m_source->setDataSet(m_ds);
        m_model = new TDataSetModel(this);
        m_model->setDataSource(m_source);
        m_tester = new QAbstractItemModelTester(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest, this);
    }

    void cleanup()
    {
        delete m_tester;
        delete m_model;
        delete m_source;
        delete m_ds;
    }

    void showsRowsWithoutMovingTheCursor()
    {
        QCOMPARE(m_model->rowCount(), 3);
        QCOMPARE(m_model->columnCount(), 3);
        QCOMPARE(m_model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("NOME"));
        m_ds->FieldByName(QStringLiteral("NOME"))->setDisplayLabel(QStringLiteral("Nome"));
        QCOMPARE(m_model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Nome"));
        QCOMPARE(cell(2, 1), QStringLiteral("Bruno"));
        QCOMPARE(cell(2, 2), QStringLiteral("7,25"));
        auto *importo = static_cast<TFloatField *>(m_ds->FieldByName(QStringLiteral("IMPORTO")));
        importo->setDisplayFormat(QStringLiteral("#,##0.00"));
        QCOMPARE(cell(0, 2), QStringLiteral("10,50"));
        // Without an edit format the display format serves for editing too.
        QCOMPARE(cell(0, 2, Qt::EditRole), QStringLiteral("10,50"));
        importo->setEditFormat(QStringLiteral("0.###"));
        QCOMPARE(cell(0, 2, Qt::EditRole), QStringLiteral("10,5"));
        QCOMPARE(m_model->data(m_model->index(0, 2), TDataSetModel::ValueRole), QVariant(10.5));
        QCOMPARE(m_model->data(m_model->index(0, 2), Qt::TextAlignmentRole).value<Qt::Alignment>(),
                 Qt::AlignRight | Qt::AlignVCenter);
        QCOMPARE(m_ds->RecNo(), 1);
        QCOMPARE(m_model->CurrentRow(), 0);
        QCOMPARE(m_model->RowOf(m_model->BookmarkAt(2)), 2);

        m_ds->FieldByName(QStringLiteral("ID"))->setVisible(false);
        QCOMPARE(m_model->columnCount(), 2);
        QCOMPARE(m_model->FieldAt(0)->FieldName(), QStringLiteral("NOME"));
        m_model->setFieldNames({QStringLiteral("IMPORTO"), QStringLiteral("ID")});
        QCOMPARE(m_model->columnCount(), 2);
        QCOMPARE(m_model->ColumnOf(m_ds->FieldByName(QStringLiteral("ID"))), 1);

        m_ds->Close();
        QCOMPARE(m_model->rowCount(), 0);
        QCOMPARE(m_model->columnCount(), 0);
    }

    void insertPostAndCancel()
    {
        m_ds->setIndexFieldNames(QStringLiteral("NOME"));
        QCOMPARE(columnTexts(1), QStringList({"Anna", "Bruno", "Carla"}));
        QSignalSpy inserted(m_model, &QAbstractItemModel::rowsInserted);
        QSignalSpy moved(m_model, &QAbstractItemModel::rowsMoved);
        QSignalSpy removed(m_model, &QAbstractItemModel::rowsRemoved);
        QSignalSpy changed(m_model, &QAbstractItemModel::dataChanged);

        m_ds->First();
        m_ds->Next();
        m_ds->Insert();
        // The new record shows at the cursor, before the current one.
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 1);
        QCOMPARE(m_model->rowCount(), 4);
        QCOMPARE(m_model->CurrentRow(), 1);
        m_ds->FieldByName(QStringLiteral("NOME"))->setAsString(QStringLiteral("Zeno"));
        QCOMPARE(cell(1, 1), QStringLiteral("Zeno"));
        QVERIFY(!changed.isEmpty());
        m_ds->Post();
        // Posted, it moves to its place in the index.
        QCOMPARE(moved.size(), 1);
        QCOMPARE(moved.first().at(1).toInt(), 1);
        QCOMPARE(moved.first().at(4).toInt(), 4);
        QCOMPARE(columnTexts(1), QStringList({"Anna", "Bruno", "Carla", "Zeno"}));
        QCOMPARE(m_model->CurrentRow(), 3);

        m_ds->Append();
        QCOMPARE(inserted.size(), 2);
        QCOMPARE(inserted.last().at(1).toInt(), 4);
        m_ds->Cancel();
        QCOMPARE(removed.size(), 1);
        QCOMPARE(removed.last().at(1).toInt(), 4);
        QCOMPARE(m_model->rowCount(), 4);

        m_ds->First();
        m_ds->Delete();
        QCOMPARE(removed.size(), 2);
        QCOMPARE(removed.last().at(1).toInt(), 0);
        QCOMPARE(columnTexts(1), QStringList({"Bruno", "Carla", "Zeno"}));
    }

    void editsReachTheRow()
    {
        QSignalSpy changed(m_model, &QAbstractItemModel::dataChanged);
        m_ds->Last();
        m_ds->Edit();
        m_ds->FieldByName(QStringLiteral("IMPORTO"))->setAsFloat(8);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex().row(), 2);
        QCOMPARE(cell(2, 2), QStringLiteral("8"));
        m_ds->Cancel();
        QCOMPARE(cell(2, 2), QStringLiteral("7,25"));
    }

    void orderAndFilterChanges()
    {
        m_ds->Locate(QStringLiteral("ID"), 1);
        const QPersistentModelIndex carla = m_model->index(0, 1);
        QSignalSpy layout(m_model, &QAbstractItemModel::layoutChanged);
        QSignalSpy reset(m_model, &QAbstractItemModel::modelReset);
        m_ds->AddIndex(QStringLiteral("Desc"), QStringLiteral("IMPORTO"), ixDescending);
        m_ds->setIndexName(QStringLiteral("Desc"));
        QCOMPARE(layout.size(), 1);
        QCOMPARE(reset.size(), 0);
        QCOMPARE(columnTexts(1), QStringList({"Carla", "Bruno", "Anna"}));
        m_ds->setIndexFieldNames(QStringLiteral("NOME"));
        QCOMPARE(carla.row(), 2);
        QCOMPARE(carla.data().toString(), QStringLiteral("Carla"));
        QCOMPARE(m_model->CurrentRow(), 2);

        m_ds->setFilter(QStringLiteral("IMPORTO > 5"));
        m_ds->setFiltered(true);
        QCOMPARE(reset.size(), 1);
        QCOMPARE(columnTexts(1), QStringList({"Bruno", "Carla"}));
    }

    void disabledControlsGiveOneReset()
    {
        QSignalSpy inserted(m_model, &QAbstractItemModel::rowsInserted);
        QSignalSpy reset(m_model, &QAbstractItemModel::modelReset);
        m_ds->DisableControls();
        for (int i = 10; i < 60; ++i)
            m_ds->AppendRecord({i, QStringLiteral("n%1").arg(i), i});
        QCOMPARE(inserted.size(), 0);
        m_ds->EnableControls();
        QCOMPARE(inserted.size(), 0);
        QCOMPARE(reset.size(), 1);
        QCOMPARE(m_model->rowCount(), 53);
        QCOMPARE(cell(52, 1), QStringLiteral("n59"));
    }

    void editingThroughTheModel()
    {
        QSignalSpy errors(m_model, &TDataSetModel::editError);
        QVERIFY(m_model->flags(m_model->index(0, 1)).testFlag(Qt::ItemIsEditable));
        QVERIFY(m_model->setData(m_model->index(1, 2), QStringLiteral("4,5")));
        QCOMPARE(m_ds->State(), dsEdit);
        QCOMPARE(m_ds->RecNo(), 2);
        m_ds->Post();
        QCOMPARE(cell(1, 2), QStringLiteral("4,5"));
        QVERIFY(!m_model->setData(m_model->index(1, 2), QStringLiteral("quattro")));
        QCOMPARE(errors.size(), 1);
        QCOMPARE(errors.first().first().toString(), QStringLiteral("'quattro' is not a valid floating point value"));
        m_ds->Cancel();

        m_source->setAutoEdit(false);
        QVERIFY(!m_model->setData(m_model->index(0, 1), QStringLiteral("x")));
        QCOMPARE(m_ds->State(), dsBrowse);
        m_ds->FieldByName(QStringLiteral("NOME"))->setReadOnly(true);
        QVERIFY(!m_model->flags(m_model->index(0, 1)).testFlag(Qt::ItemIsEditable));
    }

    void currentRow()
    {
        QSignalSpy current(m_model, &TDataSetModel::currentRowChanged);
        m_ds->Next();
        QCOMPARE(current.size(), 1);
        QCOMPARE(current.last().first().toInt(), 1);
        m_model->setCurrentRow(2);
        QCOMPARE(m_ds->RecNo(), 3);
        QCOMPARE(current.last().first().toInt(), 2);
    }

    void calculatedFieldsPerRow()
    {
        m_ds->Close();
        m_ds->FieldDefs().Clear();
        delete m_model;
        delete m_tester;
        m_tester = nullptr;
        auto *id = new TIntegerField(m_ds);
        id->setFieldName(QStringLiteral("ID"));
        id->setDataSet(m_ds);
        auto *doppio = new TIntegerField(m_ds);
        doppio->setFieldName(QStringLiteral("DOPPIO"));
        doppio->setFieldKind(fkCalculated);
        doppio->setDataSet(m_ds);
        m_ds->OnCalcFields = [](TDataSet *d) {
            d->FieldByName(QStringLiteral("DOPPIO"))->setAsInteger(2 * d->FieldByName(QStringLiteral("ID"))->AsInteger());
        };
        m_ds->CreateDataSet();
        for (int i = 1; i <= 4; ++i)
            m_ds->AppendRecord({i});
        m_model = new TDataSetModel(this);
        m_model->setDataSource(m_source);
        m_tester = new QAbstractItemModelTester(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest, this);
        QCOMPARE(columnTexts(1), QStringList({"2", "4", "6", "8"}));
        QCOMPARE(m_ds->RecNo(), 4);
    }
};

QTEST_GUILESS_MAIN(tst_DataSetModel)
#include "tst_datasetmodel.moc"
