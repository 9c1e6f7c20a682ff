// Version numbers and the version resource: our own executable's ELF section, a Windows PE sample
// made by mattoni_verinfo --pe (data/version_sample.txt describes it), and damaged images.
#include "Exceptions.h"
#include "Version.h"

#include <QtTest>

using namespace mattoni;

class tst_Version : public QObject
{
    Q_OBJECT

private slots:
    void numbers_data();
    void numbers();
    void numberErrors_data();
    void numberErrors();
    void runningProgram();
    void peSample();
    void stringTables_data();
    void stringTables();
    void targetOSNames_data();
    void targetOSNames();
    void damagedImages();

private:
    static QString sample()
    {
        return qEnvironmentVariable("MATTONI_SOURCE_DIR") + QStringLiteral("/tests/environment/data/version_sample.exe");
    }
};

void tst_Version::numbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("parts");
    QTest::newRow("two parts") << "4.2" << QList<int>{4, 2, 0, 0};
    QTest::newRow("four parts") << "1.20.300.4000" << QList<int>{1, 20, 300, 4000};
    QTest::newRow("empty") << "" << QList<int>{0, 0, 0, 0};
    QTest::newRow("blanks") << "  7.1  " << QList<int>{7, 1, 0, 0};
    QTest::newRow("no point") << "12" << QList<int>{12, 0, 0, 0};
    QTest::newRow("largest") << "65535.65535.65535.65535" << QList<int>{65535, 65535, 65535, 65535};
}

void tst_Version::numbers()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, parts);
    QCOMPARE(QList<int>({GetMajorVersion(text), GetMinorVersion(text), GetReleaseVersion(text), GetBuildVersion(text)}), parts);
}

void tst_Version::numberErrors_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("part");
    QTest::addColumn<bool>("rangeError");
    QTest::newRow("major too large") << "70000.1" << 0 << true;
    QTest::newRow("minor too large") << "1.65536" << 1 << true;
    QTest::newRow("build too large") << "1.2.3.99999" << 3 << true;
    QTest::newRow("negative") << "-1.0" << 0 << true;
    QTest::newRow("not a number") << "4a.2" << 0 << false;
    QTest::newRow("release not a number") << "1.2.x" << 2 << false;
    // The minor number is the major number of ".5": the empty text before its point.
    QTest::newRow("empty minor") << "3..5" << 1 << false;
}

void tst_Version::numberErrors()
{
    QFETCH(QString, text);
    QFETCH(int, part);
    QFETCH(bool, rangeError);
    quint16 (*const parsers[])(const QString &) = {GetMajorVersion, GetMinorVersion, GetReleaseVersion, GetBuildVersion};
    try {
        parsers[part](text);
        QFAIL("no error");
    } catch (const ERangeError &) {
        QVERIFY(rangeError);
    } catch (const EConvertError &) {
        QVERIFY(!rangeError);
    }
}

void tst_Version::runningProgram()
{
    TVersionResource resource;
    QVERIFY(resource.LoadFromRunningProgram());
    QCOMPARE(resource.FileVersion(), QStringLiteral("4.2.7.99"));
    QCOMPARE(resource.ProductVersion(), QStringLiteral("4.2.0.0"));
    QCOMPARE(GetProductName(QCoreApplication::applicationFilePath()), QStringLiteral("Prova Mattoni"));
    const TVersionInfo info;
    QCOMPARE(info.CompanyName(), QStringLiteral("Mattoni"));
    QCOMPARE(info.TargetOS(), QStringLiteral("Windows NT with 32 bit Windows"));
}

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
    // Every truncation of the sample, and the sample with each byte of its headers and resource
    // tree flipped: never a crash or a read past the end (the sanitizer build watches), and a
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
    for (qsizetype at = 0; at < 0x258; ++at) {
        QByteArray damaged = image;
        damaged[at] = char(damaged.at(at) ^ 0xFF);
        TVersionResource::ExtractFromPE(damaged);
        TVersionResource resource;
        resource.LoadFromData(damaged.mid(0x258));
    }
    TVersionResource resource;
    QVERIFY(!resource.LoadFromData(QByteArray("MZ not a resource")));
    QVERIFY(!resource.IsValid());
    QCOMPARE(GetProductName(QStringLiteral("/nonexistent/file.exe")), QString());
}

QTEST_GUILESS_MAIN(tst_Version)
#include "tst_version.moc"
