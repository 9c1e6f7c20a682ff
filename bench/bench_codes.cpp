// Throughput of the Italian codes: fiscal codes computed, VAT numbers checked and numbers written
// in words per second, each against a reference that does the plainest work on the same inputs
// in the same run.
//   bench_codes [seconds per measure, default 0.5]
#include "CifrLett.h"
#include "CodFiscale.h"
#include "FormatSettings.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTextStream>

#include <functional>
#include <vector>

using namespace mattoni;

namespace {

struct Person
{
    QString cognome, nome, data, belfiore;
    QChar sesso;
};

constexpr int PoolSize = 1024;

std::vector<Person> people(QRandomGenerator &rng)
{
    static const char *const surnames[] = {"Rossi", "Bianchi", "Esposito", "D'Arco", "Fo", "De Luca",
                                           "Colombo", "Ricci", "Marino", "Greco", "Bruno", "Gallo"};
    static const char *const names[] = {"Mario", "Anna", "Gianfranco", "Giulia", "Luca", "Francesca",
                                        "Alessandro", "Sofia", "Matteo", "Chiara", "Lorenzo", "Ida"};
    std::vector<Person> pool;
    for (int i = 0; i < PoolSize; ++i) {
        Person p;
        p.cognome = QString::fromLatin1(surnames[rng.bounded(12)]);
        p.nome = QString::fromLatin1(names[rng.bounded(12)]);
        p.sesso = rng.bounded(2) ? QLatin1Char('F') : QLatin1Char('M');
        p.data = QStringLiteral("%1/%2/%3")
                     .arg(1 + rng.bounded(28), 2, 10, QLatin1Char('0'))
                     .arg(1 + rng.bounded(12), 2, 10, QLatin1Char('0'))
                     .arg(1930 + rng.bounded(80));
        p.belfiore = QStringLiteral("%1%2").arg(QChar(u'A' + rng.bounded(26))).arg(rng.bounded(1000), 3, 10, QLatin1Char('0'));
        pool.push_back(p);
    }
    return pool;
}

QStringList vatNumbers(QRandomGenerator &rng)
{
    static const char *const samples[] = {"01234567897",    "IT01234567897", " it12345678903 ", "01234567890",
                                          "ATU123456789",   "GBGD123",       "GB123456789012",  "IE1A23456B",
                                          "NL123456789B01", "ESX1234567Z",   "DE123456789",     "RO12A",
                                          "XY12345678",     "FRAB123456789", "SE123456789012",  "DK1234567"};
    QStringList pool;
    for (int i = 0; i < PoolSize; ++i)
        pool << QString::fromLatin1(samples[rng.bounded(16)]);
    return pool;
}

QStringList numbers(QRandomGenerator &rng)
{
    QStringList pool;
    for (int i = 0; i < PoolSize; ++i)
        pool << QString::number(rng.bounded(quint64(999999999999)) >> rng.bounded(40));
    return pool;
}

// Calls per second of the body, which handles one pool index per call; the best of three runs.
double rate(double seconds, const std::function<qsizetype(int)> &body)
{
    qsizetype sink = 0;
    qint64 calls = PoolSize;
    QElapsedTimer timer;
    // Grow the batch until one run takes a tenth of the budget.
    for (;;) {
        timer.start();
        for (qint64 i = 0; i < calls; ++i)
            sink += body(int(i % PoolSize));
        if (timer.nsecsElapsed() > qint64(seconds * 1e8))
            break;
        calls *= 2;
    }
    calls = qint64(double(calls) * seconds * 1e9 / 3 / double(qMax<qint64>(timer.nsecsElapsed(), 1)));
    double best = 0;
    for (int run = 0; run < 3; ++run) {
        timer.start();
        for (qint64 i = 0; i < calls; ++i)
            sink += body(int(i % PoolSize));
        best = qMax(best, double(calls) * 1e9 / double(timer.nsecsElapsed()));
    }
    if (sink == 42) // keeps the compiler from dropping the work
        QTextStream(stderr) << "";
    return best;
}

void report(QTextStream &out, const char *what, double ours, const char *reference, double theirs)
{
    out << QStringLiteral("%1 %2/s   reference (%3) %4/s   ratio %5\n")
               .arg(QString::fromLatin1(what), -36)
               .arg(ours, 12, 'f', 0)
               .arg(QString::fromLatin1(reference))
               .arg(theirs, 12, 'f', 0)
               .arg(theirs / ours, 0, 'f', 2);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const double seconds = argc > 1 ? QString::fromLocal8Bit(argv[1]).toDouble() : 0.5;
    SetItalianFormatSettings();
    QRandomGenerator rng(1985);
    QTextStream out(stdout);
    out << "ratio: time per item of Mattoni over that of the reference (2.00: twice as long)\n";

    const std::vector<Person> pool = people(rng);
    TCodiceFiscale cf;
    const double codes = rate(seconds, [&](int i) {
        const Person &p = pool[i];
        cf.setCognome(p.cognome);
        cf.setNome(p.nome);
        cf.setSesso(p.sesso);
        cf.setDataNascita(p.data);
        cf.setCodiceBelfiore(p.belfiore);
        return cf.Get().size();
    });
    // The floor of any fiscal-code routine: the 16 characters copied from the inputs into one string.
    const double assembly = rate(seconds, [&](int i) {
        const Person &p = pool[i];
        QString code(16, QLatin1Char('X'));
        QChar *o = code.data();
        const auto put = [&o](const QString &text, qsizetype from, qsizetype count) {
            std::copy_n(text.constData() + from, qMin(count, text.size() - from), o);
            o += count;
        };
        put(p.cognome, 0, 3);
        put(p.nome, 0, 3);
        put(p.data, 8, 2);
        put(p.data, 4, 1);
        put(p.data, 0, 2);
        put(p.belfiore, 0, 4);
        *o = p.sesso;
        return code.size();
    });
    report(out, "fiscal codes (set five fields, Get)", codes, "16 characters copied", assembly);

    const QStringList vat = vatNumbers(rng);
    const double checks = rate(seconds, [&](int i) { return qsizetype(CheckPartitaIva(vat.at(i))); });
    const double normalised = rate(seconds, [&](int i) { return vat.at(i).trimmed().toUpper().size(); });
    report(out, "VAT numbers checked", checks, "trimmed().toUpper()", normalised);

    const QStringList digits = numbers(rng);
    const double written = rate(seconds, [&](int i) { return ci_to_let(digits.at(i)).size(); });
    const double reprinted = rate(seconds, [&](int i) { return QString::number(digits.at(i).toLongLong()).size(); });
    report(out, "numbers written in words", written, "toLongLong, QString::number", reprinted);
    return 0;
}
