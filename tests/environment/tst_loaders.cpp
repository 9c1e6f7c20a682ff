// TDLLLoader and TBPLLoader on real shared libraries: copies of one small module whose loading and
// unloading leave a line each in a trace file.
#include "BplLoad.h"
#include "Dllload.h"

#include <QtTest>

#include <dlfcn.h>

#include <memory>

using namespace mattoni;

class tst_Loaders : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void names_data();
    void names();
    void leastRecentlyUsedIsEvicted_data();
    void leastRecentlyUsedIsEvicted();
    void namesAreCaseSensitive();
    void cacheSizeZeroNeverCaches();
    void failedLoad();
    void unknownEntryPoint();

private:
    // A copy of the test module named fileName in the temporary folder.
    void makeModule(const QString &fileName);
    QStringList takeTrace();
    std::unique_ptr<TModuleLoader> makeLoader(bool package);

    QTemporaryDir m_dir;
    QString m_trace;
};

using AnswerFunction = int (*)();

void tst_Loaders::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_trace = m_dir.filePath(QStringLiteral("trace.txt"));
    qputenv("MATTONI_LOADER_TRACE", QFile::encodeName(m_trace));
}

void tst_Loaders::init()
{
    QFile::remove(m_trace);
}

void tst_Loaders::makeModule(const QString &fileName)
{
    const QString target = m_dir.filePath(fileName);
    if (!QFile::exists(target))
        QVERIFY(QFile::copy(QStringLiteral(LOADER_MODULE), target));
}

QStringList tst_Loaders::takeTrace()
{
    QFile f(m_trace);
    QStringList lines;
    if (f.open(QIODevice::ReadOnly))
        lines = QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    f.close();
    f.remove();
    return lines;
}

std::unique_ptr<TModuleLoader> tst_Loaders::makeLoader(bool package)
{
    std::unique_ptr<TModuleLoader> loader;
    if (package)
        loader = std::make_unique<TBPLLoader>();
    else
        loader = std::make_unique<TDLLLoader>();
    loader->setPath(m_dir.path() + QLatin1Char('/'));
    return loader;
}

void tst_Loaders::names_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("dllName");
    QTest::addColumn<QString>("bplName");

    QTest::newRow("bare") << QString() << "lib" << "lib.DLL" << "lib.BPL";
    QTest::newRow("folder") << "/opt/mods/" << "lib" << "/opt/mods/lib.DLL" << "/opt/mods/lib.BPL";
    QTest::newRow("own extension") << "/opt/mods/" << "lib.so" << "/opt/mods/lib.so" << "/opt/mods/lib.so";
    QTest::newRow("dot in path") << "/opt/v1.2/" << "lib" << "/opt/v1.2/lib" << "/opt/v1.2/lib";
    QTest::newRow("path as prefix") << "/opt/mods" << "lib" << "/opt/modslib.DLL" << "/opt/modslib.BPL";
}

void tst_Loaders::names()
{
    QFETCH(QString, path);
    QFETCH(QString, name);
    QFETCH(QString, dllName);
    QFETCH(QString, bplName);
    TDLLLoader dll;
    dll.setPath(path);
    dll.SetDLLName(name);
    QCOMPARE(dll.DLLName(), dllName);
    TBPLLoader bpl;
    bpl.setPath(path);
    bpl.SetBPLName(name);
    QCOMPARE(bpl.BPLName(), bplName);
}

void tst_Loaders::leastRecentlyUsedIsEvicted_data()
{
    QTest::addColumn<bool>("package");
    QTest::addColumn<QString>("extension");
    QTest::newRow("libraries") << false << ".DLL";
    QTest::newRow("packages") << true << ".BPL";
}

void tst_Loaders::leastRecentlyUsedIsEvicted()
{
    QFETCH(bool, package);
    QFETCH(QString, extension);
    for (int i = 1; i <= 9; ++i)
        makeModule(QStringLiteral("m%1%2").arg(i).arg(extension));
    auto loader = makeLoader(package);
    QCOMPARE(loader->CacheSize(), quint8(8));

    QStringList expected;
    for (int i = 1; i <= 8; ++i) {
        auto answer = reinterpret_cast<AnswerFunction>(loader->ProcAddress(QStringLiteral("m%1").arg(i), QStringLiteral("ModuleAnswer")));
        QVERIFY(answer);
        QCOMPARE(answer(), 42);
        expected << QStringLiteral("load m%1%2").arg(i).arg(extension);
    }
    // m1 becomes the most recently used, so m2 is the one to go.
    QVERIFY(loader->ProcAddress(QStringLiteral("m1"), QStringLiteral("ModuleAnswer")));
    QVERIFY(loader->ProcAddress(QStringLiteral("m9"), QStringLiteral("ModuleAnswer")));
    expected << "unload m2" + extension << "load m9" + extension;
    QCOMPARE(takeTrace(), expected);

    // m2 comes back and pushes out m3, now the least recently used.
    QVERIFY(loader->ProcAddress(QStringLiteral("m2"), QStringLiteral("ModuleAnswer")));
    QCOMPARE(takeTrace(), QStringList({"unload m3" + extension, "load m2" + extension}));

    loader->FlushCache();
    // Most recently used first: m2 m9 m1 m8 m7 m6 m5 m4.
    QStringList unloads;
    for (int i : {2, 9, 1, 8, 7, 6, 5, 4})
        unloads << QStringLiteral("unload m%1%2").arg(i).arg(extension);
    QCOMPARE(takeTrace(), unloads);

    QVERIFY(loader->ProcAddress(QStringLiteral("m1"), QStringLiteral("ModuleAnswer")));
    loader.reset();
    QCOMPARE(takeTrace(), QStringList({"load m1" + extension, "unload m1" + extension}));
}

