// The file dialog that asks for the last volume of a split archive, answered as a person would.
#include "SevenZip.h"
#include "SevenZipDialogs.h"

#include <QtTest>
#include <QtWidgets>

using namespace mattoni;

class tst_SevenZipDialogs : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_tmp;
    QString m_lastVolume;
    QString m_moved;

    // Answers the dialog once it shows: fills in Answer and presses Open, or presses Cancel.
    void answerDialog(const QString &answer, QString *title)
    {
        QTimer::singleShot(10, this, [this, answer, title] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible()) {
                answerDialog(answer, title);
                return;
            }
            *title = dialog->windowTitle();
            auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            auto *buttons = dialog->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
            QVERIFY(edit && buttons);
            // Set rather than typed: typing opens the name completer, which takes the keys.
            edit->setText(answer);
            QPushButton *button = buttons->button(answer.isEmpty() ? QDialogButtonBox::Cancel : QDialogButtonBox::Open);
            QVERIFY(button && button->isEnabled());
            QTest::mouseClick(button, Qt::LeftButton);
        });
    }

private slots:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        // Installed when the widgets library loads.
        using Browse = bool (*)(const QString &, QString &);
        QVERIFY(SevenZipBrowseForFile);
        const Browse *installed = SevenZipBrowseForFile.target<Browse>();
        QVERIFY(installed && *installed == &SevenZipBrowseWithDialog);
        const QString src = m_tmp.filePath(QStringLiteral("src"));
        QDir().mkpath(src);
        QFile f(src + QStringLiteral("/dati.bin"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        QByteArray data(30000, Qt::Uninitialized);
        QRandomGenerator(5).fillRange(reinterpret_cast<quint32 *>(data.data()), data.size() / 4);
        f.write(data);
        f.close();
        TSevenZip z;
        z.setSZFileName(m_tmp.filePath(QStringLiteral("parti.7z")));
        z.setAddRootDir(src);
        z.Files().AddString(src + QStringLiteral("/dati.bin"));
        z.setVolumeSize(12000);
        QVERIFY(z.Add());
        m_lastVolume = z.NamesOfVolumesWritten().toStringList().last();
        QDir().mkpath(m_tmp.filePath(QStringLiteral("altrove")));
        m_moved = m_tmp.filePath(QStringLiteral("altrove/") + QFileInfo(m_lastVolume).fileName());
        QVERIFY(QFile::rename(m_lastVolume, m_moved));
    }

    void chosenInTheDialog()
    {
        TSevenZip z;
        z.setSZFileName(m_tmp.filePath(QStringLiteral("parti.7z")));
        z.setExtrBaseDir(m_tmp.filePath(QStringLiteral("out")));
        QString title;
        answerDialog(m_moved, &title);
        QVERIFY(z.Extract());
        QCOMPARE(title, QStringLiteral("Select last volume"));
        QCOMPARE(QFileInfo(m_tmp.filePath(QStringLiteral("out/dati.bin"))).size(), 30000);
    }

    void canceledInTheDialog()
    {
        TSevenZip z;
        z.setSZFileName(m_tmp.filePath(QStringLiteral("parti.7z")));
        QList<qint32> codes;
        z.OnMessage = [&](QObject *, qint32 code, const QString &, const QString &) { codes << code; };
        QString title;
        answerDialog(QString(), &title);
        QVERIFY(!z.List());
        QCOMPARE(codes, QList<qint32>{TSevenZip::ErrFileNotFound});
    }
};

QTEST_MAIN(tst_SevenZipDialogs)
#include "tst_sevenzipdialogs.moc"
