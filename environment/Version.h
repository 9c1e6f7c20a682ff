// Version information of a program: the dotted version numbers and the version resource, a
// VS_VERSIONINFO block (fixed file information, string tables, translations) that our CMake helper
// mattoni_version_info() embeds in an ELF section of the executable. The same reader takes the
// version resource of Windows executables and libraries (PE files).
#pragma once

#include "mattoni_core_export.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace mattoni {

// The first, second, third and fourth number of a dotted version text ("4.2" gives 4 and 2; an
// empty text, or a missing part, gives 0). Text that is not a number raises EConvertError; 65536 or more (or
// a negative number) raises ERangeError.
MATTONI_CORE_EXPORT quint16 GetMajorVersion(const QString &s);
MATTONI_CORE_EXPORT quint16 GetMinorVersion(const QString &s);
MATTONI_CORE_EXPORT quint16 GetReleaseVersion(const QString &s);
MATTONI_CORE_EXPORT quint16 GetBuildVersion(const QString &s);

// Languages of a string table, by their language identifier.
enum TLanguage : quint16 {
    lnArabic = 0x0401,
    lnBulgarian = 0x0402,
    lnCatalan = 0x0403,
    lnTraditionalChinese = 0x0404,
    lnCzech = 0x0405,
    lnDanish = 0x0406,
    lnGerman = 0x0407,
    lnGreek = 0x0408,
    lnUSEnglish = 0x0409,
    lnCastilianSpanish = 0x040A,
    lnFinnish = 0x040B,
    lnFrench = 0x040C,
    lnHebrew = 0x040D,
    lnHungarian = 0x040E,
    lnIcelandic = 0x040F,
    lnItalian = 0x0410,
    lnJapanese = 0x0411,
    lnKorean = 0x0412,
    lnDutch = 0x0413,
    lnNorwegianBokmal = 0x0414,
    lnPolish = 0x0415,
    lnBrazilianPortuguese = 0x0416,
    lnRhaetoRomanic = 0x0417,
    lnRomanian = 0x0418,
    lnRussian = 0x0419,
    lnCroatoSerbianLatin = 0x041A,
    lnSlovak = 0x041B,
    lnAlbanian = 0x041C,
    lnSwedish = 0x041D,
    lnThai = 0x041E,
    lnTurkish = 0x041F,
    lnUrdu = 0x0420,
    lnBahasa = 0x0421,
    lnSimplifiedChinese = 0x0804,
    lnSwissGerman = 0x0807,
    lnUKEnglish = 0x0809,
    lnMexicanSpanish = 0x080A,
    lnBelgianFrench = 0x080C,
    lnSwissItalian = 0x0810,
    lnBelgianDutch = 0x0813,
    lnNorwegianNynorsk = 0x0814,
    lnPortuguese = 0x0816,
    lnSerboCroatianCyrillic = 0x081A,
    lnCanadianFrench = 0x0C0C,
    lnSwissFrench = 0x100C
};

// Character sets of a string table, by their code page.
enum TCharacterSet : quint16 {
    csASCII = 0,
    csJapan = 932,
    csKorea = 949,
    csTaiwan = 950,
    csUnicode = 1200,
    csEasternEuropean = 1250,
    csCyrillic = 1251,
    csMultilingual = 1252,
    csGreek = 1253,
    csTurkish = 1254,
    csHebrew = 1255,
    csArabic = 1256
};

// "llllcccc": the key of the string table for a language and character set ("041004E4").
MATTONI_CORE_EXPORT QString StringTableKey(quint16 language, quint16 characterSet);

// The name of an operating system of the target-system field ("32 bit Windows", "Windows NT with
// 32 bit Windows" ...); "Unknown" for any other value.
MATTONI_CORE_EXPORT QString TargetOSName(quint32 fileOS);

// The fixed part of a version resource.
struct MATTONI_CORE_EXPORT TFixedFileInfo
{
    static constexpr quint32 SignatureValue = 0xFEEF04BD;
    quint32 Signature = SignatureValue;
    quint32 StrucVersion = 0x00010000;
    quint32 FileVersionMS = 0;
    quint32 FileVersionLS = 0;
    quint32 ProductVersionMS = 0;
    quint32 ProductVersionLS = 0;
    quint32 FileFlagsMask = 0x3F;
    quint32 FileFlags = 0;
    quint32 FileOS = 0x00040004; // 32-bit Windows on NT, what resource compilers write by default
    quint32 FileType = 1;        // application
    quint32 FileSubtype = 0;
    quint32 FileDateMS = 0;
    quint32 FileDateLS = 0;

    // "a.b.c.d" from the two 64-bit version numbers.
    QString FileVersion() const;
    QString ProductVersion() const;
    // Parses "a.b.c.d" into the MS/LS pair (missing parts are 0).
    static void SplitVersion(const QString &text, quint32 &ms, quint32 &ls);
};

// One node of the VS_VERSIONINFO tree: a key, a text (1) or binary (0) value, and children.
struct MATTONI_CORE_EXPORT TVersionNode
{
    QString Key;
    quint16 Type = 1;
    QByteArray Value; // text values: UTF-16LE with the terminating zero
    QList<TVersionNode> Children;

