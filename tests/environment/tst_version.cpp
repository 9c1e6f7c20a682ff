// Version numbers and the version resource embedded in this test program; the version resource of
// a Windows PE sample made by mattoni_verinfo --pe (data/version_sample.txt describes it).
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

    void peSample();
    void stringTables_data();
    void stringTables();
    void targetOSNames_data();
    void targetOSNames();
    void damagedImages();
    void productNameOfThisProgram()
    {
        QCOMPARE(GetProductName(QCoreApplication::applicationFilePath()), QStringLiteral("Mattoni ✓ prova"));
        const TVersionInfo info;
        QCOMPARE(info.CompanyName(), QStringLiteral("Università degli Studi"));
        QCOMPARE(info.FileVersionNumber(), QStringLiteral("2.7.0.65535"));
        QCOMPARE(info.TargetOS(), QStringLiteral("Windows NT with 32 bit Windows"));
    }

private:
    static QString sample()
    {
        return qEnvironmentVariable("MATTONI_SOURCE_DIR") + QStringLiteral("/tests/environment/data/version_sample.exe");
    }
};

void tst_Version::peSample()
{
    TVersionResource resource;
    QVERIFY(resource.LoadFromFile(sample()));
    const TFixedFileInfo &fixed = resource.FixedInfo();
    QCOMPARE(fixed.Signature, 0xFEEF04BDu);
    QCOMPARE(fixed.FileVersionMS, (3u << 16) | 2);
    QCOMPARE(fixed.FileVersionLS, (1u << 16) | 40);
    QCOMPARE(resource.FileVersion(), QStringLiteral("3.2.1.40"));
    QCOMPARE(resource.ProductVersion(), QStringLiteral("3.2.0.0"));
    QCOMPARE(fixed.FileOS, 0x40004u);
    QCOMPARE(fixed.FileType, 1u);
    QCOMPARE(resource.StringTableKeys(), QStringList({"041004E4", "040904B0"}));
    QCOMPARE(resource.Translations(), QList<quint32>({0x04E40410u, 0x04B00409u}));
    QCOMPARE(resource.Value(QStringLiteral("StringFileInfo\\041004E4\\ProductName")), QStringLiteral("Segreteria"));
    QCOMPARE(GetProductName(sample()), QStringLiteral("Segreteria"));

    const TVersionInfo info(sample());
    QVERIFY(info.IsValid());
    QCOMPARE(info.CompanyName(), QStringLiteral("Università degli Studi di Prova"));
    QCOMPARE(info.OriginalFilename(), QStringLiteral("segreteria.exe"));
    QCOMPARE(info.FileVersionNumber(), QStringLiteral("3.2.1.40"));
    QVERIFY(info.IsPreRelease());
    QVERIFY(info.IsSpecialBuild());
    QVERIFY(!info.IsDebug());
    QVERIFY(!info.IsPatched());
    QCOMPARE(info.TargetOS(), QStringLiteral("Windows NT with 32 bit Windows"));
}

void tst_Version::stringTables_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<int>("characterSet");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("productName");
    QTest::newRow("Italian") << int(lnItalian) << int(csMultilingual) << "041004E4" << "Segreteria";
    QTest::newRow("English") << int(lnUSEnglish) << int(csUnicode) << "040904B0" << "Student office";
    QTest::newRow("no such table") << int(lnGerman) << int(csMultilingual) << "040704E4" << "";
    QTest::newRow("Swiss French") << int(lnSwissFrench) << int(csASCII) << "100C0000" << "";
}

void tst_Version::stringTables()
{
    QFETCH(int, language);
    QFETCH(int, characterSet);
    QFETCH(QString, key);
    QFETCH(QString, productName);
    QCOMPARE(StringTableKey(quint16(language), quint16(characterSet)), key);
    TVersionInfo info(sample());
    info.setLanguage(quint16(language));
    info.setCharacterSet(quint16(characterSet));
    QCOMPARE(info.ProductName(), productName);
}

void tst_Version::targetOSNames_data()
{
    QTest::addColumn<quint32>("fileOS");
    QTest::addColumn<QString>("name");
    QTest::newRow("VOS_DOS") << 0x00010000u << "MS-Dos";
    QTest::newRow("VOS_OS216") << 0x00020000u << "16 bit OS/2";
    QTest::newRow("VOS_OS232") << 0x00030000u << "32 bit OS/2";
    QTest::newRow("VOS_NT") << 0x00040000u << "Windows NT";
    QTest::newRow("VOS__WINDOWS16") << 0x00000001u << "Windows 3.0 or later";
    QTest::newRow("VOS__PM16") << 0x00000002u << "16 bit OS/2 Presentation Manager";
    QTest::newRow("VOS__PM32") << 0x00000003u << "32 bit OS/2 Presentation Manager";
    QTest::newRow("VOS__WINDOWS32") << 0x00000004u << "32 bit Windows";
    QTest::newRow("VOS_DOS_WINDOWS16") << 0x00010001u << "Windows 3.0 or later with MS-Dos";
    QTest::newRow("VOS_DOS_WINDOWS32") << 0x00010004u << "32 bit Windows with MS-Dos";
    QTest::newRow("VOS_OS216_PM16") << 0x00020002u << "16 bit OS/2 with Presentation Manager";
    QTest::newRow("VOS_OS232_PM32") << 0x00030003u << "32 bit OS/2 with Presentation Manager";
    QTest::newRow("VOS_NT_WINDOWS32") << 0x00040004u << "Windows NT with 32 bit Windows";
    QTest::newRow("VOS_UNKNOWN") << 0x00000000u << "Unknown";
    QTest::newRow("NT with PM") << 0x00040003u << "Unknown";
}

void tst_Version::targetOSNames()
{
    QFETCH(quint32, fileOS);
    QFETCH(QString, name);
    QCOMPARE(TargetOSName(fileOS), name);
}

void tst_Version::damagedImages()
{
    // Every truncation of the sample: never a read past the end (the sanitizer build watches), and a
    // resource only when the tree still leads to a whole one.
    QFile f(sample());
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray image = f.readAll();
    const QByteArray block = TVersionResource::ExtractFromPE(image);
    QVERIFY(!block.isEmpty());
    for (qsizetype n = 0; n < image.size(); ++n) {
        const QByteArray cut = image.left(n);
        const QByteArray found = TVersionResource::ExtractFromPE(cut);
        QVERIFY2(found.isEmpty() || found == block, qPrintable(QString::number(n)));
    }
    // Each byte of the headers and the resource tree flipped: offsets anywhere, sizes of any kind.
    for (qsizetype at = 0; at < 0x258; ++at)
        TVersionResource::ExtractFromPE(QByteArray(image).replace(at, 1, QByteArray(1, char(image.at(at) ^ 0xFF))));
    TVersionResource resource;
    QVERIFY(!resource.LoadFromData(QByteArray("MZ not a resource")));
    QVERIFY(!resource.IsValid());
    QCOMPARE(GetProductName(QStringLiteral("/nonexistent/file.exe")), QString());
}

QTEST_GUILESS_MAIN(tst_Version)
#include "tst_version.moc"
