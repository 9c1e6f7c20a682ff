// TSevenZip against the real 7-Zip engine, cross-checked with the 7z command-line tool.
#include "SevenZip.h"

#include "Exceptions.h"

#include <QtTest>

using namespace mattoni;

namespace {

struct ToolResult
{
    int exitCode;
    QString output;
};

ToolResult tool(const QStringList &args, const QString &workDir = QString())
{
    QProcess p;
    p.setWorkingDirectory(workDir);
    p.start(QStringLiteral("7z"), args);
    p.waitForFinished(60000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError())};
}

// The item paths the tool lists, in the archive's order.
QStringList toolPaths(const QString &archive, const QString &password = QString())
{
    const ToolResult r = tool({QStringLiteral("l"), QStringLiteral("-slt"), QStringLiteral("-p") + password, archive});
    QStringList paths;
    const QStringList lines = r.output.split(QLatin1Char('\n'));
    const qsizetype start = lines.indexOf(QStringLiteral("----------"));
    for (qsizetype i = start + 1; start >= 0 && i < lines.size(); ++i)
        if (lines[i].startsWith(QLatin1String("Path = ")))
            paths << lines[i].mid(7);
    return paths;
}

QString toolField(const QString &archive, const QString &field, const QString &password = QString())
{
    const ToolResult r = tool({QStringLiteral("l"), QStringLiteral("-slt"), QStringLiteral("-p") + password, archive});
    // The first non-empty value of an item, else of the archive.
    const QString items = r.output.section(QStringLiteral("----------"), 1);
    for (const QString &text : {items, r.output})
        for (const QString &line : text.split(QLatin1Char('\n')))
            if (line.startsWith(field + QLatin1String(" = ")) && line.size() > field.size() + 3)
                return line.mid(field.size() + 3);
    return QString();
}

bool toolTests(const QString &archive, const QString &password = QString())
{
    return tool({QStringLiteral("t"), QStringLiteral("-p") + password, archive}).exitCode == 0;
}

void writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(data);
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QByteArray randomBytes(int size, quint32 seed)
{
    QRandomGenerator rng(seed);
    QByteArray data(size, Qt::Uninitialized);
    rng.fillRange(reinterpret_cast<quint32 *>(data.data()), size / 4);
    return data;
}

// Every file below Dir, relative, with its contents.
QMap<QString, QByteArray> treeOf(const QString &dir)
{
    QMap<QString, QByteArray> tree;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        tree.insert(QDir(dir).relativeFilePath(path), readFile(path));
    }
    return tree;
}

// A source tree with names in several scripts, an empty file and an empty folder.
const QMap<QString, QByteArray> &sampleTree()
{
    static const QMap<QString, QByteArray> tree = {
        {QStringLiteral("leggimi.txt"), QByteArray("Segreteria studenti\n").repeated(200)},
        {QStringLiteral("perché così.txt"), QByteArray("accenti\n")},
        {QStringLiteral("Ελληνικά/αλφα.txt"), QByteArray("greco\n").repeated(50)},
        {QStringLiteral("emoji/🎓 laurea.bin"), randomBytes(40000, 7)},
        {QStringLiteral("vuoto.dat"), QByteArray()},
    };
    return tree;
}

void makeSampleTree(const QString &dir)
{
    for (auto it = sampleTree().begin(); it != sampleTree().end(); ++it)
        writeFile(dir + QLatin1Char('/') + it.key(), it.value());
    QDir().mkpath(dir + QStringLiteral("/cartella vuota"));
}

struct Messages
{
    QList<qint32> codes;
    QStringList texts, files;
    void attach(TSevenZip &z)
    {
        z.OnMessage = [this](QObject *, qint32 code, const QString &text, const QString &file) {
            codes << code;
            texts << text;
            files << file;
        };
    }
};

QStringList listed(TSevenZip &z)
{
    QStringList names;
    z.OnListfile = [&](QObject *, const QString &name, qint64, qint64, qint64, qint64, qint64, const QString &,
                       TDateTime) { names << name; };
    z.List();
    z.OnListfile = nullptr;
    return names;
}

// Rewrites the 7z start header's CRCs after the closing header was patched.
void fixHeaderCrcs(QByteArray &archive)
{
    auto crc32 = [](const char *p, qsizetype n) {
        quint32 c = 0xFFFFFFFF;
        for (qsizetype i = 0; i < n; ++i) {
            c ^= quint8(p[i]);
            for (int k = 0; k < 8; ++k)
                c = (c >> 1) ^ (0xEDB88320 & (0 - (c & 1)));
        }
        return ~c;
    };
    auto put = [&](int at, quint32 v) {
        for (int i = 0; i < 4; ++i)
            archive[at + i] = char(v >> (8 * i));
    };
    quint64 offset = 0, size = 0;
    memcpy(&offset, archive.constData() + 12, 8);
    memcpy(&size, archive.constData() + 20, 8);
    put(28, crc32(archive.constData() + 32 + offset, qsizetype(size)));
    put(8, crc32(archive.constData() + 12, 20));
}

} // namespace

