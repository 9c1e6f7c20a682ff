// Version numbers and the version resource embedded in this test program.
#include "Exceptions.h"
#include "Version.h"

#include <QtTest>

using namespace mattoni;

class tst_Version : public QObject
{
    Q_OBJECT
private slots:
    void numbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<int>>("parts");
        QTest::newRow("two parts") << "4.2" << QList<int>{4, 2, 0, 0};
        QTest::newRow("empty") << "" << QList<int>{0, 0, 0, 0};
        QTest::newRow("no dot") << " 17 " << QList<int>{17, 0, 0, 0};
        QTest::newRow("four parts") << "1.2.3.4" << QList<int>{1, 2, 3, 4};
        QTest::newRow("largest") << "65535.65535.65535.65535" << QList<int>{65535, 65535, 65535, 65535};
    }
    void numbers()
    {
        QFETCH(QString, text);
        QFETCH(QList<int>, parts);
        QCOMPARE(int(GetMajorVersion(text)), parts[0]);
        QCOMPARE(int(GetMinorVersion(text)), parts[1]);
        QCOMPARE(int(GetReleaseVersion(text)), parts[2]);
        QCOMPARE(int(GetBuildVersion(text)), parts[3]);
    }

    void numberErrors()
    {
        QVERIFY_THROWS_EXCEPTION(ERangeError, GetMajorVersion(QStringLiteral("70000.1")));
        QCOMPARE(GetMinorVersion(QStringLiteral("70000.1")), quint16(1));
        QVERIFY_THROWS_EXCEPTION(ERangeError, GetBuildVersion(QStringLiteral("1.2.3.65536")));
        QVERIFY_THROWS_EXCEPTION(EConvertError, GetMinorVersion(QStringLiteral("1.b")));
        QVERIFY_THROWS_EXCEPTION(EConvertError, GetMajorVersion(QStringLiteral("v1.0")));
        // An empty part between two dots is not a number: only a wholly empty text is 0.
        QVERIFY_THROWS_EXCEPTION(EConvertError, GetMinorVersion(QStringLiteral("1..3")));
        QCOMPARE(GetReleaseVersion(QStringLiteral("1..3")), quint16(3));
    }

    void resourceOfThisProgram()
    {
        TVersionResource r;
        QVERIFY(r.LoadFromRunningProgram());
        QCOMPARE(r.FileVersion(), QStringLiteral("2.7.0.65535"));
        QCOMPARE(r.ProductVersion(), QStringLiteral("2.7.0.0"));
        QCOMPARE(r.FixedInfo().Signature, 0xFEEF04BDu);
        QCOMPARE(r.StringTableKeys(), QStringList{QStringLiteral("041004E4")});
        QCOMPARE(r.Translations(), QList<quint32>{0x04E40410u});
        QCOMPARE(r.Value(QStringLiteral("StringFileInfo\\041004E4\\ProductName")), QStringLiteral("Mattoni ✓ prova"));
        QCOMPARE(r.Value(QStringLiteral("StringFileInfo\\041004E4\\CompanyName")), QStringLiteral("Università degli Studi"));
        QCOMPARE(r.Value(QStringLiteral("StringFileInfo\\041004E4\\Missing")), QString());
        // The same block read straight from the executable file.
        TVersionResource fromFile;
        QVERIFY(fromFile.LoadFromFile(QCoreApplication::applicationFilePath()));
        QCOMPARE(fromFile.Value(QStringLiteral("StringFileInfo\\041004E4\\FileDescription")), QStringLiteral("Test"));
    }

    void filesWithoutResource()
    {
        TVersionResource r;
        QVERIFY(!r.LoadFromFile(QStringLiteral("/nonexistent")));
        QVERIFY(!r.LoadFromFile(QStringLiteral("/bin/sh")));
        QCOMPARE(r.FileVersion(), QString());
    }

    void buildAndParse()
    {
        TFixedFileInfo fixed;
        TFixedFileInfo::SplitVersion(QStringLiteral("9.8.7.6"), fixed.FileVersionMS, fixed.FileVersionLS);
        fixed.FileOS = 0x40004;
        TVersionStringTable it{QStringLiteral("041004E4"), {{QStringLiteral("ProductName"), QStringLiteral("Segreteria")}}};
        TVersionStringTable en{QStringLiteral("040904B0"), {{QStringLiteral("ProductName"), QStringLiteral("Registry")},
                                                              {QStringLiteral("Empty"), QString()}}};
        const QByteArray block = TVersionResource::Build(fixed, {it, en}, {0x04E40410u, 0x04B00409u});
        QCOMPARE(block.size() % 4, 0);
        QCOMPARE(int(qFromLittleEndian<quint16>(block.constData())), int(block.size()));
        TVersionResource r;
        QVERIFY(r.LoadFromData(block));
        QCOMPARE(r.FileVersion(), QStringLiteral("9.8.7.6"));
        QCOMPARE(r.FixedInfo().FileOS, 0x40004u);
        QCOMPARE(r.Value(QStringLiteral("StringFileInfo\\040904B0\\ProductName")), QStringLiteral("Registry"));
        QCOMPARE(r.Value(QStringLiteral("StringFileInfo\\040904B0\\Empty")), QString());
        QCOMPARE(r.Translations().size(), 2);

        // Hostile blocks: every truncation and a few corrupted lengths fail cleanly.
        for (int n = 0; n < block.size(); n += 3)
            QVERIFY(!r.LoadFromData(block.left(n)));
        QRandomGenerator gen(7);
        for (int i = 0; i < 500; ++i) {
            QByteArray bad = block;
            const int at = int(gen.bounded(int(bad.size())));
            bad[at] = char(gen.bounded(256));
            r.LoadFromData(bad);
        }
    }
};

QTEST_GUILESS_MAIN(tst_Version)
#include "tst_version.moc"
