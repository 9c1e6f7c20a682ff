// The LED indicator on screen: the picture chosen per shape and style, the border and 3-D
// coupling, switching, painting in its colours, mouse events, and the shipped bitmaps.
#include "AMAdvLed.h"
#include "ClientDataSet.h"
#include "Graphics.h"
#include "Variants.h"

#include <QtTest>

using namespace mattoni;

namespace {

using Led = TAMAdvLed;

const char *const baseNames[] = {
    "AMDMDLED", "AMLPSLEDHRZ", "AMLPSLEDVRT", "AMMONLEDLEFT", "AMMONLEDRIGHT", "AMPRLLEDBCK",
    "AMPRLLEDFWT", "AMPNTLED", "AMRNDLED", "AMRCTLEDHRZ", "AMRCTLEDVRT", "AMSQRLED", "AMTRILEDDWN",
    "AMTRILEDLEFT", "AMTRILEDRIGHT", "AMTRILEDUP"};

QImage resource(const QString &name)
{
    return QImage(QStringLiteral(":/mattoni/leds/") + name).convertToFormat(QImage::Format_ARGB32);
}

// The LED's picture as it is on screen.
QImage onScreen(Led &led)
{
    return led.grab(led.LedRect()).toImage().convertToFormat(QImage::Format_ARGB32);
}

// Five students: id, in_corso ("S"/"N"/other/null), tasse_pagate (0/1/other), attivo (Boolean).
void students(TClientDataSet &ds)
{
    ds.FieldDefs().Add(QStringLiteral("id"), ftInteger, 0, true);
    ds.FieldDefs().Add(QStringLiteral("in_corso"), ftString, 2);
    ds.FieldDefs().Add(QStringLiteral("tasse_pagate"), ftInteger);
    ds.FieldDefs().Add(QStringLiteral("attivo"), ftBoolean);
    ds.CreateDataSet();
    ds.AppendRecord({1, "S", 1, true});
    ds.AppendRecord({2, "si", Null(), false});
    ds.AppendRecord({3, "N", 0, true});
    ds.AppendRecord({4, "X", 7, false});
    ds.AppendRecord({5, Null(), 1, Null()});
    ds.First();
}

// A tinted picture over the form's grey, as the screen shows it.
QImage overForm(const QImage &mask, const QColor &color)
{
    QImage out(mask.size(), QImage::Format_ARGB32);
    out.fill(QColor(200, 200, 200));
    QPainter p(&out);
    p.drawImage(0, 0, Led::TintLed(mask, color));
    return out;
}

} // namespace

class tst_AMAdvLed : public QObject
{
    Q_OBJECT
private slots:
    void resourceNames_data()
    {
        QTest::addColumn<Led::TLedType>("type");
        QTest::addColumn<Led::TBorder>("border");
        QTest::addColumn<bool>("ctl3D");
        QTest::addColumn<QString>("expected");
        for (int t = Led::ltDiamond; t <= Led::ltTriangleUp; ++t) {
            const QString base = QString::fromLatin1(baseNames[t]);
            const auto type = Led::TLedType(t);
            QTest::addRow("%s", baseNames[t]) << type << Led::brDefault << true << base;
            QTest::addRow("%s raised", baseNames[t]) << type << Led::brRaised << true << base + "3DUP";
            QTest::addRow("%s lowered", baseNames[t]) << type << Led::brLowered << true << base + "3DDWN";
            QTest::addRow("%s flat", baseNames[t]) << type << Led::brDefault << false << base + "FLAT";
        }
        QTest::newRow("outside the list") << Led::TLedType(17) << Led::brLowered << true << "AMRNDLED3DDWN";
    }
    void resourceNames()
    {
        QFETCH(Led::TLedType, type);
        QFETCH(Led::TBorder, border);
        QFETCH(bool, ctl3D);
        QFETCH(QString, expected);

        Led led;
        led.setLedType(type);
        led.setBorderStyle(border);
        led.setCtl3D(ctl3D);
        QCOMPARE(led.LedSources(), QStringList{expected});
        const QImage picture = resource(expected);
        QVERIFY(!picture.isNull());
        QCOMPARE(led.CurrentMask(), picture);
    }

