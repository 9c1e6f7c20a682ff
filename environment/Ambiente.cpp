// Process-wide application settings and their load-time defaults.
#include "Ambiente.h"

#include "Strings.h"

namespace mattoni {

const QString chSi = QStringLiteral("S");
const QString chNo = QStringLiteral("N");
const Currency CurrencyChange = Currency::FromRaw(19362700);

const QString dbmsOracle = QStringLiteral("ORACLE (CORE LAB)");
const QString dbmsOleDbOracle = QStringLiteral("ORACLE");
const QString dbmsInterbase = QStringLiteral("INTERBASE");
const QString dbmsFirebird = QStringLiteral("FIREBIRD");
const QString dbmsSqlServer = QStringLiteral("SQLSERVER");
const QString dbmsOleDbSqlServer = QStringLiteral("MICROSOFT SQL SERVER");
const QString dbmsAccess = QStringLiteral("MS JET");
const QString dbmsSybase = QStringLiteral("SYBASE");
const QString dbmsMySQL = QStringLiteral("MYSQL");
const QString dbmsDb2 = QStringLiteral("DB2");
const QString dbmsODBC = QStringLiteral("ODBC");

const QString usrGuest = QStringLiteral("QUILBA");
const QString pwdGuest = QStringLiteral("quilba");
const QString InternalDCEncript = QStringLiteral("K7pQ2mzR");
const QString InternalDBEncript = QStringLiteral("T4fLx9Wd");

QString TipoDatabase;
QString NomeDatabase;
QString NomeLogin;
QString Password;
QString DbmsAccount;
QString DbmsPassword;
qint32 DbmsIdAccount = 0;
QString Profilo;
qint32 LivelloProfilo = 0;
qint32 IdSoggetto = 0;
qint32 IdNodoOrganigramma = 0;
QString CodMeccanografico;
QString DenominazioneEnte;
QString EmailSender;
QString EmailRecipient;
QString EmailHost;
QString EmailUser;
QString EmailPassword;
TEmailAgent EMailAgente = eaOutlookExpress;
TFormatoDataDbms FormatoData = fddbItaliano;
TFormatoAutenticazione FormatoAutenticazione = fauChiediAccount;
TFormatoPreferenze FormatoPreferenze = fpChiediPreferenze;
QString ConfigIniFilesPath;
bool DataSistemaInEsercizio = false;
bool SoloSistemaIntegrato = false;
TTipologiaLog TipoLog = luAccess;
quint8 Connessioni = 4;
quint8 IstanzeApplicazione = 1;
QString Company;
QString AppName;
QString DCName = QStringLiteral("DC");
QString PackageName;
QString Version;
quint16 MajorVersion = 0;
quint16 MinorVersion = 0;
quint16 ReleaseVersion = 0;
quint16 BuildVersion = 0;
quint16 Esercizio = 0;
TDateTime DataSistema = 0;
TDateTime DataServer = 0;
qint32 Codice_gestore = 0;
QString AliasSysDbx;
QString AliasDbx;
QString AliasBde;
QString AliasSysBde;
QString AliasDbxParams;
QString UDLFile;
QString UDLSYSFile;
bool UserLogged = false;
qint32 modifica_report = 1;
QString HelpFile;

bool DbmsTypeIsEqual(const QString &a, const QString &b)
{
    if (SameText(a, b))
        return true;
    const QString ub = UpperCase(b);
    return !ub.isEmpty() && UpperCase(a).contains(ub);
}

int getbyte(QChar c)
{
    return int(c.unicode()) - int('A');
}

void ResetAmbiente()
{
    TipoDatabase.clear();
    NomeDatabase.clear();
    NomeLogin.clear();
    Password.clear();
    DbmsAccount.clear();
    DbmsPassword.clear();
    DbmsIdAccount = 0;
    Profilo.clear();
    LivelloProfilo = 0;
    IdSoggetto = 0;
    IdNodoOrganigramma = 0;
    CodMeccanografico.clear();
    DenominazioneEnte.clear();
    EmailSender.clear();
    EmailRecipient.clear();
    EmailHost.clear();
    EmailUser.clear();
    EmailPassword.clear();
    EMailAgente = eaOutlookExpress;
    FormatoData = fddbItaliano;
    FormatoAutenticazione = fauChiediAccount;
    FormatoPreferenze = fpChiediPreferenze;
    ConfigIniFilesPath.clear();
    DataSistemaInEsercizio = false;
    SoloSistemaIntegrato = false;
    TipoLog = luAccess;
    Connessioni = 4;
    IstanzeApplicazione = 1;
    Company.clear();
    AppName.clear();
    DCName = QStringLiteral("DC");
    PackageName.clear();
    Version.clear();
    MajorVersion = MinorVersion = ReleaseVersion = BuildVersion = 0;
    Esercizio = 0;
    DataSistema = 0;
    DataServer = 0;
    Codice_gestore = 0;
    AliasSysDbx.clear();
    AliasDbx.clear();
    AliasBde.clear();
    AliasSysBde.clear();
    AliasDbxParams.clear();
    UDLFile.clear();
    UDLSYSFile.clear();
    UserLogged = false;
    modifica_report = 1;
    HelpFile.clear();
}

} // namespace mattoni
