// Build-time tool behind mattoni_version_info(): reads a description of a version resource and
// writes a C++ source that places the VS_VERSIONINFO block in the executable's version section.
//   mattoni_verinfo <description.txt> <output.cpp>
//   mattoni_verinfo --pe <description.txt> <output.exe>
// The second form writes the smallest Windows PE image that carries the resource (no code, one
// resource section): sample files for the reader's tests, made here rather than taken elsewhere.
// Description lines: "FileVersion=a.b.c.d", "ProductVersion=a.b.c.d", "Table=041004E4",
// "String=Name=Value" (into the last table), "FileOS=<number>", "FileType=<number>",
// "FileFlags=<number>".
#include "Version.h"

#include <QFile>
#include <QTextStream>
#include <QtEndian>

#include <cstdio>
#include <cstring>

using namespace mattoni;

namespace {

template<typename T>
void put(QByteArray &d, int at, T v)
{
    qToLittleEndian<T>(v, d.data() + at);
}

// A PE32 image whose only section, ".rsrc", holds one RT_VERSION resource (name 1, language of
// the first table) with the given block.
QByteArray peImage(const QByteArray &block, quint16 language)
{
    constexpr int FileAlignment = 0x200, SectionRva = 0x1000, OptionalSize = 224;
    // Resource tree: root (type 16) -> name 1 -> language -> data entry -> data.
    QByteArray rsrc(0x58, '\0');
    put<quint16>(rsrc, 0x0E, 1);
    put<quint32>(rsrc, 0x10, 16);
    put<quint32>(rsrc, 0x14, 0x80000000u | 0x18);
    put<quint16>(rsrc, 0x18 + 0x0E, 1);
    put<quint32>(rsrc, 0x18 + 0x10, 1);
    put<quint32>(rsrc, 0x18 + 0x14, 0x80000000u | 0x30);
    put<quint16>(rsrc, 0x30 + 0x0E, 1);
    put<quint32>(rsrc, 0x30 + 0x10, language);
    put<quint32>(rsrc, 0x30 + 0x14, 0x48);
    put<quint32>(rsrc, 0x48, SectionRva + 0x58);
    put<quint32>(rsrc, 0x4C, quint32(block.size()));
    rsrc += block;
    const int rawSize = (int(rsrc.size()) + FileAlignment - 1) / FileAlignment * FileAlignment;

    QByteArray image(FileAlignment, '\0');
    image[0] = 'M';
    image[1] = 'Z';
    put<quint32>(image, 0x3C, 0x40);
    std::memcpy(image.data() + 0x40, "PE\0\0", 4);
    const int coff = 0x44, optional = coff + 20, section = optional + OptionalSize;
    put<quint16>(image, coff, 0x14C);      // i386
    put<quint16>(image, coff + 2, 1);      // one section
    put<quint16>(image, coff + 16, OptionalSize);
    put<quint16>(image, coff + 18, 0x0102); // executable, 32-bit
    put<quint16>(image, optional, 0x10B);  // PE32
    put<quint32>(image, optional + 28, 0x400000);
    put<quint32>(image, optional + 32, SectionRva);
    put<quint32>(image, optional + 36, FileAlignment);
    put<quint16>(image, optional + 40, 4);
    put<quint16>(image, optional + 48, 4);
    put<quint32>(image, optional + 56, SectionRva + (rawSize + 0xFFF) / 0x1000 * 0x1000);
    put<quint32>(image, optional + 60, FileAlignment);
    put<quint16>(image, optional + 68, 2); // GUI subsystem
    put<quint32>(image, optional + 92, 16);
    put<quint32>(image, optional + 96 + 2 * 8, SectionRva);
    put<quint32>(image, optional + 96 + 2 * 8 + 4, quint32(rsrc.size()));
    std::memcpy(image.data() + section, ".rsrc", 5);
    put<quint32>(image, section + 8, quint32(rsrc.size()));
    put<quint32>(image, section + 12, SectionRva);
    put<quint32>(image, section + 16, quint32(rawSize));
    put<quint32>(image, section + 20, FileAlignment);
    put<quint32>(image, section + 36, 0x40000040); // initialised data, readable
    rsrc.resize(rawSize, '\0');
    return image + rsrc;
}

} // namespace

int main(int argc, char **argv)
{
    const bool pe = argc == 4 && std::strcmp(argv[1], "--pe") == 0;
    if (argc != 3 && !pe) {
        std::fprintf(stderr, "usage: mattoni_verinfo [--pe] <description.txt> <output>\n");
        return 2;
    }
    if (pe) {
        ++argv;
        --argc;
    }
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly | QIODevice::Text)) {
        std::fprintf(stderr, "mattoni_verinfo: cannot read %s\n", argv[1]);
        return 1;
    }
    TFixedFileInfo fixed;
    QList<TVersionStringTable> tables;
    QTextStream text(&in);
    text.setEncoding(QStringConverter::Utf8);
    while (!text.atEnd()) {
        const QString line = text.readLine();
        const int eq = int(line.indexOf(QLatin1Char('=')));
        if (eq < 0)
            continue;
        const QString key = line.left(eq).trimmed();
        const QString value = line.mid(eq + 1);
        if (key == QLatin1String("FileVersion"))
            TFixedFileInfo::SplitVersion(value, fixed.FileVersionMS, fixed.FileVersionLS);
        else if (key == QLatin1String("ProductVersion"))
            TFixedFileInfo::SplitVersion(value, fixed.ProductVersionMS, fixed.ProductVersionLS);
        else if (key == QLatin1String("FileOS"))
            fixed.FileOS = value.toUInt(nullptr, 0);
        else if (key == QLatin1String("FileType"))
            fixed.FileType = value.toUInt(nullptr, 0);
        else if (key == QLatin1String("FileFlags"))
            fixed.FileFlags = value.toUInt(nullptr, 0);
        else if (key == QLatin1String("Table"))
            tables.append(TVersionStringTable{value.trimmed(), {}});
        else if (key == QLatin1String("String")) {
            if (tables.isEmpty())
                tables.append(TVersionStringTable());
            const int eq2 = int(value.indexOf(QLatin1Char('=')));
            tables.last().Strings.append({value.left(eq2), eq2 < 0 ? QString() : value.mid(eq2 + 1)});
        }
    }
    QList<quint32> translations;
    for (const TVersionStringTable &t : tables) {
        bool ok = false;
        const quint32 v = t.Key.toUInt(&ok, 16);
        if (ok)
            translations << ((v >> 16) | ((v & 0xFFFF) << 16));
    }
    const QByteArray block = TVersionResource::Build(fixed, tables, translations);

    QFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate | (pe ? QIODevice::NotOpen : QIODevice::Text))) {
        std::fprintf(stderr, "mattoni_verinfo: cannot write %s\n", argv[2]);
        return 1;
    }
    if (pe) {
        out.write(peImage(block, translations.isEmpty() ? 0 : quint16(translations.first())));
        return 0;
    }
    QTextStream code(&out);
    code << "// Generated by mattoni_verinfo: the program's version resource.\n"
         << "__attribute__((section(\"" << TVersionResource::SectionName() << "\"), used, aligned(4)))\n"
         << "static const unsigned char mattoni_version_resource[" << block.size() << "] = {";
    for (int i = 0; i < block.size(); ++i)
        code << (i % 16 ? " " : "\n    ") << int(quint8(block.at(i))) << ',';
    code << "\n};\n";
    return 0;
}
