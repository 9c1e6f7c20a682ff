// The memory table: opening, emptying, sorting on fields, and its three structure copies, from
// datasets filled from an SQLite file and from field definitions.
#include "../dataset/DataTestSupport.h"
#include "FormatSettings.h"
#include "MemDS.h"

#include <QtTest>

#include <memory>

using namespace mattoni;
using datatest::column;
using datatest::errorOf;

namespace {

const char *const Connection = "tst_memds";

} // namespace

class tst_MemDS : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<datatest::SqliteFile> m_file;

    // Fields of every kind the copies look at, over an SQLite table.
    void openSource(TClientDataSet &source)
    {
        source.setConnectionName(QLatin1String(Connection));
        source.setCommandText(QStringLiteral("SELECT codice, descrizione, importo, scadenza FROM tasse ORDER BY codice"));
        source.FieldDefs().Update();
        for (int i = 0; i < source.FieldDefs().Count(); ++i)
            source.FieldDefs()[i]->CreateField(&source);
        auto *calc = new TStringField(&source);
        calc->setFieldName(QStringLiteral("ETICHETTA"));
        calc->setFieldKind(fkCalculated);
        calc->setSize(30);
        calc->setDataSet(&source);
        source.OnCalcFields = [](TDataSet *d) {
            d->FieldByName(QStringLiteral("ETICHETTA"))->setAsString(d->FieldByName(QStringLiteral("descrizione"))->AsString());
        };
        source.Open();
    }

