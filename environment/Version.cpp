// Version numbers and the VS_VERSIONINFO resource.
#include "Version.h"

#include "Exceptions.h"
#include "Formatting.h"
#include "Strings.h"

#include <QFile>
#include <QtEndian>

namespace mattoni {

namespace {

quint16 versionNumber(const QString &text)
{
    const QString t = Trim(text);
    if (t.isEmpty())
        return 0;
    const int dot = int(t.indexOf(QLatin1Char('.')));
    const qint64 n = StrToInt64(dot < 0 ? t : t.left(dot));
    if (n < 0 || n > 65535)
        throw ERangeError(QStringLiteral("Range check error"));
    return quint16(n);
}

// The text after the n-th ".", or empty when there are fewer.
QString afterDots(const QString &s, int n)
{
    int pos = 0;
    for (int i = 0; i < n; ++i) {
        const int dot = int(s.indexOf(QLatin1Char('.'), pos));
        if (dot < 0)
            return QString();
        pos = dot + 1;
    }
    return s.mid(pos);
}

// ---------------------------------------------------------------- VS_VERSIONINFO layout

constexpr int MaxDepth = 8;

int align4(int n)
{
    return (n + 3) & ~3;
}

quint16 word(const QByteArray &d, int at)
{
    return qFromLittleEndian<quint16>(d.constData() + at);
}

bool parseNode(const QByteArray &d, int offset, int limit, int depth, TVersionNode &node, int &length)
{
    if (depth > MaxDepth || offset < 0 || offset + 6 > limit)
        return false;
    length = word(d, offset);
    const int valueLength = word(d, offset + 2);
    node.Type = word(d, offset + 4);
    const int end = offset + length;
    if (length < 6 || end > limit)
        return false;
    int p = offset + 6;
    while (true) {
        if (p + 2 > end)
            return false;
        const quint16 c = word(d, p);
        p += 2;
        if (c == 0)
            break;
        node.Key += QChar(c);
    }
    p = offset + align4(p - offset);
    const int valueBytes = node.Type == 1 ? valueLength * 2 : valueLength;
    if (p + valueBytes > end)
        return false;
    node.Value = d.mid(p, valueBytes);
    p = offset + align4(p + valueBytes - offset);
    while (p + 6 <= end) {
        TVersionNode child;
        int childLength = 0;
        if (!parseNode(d, p, end, depth + 1, child, childLength))
            return false;
        node.Children << child;
        p = offset + align4(p + childLength - offset);
    }
    return true;
}

void putWord(QByteArray &d, int at, quint16 v)
{
    qToLittleEndian<quint16>(v, d.data() + at);
}

void padTo4(QByteArray &d)
{
    while (d.size() % 4)
        d.append('\0');
}

QByteArray utf16z(const QString &s)
{
    QByteArray out;
    for (QChar c : s) {
        out.append(char(c.unicode() & 0xFF));
        out.append(char(c.unicode() >> 8));
    }
    out.append(2, '\0');
    return out;
}

// Nodes are written at 4-byte aligned offsets, so padding relative to the node is padding
// relative to the block.
QByteArray writeNode(const TVersionNode &node)
{
    QByteArray d(6, '\0');
    d += utf16z(node.Key);
    padTo4(d);
    d += node.Value;
    for (const TVersionNode &child : node.Children) {
        padTo4(d);
        d += writeNode(child);
    }
    putWord(d, 0, quint16(d.size()));
    putWord(d, 2, quint16(node.Type == 1 ? node.Value.size() / 2 : node.Value.size()));
    putWord(d, 4, node.Type);
    return d;
}

TVersionNode textNode(const QString &key, const QString &value)
{
    TVersionNode n;
    n.Key = key;
    n.Type = 1;
    n.Value = utf16z(value);
    return n;
}

// ---------------------------------------------------------------- ELF sections

template<typename T>
bool readLe(const QByteArray &d, qint64 at, T &v)
{
    if (at < 0 || at + qint64(sizeof(T)) > d.size())
        return false;
    v = qFromLittleEndian<T>(d.constData() + at);
    return true;
}

} // namespace

quint16 GetMajorVersion(const QString &s)
{
    return versionNumber(s);
}

quint16 GetMinorVersion(const QString &s)
{
    return versionNumber(afterDots(Trim(s), 1));
}

quint16 GetReleaseVersion(const QString &s)
{
    return versionNumber(afterDots(Trim(s), 2));
}

quint16 GetBuildVersion(const QString &s)
{
    return versionNumber(afterDots(Trim(s), 3));
}

QString TFixedFileInfo::FileVersion() const
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(FileVersionMS >> 16).arg(FileVersionMS & 0xFFFF).arg(FileVersionLS >> 16).arg(FileVersionLS & 0xFFFF);
}