void tst_Loaders::namesAreCaseSensitive()
{
    makeModule(QStringLiteral("Mod.DLL"));
    makeModule(QStringLiteral("MOD.DLL"));
    auto loader = makeLoader(false);
    QVERIFY(loader->ProcAddress(QStringLiteral("Mod"), QStringLiteral("ModuleAnswer")));
    QVERIFY(loader->ProcAddress(QStringLiteral("MOD"), QStringLiteral("ModuleAnswer")));
    QVERIFY(loader->ProcAddress(QStringLiteral("Mod"), QStringLiteral("ModuleAnswer")));
    QCOMPARE(takeTrace(), QStringList({"load Mod.DLL", "load MOD.DLL"}));
    loader.reset();
    QCOMPARE(takeTrace(), QStringList({"unload Mod.DLL", "unload MOD.DLL"}));
}

void tst_Loaders::cacheSizeZeroNeverCaches()
{
    makeModule(QStringLiteral("zero.DLL"));
    const QByteArray file = QFile::encodeName(m_dir.filePath(QStringLiteral("zero.DLL")));
    auto loader = makeLoader(false);
    loader->setCacheSize(0);
    QVERIFY(loader->ProcAddress(QStringLiteral("zero"), QStringLiteral("ModuleAnswer")));
    QVERIFY(loader->ProcAddress(QStringLiteral("zero"), QStringLiteral("ModuleAnswer")));
    loader.reset();
    QCOMPARE(takeTrace(), QStringList({"load zero.DLL"}));

    // Loaded once per call and never unloaded by the loader: it takes three releases here
    // (two for the loader's loads, one for ours) to unload it.
    void *handle = dlopen(file.constData(), RTLD_NOW | RTLD_NOLOAD);
    QVERIFY(handle);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(takeTrace().isEmpty());
        dlclose(handle);
    }
    QCOMPARE(takeTrace(), QStringList({"unload zero.DLL"}));
}

void tst_Loaders::failedLoad()
{
    makeModule(QStringLiteral("good.DLL"));
    TDLLLoader dll;
    dll.setPath(m_dir.path() + QLatin1Char('/'));
    dll.setCacheSize(1);
    // A symbol that every process has: a null handle must not find it anywhere.
    QVERIFY(!dll.ProcAddress(QStringLiteral("missing"), QStringLiteral("malloc")));
    QVERIFY(!dll.ProcAddress(QStringLiteral("missing"), QStringLiteral("malloc")));
    QCOMPARE(dll.DLLName(), m_dir.filePath(QStringLiteral("missing.DLL")));
    // The failed entry is evicted like any other.
    QVERIFY(dll.ProcAddress(QStringLiteral("good"), QStringLiteral("ModuleAnswer")));
    QCOMPARE(takeTrace(), QStringList({"load good.DLL"}));

    TBPLLoader bpl;
    bpl.setPath(m_dir.path() + QLatin1Char('/'));
    try {
        bpl.ProcAddress(QStringLiteral("missing"), QStringLiteral("ModuleAnswer"));
        QFAIL("no error for a package that does not exist");
    } catch (const EPackageError &e) {
        QVERIFY2(e.Message().startsWith("Can't load package " + m_dir.filePath(QStringLiteral("missing.BPL")) + ".\n"),
                 qPrintable(e.Message()));
    }
    // Nothing was cached: the next call tries again.
    QVERIFY_THROWS_EXCEPTION(EPackageError, bpl.ProcAddress(QStringLiteral("missing"), QStringLiteral("ModuleAnswer")));
}

void tst_Loaders::unknownEntryPoint()
{
    makeModule(QStringLiteral("m1.BPL"));
    TBPLLoader bpl;
    bpl.setPath(m_dir.path() + QLatin1Char('/'));
    QVERIFY(!bpl.ProcAddress(QStringLiteral("m1"), QStringLiteral("NoSuchEntry")));
    // The module stays cached all the same.
    QVERIFY(bpl.ProcAddress(QStringLiteral("m1"), QStringLiteral("ModuleAnswer")));
    QCOMPARE(takeTrace(), QStringList({"load m1.BPL"}));
}

QTEST_GUILESS_MAIN(tst_Loaders)
#include "tst_loaders.moc"
