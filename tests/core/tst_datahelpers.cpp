// The helpers over the data layer: SQL literals of parameters and fields, field and parameter
// helpers, the integer sort, random passwords and parameter arrays.
#include "../dataset/DataTestSupport.h"
#include "Ambiente.h"
#include "ClientDataSet.h"
#include "DataHelpers.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "ParamArrays.h"
#include "SqlFieldLiterals.h"
#include "Variants.h"

#include <QtTest>

using namespace mattoni;
using datatest::errorOf;

namespace {

const TDateTime March7 = 38783; // 2006-03-07

} // namespace

class tst_DataHelpers : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        FormatSettings = TFormatSettings::Italian();
        TipoDatabase = dbmsFirebird;
        FormatoData = fddbItaliano;
    }

    // One parameter of each kind, in both literal forms.
    void parameterLiterals_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("insert");
        QTest::addColumn<QString>("update");
        QTest::newRow("text") << int(ftString) << QVariant(" l'uva ") << "'l''uva'" << "COL='l''uva'";
        QTest::newRow("wide text") << int(ftWideString) << QVariant("città") << "'città'" << "COL='città'";
        QTest::newRow("blank text") << int(ftString) << QVariant("   ") << "NULL" << "COL=NULL";
        QTest::newRow("empty text") << int(ftString) << QVariant("") << "NULL" << "COL=NULL";
        QTest::newRow("null") << int(ftInteger) << QVariant(Null()) << "NULL" << "COL=NULL";
        QTest::newRow("integer") << int(ftInteger) << QVariant(-42) << "-42" << "COL=-42";
        QTest::newRow("small integer") << int(ftSmallint) << QVariant(7) << "7" << "COL=7";
        QTest::newRow("word") << int(ftWord) << QVariant(65535) << "65535" << "COL=65535";
        QTest::newRow("float") << int(ftFloat) << QVariant(1234.5) << "1234.5" << "COL=1234.5";
        QTest::newRow("bcd") << int(ftBCD) << QVariant::fromValue(Currency(2.25)) << "2.25" << "COL=2.25";
        QTest::newRow("currency") << int(ftCurrency) << QVariant::fromValue(Currency(0.5)) << "0.5" << "COL=0.5";
        QTest::newRow("date") << int(ftDate) << QVariant(QDate(2006, 3, 7)) << "'2006-07-03'" << "COL='2006-07-03'";
        QTest::newRow("date-time keeps the date only")
            << int(ftDateTime) << QVariant(QDateTime(QDate(2006, 3, 7), QTime(14, 5))) << "'2006-07-03'"
            << "COL='2006-07-03'";
        QTest::newRow("time as a date") << int(ftTime) << QVariant(QTime(14, 5)) << "'1899-30-12'" << "COL='1899-30-12'";
        QTest::newRow("time stamp") << int(ftTimeStamp) << QVariant(QDateTime(QDate(2006, 3, 7), QTime(9, 0)))
                                    << ":col" << "COL='2006-07-03'";
        QTest::newRow("boolean is bound") << int(ftBoolean) << QVariant(true) << ":col"
                                          << "!Could not convert variant of type (String) into type (Double)";
        QTest::newRow("memo joins the text") << int(ftMemo) << QVariant("nota") << ":col" << "COL=:nota";
    }
    void parameterLiterals()
    {
        QFETCH(int, type);
        QFETCH(QVariant, value);
        QFETCH(QString, insert);
        QFETCH(QString, update);
        TParams params;
        TParam *p = params.CreateParam(TFieldType(type), QStringLiteral("COL"), ptInput);
        p->setValue(value);
        // The parameter is found ignoring case; a bound reference carries the name as asked.
        QCOMPARE(GetInsertStringField(params, QStringLiteral("col")), insert);
        QString actual;
        const QString error = errorOf([&] { actual = GetUpdateStringField(params, QStringLiteral("COL")); });
        if (update.startsWith(QLatin1Char('!')))
            QCOMPARE(error, update.mid(1));
        else
            QCOMPARE(actual, update);
    }

    void missingParameter()
    {
        TParams params;
        QCOMPARE(GetInsertStringField(params, QStringLiteral("X")), QStringLiteral("NULL"));
        // No name in front, unlike the null case.
        QCOMPARE(GetUpdateStringField(params, QStringLiteral("X")), QStringLiteral("NULL"));
        TipoDatabase = dbmsAccess;
        params.CreateParam(ftDate, QStringLiteral("D"), ptInput)->setAsDate(March7);
        QCOMPARE(GetInsertStringField(params, QStringLiteral("D")), QStringLiteral("#07/03/2006#"));
        FormatoData = fddbInglese;
        QCOMPARE(GetUpdateStringField(params, QStringLiteral("D")), QStringLiteral("D=#03/07/2006#"));
    }

    void fieldLiterals()
    {
        TClientDataSet ds;
        ds.FieldDefs().Add(QStringLiteral("TESTO"), ftString, 20);
        ds.FieldDefs().Add(QStringLiteral("NUMERO"), ftInteger);
        ds.FieldDefs().Add(QStringLiteral("PARTE"), ftWord);
        ds.FieldDefs().Add(QStringLiteral("VALORE"), ftFloat);
        ds.FieldDefs().Add(QStringLiteral("SOLDI"), ftCurrency);
        ds.FieldDefs().Add(QStringLiteral("QUOTA"), ftBCD);
        ds.FieldDefs().Add(QStringLiteral("GIORNO"), ftDateTime);
        ds.FieldDefs().Add(QStringLiteral("ATTIVO"), ftBoolean);
        ds.CreateDataSet();
        ds.AppendRecord({" a'b ", 12, 3, 1234.5, 0.25, QVariant::fromValue(Currency(7.125)),
                         QDateTime(QDate(2006, 3, 7), QTime(10, 30)), true});
        ds.AppendRecord({"", QVariant(), QVariant(), QVariant(), QVariant(), QVariant(), QVariant(), QVariant()});
        ds.First();
        auto literal = [&](const char *name) { return GetSqlInsertFromField(ds.FieldByName(QLatin1String(name))); };
        QCOMPARE(literal("TESTO"), QStringLiteral("' a''b '"));
        QCOMPARE(literal("NUMERO"), QStringLiteral("12"));
        QCOMPARE(literal("PARTE"), QStringLiteral(":PARTE"));
        QCOMPARE(literal("VALORE"), QStringLiteral("1234.5"));
        QCOMPARE(literal("SOLDI"), QStringLiteral("0.25"));
        QCOMPARE(literal("QUOTA"), QStringLiteral("7.125"));
        QCOMPARE(literal("GIORNO"), QStringLiteral("'2006-07-03'"));
        QCOMPARE(literal("ATTIVO"), QStringLiteral(":ATTIVO"));
        ds.Next();
        // An empty text stays '' from a field, while a parameter would give NULL.
        QCOMPARE(literal("TESTO"), QStringLiteral("''"));
        QCOMPARE(literal("NUMERO"), QStringLiteral("NULL"));
        QCOMPARE(literal("GIORNO"), QStringLiteral("NULL"));
    }

    void fieldAndParameterHelpers()
    {
        TClientDataSet ds;
        ds.FieldDefs().Add(QStringLiteral("NOME"), ftString, 20);
        ds.FieldDefs().Add(QStringLiteral("ANNO"), ftInteger);
        ds.FieldDefs().Add(QStringLiteral("DATA"), ftDate);
        ds.FieldDefs().Add(QStringLiteral("COPIA"), ftString, 20);
        ds.FieldDefs().Add(QStringLiteral("COPIANUM"), ftInteger);
        ds.CreateDataSet();
        ds.AppendRecord({"Anna", 2013, QDate(2006, 3, 7)});
        ds.AppendRecord({QVariant(), QVariant(), QVariant()});

        TParams params;
        ds.First();
        CloneToParams(&ds, params);
        QCOMPARE(params.Count(), 5);
        QCOMPARE(params.ParamByName(QStringLiteral("ANNO"))->DataType(), ftInteger);
        QCOMPARE(params.ParamByName(QStringLiteral("ANNO"))->ParamType(), ptInput);
        QCOMPARE(params.ParamByName(QStringLiteral("NOME"))->AsString(), QStringLiteral("Anna"));
        QCOMPARE(params.ParamByName(QStringLiteral("DATA"))->AsDateTime(), March7);
        QVERIFY(params.ParamByName(QStringLiteral("COPIA"))->IsNull());
        QCOMPARE(errorOf([&] { params.ParamByName(QStringLiteral("X")); }), QStringLiteral("Parameter 'X' not found"));

        ds.Edit();
        SetNotNullFieldValue(ds.FieldByName(QStringLiteral("COPIA")), ds.FieldByName(QStringLiteral("NOME")));
        QCOMPARE(ds.FieldByName(QStringLiteral("COPIA"))->AsString(), QStringLiteral("Anna"));
        ds.Post();
        ds.Next();
        ds.Edit();
        SetNotNullFieldValue(ds.FieldByName(QStringLiteral("COPIA")), ds.FieldByName(QStringLiteral("NOME")));
        SetNotNullFieldValue(ds.FieldByName(QStringLiteral("COPIANUM")), ds.FieldByName(QStringLiteral("ANNO")));
        SetNotNullFieldValue(ds.FieldByName(QStringLiteral("DATA")), ds.FieldByName(QStringLiteral("ANNO")));
        QVERIFY(!ds.FieldByName(QStringLiteral("COPIA"))->IsNull());
        QCOMPARE(ds.FieldByName(QStringLiteral("COPIA"))->AsString(), QString());
        QCOMPARE(ds.FieldByName(QStringLiteral("COPIANUM"))->Value(), QVariant(0));
        QCOMPARE(ds.FieldByName(QStringLiteral("DATA"))->AsDateTime(), 0.0);
        ds.Cancel();
    }

    void quickSort_data()
    {
        QTest::addColumn<QList<qint32>>("values");
        QTest::addColumn<int>("lo");
        QTest::addColumn<int>("hi");
        QTest::addColumn<QList<qint32>>("expected");
        QTest::newRow("whole") << QList<qint32>{5, -1, 3, 3, 0, 9} << 0 << 5 << QList<qint32>{-1, 0, 3, 3, 5, 9};
        QTest::newRow("middle only") << QList<qint32>{9, 8, 7, 6, 5} << 1 << 3 << QList<qint32>{9, 6, 7, 8, 5};
        QTest::newRow("bounds clipped") << QList<qint32>{3, 1, 2} << -5 << 10 << QList<qint32>{1, 2, 3};
        QTest::newRow("empty range") << QList<qint32>{2, 1} << 1 << 0 << QList<qint32>{2, 1};
    }
    void quickSort()
    {
        QFETCH(QList<qint32>, values);
        QFETCH(int, lo);
        QFETCH(int, hi);
        QFETCH(QList<qint32>, expected);
        QuickSort(values, lo, hi);
        QCOMPARE(values, expected);
    }

    void quickSortLargeArray()
    {
        QList<qint32> values;
        QRandomGenerator random(7);
        for (int i = 0; i < 20000; ++i)
            values.append(qint32(random.bounded(1000)) - 500);
        QList<qint32> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        QuickSort(values, 0, int(values.size()) - 1);
        QCOMPARE(values, sorted);
    }

    void randomPassword()
    {
        const QString a = GetRandomPaswd(12), b = GetRandomPaswd(12);
        QCOMPARE(a.size(), 12);
        QVERIFY(a != b);
        QCOMPARE(GetRandomPaswd(0), QString());
        const QString many = GetRandomPaswd(2000);
        static const QRegularExpression allowed(QStringLiteral("^[A-HJ-NP-Za-km-z2-9]*$"));
        QVERIFY(allowed.match(many).hasMatch());
    }

    void parameterArrays()
    {
        QVariantList params;
        SetParamValue(params, QStringLiteral("ANNO"), 2013);
        SetParamValue(params, QStringLiteral("Nome"), QStringLiteral("Anna"));
        SetParamValue(params, QStringLiteral("anno"), 2014);
        SetParamCurrency(params, QStringLiteral("TASSA"), Currency(12.5));
        QCOMPARE(params.size(), 3);
        QCOMPARE(ParamIndex(params, QStringLiteral("NOME")), 1);
        QCOMPARE(ParamIndex(params, QStringLiteral("X")), -1);
        QCOMPARE(ParamValue(params, QStringLiteral("ANNO")), QVariant(2014));
        QVERIFY(VarIsNull(ParamValue(params, QStringLiteral("X"))));
        QCOMPARE(ParamCurrency(params, QStringLiteral("tassa")), Currency(12.5));
        QCOMPARE(ParamCurrency(params, QStringLiteral("X")), Currency());
        QCOMPARE(GetParamString(params), QStringLiteral("ANNO[2014]; Nome[Anna]; TASSA[12,5]; "));

        QVariantList typed;
        SetParam3DValue(typed, QStringLiteral("DATA"), QDate(2006, 3, 7));
        QCOMPARE(ParamDatatype(typed, QStringLiteral("DATA")), ftDate);
        SetParam3DType(typed, QStringLiteral("DATA"), ftDateTime);
        SetParam3DType(typed, QStringLiteral("VUOTO"), ftInteger);
        QCOMPARE(ParamDatatype(typed, QStringLiteral("data")), ftDateTime);
        QCOMPARE(Param3DIndex(typed, QStringLiteral("VUOTO")), 1);
        QVERIFY(VarIsNull(Param3DValue(typed, QStringLiteral("VUOTO"))));
        QCOMPARE(ParamDatatype(typed, QStringLiteral("X")), ftUnknown);

        TClientDataSet ds;
        ds.FieldDefs().Add(QStringLiteral("IMPORTO"), ftCurrency);
        ds.CreateDataSet();
        ds.AppendRecord({3.5});
        SetParamfromField(typed, ds.FieldByName(QStringLiteral("IMPORTO")));
        QCOMPARE(Param3DValue(typed, QStringLiteral("IMPORTO")), QVariant(3.5));
        QCOMPARE(ParamDatatype(typed, QStringLiteral("IMPORTO")), ftCurrency);
        TParam p;
        p.setName(QStringLiteral("NOME"));
        p.setAsString(QStringLiteral("Luca"));
        SetParamfromParam(params, &p);
        // A plain row of that name takes the value alone.
        QCOMPARE(params.at(1).toList(), QVariantList({QStringLiteral("Nome"), QStringLiteral("Luca")}));
    }
};

QTEST_GUILESS_MAIN(tst_DataHelpers)
#include "tst_datahelpers.moc"