QString TFixedFileInfo::ProductVersion() const
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(ProductVersionMS >> 16).arg(ProductVersionMS & 0xFFFF).arg(ProductVersionLS >> 16).arg(ProductVersionLS & 0xFFFF);
}

void TFixedFileInfo::SplitVersion(const QString &text, quint32 &ms, quint32 &ls)
{
    ms = (quint32(GetMajorVersion(text)) << 16) | GetMinorVersion(text);
    ls = (quint32(GetReleaseVersion(text)) << 16) | GetBuildVersion(text);
}

const TVersionNode *TVersionNode::Child(const QString &key) const
{
    for (const TVersionNode &c : Children) {
        if (c.Key.compare(key, Qt::CaseInsensitive) == 0)
            return &c;
    }
    return nullptr;
}

QString TVersionNode::Text() const
{
    QString s;
    for (int i = 0; i + 1 < Value.size(); i += 2) {
        const quint16 c = quint16(quint8(Value.at(i))) | quint16(quint8(Value.at(i + 1))) << 8;
        if (c == 0)
            break;
        s += QChar(c);
    }
    return s;
}

bool TVersionResource::LoadFromData(const QByteArray &data)
{
    m_valid = false;
    m_root = TVersionNode();
    m_fixed = TFixedFileInfo();
    int length = 0;
    TVersionNode root;
    if (!parseNode(data, 0, int(data.size()), 0, root, length) || root.Key != QLatin1String("VS_VERSION_INFO"))
        return false;
    if (root.Value.size() >= 52) {
        quint32 f[13];
        for (int i = 0; i < 13; ++i)
            f[i] = qFromLittleEndian<quint32>(root.Value.constData() + 4 * i);
        if (f[0] != TFixedFileInfo::SignatureValue)
            return false;
        m_fixed = {f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9], f[10], f[11], f[12]};
    }
    m_root = root;
    m_valid = true;
    return true;
}

bool TVersionResource::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return LoadFromData(QByteArray());
    const qint64 size = file.size();
    uchar *mapped = file.map(0, size);
    const QByteArray image = mapped ? QByteArray::fromRawData(reinterpret_cast<const char *>(mapped), size)
                                    : file.readAll();
    // The parser copies what it keeps, so the mapping may go when this returns.
    const QByteArray elf = ExtractFromElf(image);
    return LoadFromData(elf.isEmpty() ? ExtractFromPE(image) : elf);
}

bool TVersionResource::LoadFromRunningProgram()
{
    return LoadFromFile(QStringLiteral("/proc/self/exe"));
}

QString TVersionResource::Value(const QString &path) const
{
    if (!m_valid)
        return QString();
    const TVersionNode *node = &m_root;
    for (const QString &part : path.split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
        node = node->Child(part);
        if (!node)
            return QString();
    }
    return node->Text();
}

QStringList TVersionResource::StringTableKeys() const
{
    QStringList keys;
    if (const TVersionNode *sfi = m_root.Child(QStringLiteral("StringFileInfo"))) {
        for (const TVersionNode &table : sfi->Children)
            keys << table.Key;
    }
    return keys;
}

QList<quint32> TVersionResource::Translations() const
{
    QList<quint32> result;
    const TVersionNode *vfi = m_root.Child(QStringLiteral("VarFileInfo"));
    const TVersionNode *tr = vfi ? vfi->Child(QStringLiteral("Translation")) : nullptr;
    if (tr) {
        for (int i = 0; i + 4 <= tr->Value.size(); i += 4)
            result << qFromLittleEndian<quint32>(tr->Value.constData() + i);
    }
    return result;
}

QByteArray TVersionResource::Build(const TFixedFileInfo &fixed, const QList<TVersionStringTable> &tables,
                                   const QList<quint32> &translations)
{
    TVersionNode root;
    root.Key = QStringLiteral("VS_VERSION_INFO");
    root.Type = 0;
    const quint32 f[13] = {fixed.Signature,    fixed.StrucVersion,     fixed.FileVersionMS, fixed.FileVersionLS,
                           fixed.ProductVersionMS, fixed.ProductVersionLS, fixed.FileFlagsMask, fixed.FileFlags,
                           fixed.FileOS,       fixed.FileType,         fixed.FileSubtype,   fixed.FileDateMS,
                           fixed.FileDateLS};
    root.Value.resize(52);
    for (int i = 0; i < 13; ++i)
        qToLittleEndian<quint32>(f[i], root.Value.data() + 4 * i);
    if (!tables.isEmpty()) {
        TVersionNode sfi;
        sfi.Key = QStringLiteral("StringFileInfo");
        for (const TVersionStringTable &t : tables) {
            TVersionNode table;
            table.Key = t.Key;
            for (const auto &kv : t.Strings)
                table.Children << textNode(kv.first, kv.second);
            sfi.Children << table;
        }
        root.Children << sfi;
    }
    if (!translations.isEmpty()) {
        TVersionNode vfi;
        vfi.Key = QStringLiteral("VarFileInfo");
        TVersionNode var;
        var.Key = QStringLiteral("Translation");
        var.Type = 0;
        var.Value.resize(4 * translations.size());
        for (int i = 0; i < translations.size(); ++i)
            qToLittleEndian<quint32>(translations.at(i), var.Value.data() + 4 * i);
        vfi.Children << var;
        root.Children << vfi;
    }
    return writeNode(root);
}