class tst_SevenZip : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_tmp;
    QString m_src;

    QString path(const QString &name) const { return m_tmp.filePath(name); }

    // A component set to write Files from the sample tree, names relative to it.
    void prepareAdd(TSevenZip &z, const QString &archive)
    {
        z.setSZFileName(archive);
        z.setAddRootDir(m_src);
        z.setAddOptions({AddRecurseDirs, AddSolid});
        z.Files().AddString(m_src);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("7z")).isEmpty(), "the 7z tool is needed");
        m_src = path(QStringLiteral("src"));
        makeSampleTree(m_src);
    }

    void errorTable()
    {
        const QStringList texts = {"Success", "File not found", "Data Error", "CRC Error", "Unsupported Method",
                                   "Index out of Range", "User canceled operation", "File is not an 7z SFX archive",
                                   "SFXModule error ( Not found )", "Could not create SFX", "No files to add",
                                   "Could not create file"};
        for (int i = 0; i < texts.size(); ++i)
            QCOMPARE(TSevenZip::ErrorText(i), texts[i]);
        QVERIFY(TSevenZip::ErrorText(12).isEmpty());
        TSevenZip z;
        Messages m;
        m.attach(z);
        z.SetLastError(9);
        QCOMPARE(z.LastError(), 9);
        QCOMPARE(z.LastErrorText(), QStringLiteral("Could not create SFX"));
        QVERIFY(m.codes.isEmpty()); // only stores
    }

    void engineProperties_data()
    {
        using Props = QList<QPair<QString, QVariant>>;
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("strength");
        QTest::addColumn<bool>("solid");
        QTest::addColumn<int>("dict");
        QTest::addColumn<int>("ppmdSize");
        QTest::addColumn<int>("ppmdMem");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("encryptNames");
        QTest::addColumn<Props>("expected");
        QTest::addColumn<QString>("method"); // as the tool lists it
        QTest::addColumn<QString>("solidFlag");
        const QVariant u0 = QVariant::fromValue(0u), u3 = QVariant::fromValue(3u), u5 = QVariant::fromValue(5u),
                       u7 = QVariant::fromValue(7u), u9 = QVariant::fromValue(9u);
        QTest::newRow("lzma normal solid") << int(LZMA) << int(NORMAL) << true << 0 << 0 << 0 << QString() << false
                                           << Props{{"X", u5}, {"s", "on"}} << "LZMA2:" << "+";
        QTest::newRow("lzma save") << int(LZMA) << int(SAVE) << false << 0 << 0 << 0 << QString() << false
                                   << Props{{"X", u0}, {"s", "off"}} << "Copy" << "-";
        QTest::newRow("lzma fast dict 12") << int(LZMA) << int(FAST) << true << 12 << 0 << 0 << QString() << false
                                           << Props{{"X", u3}, {"s", "on"}, {"d", QVariant::fromValue(12u)}}
                                           << "LZMA2:12" << "+";
        QTest::newRow("lzma ultra he") << int(LZMA) << int(ULTRA) << true << 0 << 0 << 0 << "pw" << true
                                       << Props{{"X", u9}, {"s", "on"}, {"he", "on"}} << "LZMA2:" << "+";
        QTest::newRow("lzma max, password only")
            << int(LZMA) << int(MAXIMUM) << true << 0 << 0 << 0 << "pw" << false << Props{{"X", u7}, {"s", "on"}}
            << "LZMA2:" << "+";
        QTest::newRow("ppmd default") << int(PPMD) << int(NORMAL) << false << 0 << 0 << 0 << QString() << false
                                      << Props{{"0", "PPMd"}, {"X", u5}} << "PPMD:o6:mem" << "+";
        QTest::newRow("ppmd o4 mem 20 he")
            << int(PPMD) << int(FAST) << true << 0 << 4 << 20 << "pw" << true
            << Props{{"0", "PPMd"}, {"X", u3}, {"o", QVariant::fromValue(4u)}, {"mem", QVariant::fromValue(20u)},
                     {"he", "on"}}
            << "PPMD:o4:mem20 7zAES" << "+";
        QTest::newRow("strength out of range") << int(LZMA) << 0x85 << true << 0 << 0 << 0 << QString() << false
                                               << Props{{"X", u5}, {"s", "on"}} << "LZMA2:" << "+";
    }
    // The properties handed to the engine, in order, and what the engine made of them.
    void engineProperties()
    {
        QFETCH(int, type);
        QFETCH(int, strength);
        QFETCH(bool, solid);
        QFETCH(int, dict);
        QFETCH(int, ppmdSize);
        QFETCH(int, ppmdMem);
        QFETCH(QString, password);
        QFETCH(bool, encryptNames);
        TSevenZip z;
        const QString archive = path(QStringLiteral("props.7z"));
        prepareAdd(z, archive);
        AddOpts options{AddRecurseDirs};
        if (solid)
            options.include(AddSolid);
        if (encryptNames)
            options.include(AddEncryptFilename);
        z.setAddOptions(options);
        z.setLZMACompressType(TCompressType(type));
        z.setLZMACompressStrength(TCompressStrength(strength));
        z.setLZMAStrength(dict);
        z.setLPPMDsize(ppmdSize);
        z.setLPPMDmem(ppmdMem);
        z.setPassword(password);
        QTEST(z.EngineProperties(), "expected");

        QVERIFY(z.Add());
        QVERIFY(toolTests(archive, password));
        QFETCH(QString, method);
        const QString listedMethod = toolField(archive, QStringLiteral("Method"), password);
        QVERIFY2(listedMethod.contains(method), qPrintable(listedMethod));
        QTEST(toolField(archive, QStringLiteral("Solid"), password), "solidFlag");
        // Encrypted names: without the password nothing is listed at all.
        QCOMPARE(toolPaths(archive).isEmpty(), encryptNames);
        QFile::remove(archive);
    }

    void rangeChecks()
    {
        TSevenZip z;
        QVERIFY_THROWS_EXCEPTION(ERangeError, z.setLZMAStrength(28));
        QVERIFY_THROWS_EXCEPTION(ERangeError, z.setLPPMDmem(32));
        QVERIFY_THROWS_EXCEPTION(ERangeError, z.setLPPMDsize(1));
        QVERIFY_THROWS_EXCEPTION(ERangeError, z.setVolumeSize(-1));
        z.setLPPMDsize(0);
        z.setLZMAStrength(27);
        QCOMPARE(z.LZMAStrength(), 27);
    }

    void roundTrip_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("encryptNames");
        QTest::newRow("lzma") << int(LZMA) << QString() << false;
        QTest::newRow("ppmd") << int(PPMD) << QString() << false;
        QTest::newRow("password") << int(LZMA) << QStringLiteral("pàss🔑") << false;
        QTest::newRow("password, encrypted names") << int(PPMD) << QStringLiteral("segreto") << true;
    }
    // Names in several scripts survive add, list and extract; the tool agrees on every name.
    void roundTrip()
    {
        QFETCH(int, type);
        QFETCH(QString, password);
        QFETCH(bool, encryptNames);
        TSevenZip z;
        const QString archive = path(QStringLiteral("round.7z"));
        prepareAdd(z, archive);
        if (encryptNames)
            z.setAddOptions({AddRecurseDirs, AddSolid, AddEncryptFilename});
        z.setLZMACompressType(TCompressType(type));
        z.setPassword(password);
        QVERIFY(z.Add());
        QVERIFY(toolTests(archive, password));

        QStringList expected = sampleTree().keys();
        expected << QStringLiteral("cartella vuota") << QStringLiteral("emoji") << QStringLiteral("Ελληνικά");
        expected.sort();
        QStringList fromTool = toolPaths(archive, password);
        fromTool.sort();
        QCOMPARE(fromTool, expected);
        QStringList ours = listed(z);
        ours.sort();
        QCOMPARE(ours, expected);
        QCOMPARE(z.NumberOfFiles(), expected.size());

        const QString out = path(QStringLiteral("round-out"));
        z.setExtrBaseDir(out);
        QVERIFY(z.Extract());
        QCOMPARE(treeOf(out), sampleTree());
        QVERIFY(QFileInfo(out + QStringLiteral("/cartella vuota")).isDir());
        QVERIFY(z.Extract(true)); // test mode writes nothing new and finds nothing wrong
        QDir(out).removeRecursively();
        QFile::remove(archive);
    }

    void toolArchives_data()
    {
        QTest::addColumn<QStringList>("switches");
        QTest::newRow("lzma mx1") << QStringList{"-m0=LZMA", "-mx1"};
        QTest::newRow("lzma mx9 non-solid") << QStringList{"-m0=LZMA", "-mx9", "-ms=off"};
        QTest::newRow("lzma2 mx5 solid") << QStringList{"-mx5", "-ms=on"};
        QTest::newRow("ppmd mx7") << QStringList{"-m0=PPMd", "-mx7"};
        QTest::newRow("store, password") << QStringList{"-mx0", "-pchiave"};
    }
    // Archives the tool makes list with its names, sizes and CRCs and extract byte for byte.
    void toolArchives()
    {
        QFETCH(QStringList, switches);
        const QString archive = path(QStringLiteral("tool.7z"));
        QFile::remove(archive);
        QCOMPARE(tool(QStringList{"a"} << switches << archive << QStringLiteral("."), m_src).exitCode, 0);
        TSevenZip z;
        z.setSZFileName(archive);
        if (switches.contains(QStringLiteral("-pchiave")))
            z.setPassword(QStringLiteral("chiave"));
        QMap<QString, qint64> sizes;
        QMap<QString, qint64> crcs;
        z.OnListfile = [&](QObject *sender, const QString &name, qint64, qint64 size, qint64, qint64, qint64 crc,
                           const QString &, TDateTime) {
            QCOMPARE(sender, &z);
            sizes[name] = size;
            crcs[name] = crc;
        };
        QVERIFY(z.List());
        for (auto it = sampleTree().begin(); it != sampleTree().end(); ++it) {
            QCOMPARE(sizes.value(it.key(), -1), it.value().size());
            if (!it.value().isEmpty())
                QCOMPARE(quint32(crcs.value(it.key())), quint32(crc32Of(it.value())));
        }
        const QString out = path(QStringLiteral("tool-out"));
        z.setExtrBaseDir(out);
        QVERIFY(z.Extract());
        QCOMPARE(treeOf(out), sampleTree());
        QCOMPARE(z.GetIndexByFilename(QStringLiteral("PERCHÉ COSÌ.TXT")) >= 0, true);
        QDir(out).removeRecursively();
    }

    void wrongPassword_data()
    {
        QTest::addColumn<bool>("encryptNames");
        QTest::addColumn<QString>("given");
        QTest::newRow("data only, wrong") << false << QStringLiteral("sbagliata");
        QTest::newRow("data only, missing") << false << QString();
        QTest::newRow("names too, wrong") << true << QStringLiteral("sbagliata");
        QTest::newRow("names too, missing") << true << QString();
    }
    // A wrong or missing password fails with a code and a message, and leaves nothing behind.
    void wrongPassword()
    {
        QFETCH(bool, encryptNames);
        QFETCH(QString, given);
        TSevenZip z;
        const QString archive = path(QStringLiteral("locked.7z"));
        prepareAdd(z, archive);
        z.setPassword(QStringLiteral("giusta"));
        if (encryptNames)
            z.setAddOptions({AddRecurseDirs, AddSolid, AddEncryptFilename});
        QVERIFY(z.Add());

        z.setPassword(given);
        Messages m;
        m.attach(z);
        const QString out = path(QStringLiteral("locked-out"));
        QDir(out).removeRecursively();
        z.setExtrBaseDir(out);
        QVERIFY(!z.Extract());
        QVERIFY(!m.codes.isEmpty());
        QVERIFY2(m.codes.first() == TSevenZip::ErrDataError || m.codes.first() == TSevenZip::ErrCRCError,
                 qPrintable(m.texts.first()));
        QCOMPARE(m.texts.first(), TSevenZip::ErrorText(m.codes.first()));
        // Neither damaged files nor temporary leftovers; the empty file holds nothing to decrypt.
        auto tree = treeOf(out);
        QCOMPARE(tree.take(QStringLiteral("vuoto.dat")), QByteArray());
        QVERIFY(tree.isEmpty());
        QCOMPARE(z.List(), !encryptNames);
        QFile::remove(archive);
        QDir(out).removeRecursively();
    }

    void addNames_data()
    {
        QTest::addColumn<QString>("rootDir");
        QTest::addColumn<int>("options");
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QStringList>("expected");
        const int recurse = 1 << AddRecurseDirs;
        QTest::newRow("folder without recursion")
            << "src" << 0 << QStringList{"src/Ελληνικά"} << QStringList{"Ελληνικά", "Ελληνικά/αλφα.txt"};
        QTest::newRow("wildcard, recursive")
            << "src" << recurse << QStringList{"src/*.txt"}
            << QStringList{"leggimi.txt", "perché così.txt", "Ελληνικά/αλφα.txt"};
        QTest::newRow("wildcard, flat") << "src" << 0 << QStringList{"src/*.txt"}
                                        << QStringList{"leggimi.txt", "perché così.txt"};
        QTest::newRow("only file names") << "src" << (recurse | 1 << AddStoreOnlyFilename)
                                         << QStringList{"src/emoji", "src/vuoto.dat"}
                                         << QStringList{"vuoto.dat", "🎓 laurea.bin"};
        QTest::newRow("file outside the root") << "src/emoji" << 0 << QStringList{"src/vuoto.dat"}
                                               << QStringList{"@/src/vuoto.dat"};
        QTest::newRow("full paths") << "src" << (1 << AddIncludeDriveLetter) << QStringList{"src/vuoto.dat"}
                                    << QStringList{"@/src/vuoto.dat"};
    }
    // How the root folder and the options shape stored names ("@" stands for the test folder
    // without its leading "/").
    void addNames()
    {
        QFETCH(QString, rootDir);
        QFETCH(int, options);
        QFETCH(QStringList, entries);
        QFETCH(QStringList, expected);
        TSevenZip z;
        const QString archive = path(QStringLiteral("names.7z"));
        z.setSZFileName(archive);
        z.setAddRootDir(path(rootDir));
        AddOpts opts;
        for (int i = 0; i < 5; ++i)
            if (options & (1 << i))
                opts.include(AddOptsEnum(i));
        z.setAddOptions(opts);
        for (const QString &e : entries)
            z.Files().AddString(path(e));
        QVERIFY(z.Add());
        QStringList names = toolPaths(archive);
        names.sort();
        const QString at = m_tmp.path().mid(1);
        for (QString &e : expected)
            e.replace(QLatin1Char('@'), at);
        expected.sort();
        QCOMPARE(names, expected);
        QFile::remove(archive);
    }

    void nothingToAdd()
    {
        TSevenZip z;
        Messages m;
        m.attach(z);
        z.setSZFileName(path(QStringLiteral("none.7z")));
        z.Files().AddString(path(QStringLiteral("manca.txt")));
        QVERIFY(!z.Add());
        QCOMPARE(m.codes, (QList<qint32>{TSevenZip::ErrFileNotFound, TSevenZip::ErrNoFilesToAdd}));
        QCOMPARE(m.files.first(), path(QStringLiteral("manca.txt")));
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("none.7z"))));
    }

    void renameEvents()
    {
        TSevenZip z;
        const QString archive = path(QStringLiteral("renamed.7z"));
        prepareAdd(z, archive);
        z.Files().Clear();
        z.Files().AddString(m_src + QStringLiteral("/leggimi.txt"));
        QList<quint32> indexes;
        z.OnSetAddName = [&](QObject *, quint32 index, QString &name) {
            indexes << index;
            name = QStringLiteral("dati/") + name.toUpper();
        };
        QVERIFY(z.Add());
        QCOMPARE(indexes, QList<quint32>{0});
        QCOMPARE(toolPaths(archive), QStringList{"dati/LEGGIMI.TXT"});
        z.OnSetExtractName = [&](QObject *, quint32, QString &name) { name = QStringLiteral("altro.txt"); };
        z.setExtrBaseDir(path(QStringLiteral("renamed-out")));
        QVERIFY(z.Extract());
        QCOMPARE(treeOf(z.ExtrBaseDir()).keys(), QStringList{"altro.txt"});
        QCOMPARE(z.GetIndexByFilename(QStringLiteral("Dati/Leggimi.txt")), 0);
        Messages m;
        m.attach(z);
        QCOMPARE(z.GetIndexByFilename(QStringLiteral("assente")), -1);
        QCOMPARE(m.codes, QList<qint32>{TSevenZip::ErrIndexOutOfRange});
    }

    void overwrite_data()
    {
        QTest::addColumn<bool>("optionSet");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("asked, keep") << false << false << true << false;
        QTest::newRow("asked, replace") << false << true << true << true;
        QTest::newRow("option set") << true << false << false << true;
    }
    // OnExtractOverwrite is asked before replacing a file unless ExtractOverwrite is set.
    void overwrite()
    {
        QFETCH(bool, optionSet);
        QFETCH(bool, answer);
        TSevenZip z;
        const QString archive = path(QStringLiteral("over.7z"));
        prepareAdd(z, archive);
        QVERIFY(z.Add());
        const QString out = path(QStringLiteral("over-out"));
        const QString target = out + QStringLiteral("/leggimi.txt");
        writeFile(target, "vecchio");
        z.setExtrBaseDir(out);
        z.setExtractOptions(optionSet ? ExtractOpts{ExtractOverwrite} : ExtractOpts{});
        QStringList asked;
        z.OnExtractOverwrite = [&](QObject *, const QString &name, bool &doOverwrite) {
            asked << name;
            doOverwrite = answer;
        };
        QVERIFY(z.Extract());
        QFETCH(bool, replaced);
        QCOMPARE(readFile(target), replaced ? sampleTree().value("leggimi.txt") : QByteArray("vecchio"));
        QTEST(asked == QStringList{target}, "asked");
        QDir(out).removeRecursively();
    }

    void extractNoPath()
    {
        TSevenZip z;
        const QString archive = path(QStringLiteral("flat.7z"));
        prepareAdd(z, archive);
        QVERIFY(z.Add());
        z.setExtrBaseDir(path(QStringLiteral("flat-out")));
        z.setExtractOptions({ExtractNoPath});
        QVERIFY(z.Extract());
        const auto tree = treeOf(z.ExtrBaseDir());
        QCOMPARE(tree.value("🎓 laurea.bin"), sampleTree().value("emoji/🎓 laurea.bin"));
        QCOMPARE(tree.size(), sampleTree().size());
    }

    // Names with "..", absolute names and a link out of the folder never write outside it.
    void hostileNames()
    {
        TSevenZip z;
        const QString archive = path(QStringLiteral("hostile.7z"));
        z.setSZFileName(archive);
        z.setAddOptions({AddStoreOnlyFilename});
        const QStringList stored = {"../fuori.txt", "a/../../fuori2.txt", "/tmp/assoluto-" + QString::number(QCoreApplication::applicationPid()) + ".txt",
                                    "link/dentro.txt", "buono.txt"};
        for (int i = 0; i < stored.size(); ++i) {
            writeFile(path(QStringLiteral("h%1/f.txt").arg(i)), "x");
            z.Files().AddString(path(QStringLiteral("h%1/f.txt").arg(i)));
        }
        z.OnSetAddName = [&](QObject *, quint32 index, QString &name) { name = stored[int(index)]; };
        QVERIFY(z.Add());
        QCOMPARE(toolPaths(archive).size(), stored.size());

        const QString base = path(QStringLiteral("jail/in"));
        const QString outside = path(QStringLiteral("jail/out"));
        QDir().mkpath(base);
        QDir().mkpath(outside);
        QVERIFY(QFile::link(outside, base + QStringLiteral("/link")));
        Messages m;
        m.attach(z);
        z.setExtrBaseDir(base);
        QVERIFY(!z.Extract());
        QVERIFY(treeOf(outside).isEmpty());
        QVERIFY(treeOf(path(QStringLiteral("jail"))).keys().contains("in/buono.txt"));
        QCOMPARE(treeOf(base).value("tmp/assoluto-" + QString::number(QCoreApplication::applicationPid()) + ".txt"), QByteArray("x"));
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("fuori.txt"))));
        QVERIFY(!QFileInfo::exists(m_tmp.path() + QStringLiteral("/../fuori2.txt")));
        QCOMPARE(m.codes, (QList<qint32>{TSevenZip::ErrCreateFile, TSevenZip::ErrCreateFile, TSevenZip::ErrCreateFile}));
    }

    void damaged_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<int>("code");
        QTest::newRow("truncated") << "truncate" << int(TSevenZip::ErrDataError);
        QTest::newRow("bad crc") << "crc" << int(TSevenZip::ErrCRCError);
        QTest::newRow("unsupported method") << "method" << int(TSevenZip::ErrUnsupportedMethod);
        QTest::newRow("not an archive") << "garbage" << int(TSevenZip::ErrDataError);
    }
    // Stored, unpacked headers let the test damage exactly one thing.
    void damaged()
    {
        QFETCH(QString, damage);
        const QString archive = path(QStringLiteral("damaged.7z"));
        QFile::remove(archive);
        QCOMPARE(tool({"a", "-m0=Copy", "-mhc=off", archive, "leggimi.txt"}, m_src).exitCode, 0);
        QByteArray bytes = readFile(archive);
        if (damage == QLatin1String("truncate")) {
            bytes.chop(bytes.size() / 3);
        } else if (damage == QLatin1String("crc")) {
            bytes[40] = char(bytes[40] ^ 0x55);
        } else if (damage == QLatin1String("method")) {
            // The folder's single coder: one-byte id 00 (Copy) becomes an id no engine knows.
            const qsizetype at = bytes.indexOf(QByteArray::fromHex("0b0100010100"));
            QVERIFY(at > 0);
            bytes[at + 5] = char(0x7F);
            fixHeaderCrcs(bytes);
        } else {
            bytes = QByteArray("non sono un archivio").repeated(10);
        }
        QFile f(archive);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
        f.close();

        TSevenZip z;
        Messages m;
        m.attach(z);
        z.setSZFileName(archive);
        z.setExtrBaseDir(path(QStringLiteral("damaged-out")));
        QVERIFY(!z.Extract());
        QFETCH(int, code);
        QVERIFY(!m.codes.isEmpty());
        QCOMPARE(m.codes.first(), code);
        QCOMPARE(m.texts.first(), TSevenZip::ErrorText(code));
        QVERIFY(!treeOf(z.ExtrBaseDir()).contains("leggimi.txt"));
        QVERIFY(treeOf(z.ExtrBaseDir()).isEmpty());
    }

    void missingArchive()
    {
        TSevenZip z;
        Messages m;
        m.attach(z);
        z.setSZFileName(path(QStringLiteral("manca.7z")));
        QVERIFY(!z.List());
        QCOMPARE(z.LastError(), TSevenZip::ErrFileNotFound);
        QCOMPARE(m.files, QStringList{path(QStringLiteral("manca.7z"))});
    }

    // Split archives: written at VolumeSize, tested by the tool, read back from their volumes;
    // a missing volume is asked for through OnOpenVolume.
    void volumes()
    {
        const QString dir = path(QStringLiteral("vol"));
        QDir().mkpath(dir);
        TSevenZip z;
        prepareAdd(z, dir + QStringLiteral("/parti.7z"));
        z.setLZMACompressStrength(SAVE);
        z.setVolumeSize(10000);
        QVERIFY(z.Add());
        const QStringList volumes = z.NamesOfVolumesWritten().toStringList();
        QCOMPARE(volumes.size(), 5); // 44 KB stored
        for (int i = 0; i < volumes.size(); ++i) {
            QCOMPARE(volumes[i], dir + QStringLiteral("/parti.7z.00%1").arg(i + 1));
            QVERIFY(QFileInfo(volumes[i]).size() <= 10000);
        }
        QVERIFY(!QFileInfo::exists(dir + QStringLiteral("/parti.7z")));
        QVERIFY(toolTests(volumes.first()));
        z.ClearNamesOfVolumeWritten();
        QCOMPARE(z.NamesOfVolumesWritten().Count(), 0);

        z.setExtrBaseDir(path(QStringLiteral("vol-out")));
        QVERIFY(z.Extract()); // SZFileName still "parti.7z": its volumes are found
        QCOMPARE(treeOf(z.ExtrBaseDir()), sampleTree());
        QDir(z.ExtrBaseDir()).removeRecursively();

        // The last volume moved elsewhere: the handler is asked for it first and points to it.
        const QString moved = path(QStringLiteral("vol-moved.005"));
        QVERIFY(QFile::rename(volumes.last(), moved));
        QStringList asked;
        z.OnOpenVolume = [&](QString &name, bool removable, bool &cancel) {
            QVERIFY(!removable);
            asked << name;
            name = moved;
            cancel = false;
        };
        QVERIFY(z.Extract());
        QCOMPARE(asked, QStringList{volumes.last()});
        QCOMPARE(treeOf(z.ExtrBaseDir()), sampleTree());

        Messages m;
        m.attach(z);
        z.OnOpenVolume = [&](QString &, bool, bool &cancel) { cancel = true; };
        QVERIFY(!z.List());
        QCOMPARE(m.codes, QList<qint32>{TSevenZip::ErrFileNotFound});
        QCOMPARE(m.files, QStringList{volumes.last()});
        QVERIFY(QFile::rename(moved, volumes.last()));

        // Volumes the tool splits read the same way.
        const QString toolBase = dir + QStringLiteral("/tool.7z");
        QCOMPARE(tool({"a", "-v7k", "-mx1", toolBase, "."}, m_src).exitCode, 0);
        TSevenZip r;
        r.setSZFileName(toolBase + QStringLiteral(".001"));
        r.setExtrBaseDir(path(QStringLiteral("vol-tool-out")));
        QVERIFY(r.Extract());
        QCOMPARE(treeOf(r.ExtrBaseDir()), sampleTree());
    }

    // A self-extracting file runs and extracts; the conversions give back the archive.
    void selfExtracting()
    {
        const QString dir = path(QStringLiteral("sfx"));
        QDir().mkpath(dir);
        TSevenZip z;
        prepareAdd(z, dir + QStringLiteral("/setup.7z"));
        z.setSFXCreate(true);
        QCOMPARE(z.SFXModule(), QStringLiteral("7z.sfx"));
        QVERIFY(z.Add());
        const QString exe = dir + QStringLiteral("/setup.exe");
        QVERIFY(QFileInfo(exe).isExecutable());
        QVERIFY(!QFileInfo::exists(dir + QStringLiteral("/setup.7z")));
        QProcess run;
        run.start(exe, {QStringLiteral("-o") + dir + QStringLiteral("/run-out"), QStringLiteral("-y")});
        QVERIFY(run.waitForFinished(30000));
        QCOMPARE(run.exitCode(), 0);
        QCOMPARE(treeOf(dir + QStringLiteral("/run-out")), sampleTree());

        const qint64 stubSize = QFileInfo(z.SFXModulePath()).size();
        QCOMPARE(z.SFXCheck(exe), stubSize - TSevenZip::SFXSearchStart);
        QVERIFY(z.ConvertSFXto7z(exe));
        const QByteArray archive = readFile(dir + QStringLiteral("/setup.7z"));
        QCOMPARE(archive, readFile(exe).mid(stubSize));
        QVERIFY(toolTests(dir + QStringLiteral("/setup.7z")));

        // And back again: the stub and the archive, byte for byte.
        QVERIFY(QFile::remove(exe));
        QVERIFY(z.Convert7ztoSFX(dir + QStringLiteral("/setup.7z")));
        QCOMPARE(readFile(exe), readFile(z.SFXModulePath()) + archive);
        QVERIFY(QFileInfo(exe).isExecutable());

        Messages m;
        m.attach(z);
        QVERIFY(!z.Convert7ztoSFX(dir + QStringLiteral("/setup.7z"))); // the output exists
        QCOMPARE(z.SFXCheck(dir + QStringLiteral("/setup.7z")), -1);
        z.setSFXModule(dir + QStringLiteral("/manca.sfx"));
        QVERIFY(QFile::remove(exe));
        QVERIFY(!z.Convert7ztoSFX(dir + QStringLiteral("/setup.7z")));
        z.setVolumeSize(100000);
        QVERIFY(!z.Add());
        QCOMPARE(m.codes, (QList<qint32>{TSevenZip::ErrSFXModule, TSevenZip::ErrNotSFX, TSevenZip::ErrSFXModule,
                                         TSevenZip::ErrCreateSFX}));
        QCOMPARE(m.texts.at(1), QStringLiteral("File is not an 7z SFX archive"));
    }

    // OnPreProgress gives the total, OnAddfile names the first file, positions only grow and
    // end at the total; a cancel answers the engine with a failure and leaves no output.
    void progressAndCancel_data()
    {
        QTest::addColumn<bool>("adding");
        QTest::newRow("add") << true;
        QTest::newRow("extract") << false;
    }
    void progressAndCancel()
    {
        QFETCH(bool, adding);
        const QString archive = path(QStringLiteral("progress.7z"));
        const QString big = path(QStringLiteral("progress-src/grande.bin"));
        writeFile(big, randomBytes(3 << 20, 11));
        TSevenZip z;
        z.setSZFileName(archive);
        z.setAddRootDir(path(QStringLiteral("progress-src")));
        z.Files().AddString(big);
        z.setLZMACompressStrength(FAST);
        if (!adding)
            QVERIFY(z.Add());
        z.setExtrBaseDir(path(QStringLiteral("progress-out")));
        auto run = [&] { return adding ? z.Add() : z.Extract(); };

        qint64 total = -1;
        QStringList started;
        QList<qint64> positions;
        z.OnPreProgress = [&](QObject *, qint64 max) { total = max; };
        auto startedHandler = [&](QObject *, const QString &name, qint64 size) {
            QCOMPARE(size, qint64(3 << 20));
            started << name;
        };
        z.OnAddfile = startedHandler;
        z.OnExtractfile = startedHandler;
        z.OnProgress = [&](QObject *, const QString &, qint64 arcPos, qint64 filePos) {
            QCOMPARE(arcPos, filePos);
            positions << arcPos;
        };
        QVERIFY(run());
        QCOMPARE(total, qint64(3 << 20));
        QVERIFY(!started.isEmpty());
        QCOMPARE(started.first(), adding ? big : QStringLiteral("grande.bin"));
        QVERIFY(std::is_sorted(positions.begin(), positions.end()));
        QCOMPARE(positions.last(), total);

        Messages m;
        m.attach(z);
        z.OnProgress = [&](QObject *, const QString &, qint64, qint64) { z.Cancel(); };
        QDir(z.ExtrBaseDir()).removeRecursively();
        QVERIFY(!run());
        QCOMPARE(z.LastError(), TSevenZip::ErrUserCanceled);
        QCOMPARE(m.codes, QList<qint32>{TSevenZip::ErrUserCanceled});
        QCOMPARE(m.texts, QStringList{"User canceled operation"});
        if (adding)
            QVERIFY(!QFileInfo::exists(archive));
        else
            QVERIFY(treeOf(z.ExtrBaseDir()).isEmpty());
        // The flag stays until ResetCancel.
        z.OnProgress = nullptr;
        QVERIFY(!run());
        z.ResetCancel();
        QVERIFY(run());
        QFile::remove(archive);
    }

    // A handler that throws stops the engine, removes the output and reaches the caller.
    void handlerException()
    {
        TSevenZip z;
        const QString archive = path(QStringLiteral("throws.7z"));
        prepareAdd(z, archive);
        z.OnProgress = [](QObject *, const QString &, qint64, qint64) { throw EAbort(QStringLiteral("basta")); };
        QVERIFY_THROWS_EXCEPTION(EAbort, z.Add());
        QVERIFY(!QFileInfo::exists(archive));
        z.OnProgress = nullptr;
        QVERIFY(z.Add()); // the component is usable again
    }

    void loading_data()
    {
        QTest::addColumn<QString>("library");
        QTest::addColumn<QString>("message");
        const QString notFound = QStringLiteral("Could not load CreateObject function from 7za.dll\r\nPerhaps 7za.dll not found");
        QTest::newRow("missing") << path(QStringLiteral("nessuno/7z.so")) << notFound;
        QTest::newRow("no entry point") << QStringLiteral("libz.so.1") << notFound;
        QTest::newRow("other interface layout") << QStringLiteral(BAD_ENGINE) << QStringLiteral("interface layout");
    }
    void loading()
    {
        QFETCH(QString, library);
        QFETCH(QString, message);
        TSevenZip z;
        z.setSZFileName(path(QStringLiteral("qualsiasi.7z")));
        SevenZipLibrary = library;
        auto restore = qScopeGuard([] { SevenZipLibrary.clear(); });
        try {
            z.List();
            QFAIL("no exception");
        } catch (const EOSError &e) {
            QVERIFY2(e.Message() == message || e.Message().contains(message), qPrintable(e.Message()));
        }
    }

private:
    static quint32 crc32Of(const QByteArray &data)
    {
        quint32 c = 0xFFFFFFFF;
        for (char ch : data) {
            c ^= quint8(ch);
            for (int k = 0; k < 8; ++k)
                c = (c >> 1) ^ (0xEDB88320 & (0 - (c & 1)));
        }
        return ~c;
    }
};

QTEST_GUILESS_MAIN(tst_SevenZip)
#include "tst_sevenzip.moc"
