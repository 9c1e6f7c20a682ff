// "Archivi 7z": lists, writes and extracts 7z archives with TSevenZip, with a password, a
// progress bar and a cancel button.
#include "DemoPages.h"
#include "Exceptions.h"
#include "Formatting.h"
#include "SevenZip.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

class ArchivePage : public QWidget
{
public:
    explicit ArchivePage(DemoContext &context)
        : m_zip(new TSevenZip(this))
        , m_archive(new QLineEdit)
        , m_password(new QLineEdit)
        , m_method(new QComboBox)
        , m_level(new QComboBox)
        , m_encryptNames(new QCheckBox(QStringLiteral("Cifra anche i nomi")))
        , m_volume(new QSpinBox)
        , m_items(new QTreeWidget)
        , m_progress(new QProgressBar)
        , m_status(new QLabel)
        , m_cancel(new QPushButton(QStringLiteral("Annulla")))
        , m_actions(new QWidget)
    {
        const QString folder = context.dataFolder + QStringLiteral("/archivi");
        m_archive->setText(folder + QStringLiteral("/documenti.7z"));
        m_password->setEchoMode(QLineEdit::Password);
        m_password->setPlaceholderText(QStringLiteral("nessuna"));
        m_method->addItems({QStringLiteral("LZMA"), QStringLiteral("PPMd")});
        m_level->addItems({QStringLiteral("Nessuna"), QStringLiteral("Veloce"), QStringLiteral("Normale"),
                           QStringLiteral("Massima"), QStringLiteral("Ultra")});
        m_level->setCurrentIndex(NORMAL);
        m_volume->setRange(0, 1 << 20);
        m_volume->setSuffix(QStringLiteral(" KB"));
        m_volume->setSpecialValueText(QStringLiteral("un solo file"));

        auto *browse = new QPushButton(QStringLiteral("Sfoglia..."));
        auto *archiveRow = new QHBoxLayout;
        archiveRow->addWidget(m_archive, 1);
        archiveRow->addWidget(browse);
        auto *options = new QHBoxLayout;
        options->addWidget(new QLabel(QStringLiteral("Metodo")));
        options->addWidget(m_method);
        options->addWidget(new QLabel(QStringLiteral("Compressione")));
        options->addWidget(m_level);
        options->addWidget(new QLabel(QStringLiteral("Volumi da")));
        options->addWidget(m_volume);
        options->addWidget(m_encryptNames);
        options->addStretch();
        auto *form = new QFormLayout;
        form->addRow(QStringLiteral("Archivio"), archiveRow);
        form->addRow(QStringLiteral("Password"), m_password);
        form->addRow(QStringLiteral("Opzioni"), options);

        m_items->setHeaderLabels({QStringLiteral("Nome"), QStringLiteral("Dimensione"), QStringLiteral("Compresso"),
                                  QStringLiteral("Metodo"), QStringLiteral("Modificato")});
        m_items->setRootIsDecorated(false);
        m_items->header()->setSectionResizeMode(0, QHeaderView::Stretch);

        auto *list = new QPushButton(QStringLiteral("Elenca"));
        auto *add = new QPushButton(QStringLiteral("Aggiungi cartella..."));
        auto *extract = new QPushButton(QStringLiteral("Estrai in..."));
        auto *test = new QPushButton(QStringLiteral("Verifica"));
        m_cancel->setEnabled(false);
        auto *buttons = new QHBoxLayout;
        auto *actions = new QHBoxLayout(m_actions);
        actions->setContentsMargins(0, 0, 0, 0);
        for (QPushButton *b : {list, add, extract, test})
            actions->addWidget(b);
        buttons->addWidget(m_actions);
        buttons->addStretch();
        buttons->addWidget(m_cancel);

        auto *layout = new QVBoxLayout(this);
        layout->addWidget(new QLabel(QStringLiteral("<b>Archivi 7z</b>: elenco, compressione ed estrazione "
                                                    "con password, volumi e avanzamento.")));
        layout->addLayout(form);
        layout->addLayout(buttons);
        layout->addWidget(m_items, 1);
        layout->addWidget(m_progress);
        layout->addWidget(m_status);

        wireEvents();
        connect(browse, &QPushButton::clicked, this, [this] {
            const QString name = QFileDialog::getSaveFileName(this, QStringLiteral("Archivio"), m_archive->text(),
                                                              QStringLiteral("Archivi 7z (*.7z *.001)"), nullptr,
                                                              QFileDialog::DontConfirmOverwrite);
            if (!name.isEmpty())
                m_archive->setText(name);
        });
        connect(list, &QPushButton::clicked, this, [this] { listArchive(); });
        connect(add, &QPushButton::clicked, this, [this] {
            const QString dir = QFileDialog::getExistingDirectory(this, QStringLiteral("Cartella da archiviare"));
            if (!dir.isEmpty())
                addFolder(dir);
        });
        connect(extract, &QPushButton::clicked, this, [this] {
            const QString dir = QFileDialog::getExistingDirectory(this, QStringLiteral("Estrai nella cartella"));
            if (!dir.isEmpty())
                extractTo(dir, false);
        });
        connect(test, &QPushButton::clicked, this, [this] { extractTo(QString(), true); });
        connect(m_cancel, &QPushButton::clicked, this, [this] { m_zip->Cancel(); });

        // A first archive to look at: a few documents of the office.
        const QString sample = folder + QStringLiteral("/documenti");
        writeSample(sample);
        if (!QFileInfo::exists(m_archive->text()))
            addFolder(sample);
        listArchive();
    }

private:
    void wireEvents()
    {
        m_zip->OnListfile = [this](QObject *, const QString &name, qint64, qint64 size, qint64 packed, qint64,
                                   qint64, const QString &method, TDateTime time) {
            auto *item = new QTreeWidgetItem(m_items);
            item->setText(0, name);
            item->setText(1, FormatFloat(QStringLiteral("#,##0"), double(size)));
            item->setText(2, FormatFloat(QStringLiteral("#,##0"), double(packed)));
            item->setText(3, method);
            item->setText(4, FormatDateTime(QStringLiteral("dd/mm/yyyy hh:nn"), time));
            for (int c = 1; c <= 2; ++c)
                item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
        };
        m_zip->OnPreProgress = [this](QObject *, qint64 max) {
            m_total = qMax<qint64>(max, 1);
            m_progress->setRange(0, 1000);
            m_progress->setValue(0);
        };
        auto started = [this](QObject *, const QString &name, qint64) {
            m_status->setText(QStringLiteral("In corso: %1").arg(name));
        };
        m_zip->OnAddfile = started;
        m_zip->OnExtractfile = started;
        m_zip->OnProgress = [this](QObject *, const QString &name, qint64 position, qint64) {
            m_progress->setValue(int(position * 1000 / m_total));
            m_status->setText(QStringLiteral("In corso: %1").arg(QFileInfo(name).fileName()));
            // Lets the Annulla button through while the engine works.
            QCoreApplication::processEvents();
        };
        m_zip->OnMessage = [this](QObject *, qint32 code, const QString &text, const QString &file) {
            m_errors << QStringLiteral("%1 (%2): %3").arg(text).arg(code).arg(QFileInfo(file).fileName());
        };
    }