    void checkPictures()
    {
        Led led;
        led.setLedType(Led::ltCheck);
        const QStringList both{QStringLiteral("CHECKLED3DDWN"), QStringLiteral("CHECKLED3DUP")};
        QCOMPARE(led.LedSources(), both);
        // Neither border nor 3-D setting changes them.
        led.setBorderStyle(Led::brRaised);
        QCOMPARE(led.LedSources(), both);
        led.setCtl3D(false);
        QCOMPARE(led.LedSources(), both);

        // The background, the colour of the top-left pixel, became transparent; the box did not.
        const QImage unlit = led.CurrentMask();
        QVERIFY(resource(QStringLiteral("CHECKLED3DUP")).pixel(0, 0) == qRgb(255, 0, 255));
        QCOMPARE(qAlpha(unlit.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(unlit.pixel(unlit.width() - 1, unlit.height() - 1)), 0);
        QCOMPARE(qAlpha(unlit.pixel(unlit.width() / 2, unlit.height() / 2)), 255);
        led.setLedOn(true);
        QVERIFY(led.CurrentMask() != unlit);

        // Shipped as they are, though no name the control forms reaches the last two.
        for (const char *name : {"CHECKLED", "CHECKLED3DUP", "CHECKLED3DDWN", "CHECLEDFLAT"})
            QVERIFY2(!resource(QString::fromLatin1(name)).isNull(), name);
        QVERIFY(!QFile::exists(QStringLiteral(":/mattoni/leds/CHECKLEDFLAT")));
    }

    void borderAnd3D()
    {
        Led led;
        QVERIFY(led.Ctl3D());
        QCOMPARE(led.BorderStyle(), Led::brDefault);
        led.setBorderStyle(Led::brRaised);
        led.setCtl3D(false);
        QCOMPARE(led.BorderStyle(), Led::brDefault);
        QCOMPARE(led.LedSources(), QStringList{"AMRNDLEDFLAT"});
        led.setBorderStyle(Led::brLowered);
        QVERIFY(led.Ctl3D());
        QCOMPARE(led.LedSources(), QStringList{"AMRNDLED3DDWN"});
        // Back to the default border: 3-D stays on.
        led.setBorderStyle(Led::brDefault);
        QVERIFY(led.Ctl3D());
        QCOMPARE(led.LedSources(), QStringList{"AMRNDLED"});
    }

    void switching()
    {
        Led led;
        QList<QPair<bool, int>> fired;
        led.OnLedStateChanged = [&](QObject *sender, bool on, int numSwitch) {
            QCOMPARE(sender, &led);
            fired.append({on, numSwitch});
        };
        QSignalSpy spy(&led, &Led::LedOnChanged);
        led.setLedOn(false);
        QCOMPARE(led.NumSwitch(), 0);
        led.setLedOn(true);
        led.setLedOn(true);
        led.setLedOn(false);
        led.setProperty("LedOn", true);
        QCOMPARE(led.NumSwitch(), 3);
        QCOMPARE(fired, (QList<QPair<bool, int>>{{true, 1}, {false, 2}, {true, 3}}));
        QCOMPARE(spy.count(), 3);
    }

    void painting()
    {
        QWidget form;
        form.setAutoFillBackground(true);
        form.setPalette(QPalette(QColor(200, 200, 200)));
        auto *led = new Led(&form);
        led->setGeometry(10, 10, 30, 30);
        led->setLedType(Led::ltRound);
        led->setColorOn(clRed);
        led->setColorOff(clMaroon);
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));

        const QImage mask = resource(QStringLiteral("AMRNDLED"));
        QCOMPARE(onScreen(*led), overForm(mask, QColor(128, 0, 0)));
        led->setLedOn(true);
        QCOMPARE(onScreen(*led), overForm(mask, QColor(255, 0, 0)));
        led->setColorOn(clBlue);
        QCOMPARE(onScreen(*led), overForm(mask, QColor(0, 0, 255)));

        // Mid grey is the colour itself; a bezel tone (not grey) keeps its own colour.
        QImage tones(2, 1, QImage::Format_ARGB32);
        tones.setPixel(0, 0, qRgb(128, 128, 128));
        tones.setPixel(1, 0, qRgb(90, 90, 96));
        const QImage tinted = Led::TintLed(tones, QColor(0, 200, 100)).convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(tinted.pixel(0, 0), qRgb(0, 200, 100));
        QCOMPARE(tinted.pixel(1, 0), qRgb(90, 90, 96));

        // Disabled: the unlit colour without hue, halfway to white.
        led->setEnabled(false);
        QCOMPARE(led->PaintColor(), QColor(159, 159, 159));
        QCOMPARE(onScreen(*led), overForm(mask, QColor(159, 159, 159)));