const char *TVersionResource::SectionName()
{
    return ".mattoni_version";
}

QByteArray TVersionResource::ExtractFromElf(const QByteArray &image)
{
    if (image.size() < 64 || !image.startsWith("\x7F" "ELF") || image.at(5) != 1)
        return QByteArray(); // not ELF, or not little-endian
    const bool is64 = image.at(4) == 2;
    quint64 shoff = 0;
    quint16 shentsize = 0, shnum = 0, shstrndx = 0;
    if (is64) {
        if (!readLe(image, 0x28, shoff) || !readLe(image, 0x3A, shentsize) || !readLe(image, 0x3C, shnum)
            || !readLe(image, 0x3E, shstrndx))
            return QByteArray();
    } else {
        quint32 off32 = 0;
        if (!readLe(image, 0x20, off32) || !readLe(image, 0x2E, shentsize) || !readLe(image, 0x30, shnum)
            || !readLe(image, 0x32, shstrndx))
            return QByteArray();
        shoff = off32;
    }
    if (shentsize < (is64 ? 64 : 40) || shstrndx >= shnum)
        return QByteArray();
    auto sectionAt = [&](int index, quint32 &name, quint64 &offset, quint64 &size) {
        const qint64 base = qint64(shoff) + qint64(index) * shentsize;
        if (is64)
            return readLe(image, base, name) && readLe(image, base + 0x18, offset) && readLe(image, base + 0x20, size);
        quint32 o = 0, s = 0;
        const bool ok = readLe(image, base, name) && readLe(image, base + 0x10, o) && readLe(image, base + 0x14, s);
        offset = o;
        size = s;
        return ok;
    };
    quint32 strName;
    quint64 strOffset, strSize;
    if (!sectionAt(shstrndx, strName, strOffset, strSize) || strOffset + strSize > quint64(image.size()))
        return QByteArray();
    const QByteArray wanted(SectionName());
    for (int i = 0; i < shnum; ++i) {
        quint32 name;
        quint64 offset, size;
        if (!sectionAt(i, name, offset, size))
            return QByteArray();
        if (name >= strSize || quint64(name) + quint64(wanted.size()) >= strSize)
            continue;
        const char *n = image.constData() + strOffset + name;
        if (qstrncmp(n, wanted.constData(), wanted.size() + 1) != 0)
            continue;
        if (offset + size > quint64(image.size()))
            return QByteArray();
        return QByteArray(image.constData() + offset, qsizetype(size));
    }
    return QByteArray();
}

