// zlib compression of files and streams.
#include "Compression.h"

#include <QFile>
#include <QIODevice>

#include <zlib.h>

namespace mattoni {

EZCompressionError::~EZCompressionError() = default;
EZDecompressionError::~EZDecompressionError() = default;

namespace {

constexpr int InBlock = 65536;
// The decompression side copies in blocks of 4096 bytes.
constexpr int OutBlock = 4096;

void writeAll(QIODevice &dest, const char *data, qint64 size)
{
    if (dest.write(data, size) != size)
        throw EStreamError(QStringLiteral("Stream write error"));
}

std::unique_ptr<QFile> openForReading(const QString &name)
{
    auto f = std::make_unique<QFile>(name);
    if (!f->open(QIODevice::ReadOnly))
        throw EFOpenError(QStringLiteral("Cannot open file \"%1\". %2").arg(name, f->errorString()));
    return f;
}

std::unique_ptr<QFile> openForWriting(const QString &name)
{
    auto f = std::make_unique<QFile>(name);
    if (!f->open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw EFCreateError(QStringLiteral("Cannot create file \"%1\". %2").arg(name, f->errorString()));
    return f;
}

struct Deflater
{
    z_stream z{};
    Deflater()
    {
        if (deflateInit(&z, Z_DEFAULT_COMPRESSION) != Z_OK)
            throw EZCompressionError(QStringLiteral("Compression error"));
    }
    ~Deflater() { deflateEnd(&z); }
};

struct Inflater
{
    z_stream z{};
    Inflater()
    {
        if (inflateInit(&z) != Z_OK)
            throw EZDecompressionError(QStringLiteral("Decompression error"));
    }
    ~Inflater() { inflateEnd(&z); }
};

QString zlibMessage(const z_stream &z, const char *fallback)
{
    return QString::fromLatin1(z.msg ? z.msg : fallback);
}

} // namespace

void CompressStreamToStream(QIODevice &source, QIODevice &dest)
{
    Deflater d;
    QByteArray in(InBlock, Qt::Uninitialized);
    QByteArray out(InBlock, Qt::Uninitialized);
    int flush = Z_NO_FLUSH;
    do {
        const qint64 n = source.read(in.data(), in.size());
        if (n < 0)
            throw EStreamError(QStringLiteral("Stream read error"));
        flush = n == 0 ? Z_FINISH : Z_NO_FLUSH;
        d.z.next_in = reinterpret_cast<Bytef *>(in.data());
        d.z.avail_in = uInt(n);
        do {
            d.z.next_out = reinterpret_cast<Bytef *>(out.data());
            d.z.avail_out = uInt(out.size());
            const int rc = deflate(&d.z, flush);
            if (rc == Z_STREAM_ERROR)
                throw EZCompressionError(zlibMessage(d.z, "Compression error"));
            writeAll(dest, out.constData(), out.size() - d.z.avail_out);
        } while (d.z.avail_out == 0);
    } while (flush != Z_FINISH);
}

void DeCompressStreamToStream(QIODevice &source, QIODevice &dest)
{
    Inflater d;
    QByteArray in(OutBlock, Qt::Uninitialized);
    QByteArray out(OutBlock, Qt::Uninitialized);
    int rc = Z_OK;
    while (rc != Z_STREAM_END) {
        const qint64 n = source.read(in.data(), in.size());
        if (n < 0)
            throw EStreamError(QStringLiteral("Stream read error"));
        if (n == 0)
            throw EZDecompressionError(QStringLiteral("Unexpected end of compressed data"));
        d.z.next_in = reinterpret_cast<Bytef *>(in.data());
        d.z.avail_in = uInt(n);
        do {
            d.z.next_out = reinterpret_cast<Bytef *>(out.data());
            d.z.avail_out = uInt(out.size());
            rc = inflate(&d.z, Z_NO_FLUSH);
            if (rc == Z_NEED_DICT || rc == Z_DATA_ERROR || rc == Z_MEM_ERROR || rc == Z_STREAM_ERROR)
                throw EZDecompressionError(zlibMessage(d.z, "Decompression error"));
            writeAll(dest, out.constData(), out.size() - d.z.avail_out);
        } while (d.z.avail_out == 0 && rc != Z_STREAM_END);
    }
    // Bytes after the end of the zlib stream belong to whoever reads the source next.
    if (d.z.avail_in > 0 && !source.isSequential())
        source.seek(source.pos() - d.z.avail_in);
}

void CompressFileToFile(const QString &source, const QString &dest)
{
    auto in = openForReading(source);
    auto out = openForWriting(dest);
    CompressStreamToStream(*in, *out);
}

void CompressFileToStream(const QString &source, QIODevice &dest)
{
    auto in = openForReading(source);
    CompressStreamToStream(*in, dest);
}

void CompressStreamToFile(QIODevice &source, const QString &dest)
{
    auto out = openForWriting(dest);
    CompressStreamToStream(source, *out);
}

void DeCompressFileToStream(const QString &source, QIODevice &dest)
{
    auto in = openForReading(source);
    DeCompressStreamToStream(*in, dest);
}

void DeCompressStreamToFile(QIODevice &source, const QString &dest)
{
    auto out = openForWriting(dest);
    DeCompressStreamToStream(source, *out);
}

} // namespace mattoni