        // The check's key colour never reaches the screen.
        led->setEnabled(true);
        led->setLedType(Led::ltCheck);
        const QImage check = onScreen(*led);
        QCOMPARE(check.size(), QSize(15, 15));
        QCOMPARE(check.pixel(0, 0), qRgb(200, 200, 200));
        for (int y = 0; y < check.height(); ++y)
            for (int x = 0; x < check.width(); ++x)
                QVERIFY(check.pixel(x, y) != qRgb(255, 0, 255));
    }

    void mouse()
    {
        Led led;
        led.resize(30, 30);
        led.show();
        QVERIFY(QTest::qWaitForWindowExposed(&led));
        QStringList events;
        led.OnMouseDown = [&](QObject *, Qt::MouseButton button, Qt::KeyboardModifiers shift, int x, int y) {
            events << QStringLiteral("down %1 %2 %3,%4").arg(int(button)).arg(int(shift)).arg(x).arg(y);
        };
        led.OnMouseUp = [&](QObject *, Qt::MouseButton button, Qt::KeyboardModifiers, int x, int y) {
            events << QStringLiteral("up %1 %2,%3").arg(int(button)).arg(x).arg(y);
        };
        led.OnClick = [&](QObject *sender) {
            QCOMPARE(sender, &led);
            events << QStringLiteral("click");
        };
        QTest::mouseClick(&led, Qt::LeftButton, Qt::ShiftModifier, QPoint(12, 14));
        QTest::mouseClick(&led, Qt::RightButton, {}, QPoint(3, 4));
        QCOMPARE(events, (QStringList{"down 1 33554432 12,14", "up 1 12,14", "click", "down 2 0 3,4", "up 2 3,4"}));
        // Clicking does not switch a plain LED.
        QVERIFY(!led.LedOn());
    }

    // Students: a text flag "S"/"N", an integer 0/1 and a Boolean, one record per case.
    void dataAware_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("record");
        QTest::addColumn<TCheckBoxState>("state");
        QTest::newRow("text in ValueChecked") << "in_corso" << 1 << cbChecked;
        QTest::newRow("text in ValueChecked, other case") << "in_corso" << 2 << cbChecked;
        QTest::newRow("text in ValueUnchecked") << "in_corso" << 3 << cbUnchecked;
        QTest::newRow("text in neither list") << "in_corso" << 4 << cbGrayed;
        QTest::newRow("text null") << "in_corso" << 5 << cbGrayed;
        QTest::newRow("integer 1") << "tasse_pagate" << 1 << cbChecked;
        QTest::newRow("integer 0") << "tasse_pagate" << 3 << cbUnchecked;
        QTest::newRow("integer 7") << "tasse_pagate" << 4 << cbGrayed;
        QTest::newRow("boolean true") << "attivo" << 1 << cbChecked;
        QTest::newRow("boolean false") << "attivo" << 2 << cbUnchecked;
        QTest::newRow("boolean null") << "attivo" << 5 << cbGrayed;
    }
    void dataAware()
    {
        QFETCH(QString, field);
        QFETCH(int, record);
        QFETCH(TCheckBoxState, state);

        TClientDataSet ds;
        students(ds);
        TDataSource source;
        source.setDataSet(&ds);
        TDBAMAdvLed led;
        led.setValueChecked(field == QLatin1String("in_corso") ? QStringLiteral("S;Si") : QStringLiteral("1"));
        led.setValueUnchecked(field == QLatin1String("in_corso") ? QStringLiteral("N") : QStringLiteral("0"));
        led.setHintChecked(QStringLiteral("In regola"));
        led.setHintUnchecked(QStringLiteral("Da verificare"));
        led.setDataSource(&source);
        led.setDataField(field);
        QVERIFY(ds.Locate(QStringLiteral("id"), record));
        QCOMPARE(led.State(), state);
        QCOMPARE(led.LedOn(), state == cbChecked);
        // The first record is checked everywhere: a grayed one keeps the hint it left.
        QCOMPARE(led.toolTip(), state == cbUnchecked ? QStringLiteral("Da verificare") : QStringLiteral("In regola"));
        const QColor off = TColorToQColor(led.ColorOff());
        QCOMPARE(led.PaintColor(), state == cbChecked ? TColorToQColor(led.ColorOn())
                                   : state == cbUnchecked ? off
                                                          : QColor(159, 159, 159));
    }

    void dataAwareClicks()
    {
        TClientDataSet ds;
        students(ds);
        TDataSource source;
        source.setDataSet(&ds);
        QWidget form;
        auto *text = new TDBAMAdvLed(&form);
        text->setGeometry(0, 0, 120, 20);
        text->setCaption(QStringLiteral("In corso"));
        text->setValueChecked(QStringLiteral("S;Si"));
        text->setValueUnchecked(QStringLiteral("N"));
        text->setDataSource(&source);
        text->setDataField(QStringLiteral("in_corso"));
        auto *flag = new TDBAMAdvLed(&form);
        flag->setGeometry(0, 30, 20, 20);
        flag->setDataSource(&source);
        flag->setDataField(QStringLiteral("attivo"));
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        const auto click = [](TDBAMAdvLed *led) { QTest::mouseClick(led, Qt::LeftButton, {}, led->LedRect().center()); };
        TField *inCorso = ds.FieldByName(QStringLiteral("in_corso"));
        TField *attivo = ds.FieldByName(QStringLiteral("attivo"));
        int clicks = 0;
        text->OnClick = [&](QObject *) { ++clicks; };

        // Grayed goes to checked, which writes the first checked value.
        QVERIFY(ds.Locate(QStringLiteral("id"), 4));
        QCOMPARE(text->State(), cbGrayed);
        click(text);
        QCOMPARE(ds.State(), dsEdit);
        QCOMPARE(inCorso->AsString(), QStringLiteral("S"));
        QVERIFY(text->LedOn());
        click(text);
        QCOMPARE(inCorso->AsString(), QStringLiteral("N"));
        click(text);
        QCOMPARE(inCorso->AsString(), QStringLiteral("S"));
        QCOMPARE(clicks, 3);
        // With AllowGrayed, unchecked goes to grayed: the field is cleared.
        text->setAllowGrayed(true);
        click(text);
        click(text);
        QVERIFY(inCorso->IsNull());
        QCOMPARE(text->State(), cbGrayed);
        ds.Post();
        QVERIFY(VarIsNull(ds.Lookup(QStringLiteral("id"), 4, QStringLiteral("in_corso"))));

        // A Boolean field takes the flag; the other LED on the record follows its own field.
        QVERIFY(ds.Locate(QStringLiteral("id"), 2));
        QVERIFY(!flag->LedOn());
        click(flag);
        QVERIFY(attivo->AsBoolean());
        QVERIFY(flag->LedOn());
        ds.Cancel();
        QVERIFY(!flag->LedOn());
        QCOMPARE(text->State(), cbChecked);

        // Read-only LED, read-only dataset, or a source that does not edit by itself: no change.
        text->setReadOnly(true);
        click(text);
        QCOMPARE(ds.State(), dsBrowse);
        QCOMPARE(clicks, 6);
        text->setReadOnly(false);
        source.setAutoEdit(false);
        click(text);
        QCOMPARE(ds.State(), dsBrowse);
        QCOMPARE(inCorso->AsString(), QStringLiteral("si"));
        source.setAutoEdit(true);
        ds.setReadOnly(true);
        click(flag);
        QCOMPARE(ds.State(), dsBrowse);
        QVERIFY(!attivo->AsBoolean());

        // Scrolling switches the LED only when the state changes.
        ds.setReadOnly(false);
        const int switches = text->NumSwitch();
        QVERIFY(ds.Locate(QStringLiteral("id"), 1)); // "S": still lit
        QCOMPARE(text->NumSwitch(), switches);
        QVERIFY(ds.Locate(QStringLiteral("id"), 3)); // "N"
        QCOMPARE(text->NumSwitch(), switches + 1);
        ds.Close();
        QCOMPARE(text->State(), cbUnchecked);
    }

    // The committed pictures and resource list are what the drawing program makes today.
    void bitmapsAreTheDrawingProgramsOutput()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QProcess draw;
        draw.start(QStringLiteral(MATTONI_DRAW_LEDS), {dir.path()});
        QVERIFY(draw.waitForFinished(30000));
        QCOMPARE(draw.exitCode(), 0);

        QFile committed(qEnvironmentVariable("MATTONI_SOURCE_DIR") + QStringLiteral("/resources/leds.qrc"));
        QFile drawn(dir.filePath(QStringLiteral("leds.qrc")));
        QVERIFY(committed.open(QIODevice::ReadOnly));
        QVERIFY(drawn.open(QIODevice::ReadOnly));
        QCOMPARE(drawn.readAll(), committed.readAll());

        const QStringList files = QDir(dir.filePath(QStringLiteral("leds"))).entryList(QDir::Files);
        QCOMPARE(files.size(), 16 * 4 + 4);
        for (const QString &file : files) {
            const QString name = QFileInfo(file).completeBaseName();
            const QImage fresh = QImage(dir.filePath(QStringLiteral("leds/") + file)).convertToFormat(QImage::Format_ARGB32);
            QVERIFY2(fresh == resource(name), qPrintable(name));
        }
    }
};

QTEST_MAIN(tst_AMAdvLed)
#include "tst_amadvled.moc"