QByteArray TVersionResource::ExtractFromPE(const QByteArray &image)
{
    quint32 peOffset = 0, signature = 0;
    if (!image.startsWith("MZ") || !readLe(image, 0x3C, peOffset) || !readLe(image, peOffset, signature)
        || signature != 0x00004550) // "PE\0\0"
        return QByteArray();
    const qint64 coff = qint64(peOffset) + 4;
    quint16 sectionCount = 0, optionalSize = 0, magic = 0;
    if (!readLe(image, coff + 2, sectionCount) || !readLe(image, coff + 16, optionalSize)
        || !readLe(image, coff + 20, magic))
        return QByteArray();
    const qint64 optional = coff + 20;
    // The data directories follow the fixed fields of the PE32 or PE32+ optional header.
    const qint64 directories = optional + (magic == 0x20B ? 112 : magic == 0x10B ? 96 : -1);
    quint32 directoryCount = 0, resourceRva = 0, resourceSize = 0;
    if (directories < optional || !readLe(image, directories - 4, directoryCount) || directoryCount < 3
        || directories + 3 * 8 > optional + optionalSize || !readLe(image, directories + 16, resourceRva)
        || !readLe(image, directories + 20, resourceSize) || resourceRva == 0)
        return QByteArray();

    // Relative virtual address to file offset, through the section table.
    const qint64 sections = optional + optionalSize;
    auto fileOffset = [&](quint32 rva, quint32 size, qint64 &offset) {
        for (int i = 0; i < sectionCount; ++i) {
            const qint64 header = sections + qint64(i) * 40;
            quint32 virtualSize = 0, virtualAddress = 0, rawSize = 0, rawOffset = 0;
            if (!readLe(image, header + 8, virtualSize) || !readLe(image, header + 12, virtualAddress)
                || !readLe(image, header + 16, rawSize) || !readLe(image, header + 20, rawOffset))
                return false;
            const quint64 extent = qMax(virtualSize, rawSize);
            if (rva < virtualAddress || quint64(rva) + size > quint64(virtualAddress) + extent)
                continue;
            offset = qint64(rawOffset) + (rva - virtualAddress);
            return offset + qint64(size) <= image.size() && quint64(rva - virtualAddress) + size <= rawSize;
        }
        return false;
    };
    qint64 root = 0;
    if (!fileOffset(resourceRva, resourceSize, root))
        return QByteArray();
    const qint64 rootEnd = root + resourceSize;

    // One level of the resource tree: the entry with the given id, or the first entry when id is
    // negative. Answers the entry's target offset, inside the resource section.
    auto entry = [&](qint64 directory, int id, quint32 &target) {
        quint16 named = 0, numbered = 0;
        if (directory + 16 > rootEnd || !readLe(image, directory + 12, named) || !readLe(image, directory + 14, numbered))
            return false;
        for (int i = 0; i < named + numbered; ++i) {
            const qint64 at = directory + 16 + qint64(i) * 8;
            quint32 name = 0;
            if (at + 8 > rootEnd || !readLe(image, at, name) || !readLe(image, at + 4, target))
                return false;
            if (id < 0 || (!(name & 0x80000000u) && name == quint32(id)))
                return true;
        }
        return false;
    };
    constexpr int RT_VERSION = 16;
    quint32 target = 0;
    if (!entry(root, RT_VERSION, target) || !(target & 0x80000000u)) // the type level leads to a directory
        return QByteArray();
    if (!entry(root + (target & 0x7FFFFFFF), -1, target) || !(target & 0x80000000u)) // the first name
        return QByteArray();
    if (!entry(root + (target & 0x7FFFFFFF), -1, target) || (target & 0x80000000u)) // the first language
        return QByteArray();
    quint32 dataRva = 0, dataSize = 0;
    qint64 data = 0;
    const qint64 dataEntry = root + target;
    if (dataEntry + 16 > rootEnd || !readLe(image, dataEntry, dataRva) || !readLe(image, dataEntry + 4, dataSize)
        || !fileOffset(dataRva, dataSize, data))
        return QByteArray();
    return image.mid(data, dataSize);
}

QString StringTableKey(quint16 language, quint16 characterSet)
{
    return QStringLiteral("%1%2").arg(language, 4, 16, QLatin1Char('0')).arg(characterSet, 4, 16, QLatin1Char('0')).toUpper();
}

QString TargetOSName(quint32 fileOS)
{
    switch (fileOS) {
    case 0x00010000: return QStringLiteral("MS-Dos");
    case 0x00020000: return QStringLiteral("16 bit OS/2");
    case 0x00030000: return QStringLiteral("32 bit OS/2");
    case 0x00040000: return QStringLiteral("Windows NT");
    case 0x00000001: return QStringLiteral("Windows 3.0 or later");
    case 0x00000002: return QStringLiteral("16 bit OS/2 Presentation Manager");
    case 0x00000003: return QStringLiteral("32 bit OS/2 Presentation Manager");
    case 0x00000004: return QStringLiteral("32 bit Windows");
    case 0x00010001: return QStringLiteral("Windows 3.0 or later with MS-Dos");
    case 0x00010004: return QStringLiteral("32 bit Windows with MS-Dos");
    case 0x00020002: return QStringLiteral("16 bit OS/2 with Presentation Manager");
    case 0x00030003: return QStringLiteral("32 bit OS/2 with Presentation Manager");
    case 0x00040004: return QStringLiteral("Windows NT with 32 bit Windows");
    default: return QStringLiteral("Unknown");
    }
}

TVersionInfo::TVersionInfo(const QString &fileName)
{
    if (fileName.isEmpty())
        m_resource.LoadFromRunningProgram();
    else
        m_resource.LoadFromFile(fileName);
}

QString TVersionInfo::StringValue(const QString &name) const
{
    return m_resource.Value(QStringLiteral("StringFileInfo\\") + StringTableKey(m_language, m_characterSet)
                            + QLatin1Char('\\') + name);
}

QString GetProductName(const QString &fileName)
{
    TVersionResource resource;
    resource.LoadFromFile(fileName);
    return resource.Value(QStringLiteral("StringFileInfo\\041004E4\\ProductName"));
}

} // namespace mattoni