    void apply()
    {
        m_zip->setSZFileName(m_archive->text());
        m_zip->setPassword(m_password->text());
        m_zip->setLZMACompressType(TCompressType(m_method->currentIndex()));
        m_zip->setLZMACompressStrength(TCompressStrength(m_level->currentIndex()));
        m_zip->setVolumeSize(m_volume->value() * 1024);
        AddOpts options{AddRecurseDirs, AddSolid};
        if (m_encryptNames->isChecked())
            options.include(AddEncryptFilename);
        m_zip->setAddOptions(options);
        m_zip->ResetCancel();
        m_errors.clear();
        // No second operation while one runs: OnProgress lets the events through.
        m_actions->setEnabled(false);
        m_cancel->setEnabled(true);
    }

    // A missing engine raises; the page shows it instead.
    bool guarded(const std::function<bool()> &operation)
    {
        try {
            return operation();
        } catch (const Exception &e) {
            m_errors << e.Message();
            return false;
        }
    }

    void finish(bool ok, const QString &done)
    {
        m_actions->setEnabled(true);
        m_cancel->setEnabled(false);
        m_progress->setValue(ok ? 1000 : 0);
        m_status->setText(ok ? done : QStringLiteral("Non riuscito: ") + m_errors.join(QStringLiteral("; ")));
    }

    void listArchive()
    {
        apply();
        m_items->clear();
        const bool ok = guarded([this] { return m_zip->List(); });
        finish(ok, QStringLiteral("%1 elementi nell'archivio").arg(m_zip->NumberOfFiles()));
    }

    void addFolder(const QString &dir)
    {
        apply();
        m_zip->setAddRootDir(QFileInfo(dir).path());
        m_zip->Files().Clear();
        m_zip->Files().AddString(dir);
        QDir().mkpath(QFileInfo(m_archive->text()).path());
        const bool ok = guarded([this] { return m_zip->Add(); });
        finish(ok, QStringLiteral("Archivio scritto"));
        if (ok)
            listArchive();
    }

    void extractTo(const QString &dir, bool test)
    {
        apply();
        m_zip->setExtrBaseDir(dir);
        m_zip->setExtractOptions({ExtractOverwrite});
        const bool ok = guarded([this, test] { return m_zip->Extract(test); });
        finish(ok, test ? QStringLiteral("Archivio integro") : QStringLiteral("Estratto in %1").arg(dir));
    }

    static void writeSample(const QString &dir)
    {
        const QList<QPair<QString, QByteArray>> files = {
            {QStringLiteral("iscrizioni 2025-2026.csv"), QByteArray("matricola;cognome;nome;corso\n")
                                                            + QByteArray("0001234;Rossi;Mario;Giurisprudenza\n").repeated(400)},
            {QStringLiteral("verbali/esame di Analisi I.txt"), QByteArray("Verbale d'esame, appello di giugno\n").repeated(120)},
            {QStringLiteral("verbali/Ελληνικά - lettorato.txt"), QByteArray("Corso di greco moderno\n").repeated(60)},
            {QStringLiteral("comunicazioni/perché iscriversi 🎓.txt"), QByteArray("Benvenuti in segreteria\n").repeated(30)},
        };
        for (const auto &[name, data] : files) {
            const QString path = dir + QLatin1Char('/') + name;
            if (QFileInfo::exists(path))
                continue;
            QDir().mkpath(QFileInfo(path).path());
            QFile f(path);
            if (f.open(QIODevice::WriteOnly))
                f.write(data);
        }
    }

    TSevenZip *m_zip;
    QLineEdit *m_archive;
    QLineEdit *m_password;
    QComboBox *m_method;
    QComboBox *m_level;
    QCheckBox *m_encryptNames;
    QSpinBox *m_volume;
    QTreeWidget *m_items;
    QProgressBar *m_progress;
    QLabel *m_status;
    QPushButton *m_cancel;
    QWidget *m_actions;
    QStringList m_errors;
    qint64 m_total = 1;
};

} // namespace

MATTONI_DEMO_PAGE(70, QStringLiteral("Archivi 7z"), [](DemoContext &context) -> QWidget * {
    return new ArchivePage(context);
});
