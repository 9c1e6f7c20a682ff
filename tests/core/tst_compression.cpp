// zlib compression of files and streams, byte for byte.
#include "Compression.h"

#include <QtTest>

using namespace mattoni;

class tst_Compression : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const char *name) const { return m_dir.filePath(QLatin1String(name)); }

    static QByteArray readFile(const QString &name)
    {
        QFile f(name);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
    }
    static void writeFile(const QString &name, const QByteArray &data)
    {
        QFile f(name);
        QVERIFY(f.open(QIODevice::WriteOnly));
        QCOMPARE(f.write(data), data.size());
    }

private slots:
    void filesRoundTrip_data()
    {
        QTest::addColumn<QByteArray>("data");
        QByteArray random(300000, Qt::Uninitialized);
        QRandomGenerator gen(42);
        for (char &c : random)
            c = char(gen.bounded(256));
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("one byte") << QByteArray("x");
        QTest::newRow("text") << QByteArray("Segreteria studenti; ").repeated(5000);
        QTest::newRow("random") << random;
        QTest::newRow("exactly 4096") << QByteArray(4096, 'a');
    }
    void filesRoundTrip()
    {
        QFETCH(QByteArray, data);
        writeFile(path("in.bin"), data);
        CompressFileToFile(path("in.bin"), path("packed.z"));
        const QByteArray packed = readFile(path("packed.z"));
        // A plain zlib stream: zlib's own decoder (behind qUncompress's size prefix) reads it.
        QByteArray prefixed(4, '\0');
        qToBigEndian<quint32>(quint32(data.size()), prefixed.data());
        QCOMPARE(qUncompress(prefixed + packed), data);

        QFile out(path("out.bin"));
        QVERIFY(out.open(QIODevice::WriteOnly));
        DeCompressFileToStream(path("packed.z"), out);
        out.close();
        QCOMPARE(readFile(path("out.bin")), data);
    }

    void streamsFromTheirPosition()
    {
        const QByteArray payload = QByteArray("dati compressi ").repeated(1000);
        QBuffer source;
        source.setData(QByteArray("HEADER") + payload);
        source.open(QIODevice::ReadOnly);
        source.seek(6);
        QBuffer packed;
        packed.open(QIODevice::WriteOnly);
        packed.write("PRE");
        CompressStreamToStream(source, packed);
        packed.close();

        QBuffer in;
        in.setData(packed.data() + QByteArray("TAIL"));
        in.open(QIODevice::ReadOnly);
        in.seek(3);
        DeCompressStreamToFile(in, path("payload.txt"));
        QCOMPARE(readFile(path("payload.txt")), payload);
        // What follows the compressed data is left for the next reader.
        QCOMPARE(in.readAll(), QByteArray("TAIL"));

        QBuffer again;
        again.setData(packed.data().mid(3));
        again.open(QIODevice::ReadOnly);
        CompressStreamToFile(again, path("twice.z"));
        QFile twice(path("twice.z"));
        QVERIFY(twice.open(QIODevice::ReadOnly));
        QBuffer once;
        once.open(QIODevice::WriteOnly);
        DeCompressStreamToStream(twice, once);
        QCOMPARE(once.data(), packed.data().mid(3));
    }

    void errors()
    {
        try {
            CompressFileToFile(path("nope.bin"), path("x.z"));
            QFAIL("no error");
        } catch (const EFOpenError &e) {
            QVERIFY(e.Message().startsWith(QStringLiteral("Cannot open file \"%1\". ").arg(path("nope.bin"))));
        }
        writeFile(path("garbage.z"), QByteArray("this is not zlib data at all"));
        QBuffer sink;
        sink.open(QIODevice::WriteOnly);
        QVERIFY_THROWS_EXCEPTION(EZDecompressionError, DeCompressFileToStream(path("garbage.z"), sink));
        writeFile(path("in.bin"), QByteArray(10000, 'q'));
        CompressFileToFile(path("in.bin"), path("cut.z"));
        writeFile(path("cut.z"), readFile(path("cut.z")).left(10));
        QVERIFY_THROWS_EXCEPTION(EZDecompressionError, DeCompressFileToStream(path("cut.z"), sink));
        QVERIFY_THROWS_EXCEPTION(EFCreateError, CompressFileToFile(path("in.bin"), path("no/such/folder/x.z")));
    }
};

QTEST_GUILESS_MAIN(tst_Compression)
#include "tst_compression.moc"
