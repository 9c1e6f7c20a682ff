// TDateTime encoding and decoding against known calendar facts.
#include "DateTime.h"
#include "Exceptions.h"

#include <QtTest>

using namespace mattoni;

class tst_DateTime : public QObject
{
    Q_OBJECT
private slots:
    void encodeKnownDays_data()
    {
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("m");
        QTest::addColumn<int>("d");
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("dow");
        QTest::newRow("zero") << 1899 << 12 << 30 << 0.0 << 7;
        QTest::newRow("day one") << 1899 << 12 << 31 << 1.0 << 1;
        QTest::newRow("1900-03-01") << 1900 << 3 << 1 << 61.0 << 5;
        QTest::newRow("leap day 2000") << 2000 << 2 << 29 << 36585.0 << 3;
        QTest::newRow("before zero") << 1899 << 12 << 29 << -1.0 << 6;
        QTest::newRow("2006-03-07") << 2006 << 3 << 7 << 38783.0 << 3;
    }
    void encodeKnownDays()
    {
        QFETCH(int, y);
        QFETCH(int, m);
        QFETCH(int, d);
        QFETCH(double, value);
        QFETCH(int, dow);
        QCOMPARE(EncodeDate(y, m, d), value);
        QCOMPARE(DayOfWeek(value), dow);
        int yy, mm, dd;
        DecodeDate(value, yy, mm, dd);
        QCOMPARE(yy, y);
        QCOMPARE(mm, m);
        QCOMPARE(dd, d);
    }

    void invalidDatesRaise_data()
    {
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("m");
        QTest::addColumn<int>("d");
        QTest::newRow("29 feb 1900") << 1900 << 2 << 29;
        QTest::newRow("month 13") << 2020 << 13 << 1;
        QTest::newRow("day 0") << 2020 << 1 << 0;
        QTest::newRow("year 0") << 0 << 1 << 1;
        QTest::newRow("31 april") << 2021 << 4 << 31;
    }
    void invalidDatesRaise()
    {
        QFETCH(int, y);
        QFETCH(int, m);
        QFETCH(int, d);
        try {
            EncodeDate(y, m, d);
            QFAIL("no error");
        } catch (const EConvertError &e) {
            QCOMPARE(e.Message(), QStringLiteral("Invalid argument to date encode"));
        }
    }

    void timeRoundsToMillisecondsAndCarries()
    {
        int h, n, s, ms;
        // One half millisecond before midnight rounds up into the next day.
        const TDateTime almost = EncodeDate(2020, 1, 1) + (double(MSecsPerDay) - 0.4) / double(MSecsPerDay);
        DecodeTime(almost, h, n, s, ms);
        QCOMPARE(h * 3600000 + n * 60000 + s * 1000 + ms, 0);
        int y, m, d;
        DecodeDate(almost, y, m, d);
        QCOMPARE(d, 2);
        DecodeTime(EncodeTime(23, 59, 59, 999), h, n, s, ms);
        QCOMPARE(QList<int>({h, n, s, ms}), QList<int>({23, 59, 59, 999}));
        // Negative values keep a positive time of day.
        DecodeTime(-1.25, h, n, s, ms);
        QCOMPARE(h, 6);
        QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeTime(24, 0, 0, 0));
    }

    void incMonthClampsToMonthEnd()
    {
        QCOMPARE(IncMonth(EncodeDate(2021, 1, 31)), EncodeDate(2021, 2, 28));
        QCOMPARE(IncMonth(EncodeDate(2020, 1, 31)), EncodeDate(2020, 2, 29));
        QCOMPARE(IncMonth(EncodeDate(2020, 12, 15)), EncodeDate(2021, 1, 15));
        QCOMPARE(IncMonth(EncodeDate(2020, 3, 31), -1), EncodeDate(2020, 2, 29));
        const TDateTime withTime = EncodeDate(2020, 5, 10) + EncodeTime(10, 30, 0, 0);
        QCOMPARE(TimeOf(IncMonth(withTime, 12)), TimeOf(withTime));
    }

    void qtRoundTrip()
    {
        const QDateTime dt(QDate(1985, 4, 15), QTime(14, 5, 59, 120));
        QCOMPARE(DateTimeToQDateTime(QDateTimeToDateTime(dt)), dt);
    }
};

QTEST_GUILESS_MAIN(tst_DateTime)
#include "tst_datetime.moc"
