// The settings readers and writers on real settings files in a temporary folder.
#include "Ambiente.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "Formatting.h"
#include "Registry.h"
#include "usrconf.h"
#include "winutil.h"

#include <QtTest>

using namespace mattoni;

class tst_Settings : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    static const QString &base()
    {
        static const QString b = QStringLiteral("Software\\Acme\\Segreteria\\3");
        return b;
    }

    static void put(THKey hive, const QString &key, const QList<QPair<QString, QString>> &values)
    {
        TRegistry reg(hive);
        QVERIFY(reg.OpenKey(key, true));
        for (const auto &v : values)
            reg.WriteString(v.first, v.second);
    }

private slots:
    void init()
    {
        QDir(m_dir.path()).removeRecursively();
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.filePath(QStringLiteral("user")));
        QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope, m_dir.filePath(QStringLiteral("system")));
        FormatSettings = TFormatSettings::Italian();
        ResetAmbiente();
        ResetUsrConf();
        Company = QStringLiteral("Acme");
        AppName = QStringLiteral("Segreteria");
        MajorVersion = 3;
    }

    void versionComesFromTheProgram()
    {
        MajorVersion = 0;
        GetRegistryConf();
        QCOMPARE(MajorVersion, quint16(3));
        QCOMPARE(MinorVersion, quint16(1));
        QCOMPARE(ReleaseVersion, quint16(4));
        QCOMPARE(BuildVersion, quint16(1592));
        QCOMPARE(RegistryBaseKey(), base());
    }

    void nothingStoredKeepsDefaults()
    {
        GetRegistryConf();
        GetLocalPriorityRegistryConf();
        GetRegistryDesktop();
        QCOMPARE(TipoDatabase, QString());
        QCOMPARE(EMailAgente, eaOutlookExpress);
        QCOMPARE(FormatoData, fddbItaliano);
        QCOMPARE(DataSistema, 0.0);
        QCOMPARE(Connessioni, quint8(4));
        QCOMPARE(IstanzeApplicazione, quint8(1));
        QCOMPARE(CurrentColorMapStyle, cmsOcean);
        QCOMPARE(ctrlPanelBackGroundPosition, quint8(3));
    }

    void userKeyIsRead()
    {
        put(HKEY_CURRENT_USER, base(),
            {{"ConfigIniFilesPath", "/etc/segreteria"}, {"AliasSysDbx", "SYS"}, {"NomeLogin", "mrossi"},
             {"TipoDatabase", "FIREBIRD"}, {"EmailSender", "segreteria@ateneo.it"}, {"EmailHost", "smtp.ateneo.it"},
             {"EmailUser", "seg"}, {"EmailPassword", "pw"}, {"EmailAgente", "0"}, {"Esercizio", "2013"},
             {"Codice_gestore", "77"}, {"DataSistema", "15/04/2013"}, {"FormatoData", "1"},
             {"FormatoAutenticazione", "2"}});
        GetRegistryConf();
        QCOMPARE(ConfigIniFilesPath, QStringLiteral("/etc/segreteria"));
        QCOMPARE(AliasSysDbx, QStringLiteral("SYS"));
        QCOMPARE(NomeLogin, QStringLiteral("mrossi"));
        QCOMPARE(TipoDatabase, QStringLiteral("FIREBIRD"));
        QCOMPARE(EmailSender, QStringLiteral("segreteria@ateneo.it"));
        QCOMPARE(EmailHost, QStringLiteral("smtp.ateneo.it"));
        QCOMPARE(EmailUser, QStringLiteral("seg"));
        QCOMPARE(EmailPassword, QStringLiteral("pw"));
        QCOMPARE(EMailAgente, eaInterno);
        QCOMPARE(Esercizio, quint16(2013));
        QCOMPARE(Codice_gestore, 77);
        QCOMPARE(DataSistema, EncodeDate(2013, 4, 15));
        QCOMPARE(FormatoData, fddbInglese);
        QCOMPARE(FormatoAutenticazione, fauTrusted);
    }

    void missingDataSistemaIsToday()
    {
        put(HKEY_CURRENT_USER, base(), {{"TipoDatabase", "MYSQL"}});
        GetRegistryConf();
        QCOMPARE(TipoDatabase, QStringLiteral("MYSQL"));
        QCOMPARE(DataSistema, Date());
    }

    void hivePriorities()
    {
        put(HKEY_CURRENT_USER, base(),
            {{"TipoDatabase", "MYSQL"}, {"Connessioni", "2"}, {"Istanze", "3"}, {"paTreeWidth", "120"}});
        put(HKEY_LOCAL_MACHINE, base(),
            {{"TipoDatabase", "ORACLE"}, {"Connessioni", "9"}, {"Istanze", "5"}, {"paTreeWidth", "300"}});
        GetRegistryConf();
        GetLocalPriorityRegistryConf();
        GetRegistryDesktop();
        QCOMPARE(TipoDatabase, QStringLiteral("MYSQL"));
        QCOMPARE(Connessioni, quint8(9));
        QCOMPARE(IstanzeApplicazione, quint8(5));
        QCOMPARE(paTreeWidth, 120);
    }

    void fallbackToTheOtherHive()
    {
        // Only the machine has the key: the user's readers fall back to it, matching case-insensitively.
        put(HKEY_LOCAL_MACHINE, QStringLiteral("SOFTWARE\\ACME\\SEGRETERIA\\3"), {{"TipoDatabase", "DB2"}});
        put(HKEY_CURRENT_USER, base() + QStringLiteral("\\Altro"), {{"x", "1"}});
        GetRegistryConf();
        // The user's base key exists (it has a sub-key), so the machine's is not read.
        QCOMPARE(TipoDatabase, QString());
        QDir(m_dir.filePath(QStringLiteral("user"))).removeRecursively();
        GetRegistryConf();
        QCOMPARE(TipoDatabase, QStringLiteral("DB2"));
        // And the machine-first reader falls back to the user's key.
        put(HKEY_CURRENT_USER, base(), {{"Istanze", "7"}});
        QDir(m_dir.filePath(QStringLiteral("system"))).removeRecursively();
        GetLocalPriorityRegistryConf();
        QCOMPARE(IstanzeApplicazione, quint8(7));
    }

    void desktopLayout()
    {
        put(HKEY_CURRENT_USER, base(),
            {{"ctrlPanelBackGroundImagePath", "/img/sfondo.png"}, {"ctrlPanelBackGroundPosition", "1"},
             {"ctrlPanelWindowState", "2"}, {"ctrlPanelWindowTop", "-10"}, {"ctrlPanelWindowLeft", "20"},
             {"ctrlPanelWindowHeight", "600"}, {"ctrlPanelWindowWidth", "800"}, {"ColorMapStyle", "4"},
             {"paRightVisible", "True"}, {"paTreeVisible", "1"}, {"paTreePath", "Radice\\Ramo"},
             {"atbStrumentiVisible", "false"}});
        atbStrumentiVisible = true;
        GetRegistryDesktop();
        QCOMPARE(ctrlPanelBackGroundImagePath, QStringLiteral("/img/sfondo.png"));
        QCOMPARE(ctrlPanelBackGroundPosition, quint8(1));
        QCOMPARE(ctrlPanelWindowState, quint8(2));
        QCOMPARE(ctrlPanelWindowTop, -10);
        QCOMPARE(ctrlPanelWindowLeft, 20);
        QCOMPARE(ctrlPanelWindowHeight, 600);
        QCOMPARE(ctrlPanelWindowWidth, 800);
        QCOMPARE(CurrentColorMapStyle, cmsCielo);
        QVERIFY(paRightVisible);
        QVERIFY(paTreeVisible);
        QCOMPARE(paTreePath, QStringLiteral("Radice\\Ramo"));
        QVERIFY(!atbStrumentiVisible);
    }

    void colorMapStyleHasItsOwnDefault()
    {
        put(HKEY_CURRENT_USER, base(), {{"paTreeWidth", "5"}});
        CurrentColorMapStyle = cmsSilver;
        GetRegistryDesktop();
        QCOMPARE(CurrentColorMapStyle, cmsOcean);
    }

    void badValuesRaise_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("reader");
        QTest::addColumn<bool>("range");
        QTest::newRow("Istanze 300") << "Istanze" << "300" << 1 << true;
        QTest::newRow("Connessioni -1") << "Connessioni" << "-1" << 1 << true;
        QTest::newRow("Connessioni text") << "Connessioni" << "quattro" << 1 << false;
        QTest::newRow("Esercizio text") << "Esercizio" << "2013/14" << 0 << false;
        QTest::newRow("Esercizio 70000") << "Esercizio" << "70000" << 0 << true;
        QTest::newRow("DataSistema") << "DataSistema" << "31/02/2020" << 0 << false;
        QTest::newRow("ColorMapStyle 9") << "ColorMapStyle" << "9" << 2 << true;
        QTest::newRow("paTreeVisible") << "paTreeVisible" << "forse" << 2 << false;
    }
    void badValuesRaise()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(int, reader);
        QFETCH(bool, range);
        put(HKEY_CURRENT_USER, base(), {{"TipoDatabase", "SYBASE"}, {name, value}});
        put(HKEY_LOCAL_MACHINE, base(), {{name, value}});
        try {
            if (reader == 0)
                GetRegistryConf();
            else if (reader == 1)
                GetLocalPriorityRegistryConf();
            else
                GetRegistryDesktop();
            QFAIL("no error");
        } catch (const ERangeError &) {
            QVERIFY(range);
        } catch (const EConvertError &) {
            QVERIFY(!range);
        }
        // What was read before the failure stays.
        if (reader == 0)
            QCOMPARE(TipoDatabase, QStringLiteral("SYBASE"));
    }

    void saveAndLoadStrings()
    {
        // No user key: the machine's hive is written.
        SaveRegistryString(QString(), QStringLiteral("Ultimo"), QStringLiteral("mrossi"));
        {
            TRegistry machine(HKEY_LOCAL_MACHINE);
            QVERIFY(machine.OpenKeyReadOnly(base()));
            QCOMPARE(machine.ReadString(QStringLiteral("Ultimo")), QStringLiteral("mrossi"));
        }
        QVERIFY(!TRegistry(HKEY_CURRENT_USER).KeyExists(base()));
        // With the user's key in place, sections go below it.
        put(HKEY_CURRENT_USER, base(), {});
        SaveRegistryString(QStringLiteral("Stampa"), QStringLiteral("Stampante"), QStringLiteral("Ufficio 2"));
        QCOMPARE(LoadRegistryString(QStringLiteral("Stampa"), QStringLiteral("Stampante")), QStringLiteral("Ufficio 2"));
        QCOMPARE(LoadRegistryString(QStringLiteral("stampa"), QStringLiteral("STAMPANTE")), QStringLiteral("Ufficio 2"));
        QCOMPARE(LoadRegistryString(QStringLiteral("Stampa"), QStringLiteral("Altro")), QString());
        QCOMPARE(LoadRegistryString(QStringLiteral("Nessuna"), QStringLiteral("Stampante")), QString());
        // The value is in the user's settings file on disk.
        QFile file(TRegistry::StorePath(HKEY_CURRENT_USER));
        QVERIFY(file.fileName().startsWith(m_dir.path()));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("Stampante=Ufficio 2"));
    }

    void registryKeys()
    {
        TRegistry reg;
        QVERIFY(!reg.OpenKeyReadOnly(QStringLiteral("Software\\Nuovo")));
        QVERIFY(reg.OpenKey(QStringLiteral("Software\\Nuovo"), true));
        QVERIFY(reg.GetValueNames().isEmpty());
        reg.CloseKey();
        // An empty key created on purpose exists.
        QVERIFY(reg.OpenKeyReadOnly(QStringLiteral("software\\nuovo")));
        QCOMPARE(reg.CurrentPath(), QStringLiteral("Software\\Nuovo"));
        QVERIFY_THROWS_EXCEPTION(ERegistryException, reg.WriteString(QStringLiteral("a"), QStringLiteral("b")));
        QVERIFY(reg.OpenKey(QStringLiteral("Figlio"), true));
        QCOMPARE(reg.CurrentPath(), QStringLiteral("Software\\Nuovo\\Figlio"));
        reg.WriteString(QStringLiteral("Nome"), QStringLiteral("valore"));
        reg.WriteString(QStringLiteral("NOME"), QStringLiteral("altro"));
        QCOMPARE(reg.GetValueNames(), QStringList{QStringLiteral("Nome")});
        QCOMPARE(reg.ReadString(QStringLiteral("nome")), QStringLiteral("altro"));
        QVERIFY(reg.DeleteValue(QStringLiteral("Nome")));
        QVERIFY(!reg.ValueExists(QStringLiteral("Nome")));
    }
};

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_settings.moc"
