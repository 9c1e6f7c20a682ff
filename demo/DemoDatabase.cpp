// The demo's embedded SQLite database: faculties and courses as a tree, students with their
// fiscal codes and academic years, and the fees they paid. Created with sample data on first run;
// the sample is the same on every machine (a fixed random seed).
#include "DemoDatabase.h"

#include "CodFiscale.h"
#include "DateTime.h"
#include "Formatting.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

using namespace mattoni;

namespace {

constexpr int SchemaVersion = 1;

void exec(QSqlQuery &q, const QString &sql)
{
    if (!q.exec(sql))
        qFatal("demo database: %s\n%s", qPrintable(q.lastError().text()), qPrintable(sql));
}

void execPrepared(QSqlQuery &q)
{
    if (!q.exec())
        qFatal("demo database: %s\n%s", qPrintable(q.lastError().text()), qPrintable(q.lastQuery()));
}

void createSchema(QSqlQuery &q)
{
    exec(q, QStringLiteral("CREATE TABLE meta (chiave TEXT PRIMARY KEY, valore TEXT)"));
    // Faculties (level 1) and courses of study (level 2) in one self-referencing table.
    exec(q, QStringLiteral("CREATE TABLE struttura (id INTEGER PRIMARY KEY, padre INTEGER, codice TEXT NOT NULL, "
                           "nome TEXT NOT NULL, livello INTEGER NOT NULL)"));
    exec(q, QStringLiteral("CREATE INDEX struttura_padre ON struttura(padre)"));
    exec(q, QStringLiteral(
        "CREATE TABLE studenti (id INTEGER PRIMARY KEY, facolta TEXT NOT NULL, corso TEXT NOT NULL, "
        "matricola TEXT NOT NULL, cognome TEXT NOT NULL, nome TEXT NOT NULL, sesso TEXT NOT NULL, "
        "data_nascita DATE NOT NULL, comune TEXT NOT NULL, codice_fiscale TEXT NOT NULL, "
        "anno_immatricolazione INTEGER NOT NULL, email TEXT, in_corso TEXT NOT NULL, "
        "tasse_pagate INTEGER NOT NULL, media REAL)"));
    exec(q, QStringLiteral("CREATE TABLE tasse (id INTEGER PRIMARY KEY, studente INTEGER NOT NULL REFERENCES studenti(id), "
                           "anno_accademico INTEGER NOT NULL, rata INTEGER NOT NULL, importo NUMERIC NOT NULL, "
                           "pagata INTEGER NOT NULL, data_pagamento DATE)"));
    exec(q, QStringLiteral("CREATE TABLE comuni (codice TEXT PRIMARY KEY, nome TEXT NOT NULL, provincia TEXT NOT NULL)"));
}

struct Course
{
    const char *code;
    const char *name;
};
struct Faculty
{
    const char *code;
    const char *name;
    std::initializer_list<Course> courses;
};

const Faculty faculties[] = {
    {"010", "Ingegneria", {{"0100101", "Ingegneria informatica"}, {"0100102", "Ingegneria civile"},
                           {"0100103", "Ingegneria gestionale"}, {"0100104", "Ingegneria elettronica"}}},
    {"020", "Lettere e Filosofia", {{"0200201", "Lettere classiche"}, {"0200202", "Filosofia"},
                                    {"0200203", "Storia dell'arte"}}},
    {"030", "Economia", {{"0300301", "Economia aziendale"}, {"0300302", "Economia e commercio"},
                         {"0300303", "Scienze statistiche"}}},
    {"040", "Giurisprudenza", {{"0400401", "Giurisprudenza"}, {"0400402", "Scienze dei servizi giuridici"}}},
    {"050", "Medicina e Chirurgia", {{"0500501", "Medicina e chirurgia"}, {"0500502", "Infermieristica"},
                                     {"0500503", "Fisioterapia"}}},
    {"060", "Scienze matematiche, fisiche e naturali", {{"0600601", "Matematica"}, {"0600602", "Fisica"},
                                                        {"0600603", "Scienze biologiche"}, {"0600604", "Chimica"}}},
};

const char *const surnames[] = {
    "Rossi", "Russo", "Ferrari", "Esposito", "Bianchi", "Romano", "Colombo", "Ricci", "Marino", "Greco",
    "Bruno", "Gallo", "Conti", "De Luca", "Mancini", "Costa", "Giordano", "Rizzo", "Lombardi", "Moretti",
    "Barbieri", "Fontana", "Santoro", "Mariani", "Rinaldi", "Caruso", "Ferrara", "Galli", "Martini", "Leone",
    "Longo", "Gentile", "Martinelli", "Vitale", "Lombardo", "Serra", "Coppola", "De Santis", "D'Angelo",
    "Marchetti", "Parisi", "Villa", "Conte", "Ferraro", "Ferri", "Fabbri", "Bianco", "Marini", "Grasso", "Valentini"};
const char *const maleNames[] = {"Francesco", "Alessandro", "Lorenzo", "Andrea", "Matteo", "Leonardo", "Gabriele",
                                 "Riccardo", "Tommaso", "Edoardo", "Giuseppe", "Marco", "Luca", "Davide", "Simone",
                                 "Federico", "Pietro", "Giovanni", "Antonio", "Mario"};
const char *const femaleNames[] = {"Sofia", "Giulia", "Aurora", "Alice", "Ginevra", "Emma", "Giorgia", "Greta",
                                   "Beatrice", "Anna", "Chiara", "Martina", "Sara", "Francesca", "Elena", "Valentina",
                                   "Alessia", "Federica", "Ilaria", "Maria"};
struct Place
{
    const char *code;
    const char *name;
    const char *province;
};
const Place places[] = {{"H501", "Roma", "RM"},     {"F205", "Milano", "MI"},  {"F839", "Napoli", "NA"},
                        {"L219", "Torino", "TO"},   {"G273", "Palermo", "PA"}, {"D969", "Genova", "GE"},
                        {"A944", "Bologna", "BO"},  {"D612", "Firenze", "FI"}, {"A662", "Bari", "BA"},
                        {"C351", "Catania", "CT"},  {"L736", "Venezia", "VE"}, {"L781", "Verona", "VR"},
                        {"G224", "Padova", "PD"},   {"H703", "Salerno", "SA"}, {"B354", "Cagliari", "CA"}};

template<typename T, size_t N>
const T &pick(QRandomGenerator &rng, const T (&items)[N])
{
    return items[rng.bounded(int(N))];
}

QString ascii(const char *s)
{
    return QString::fromUtf8(s);
}

void fill(QSqlDatabase &db)
{
    QSqlQuery q(db);
    QRandomGenerator rng(20260101);

    QSqlQuery place(db);
    place.prepare(QStringLiteral("INSERT INTO comuni (codice, nome, provincia) VALUES (?, ?, ?)"));
    for (const Place &p : places) {
        place.addBindValue(ascii(p.code));
        place.addBindValue(ascii(p.name));
        place.addBindValue(ascii(p.province));
        execPrepared(place);
    }

    QSqlQuery node(db);
    node.prepare(QStringLiteral("INSERT INTO struttura (id, padre, codice, nome, livello) VALUES (?, ?, ?, ?, ?)"));
    QList<QPair<QString, QString>> courses; // faculty code, course code
    int id = 0;
    for (const Faculty &f : faculties) {
        const int facultyId = ++id;
        node.addBindValue(facultyId);
        node.addBindValue(QVariant(QMetaType::fromType<int>())); // a root: no parent
        node.addBindValue(ascii(f.code));
        node.addBindValue(ascii(f.name));
        node.addBindValue(1);
        execPrepared(node);
        for (const Course &c : f.courses) {
            node.addBindValue(++id);
            node.addBindValue(facultyId);
            node.addBindValue(ascii(c.code));
            node.addBindValue(ascii(c.name));
            node.addBindValue(2);
            execPrepared(node);
            courses.append({ascii(f.code), ascii(c.code)});
        }
    }

    QSqlQuery student(db);
    student.prepare(QStringLiteral(
        "INSERT INTO studenti (id, facolta, corso, matricola, cognome, nome, sesso, data_nascita, comune, "
        "codice_fiscale, anno_immatricolazione, email, in_corso, tasse_pagate, media) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    QSqlQuery fee(db);
    fee.prepare(QStringLiteral("INSERT INTO tasse (studente, anno_accademico, rata, importo, pagata, data_pagamento) "
                               "VALUES (?, ?, ?, ?, ?, ?)"));
    TCodiceFiscale cf;
    for (int s = 1; s <= 240; ++s) {
        const bool female = rng.bounded(2) == 1;
        const QString surname = ascii(pick(rng, surnames));
        const QString name = ascii(female ? pick(rng, femaleNames) : pick(rng, maleNames));
        const int enrolled = 2019 + rng.bounded(8);
        const QDate birth = QDate(enrolled - 19, 1, 1).addDays(rng.bounded(3 * 365));
        const Place &born = pick(rng, places);
        const auto &course = courses.at(rng.bounded(int(courses.size())));
        cf.setCognome(surname);
        cf.setNome(name);
        cf.setSesso(QLatin1Char(female ? 'F' : 'M'));
        cf.setDataNascita(birth.toString(QStringLiteral("dd/MM/yyyy")));
        cf.setCodiceBelfiore(ascii(born.code));
        const QString code = cf.Get();
        const bool onTime = enrolled >= 2023 || rng.bounded(4) != 0;
        const bool paid = rng.bounded(5) != 0;
        QString mail = (name + QLatin1Char('.') + surname).toLower();
        mail.remove(QLatin1Char(' ')).remove(QLatin1Char('\''));
        student.addBindValue(s);
        student.addBindValue(course.first);
        student.addBindValue(course.second);
        student.addBindValue(QStringLiteral("%1").arg(100000 + s * 37 % 900000, 6, 10, QLatin1Char('0')));
        student.addBindValue(surname);
        student.addBindValue(name);
        student.addBindValue(QLatin1String(female ? "F" : "M"));
        student.addBindValue(birth);
        student.addBindValue(ascii(born.code));
        student.addBindValue(code);
        student.addBindValue(enrolled);
        student.addBindValue(mail + QStringLiteral("@studenti.ateneo.example.it"));
        student.addBindValue(QLatin1String(onTime ? "S" : "N"));
        student.addBindValue(paid ? 1 : 0);
        student.addBindValue(18 + rng.bounded(1300) / 100.0);
        execPrepared(student);
        for (int year = enrolled; year <= 2026; ++year) {
            for (int rata = 1; rata <= 2; ++rata) {
                const bool rataPaid = year < 2026 || paid || rata == 1;
                fee.addBindValue(s);
                fee.addBindValue(year);
                fee.addBindValue(rata);
                fee.addBindValue(rata == 1 ? 156.0 : 250.0 + rng.bounded(120) * 5.0);
                fee.addBindValue(rataPaid ? 1 : 0);
                fee.addBindValue(rataPaid ? QVariant(QDate(year, rata == 1 ? 10 : 12, 1 + rng.bounded(28)))
                                          : QVariant(QMetaType::fromType<QDate>()));
                execPrepared(fee);
            }
        }
    }
    exec(q, QStringLiteral("INSERT INTO meta (chiave, valore) VALUES ('versione', '%1')").arg(SchemaVersion));
}

} // namespace

QSqlDatabase OpenDemoDatabase(const QString &dataFolder)
{
    QDir().mkpath(dataFolder);
    const QString file = QDir(dataFolder).filePath(QStringLiteral("segreteria.sqlite"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("segreteria"));
    db.setDatabaseName(file);
    if (!db.open())
        qFatal("demo database: %s", qPrintable(db.lastError().text()));
    int version = 0;
    {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT valore FROM meta WHERE chiave = 'versione'")) && q.next())
            version = q.value(0).toInt();
    }
    if (version != SchemaVersion) {
        // A database of another version of the demo: start again from the sample data.
        db.close();
        QFile::remove(file);
        if (!db.open())
            qFatal("demo database: %s", qPrintable(db.lastError().text()));
        QSqlQuery q(db);
        db.transaction();
        createSchema(q);
        fill(db);
        db.commit();
    }
    return db;
}
