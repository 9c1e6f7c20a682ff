// A component's properties as text and back, unchanged.
#include "ComponentStream.h"

#include <QtTest>

using namespace mattoni;

class TSample : public QObject
{
    Q_OBJECT
public:
    enum TKind { kA, kB, kC };
    Q_ENUM(TKind)
    enum TOption { oNone = 0, oOne = 1, oTwo = 2, oFour = 4 };
    Q_DECLARE_FLAGS(TOptions, TOption)
    Q_FLAG(TOptions)

    Q_PROPERTY(QString Text MEMBER m_text)
    Q_PROPERTY(int Number MEMBER m_number)
    Q_PROPERTY(quint32 Color MEMBER m_color)
    Q_PROPERTY(double Ratio MEMBER m_ratio)
    Q_PROPERTY(bool Flag MEMBER m_flag)
    Q_PROPERTY(QChar Sex MEMBER m_sex)
    Q_PROPERTY(TKind Kind MEMBER m_kind)
    Q_PROPERTY(TOptions Options READ options WRITE setOptions)
    Q_PROPERTY(QStringList Lines MEMBER m_lines)
    Q_PROPERTY(QDateTime When MEMBER m_when)
    Q_PROPERTY(QObject *Link MEMBER m_link)
    Q_PROPERTY(QString Computed READ computed STORED false)

    using QObject::QObject;
    QString computed() const { return QStringLiteral("not stored"); }
    TOptions options() const { return m_options; }
    void setOptions(TOptions o) { m_options = o; }

    QString m_text;
    int m_number = 0;
    quint32 m_color = 0;
    double m_ratio = 0;
    bool m_flag = false;
    QChar m_sex;
    TKind m_kind = kA;
    TOptions m_options;
    QStringList m_lines;
    QDateTime m_when;
    QObject *m_link = nullptr;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TSample::TOptions)

// Opens only once it knows what: Open is streamed after Source.
class TOpener : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("StreamedLast", "Open")
    Q_PROPERTY(bool Open READ isOpen WRITE setOpen)
    Q_PROPERTY(QString Source MEMBER m_source)

public:
    using QObject::QObject;
    bool isOpen() const { return m_open; }
    void setOpen(bool value)
    {
        if (value && m_source.isEmpty())
            throw EReadError(QStringLiteral("nothing to open"));
        m_open = value;
    }

    bool m_open = false;
    QString m_source;
};

class tst_ComponentStream : public QObject
{
    Q_OBJECT
private slots:
    void roundTrip()
    {
        QObject form;
        auto *target = new QObject(&form);
        target->setObjectName(QStringLiteral("dsStudenti"));
        TSample a(&form);
        a.setObjectName(QStringLiteral("cfRossi"));
        a.m_text = QStringLiteral("l'unità\r\ndi misura ☺");
        a.m_number = -42;
        a.m_color = 0xF0CAA6;
        a.m_ratio = 0.1 + 0.2;
        a.m_flag = true;
        a.m_sex = QLatin1Char('F');
        a.m_kind = TSample::kC;
        a.m_options = TSample::oOne | TSample::oFour;
        a.m_lines = {QStringLiteral("uno"), QString(), QStringLiteral("tre 'tre'")};
        a.m_when = QDateTime(QDate(2013, 10, 1), QTime(8, 30, 15, 250));
        a.m_link = target;

        const QString text = ComponentToString(&a);
        QVERIFY(text.startsWith(QStringLiteral("object cfRossi: TSample\n")));
        QVERIFY(text.contains(QStringLiteral("  Text = 'l''unità'#13#10'di misura ☺'\n")));
        QVERIFY(text.contains(QStringLiteral("  Kind = kC\n")));
        QVERIFY(text.contains(QStringLiteral("  Options = [oOne, oFour]\n")));
        QVERIFY(text.contains(QStringLiteral("  Link = dsStudenti\n")));
        QVERIFY(!text.contains(QStringLiteral("Computed")));

        TSample b(&form);
        StringToComponent(text, &b);
        QCOMPARE(b.m_text, a.m_text);
        QCOMPARE(b.m_number, a.m_number);
        QCOMPARE(b.m_color, a.m_color);
        QCOMPARE(b.m_ratio, a.m_ratio);
        QCOMPARE(b.m_flag, a.m_flag);
        QCOMPARE(b.m_sex, a.m_sex);
        QCOMPARE(b.m_kind, a.m_kind);
        QCOMPARE(b.m_options, a.m_options);
        QCOMPARE(b.m_lines, a.m_lines);
        QCOMPARE(b.m_when, a.m_when);
        QCOMPARE(b.m_link, target);
        QCOMPARE(ComponentToString(&b).section(QLatin1Char('\n'), 1), text.section(QLatin1Char('\n'), 1));
    }

    void streamedLast()
    {
        TOpener a;
        a.m_source = QStringLiteral("studenti");
        a.setOpen(true);
        const QString text = ComponentToString(&a);
        QVERIFY(text.endsWith(QStringLiteral("  Open = True\nend\n")));
        // Read last even where a text names it first.
        for (const QString &t : {text, QStringLiteral("object x: TOpener\n  Open = True\n  Source = 'esami'\nend\n")}) {
            TOpener b;
            StringToComponent(t, &b);
            QVERIFY(b.isOpen());
        }
    }

    void badInputRaises_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("unknown property") << "object x: TSample\n  Colour = 1\nend\n";
        QTest::newRow("bad enum") << "object x: TSample\n  Kind = kZ\nend\n";
        QTest::newRow("unterminated text") << "object x: TSample\n  Text = 'abc\nend\n";
        QTest::newRow("bad number") << "object x: TSample\n  Number = 12a\nend\n";
        QTest::newRow("missing reference") << "object x: TSample\n  Link = nessuno\nend\n";
        QTest::newRow("no equals") << "object x: TSample\n  Number\nend\n";
    }
    void badInputRaises()
    {
        QFETCH(QString, text);
        TSample s;
        QVERIFY_THROWS_EXCEPTION(EReadError, StringToComponent(text, &s));
    }
};

QTEST_GUILESS_MAIN(tst_ComponentStream)
#include "tst_componentstream.moc"