private slots:
    void initTestCase()
    {
        m_file = std::make_unique<datatest::SqliteFile>(QLatin1String(Connection), QStringList{
            "CREATE TABLE tasse (codice INTEGER, descrizione VARCHAR(40), importo DOUBLE, scadenza TEXT)",
            "INSERT INTO tasse VALUES (2, 'Seconda rata', 450.5, '2013-12-31'), (1, 'Prima rata', 500, '2013-10-31'), "
            "(3, 'Mora', 25, NULL)"});
        QCOMPARE(m_file->Error(), QString());
    }

    void cleanupTestCase() { m_file.reset(); }

    void init() { FormatSettings = TFormatSettings::Italian(); }

    void openMakesAnEmptyTable()
    {
        TMemData table;
        QCOMPARE(errorOf([&] { table.Open(); }), QStringLiteral("No fields defined. Cannot create dataset"));
        table.setCapacity(100);
        QCOMPARE(table.Capacity(), 0);
        table.FieldDefs().Add(QStringLiteral("A"), ftInteger);
        table.Open();
        table.AppendRecord({1});
        table.AppendRecord({2});
        QCOMPARE(table.RecordCount(), 2);
        // Opening again starts from an empty table.
        table.Open();
        QVERIFY(table.Active());
        QCOMPARE(table.RecordCount(), 0);
        // The Active property opens it the same way.
        table.Close();
        table.setActive(true);
        QCOMPARE(table.RecordCount(), 0);
        QVERIFY(table.property("IndexFieldNames").isValid());
    }

    void emptyTable()
    {
        TMemData table;
        table.FieldDefs().Add(QStringLiteral("A"), ftInteger);
        table.Open();
        int posts = 0, cancels = 0;
        table.AfterPost = [&](TDataSet *) { ++posts; };
        table.AfterCancel = [&](TDataSet *) { ++cancels; };
        table.AppendRecord({1});
        table.Append();
        table.FieldByName(QStringLiteral("A"))->setAsInteger(2);
        table.EmptyTable();
        QCOMPARE(posts, 2);
        QCOMPARE(table.RecordCount(), 0);
        table.Append();
        table.EmptyTable();
        QCOMPARE(cancels, 1);
        QCOMPARE(posts, 2);
        QCOMPARE(table.State(), dsBrowse);
    }

    void sortOnFields_data()
    {
        QTest::addColumn<QString>("fields");
        QTest::addColumn<QString>("result");
        QTest::newRow("text") << "NOME" << "C;a;b";
        QTest::newRow("two fields") << "ANNO;NOME" << "a;b;C";
        QTest::newRow("flags ignored") << "NOME" << "C;a;b";
        QTest::newRow("memo") << "NOTE" << "C;b;a";
        QTest::newRow("unknown") << "ANNO;ZZZ" << "!Field 'ZZZ' not found";
        QTest::newRow("calculated of a sortable type")
            << "DOPPIO" << "!Type mismatch for field 'DOPPIO', expecting: sortable data field actual: Calculated Integer";
        QTest::newRow("record") << "INDIRIZZO" << "!Type mismatch for field 'INDIRIZZO', expecting: sortable data field actual: Data ADT";
        QTest::newRow("variant") << "VARIO" << "!Type mismatch for field 'VARIO', expecting: sortable data field actual: Data Variant";
        QTest::newRow("guid") << "CHIAVE" << "!Type mismatch for field 'CHIAVE', expecting: sortable data field actual: Data Guid";
    }
    void sortOnFields()
    {
        QFETCH(QString, fields);
        QFETCH(QString, result);
        TMemData table;
        table.FieldDefs().Add(QStringLiteral("NOME"), ftString, 10);
        table.FieldDefs().Add(QStringLiteral("ANNO"), ftInteger);
        table.FieldDefs().Add(QStringLiteral("NOTE"), ftMemo);
        table.FieldDefs().Add(QStringLiteral("INDIRIZZO"), ftADT)->ChildDefs().Add(QStringLiteral("VIA"), ftString, 20);
        table.FieldDefs().Add(QStringLiteral("VARIO"), ftVariant);
        table.FieldDefs().Add(QStringLiteral("CHIAVE"), ftGuid);
        for (int i = 0; i < table.FieldDefs().Count(); ++i)
            table.FieldDefs()[i]->CreateField(&table);
        auto *doppio = new TIntegerField(&table);
        doppio->setFieldName(QStringLiteral("DOPPIO"));
        doppio->setFieldKind(fkCalculated);
        doppio->setDataSet(&table);
        table.Open();
        table.AppendRecord({"b", 1, "y"});
        table.AppendRecord({"C", 2, "a"});
        table.AppendRecord({"a", 1, "z"});
        const QString error = errorOf([&] { table.SortOnFields(fields, false, true); });
        if (result.startsWith(QLatin1Char('!'))) {
            QCOMPARE(error, result.mid(1));
            QVERIFY(table.IndexFieldNames().isEmpty());
            return;
        }
        QCOMPARE(error, QString());
        QCOMPARE(table.IndexFieldNames(), fields);
        QCOMPARE(column(table, QStringLiteral("NOME")).join(QLatin1Char(';')), result);
    }

    void copyStructure()
    {
        TClientDataSet source;
        openSource(source);
        TMemData table;
        table.FieldDefs().Add(QStringLiteral("VECCHIO"), ftInteger);
        table.Open();
        table.CopyStructure(&source);
        QVERIFY(table.Active());
        QCOMPARE(table.RecordCount(), 0);
        // The definitions of the source: data fields only, types as the source has them.
        QCOMPARE(table.GetFieldNames(), QStringList({"codice", "descrizione", "importo", "scadenza"}));
        QCOMPARE(table.FieldByName(QStringLiteral("importo"))->DataType(), ftFloat);
        table.AppendRecord({4, "Bollo", 16});
        QCOMPARE(table.FieldByName(QStringLiteral("descrizione"))->AsString(), QStringLiteral("Bollo"));

        TClientDataSet wide;
        wide.FieldDefs().Add(QStringLiteral("W"), ftWideString, 12);
        wide.CreateDataSet();
        table.CopyStructure(&wide);
        QCOMPARE(table.FieldByName(QStringLiteral("W"))->DataType(), ftWideString);

        table.CopyStructure(nullptr);
        QVERIFY(!table.Active());
        QCOMPARE(table.FieldCount(), 0);
    }

    void makeStructure()
    {
        TClientDataSet source;
        openSource(source);
        TField *codice = source.FieldByName(QStringLiteral("codice"));
        codice->setDisplayLabel(QStringLiteral("Codice tassa"));
        codice->setDisplayWidth(7);
        codice->setRequired(true);
        TField *descrizione = source.FieldByName(QStringLiteral("descrizione"));
        descrizione->setReadOnly(true);
        TMemData table;
        table.MakeStructure({codice, descrizione, source.FieldByName(QStringLiteral("ETICHETTA"))});
        QVERIFY(!table.Active());
        QCOMPARE(table.FieldDefs().Count(), 3);
        QCOMPARE(table.FieldCount(), 3);
        QVERIFY(!table.DefaultFields());
        TField *c = table.FieldByName(QStringLiteral("codice"));
        QCOMPARE(c->DataType(), ftInteger);
        QCOMPARE(c->DisplayLabel(), QStringLiteral("Codice tassa"));
        QCOMPARE(c->DisplayWidth(), 7);
        QVERIFY(c->Required());
        QVERIFY(table.FieldDefs().Find(QStringLiteral("codice"))->Required());
        // Read-only exactly when the source is not a plain data field.
        QVERIFY(!table.FieldByName(QStringLiteral("descrizione"))->ReadOnly());
        TField *etichetta = table.FieldByName(QStringLiteral("ETICHETTA"));
        QVERIFY(etichetta->ReadOnly());
        QCOMPARE(etichetta->FieldKind(), fkData);
        QCOMPARE(etichetta->Size(), 30);
        table.Open();
        QVERIFY(table.Active());

        table.MakeStructure({});
        QVERIFY(!table.Active());
        QCOMPARE(table.FieldCount(), 0);
        QCOMPARE(table.FieldDefs().Count(), 0);
    }

    void lightCopyStructure()
    {
        TClientDataSet source;
        source.FieldDefs().Add(QStringLiteral("ID"), ftInteger, 0, true);
        source.FieldDefs().Add(QStringLiteral("NASCOSTO"), ftString, 5);
        source.FieldDefs().Add(QStringLiteral("FISSO"), ftWideString, 8);
        source.FieldDefs().Add(QStringLiteral("QUOTA"), ftBCD, 2)->setPrecision(12);
        TFieldDef *address = source.FieldDefs().Add(QStringLiteral("INDIRIZZO"), ftADT);
        address->ChildDefs().Add(QStringLiteral("CITTA"), ftWideString, 30);
        for (int i = 0; i < source.FieldDefs().Count(); ++i)
            source.FieldDefs()[i]->CreateField(&source);
        auto *calc = new TIntegerField(&source);
        calc->setFieldName(QStringLiteral("CALCOLATO"));
        calc->setFieldKind(fkCalculated);
        calc->setDataSet(&source);
        source.FieldByName(QStringLiteral("NASCOSTO"))->setVisible(false);
        source.FieldByName(QStringLiteral("FISSO"))->setReadOnly(true);
        source.CreateDataSet();

        TMemData table;
        table.LightCopyStructure(&source);
        QVERIFY(table.Active());
        QVERIFY(table.DefaultFields());
        QCOMPARE(table.GetFieldNames(), QStringList({"ID", "NASCOSTO", "FISSO", "QUOTA", "INDIRIZZO"}));
        QCOMPARE(table.FieldDefs().Find(QStringLiteral("ID"))->Attributes(), TFieldAttributes(faRequired));
        QCOMPARE(table.FieldDefs().Find(QStringLiteral("NASCOSTO"))->Attributes(), TFieldAttributes(faHiddenCol));
        QCOMPARE(table.FieldDefs().Find(QStringLiteral("FISSO"))->Attributes(), TFieldAttributes(faReadonly));
        QVERIFY(!table.FieldByName(QStringLiteral("NASCOSTO"))->Visible());
        QVERIFY(table.FieldByName(QStringLiteral("FISSO"))->ReadOnly());
        QVERIFY(table.FieldByName(QStringLiteral("ID"))->Required());
        // Wide strings become plain strings, the child of the record too.
        QCOMPARE(table.FieldByName(QStringLiteral("FISSO"))->DataType(), ftString);
        QCOMPARE(table.FieldByName(QStringLiteral("FISSO"))->Size(), 8);
        QCOMPARE(table.FieldByName(QStringLiteral("INDIRIZZO.CITTA"))->DataType(), ftString);
        QCOMPARE(static_cast<TBCDField *>(table.FieldByName(QStringLiteral("QUOTA")))->Precision(), 12);
        QCOMPARE(table.FieldByName(QStringLiteral("QUOTA"))->Size(), 2);
        // The source keeps its own types.
        QCOMPARE(source.FieldByName(QStringLiteral("FISSO"))->DataType(), ftWideString);

        table.LightCopyStructure(nullptr);
        QVERIFY(!table.Active());
        QCOMPARE(table.FieldCount(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_MemDS)
#include "tst_memds.moc"
