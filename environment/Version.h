// Version information of a program: the dotted version numbers and the version resource, a
// VS_VERSIONINFO block (fixed file information, string tables, translations) that our CMake helper
// mattoni_version_info() embeds in an ELF section of the executable.
#pragma once

#include "mattoni_core_export.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace mattoni {

// The first, second, third and fourth number of a dotted version text ("4.2" gives 4 and 2; an
// empty text or part gives 0). Text that is not a number raises EConvertError; 65536 or more (or
// a negative number) raises ERangeError.
MATTONI_CORE_EXPORT quint16 GetMajorVersion(const QString &s);
MATTONI_CORE_EXPORT quint16 GetMinorVersion(const QString &s);
MATTONI_CORE_EXPORT quint16 GetReleaseVersion(const QString &s);
MATTONI_CORE_EXPORT quint16 GetBuildVersion(const QString &s);

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
    // The name of the ELF section that holds the block.
    static const char *SectionName();

private:
    TFixedFileInfo m_fixed;
    TVersionNode m_root;
    bool m_valid = false;
};

} // namespace mattoni
