// Date and time literals per database dialect and day/month order.
#include "Ambiente.h"
#include "DateTime.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "SqlLiterals.h"
#include "Variants.h"

#include <QtTest>

using namespace mattoni;

class tst_SqlLiterals : public QObject
{
    Q_OBJECT

    static QVariant sample() { return QVariant(DateTimeToQDateTime(EncodeDate(2006, 3, 7) + EncodeTime(14, 5, 9, 42))); }

private slots:
    void init()
    {
        FormatSettings = TFormatSettings::Italian();
        TipoDatabase.clear();
        FormatoData = fddbItaliano;
    }

    void literals_data()
    {
        QTest::addColumn<QString>("tipo");
        QTest::addColumn<int>("order");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("datetime");
        const int it = fddbItaliano, en = fddbInglese;
        QTest::newRow("empty type") << "" << it << "'07/03/2006'" << "'14.05.09'" << "'07/03/2006 14.05.09'";
        QTest::newRow("sybase") << "SYBASE" << en << "'07/03/2006'" << "'14.05.09'" << "'07/03/2006 14.05.09'";
        QTest::newRow("odbc") << "ODBC" << it << "'07/03/2006'" << "'14.05.09'" << "'07/03/2006 14.05.09'";
        QTest::newRow("firebird it") << "FIREBIRD" << it << "'2006-07-03'" << "'14.05.09'" << "'2006-07-03 14.05.09'";
        QTest::newRow("firebird en") << "FIREBIRD" << en << "'2006-03-07'" << "'14.05.09'" << "'2006-03-07 14.05.09'";
        QTest::newRow("interbase en") << "interbase" << en << "'2006-03-07'" << "'14.05.09'" << "'2006-03-07 14.05.09'";
        QTest::newRow("db2 it") << "DB2" << it << "DATE('2006-07-03')" << "TIME('14.05.09')" << "TIMESTAMP('2006-07-03-14.05.09.0')";
        QTest::newRow("db2 en") << "DB2" << en << "DATE('2006-03-07')" << "TIME('14.05.09')" << "TIMESTAMP('2006-03-07-14.05.09.0')";
        QTest::newRow("sqlserver it") << "SQLSERVER" << it << "'07/03/2006'" << "CAST('14:05:09' as datetime)" << "'07/03/2006 14:05:09:42'";
        QTest::newRow("ms sql en") << "MICROSOFT SQL SERVER" << en << "'03/07/2006'" << "CAST('14:05:09' as datetime)" << "'03/07/2006 14:05:09:42'";
        QTest::newRow("oracle core lab") << "ORACLE (CORE LAB)" << it << "TO_DATE('07/03/2006', 'dd/mm/yyyy')"
                                         << "TO_DATE('14.05.09', 'HH24:MI:SS')" << "TO_DATE('07/03/2006 14.05.09', 'dd/mm/yyyy HH24.MI.SS')";
        QTest::newRow("oracle en") << "ORACLE" << en << "TO_DATE('07/03/2006', 'dd/mm/yyyy')"
                                   << "TO_DATE('14.05.09', 'HH24:MI:SS')" << "TO_DATE('07/03/2006 14.05.09', 'dd/mm/yyyy HH24.MI.SS')";
        QTest::newRow("access it") << "MS JET" << it << "#07/03/2006#" << "#14.05#" << "#07/03/2006 14.05.09#";
        QTest::newRow("access en") << "MS JET" << en << "#03/07/2006#" << "#14.05#" << "#03/07/2006 14.05.09#";
        QTest::newRow("mysql") << "MYSQL" << it << "'2006-03-07 14:05:09'" << "'2006-03-07 14:05:09'" << "'2006-03-07 14:05:09'";
        // A text that names several types: every matching group overwrites, the last tested wins.
        QTest::newRow("firebird and db2") << "FIREBIRD/DB2" << it << "DATE('2006-07-03')" << "TIME('14.05.09')" << "TIMESTAMP('2006-07-03-14.05.09.0')";
        QTest::newRow("oracle and mysql") << "MYSQL ORACLE" << it << "'2006-03-07 14:05:09'" << "'2006-03-07 14:05:09'" << "'2006-03-07 14:05:09'";
        QTest::newRow("contains a type") << "MY FIREBIRD 3" << en << "'2006-03-07'" << "'14.05.09'" << "'2006-03-07 14.05.09'";
    }
    void literals()
    {
        QFETCH(QString, tipo);
        QFETCH(int, order);
        QFETCH(QString, date);
        QFETCH(QString, time);
        QFETCH(QString, datetime);
        TipoDatabase = tipo;
        FormatoData = TFormatoDataDbms(order);
        QCOMPARE(GetFormattedDate(sample()), date);
        QCOMPARE(GetFormattedTime(sample()), time);
        QCOMPARE(GetFormattedDatetime(sample()), datetime);
    }