    const TVersionNode *Child(const QString &key) const;
    QString Text() const;
};

// A string table of the resource: its "llllcccc" language and code page key and its strings.
struct MATTONI_CORE_EXPORT TVersionStringTable
{
    QString Key = QStringLiteral("041004E4");
    QList<QPair<QString, QString>> Strings;
};

class MATTONI_CORE_EXPORT TVersionResource
{
public:
    // Loads the version resource of an executable or library: our ELF section, or the version
    // resource of a Windows PE file. False when the file has none or it is malformed.
    bool LoadFromFile(const QString &fileName);
    // Loads the version resource of the running program.
    bool LoadFromRunningProgram();
    // Parses a raw VS_VERSIONINFO block.
    bool LoadFromData(const QByteArray &data);

    bool IsValid() const { return m_valid; }
    const TFixedFileInfo &FixedInfo() const { return m_fixed; }
    const TVersionNode &Root() const { return m_root; }
    QString FileVersion() const { return m_valid ? m_fixed.FileVersion() : QString(); }
    QString ProductVersion() const { return m_valid ? m_fixed.ProductVersion() : QString(); }
    // A value by its "\"-separated path below the root, such as
    // "StringFileInfo\041004E4\ProductName"; empty when missing.
    QString Value(const QString &path) const;
    // The string tables' keys ("041004E4" ...) and the translations (language | code page << 16).
    QStringList StringTableKeys() const;
    QList<quint32> Translations() const;

    // Builds a VS_VERSIONINFO block.
    static QByteArray Build(const TFixedFileInfo &fixed, const QList<TVersionStringTable> &tables,
                            const QList<quint32> &translations);
    // The bytes of the version section of an ELF image, empty when there is none.
    static QByteArray ExtractFromElf(const QByteArray &image);
    // The first version resource of a PE image (RT_VERSION in its resource directory), empty when
    // there is none or the image is malformed.
    static QByteArray ExtractFromPE(const QByteArray &image);
    // The name of the ELF section that holds the block.
    static const char *SectionName();

private:
    TFixedFileInfo m_fixed;
    TVersionNode m_root;
    bool m_valid = false;
};

// A file's version resource read through one string table, chosen by language and character set
// (Italian, code page 1252 unless told otherwise).
class MATTONI_CORE_EXPORT TVersionInfo
{
public:
    // Reads the file's version resource; an empty name reads the running program's.
    explicit TVersionInfo(const QString &fileName = QString());

    bool IsValid() const { return m_resource.IsValid(); }
    const TVersionResource &Resource() const { return m_resource; }

    quint16 Language() const { return m_language; }
    void setLanguage(quint16 value) { m_language = value; }
    quint16 CharacterSet() const { return m_characterSet; }
    void setCharacterSet(quint16 value) { m_characterSet = value; }

    // A string of the chosen table; empty when missing.
    QString StringValue(const QString &name) const;
    QString CompanyName() const { return StringValue(QStringLiteral("CompanyName")); }
    QString FileDescription() const { return StringValue(QStringLiteral("FileDescription")); }
    QString FileVersion() const { return StringValue(QStringLiteral("FileVersion")); }
    QString InternalName() const { return StringValue(QStringLiteral("InternalName")); }
    QString LegalCopyright() const { return StringValue(QStringLiteral("LegalCopyright")); }
    QString LegalTrademarks() const { return StringValue(QStringLiteral("LegalTrademarks")); }
    QString OriginalFilename() const { return StringValue(QStringLiteral("OriginalFilename")); }
    QString ProductName() const { return StringValue(QStringLiteral("ProductName")); }
    QString ProductVersion() const { return StringValue(QStringLiteral("ProductVersion")); }
    QString Comments() const { return StringValue(QStringLiteral("Comments")); }

    // From the fixed part: "a.b.c.d" versions, the flags and the target system's name.
    QString FileVersionNumber() const { return m_resource.FileVersion(); }
    QString ProductVersionNumber() const { return m_resource.ProductVersion(); }
    bool IsDebug() const { return flag(0x01); }
    bool IsPreRelease() const { return flag(0x02); }
    bool IsPatched() const { return flag(0x04); }
    bool IsPrivateBuild() const { return flag(0x08); }
    bool IsInfoInferred() const { return flag(0x10); }
    bool IsSpecialBuild() const { return flag(0x20); }
    QString TargetOS() const { return TargetOSName(m_resource.FixedInfo().FileOS); }

private:
    bool flag(quint32 bit) const
    {
        const TFixedFileInfo &f = m_resource.FixedInfo();
        return (f.FileFlags & f.FileFlagsMask & bit) != 0;
    }

    TVersionResource m_resource;
    quint16 m_language = lnItalian;
    quint16 m_characterSet = csMultilingual;
};

// The product name of a file's version resource: "StringFileInfo\041004E4\ProductName"; empty
// when the file has none.
MATTONI_CORE_EXPORT QString GetProductName(const QString &fileName);

} // namespace mattoni
