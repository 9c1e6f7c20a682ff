// Settings readers and writers over the settings store.
#include "winutil.h"

#include "Ambiente.h"
#include "Exceptions.h"
#include "Formatting.h"
#include "Registry.h"
#include "Version.h"
#include "usrconf.h"

#include <limits>

namespace mattoni {

namespace {

// The text of a value, or the given default when the value is missing.
QString readText(const TRegistry &reg, const QString &name, const QString &defaultValue)
{
    return reg.ValueExists(name) ? reg.ReadString(name) : defaultValue;
}

template<typename T>
void readNumber(const TRegistry &reg, const QString &name, T &target)
{
    const qint64 v = StrToInt64(readText(reg, name, QString::number(qint64(target))));
    if (v < qint64(std::numeric_limits<T>::min()) || v > qint64(std::numeric_limits<T>::max()))
        throw ERangeError(QStringLiteral("Range check error"));
    target = T(v);
}

template<typename E>
void readEnum(const TRegistry &reg, const QString &name, E &target)
{
    qint32 v = qint32(target);
    readNumber(reg, name, v);
    target = E(v);
}

void readBool(const TRegistry &reg, const QString &name, bool &target)
{
    target = StrToBool(readText(reg, name, BoolToStr(target, true)));
}

void readString(const TRegistry &reg, const QString &name, QString &target)
{
    target = readText(reg, name, target);
}

// Opens the base key read-only in the first hive that has it, in the given order of preference.
bool openBase(TRegistry &reg, THKey first)
{
    const QString base = RegistryBaseKey();
    reg.setRootKey(first);
    if (reg.OpenKeyReadOnly(base))
        return true;
    reg.setRootKey(first == HKEY_CURRENT_USER ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER);
    return reg.OpenKeyReadOnly(base);
}

// The hive SaveRegistryString and LoadRegistryString work in.
THKey chosenHive()
{
    TRegistry reg(HKEY_CURRENT_USER);
    return reg.OpenKeyReadOnly(RegistryBaseKey()) ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

} // namespace

QString RegistryBaseKey()
{
    return QStringLiteral("Software\\%1\\%2\\%3").arg(Company, AppName).arg(MajorVersion);
}

void GetRegistryConf()
{
    TVersionResource resource;
    resource.LoadFromRunningProgram();
    const QString fileVersion = resource.FileVersion();
    MajorVersion = GetMajorVersion(fileVersion);
    MinorVersion = GetMinorVersion(fileVersion);
    ReleaseVersion = GetReleaseVersion(fileVersion);
    BuildVersion = GetBuildVersion(fileVersion);

    TRegistry reg;
    if (!openBase(reg, HKEY_CURRENT_USER))
        return;
    readString(reg, QStringLiteral("ConfigIniFilesPath"), ConfigIniFilesPath);
    readString(reg, QStringLiteral("AliasSysDbx"), AliasSysDbx);
    readString(reg, QStringLiteral("NomeLogin"), NomeLogin);
    readString(reg, QStringLiteral("TipoDatabase"), TipoDatabase);
    readString(reg, QStringLiteral("EmailSender"), EmailSender);
    readString(reg, QStringLiteral("EmailHost"), EmailHost);
    readString(reg, QStringLiteral("EmailUser"), EmailUser);
    readString(reg, QStringLiteral("EmailPassword"), EmailPassword);
    readEnum(reg, QStringLiteral("EmailAgente"), EMailAgente);
    readNumber(reg, QStringLiteral("Esercizio"), Esercizio);
    readNumber(reg, QStringLiteral("Codice_gestore"), Codice_gestore);
    DataSistema = StrToDate(readText(reg, QStringLiteral("DataSistema"), DateToStr(Date())));
    readEnum(reg, QStringLiteral("FormatoData"), FormatoData);
    readEnum(reg, QStringLiteral("FormatoAutenticazione"), FormatoAutenticazione);
}

void GetLocalPriorityRegistryConf()
{
    TRegistry reg;
    if (!openBase(reg, HKEY_LOCAL_MACHINE))
        return;
    readNumber(reg, QStringLiteral("Connessioni"), Connessioni);
    readNumber(reg, QStringLiteral("Istanze"), IstanzeApplicazione);
}

void GetRegistryDesktop()
{
    TRegistry reg;
    if (!openBase(reg, HKEY_CURRENT_USER))
        return;
    readString(reg, QStringLiteral("ctrlPanelBackGroundImagePath"), ctrlPanelBackGroundImagePath);
    readNumber(reg, QStringLiteral("ctrlPanelBackGroundPosition"), ctrlPanelBackGroundPosition);
    readNumber(reg, QStringLiteral("ctrlPanelWindowState"), ctrlPanelWindowState);
    readNumber(reg, QStringLiteral("ctrlPanelWindowTop"), ctrlPanelWindowTop);
    readNumber(reg, QStringLiteral("ctrlPanelWindowLeft"), ctrlPanelWindowLeft);
    readNumber(reg, QStringLiteral("ctrlPanelWindowHeight"), ctrlPanelWindowHeight);
    readNumber(reg, QStringLiteral("ctrlPanelWindowWidth"), ctrlPanelWindowWidth);
    // The style is read with its own default, not the current value.
    const qint64 style = StrToInt64(readText(reg, QStringLiteral("ColorMapStyle"), QStringLiteral("2")));
    if (style < cmsSilver || style > cmsCielo)
        throw ERangeError(QStringLiteral("Range check error"));
    CurrentColorMapStyle = TColorMapStyles(style);
    readBool(reg, QStringLiteral("paRightVisible"), paRightVisible);
    readBool(reg, QStringLiteral("paTreeVisible"), paTreeVisible);
    readNumber(reg, QStringLiteral("paTreeWidth"), paTreeWidth);
    readString(reg, QStringLiteral("paTreePath"), paTreePath);
    readBool(reg, QStringLiteral("atbStrumentiVisible"), atbStrumentiVisible);
}

void SaveRegistryString(const QString &section, const QString &ident, const QString &value)
{
    TRegistry reg(chosenHive());
    const QString key = section.isEmpty() ? RegistryBaseKey() : RegistryBaseKey() + QLatin1Char('\\') + section;
    if (reg.OpenKey(key, true))
        reg.WriteString(ident, value);
}

QString LoadRegistryString(const QString &section, const QString &ident)
{
    TRegistry reg(chosenHive());
    if (!reg.OpenKeyReadOnly(RegistryBaseKey() + QLatin1Char('\\') + section))
        return QString();
    return readText(reg, ident, QString());
}

} // namespace mattoni
