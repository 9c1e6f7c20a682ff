// Demo page "File e salvataggi": a folder copied with the progress window, and the demo's data
// folder saved onto "floppy disks" (folders of the data folder behind the letters A: and B:) and
// restored from them.
#include "CopyFile.h"
#include "DemoPages.h"
#include "Drives.h"
#include "Exceptions.h"
#include "MyBackup.h"
#include "fm_MessageBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

QWidget *folderRow(QLineEdit *edit, QWidget *page)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *browse = new QPushButton(QStringLiteral("Sfoglia..."));
    layout->addWidget(edit, 1);
    layout->addWidget(browse);
    QObject::connect(browse, &QPushButton::clicked, page, [=] {
        const QString folder = QFileDialog::getExistingDirectory(page, QStringLiteral("Scegli la cartella"), edit->text());
        if (!folder.isEmpty())
            edit->setText(folder);
    });
    return row;
}

// Runs an operation of the library and tells its outcome: the library's own dialog for an
// error, nothing for the user's Cancel.
template <typename Work>
void run(QLabel *status, Work &&work)
{
    try {
        status->setText(work());
        status->setStyleSheet(QString());
    } catch (const EAbort &) {
        status->setText(QStringLiteral("Operazione annullata."));
    } catch (const Exception &e) {
        status->setText(e.Message());
        status->setStyleSheet(QStringLiteral("color: #b00020"));
        BoxErrore(e.Message());
    }
}

QGroupBox *copyBox(QWidget *page, const QString &dataFolder)
{
    auto *box = new QGroupBox(QStringLiteral("Copia di una cartella"));
    auto *form = new QFormLayout(box);
    // Not the data folder itself: a copy into a folder of its own source never ends.
    auto *source = new QLineEdit(QDir(dataFolder).filePath(QStringLiteral("impostazioni")));
    auto *destination = new QLineEdit(QDir(dataFolder).filePath(QStringLiteral("copie/impostazioni")));
    auto *filter = new QLineEdit(QStringLiteral("*.*"));
    auto *kind = new QComboBox;
    kind->addItem(QStringLiteral("Una barra per ogni file"), int(pkFile));
    kind->addItem(QStringLiteral("Una barra per tutta la cartella"), int(pkDirectory));
    kind->setCurrentIndex(1);
    auto *recursive = new QCheckBox(QStringLiteral("Anche le sotto-cartelle"));
    recursive->setChecked(true);
    auto *names = new QCheckBox(QStringLiteral("Mostra i nomi dei file"));
    names->setChecked(true);
    auto *go = new QPushButton(QStringLiteral("Copia"));
    auto *status = new QLabel;
    status->setWordWrap(true);
    form->addRow(QStringLiteral("Da:"), folderRow(source, page));
    form->addRow(QStringLiteral("A:"), folderRow(destination, page));
    form->addRow(QStringLiteral("Filtro:"), filter);
    form->addRow(QStringLiteral("Avanzamento:"), kind);
    form->addRow(QString(), recursive);
    form->addRow(QString(), names);
    form->addRow(QString(), go);
    form->addRow(QStringLiteral("Esito:"), status);

    auto *copy = new TCopyFile(page);
    copy->setCaption(QStringLiteral("Copia in corso"));
    QObject::connect(go, &QPushButton::clicked, page, [=] {
        copy->setFilter(filter->text());
        copy->setRecursive(recursive->isChecked());
        copy->setShowFileNames(names->isChecked());
        copy->setProgressKind(TProgressKind(kind->currentData().toInt()));
        int files = 0;
        copy->OnEachFile = [&files](QObject *, const QString &) { ++files; };
        run(status, [&] {
            QElapsedTimer timer;
            timer.start();
            const bool complete = copy->CopyDirectory(source->text(), destination->text());
            return QStringLiteral("%1 file in %2 ms%3.")
                .arg(files)
                .arg(timer.elapsed())
                .arg(complete ? QString() : QStringLiteral(", qualche cartella non si è potuta creare"));
        });
        copy->OnEachFile = nullptr;
    });
    return box;
}

