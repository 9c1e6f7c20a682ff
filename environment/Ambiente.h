// Process-wide application settings: who is logged in, which database and SQL dialect, mail
// settings, the working year and the program's version. Plain variables with load-time defaults,
// written by the host at start-up (usually from the settings store, see winutil.h) and read
// afterwards without locks.
#pragma once

#include "Currency.h"
#include "DateTime.h"
#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

enum TEmailAgent : qint32 { eaInterno, eaOutlookExpress };
enum TFormatoDataDbms : qint32 { fddbItaliano, fddbInglese };
enum TFormatoAutenticazione : qint32 { fauChiediAccount, fauWindows, fauTrusted };
enum TFormatoPreferenze : qint32 { fpChiediPreferenze, fpIgnora, fpIgnoraCatalogo };
enum TTipologiaLog : quint8 { luNone, luAccess, luAction };

inline constexpr bool fgSi = true;
inline constexpr bool fgNo = false;
MATTONI_CORE_EXPORT extern const QString chSi;
MATTONI_CORE_EXPORT extern const QString chNo;
inline constexpr int esercizio_max = 2200;
inline constexpr quint16 eKeyViol = 9729;
MATTONI_CORE_EXPORT extern const Currency CurrencyChange;

// Database types; DbmsTypeIsEqual tells which one a TipoDatabase text names.
MATTONI_CORE_EXPORT extern const QString dbmsOracle;
MATTONI_CORE_EXPORT extern const QString dbmsOleDbOracle;
MATTONI_CORE_EXPORT extern const QString dbmsInterbase;
MATTONI_CORE_EXPORT extern const QString dbmsFirebird;
MATTONI_CORE_EXPORT extern const QString dbmsSqlServer;
MATTONI_CORE_EXPORT extern const QString dbmsOleDbSqlServer;
MATTONI_CORE_EXPORT extern const QString dbmsAccess;
MATTONI_CORE_EXPORT extern const QString dbmsSybase;
MATTONI_CORE_EXPORT extern const QString dbmsMySQL;
MATTONI_CORE_EXPORT extern const QString dbmsDb2;
MATTONI_CORE_EXPORT extern const QString dbmsODBC;

MATTONI_CORE_EXPORT extern const QString usrGuest;
MATTONI_CORE_EXPORT extern const QString pwdGuest;
MATTONI_CORE_EXPORT extern const QString InternalDCEncript;
MATTONI_CORE_EXPORT extern const QString InternalDBEncript;

MATTONI_CORE_EXPORT extern QString TipoDatabase;
MATTONI_CORE_EXPORT extern QString NomeDatabase;
MATTONI_CORE_EXPORT extern QString NomeLogin;
MATTONI_CORE_EXPORT extern QString Password;
MATTONI_CORE_EXPORT extern QString DbmsAccount;
MATTONI_CORE_EXPORT extern QString DbmsPassword;
MATTONI_CORE_EXPORT extern qint32 DbmsIdAccount;
MATTONI_CORE_EXPORT extern QString Profilo;
MATTONI_CORE_EXPORT extern qint32 LivelloProfilo;
MATTONI_CORE_EXPORT extern qint32 IdSoggetto;
MATTONI_CORE_EXPORT extern qint32 IdNodoOrganigramma;
MATTONI_CORE_EXPORT extern QString CodMeccanografico;
MATTONI_CORE_EXPORT extern QString DenominazioneEnte;
MATTONI_CORE_EXPORT extern QString EmailSender;
MATTONI_CORE_EXPORT extern QString EmailRecipient;
MATTONI_CORE_EXPORT extern QString EmailHost;
MATTONI_CORE_EXPORT extern QString EmailUser;
MATTONI_CORE_EXPORT extern QString EmailPassword;
MATTONI_CORE_EXPORT extern TEmailAgent EMailAgente;
MATTONI_CORE_EXPORT extern TFormatoDataDbms FormatoData;
MATTONI_CORE_EXPORT extern TFormatoAutenticazione FormatoAutenticazione;
MATTONI_CORE_EXPORT extern TFormatoPreferenze FormatoPreferenze;
MATTONI_CORE_EXPORT extern QString ConfigIniFilesPath;
MATTONI_CORE_EXPORT extern bool DataSistemaInEsercizio;
MATTONI_CORE_EXPORT extern bool SoloSistemaIntegrato;
MATTONI_CORE_EXPORT extern TTipologiaLog TipoLog;
MATTONI_CORE_EXPORT extern quint8 Connessioni;
MATTONI_CORE_EXPORT extern quint8 IstanzeApplicazione;
MATTONI_CORE_EXPORT extern QString Company;
MATTONI_CORE_EXPORT extern QString AppName;
MATTONI_CORE_EXPORT extern QString DCName;
MATTONI_CORE_EXPORT extern QString PackageName;
MATTONI_CORE_EXPORT extern QString Version;
MATTONI_CORE_EXPORT extern quint16 MajorVersion;
MATTONI_CORE_EXPORT extern quint16 MinorVersion;
MATTONI_CORE_EXPORT extern quint16 ReleaseVersion;
MATTONI_CORE_EXPORT extern quint16 BuildVersion;
MATTONI_CORE_EXPORT extern quint16 Esercizio;
MATTONI_CORE_EXPORT extern TDateTime DataSistema;
MATTONI_CORE_EXPORT extern TDateTime DataServer;
MATTONI_CORE_EXPORT extern qint32 Codice_gestore;
MATTONI_CORE_EXPORT extern QString AliasSysDbx;
MATTONI_CORE_EXPORT extern QString AliasDbx;
MATTONI_CORE_EXPORT extern QString AliasBde;
MATTONI_CORE_EXPORT extern QString AliasSysBde;
MATTONI_CORE_EXPORT extern QString AliasDbxParams;
MATTONI_CORE_EXPORT extern QString UDLFile;
MATTONI_CORE_EXPORT extern QString UDLSYSFile;
MATTONI_CORE_EXPORT extern bool UserLogged;
MATTONI_CORE_EXPORT extern qint32 modifica_report;
MATTONI_CORE_EXPORT extern QString HelpFile;

// True when A and B are equal ignoring case, or when the upper-cased B occurs anywhere in the
// upper-cased A. A TipoDatabase of "ORACLE (CORE LAB)" therefore also matches "ORACLE", and any
// longer text that contains a type name matches it: kept on purpose, callers rely on it.
MATTONI_CORE_EXPORT bool DbmsTypeIsEqual(const QString &a, const QString &b);

// The position of a letter counted from "A" (= 0).
MATTONI_CORE_EXPORT int getbyte(QChar c);

// Puts every setting of this unit back to its load-time default (for hosts that log out, and tests).
MATTONI_CORE_EXPORT void ResetAmbiente();

} // namespace mattoni