    void separatorsFollowTheLocale()
    {
        // With ":" as time separator the Access time keeps hours and minutes only.
        FormatSettings.TimeSeparator = QLatin1Char(':');
        FormatSettings.LongTimeFormat = QStringLiteral("hh:nn:ss");
        TipoDatabase = dbmsAccess;
        QCOMPARE(GetFormattedTime(QVariant(EncodeTime(14, 5, 59, 0))), QStringLiteral("#14:05#"));
        TipoDatabase = dbmsSqlServer;
        QCOMPARE(GetFormattedTime(QVariant(EncodeTime(12, 30, 0, 0))), QStringLiteral("CAST('12:30:00' as datetime)"));
        // A pure time carries day 0 in the full MySQL form; a pure date carries midnight.
        TipoDatabase = dbmsMySQL;
        QCOMPARE(GetFormattedTime(QVariant(EncodeTime(8, 0, 1, 0))), QStringLiteral("'1899-12-30 08:00:01'"));
        QCOMPARE(GetFormattedDate(QVariant(EncodeDate(2024, 2, 29))), QStringLiteral("'2024-02-29 00:00:00'"));
        // The "." to ":" replacement touches every dot, a date separator too.
        FormatSettings.DateSeparator = QLatin1Char('.');
        TipoDatabase = dbmsSqlServer;
        QCOMPARE(GetFormattedDatetime(QVariant(EncodeDate(2006, 3, 7))), QStringLiteral("'07:03:2006 00:00:00:0'"));
    }

    void datesInAnyVariantForm()
    {
        TipoDatabase = dbmsFirebird;
        FormatoData = fddbInglese;
        QCOMPARE(GetFormattedDate(QVariant(QDate(2000, 2, 29))), QStringLiteral("'2000-02-29'"));
        QCOMPARE(GetFormattedDate(QVariant(EncodeDate(2000, 2, 29))), QStringLiteral("'2000-02-29'"));
        QCOMPARE(GetFormattedDate(QVariant(QStringLiteral("36585"))), QStringLiteral("'2000-02-29'"));
    }

    void nonDatesRaiseVariantErrors_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("null") << Null();
        QTest::newRow("unassigned") << QVariant();
        QTest::newRow("text") << QVariant(QStringLiteral("ieri"));
    }
    void nonDatesRaiseVariantErrors()
    {
        QFETCH(QVariant, value);
        TipoDatabase = dbmsOracle;
        QVERIFY_THROWS_EXCEPTION(EVariantError, GetFormattedDate(value));
        QVERIFY_THROWS_EXCEPTION(EVariantError, GetFormattedTime(value));
        QVERIFY_THROWS_EXCEPTION(EVariantError, GetFormattedDatetime(value));
    }

    void dbmsTypeIsEqual_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<bool>("equal");
        QTest::newRow("same ignoring case") << "firebird" << "FIREBIRD" << true;
        QTest::newRow("core lab matches oracle") << "ORACLE (CORE LAB)" << "ORACLE" << true;
        QTest::newRow("oracle does not match core lab") << "ORACLE" << "ORACLE (CORE LAB)" << false;
        QTest::newRow("contained") << "xmysqlx" << "MYSQL" << true;
        QTest::newRow("empty a") << "" << "DB2" << false;
        QTest::newRow("different") << "SYBASE" << "SQLSERVER" << false;
    }
    void dbmsTypeIsEqual()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(bool, equal);
        QCOMPARE(DbmsTypeIsEqual(a, b), equal);
    }
};

QTEST_GUILESS_MAIN(tst_SqlLiterals)
#include "tst_sqlliterals.moc"