QGroupBox *backupBox(QWidget *page, const QString &dataFolder)
{
    auto *box = new QGroupBox(QStringLiteral("Salvataggio su dischetti"));
    auto *layout = new QVBoxLayout(box);
    const QDir data(dataFolder);
    for (const char *letter : {"A", "B"}) {
        const QString folder = data.filePath(QStringLiteral("dischetti/") + QLatin1String(letter));
        QDir().mkpath(folder);
        SetDriveFolder(QLatin1Char(letter[0]), folder);
    }
    auto *note = new QLabel(QStringLiteral("Le unità A: e B: sono le cartelle \"dischetti/A\" e \"dischetti/B\" della "
                                           "cartella dei dati. Si salvano i file della cartella dei dati; il "
                                           "ripristino li riporta nella cartella \"ripristino\"."));
    note->setWordWrap(true);
    layout->addWidget(note);

    auto *form = new QFormLayout;
    auto *drive = new QComboBox;
    drive->addItems({QStringLiteral("A:/"), QStringLiteral("B:/")});
    auto *name = new QLineEdit(QStringLiteral("Segreteria studenti"));
    auto *confirm = new QCheckBox(QStringLiteral("Chiedi prima di svuotare un dischetto"));
    confirm->setChecked(true);
    form->addRow(QStringLiteral("Unità:"), drive);
    form->addRow(QStringLiteral("Nome del salvataggio:"), name);
    form->addRow(QString(), confirm);
    layout->addLayout(form);

    auto *buttons = new QHBoxLayout;
    auto *save = new QPushButton(QStringLiteral("Salva"));
    auto *restore = new QPushButton(QStringLiteral("Ripristina"));
    buttons->addWidget(save);
    buttons->addWidget(restore);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    auto *status = new QLabel;
    status->setWordWrap(true);
    layout->addWidget(status);
    auto *infos = new QPlainTextEdit;
    infos->setReadOnly(true);
    infos->setPlaceholderText(QStringLiteral("Il file infos.txt del dischetto"));
    layout->addWidget(infos, 1);

    auto *backup = new TMyBackup(page);
    backup->setID(QStringLiteral("SEGRETERIA-DEMO"));
    backup->setIdLabel(QStringLiteral("Segreteria studenti (dimostrazione)"));
    backup->setUserName(QStringLiteral("Ufficio di segreteria"));
    backup->setVersion(QStringLiteral("1.0"));
    backup->setBackupCaption(QStringLiteral("Salvataggio dei dati"));
    backup->setRestoreCaption(QStringLiteral("Ripristino dei dati"));
    const auto showInfos = [=] {
        infos->setPlainText(QString::fromLatin1(
            [&] {
                QFile f(ExpandDrivePath(backup->DrivePath() + QStringLiteral("infos.txt")));
                return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
            }()));
    };
    const auto prepare = [=] {
        backup->setDrivePath(drive->currentText());
        backup->setBackupName(name->text());
        backup->setConfirmDelete(confirm->isChecked());
    };
    QObject::connect(drive, &QComboBox::currentTextChanged, page, [=] {
        backup->setDrivePath(drive->currentText());
        showInfos();
    });
    QObject::connect(save, &QPushButton::clicked, page, [=] {
        prepare();
        backup->setFilesPath(dataFolder);
        run(status, [&] {
            backup->Backup();
            return QStringLiteral("Salvataggio terminato sull'unità %1.").arg(backup->DrivePath());
        });
        showInfos();
    });
    QObject::connect(restore, &QPushButton::clicked, page, [=] {
        prepare();
        // The restore appends to files of the same name: the demo starts from an empty folder.
        const QString target = QDir(dataFolder).filePath(QStringLiteral("ripristino"));
        TCopyFile cleaner;
        cleaner.setProgress(false);
        cleaner.DeleteDirectory(target);
        backup->setFilesPath(target);
        run(status, [&] {
            backup->Restore();
            const QString files = backup->FilesRestored().join(QStringLiteral(", "));
            return QStringLiteral("Ripristinati in \"%1\": %2.").arg(target, files);
        });
    });
    showInfos();
    return box;
}

QWidget *createFilesPage(DemoContext &context)
{
    auto *page = new QWidget;
    auto *grid = new QGridLayout(page);
    grid->addWidget(copyBox(page, context.dataFolder), 0, 0);
    grid->addWidget(backupBox(page, context.dataFolder), 0, 1);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(60, QStringLiteral("File e salvataggi"), createFilesPage);
