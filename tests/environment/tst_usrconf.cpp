// The colour scheme, the settings' defaults and constants.
#include "Ambiente.h"
#include "usrconf.h"
#include "usrlevel.h"

#include <QtTest>

using namespace mattoni;

class tst_UsrConf : public QObject
{
    Q_OBJECT
private slots:
    void init() { ResetUsrConf(); }

    void defaults()
    {
        QCOMPARE(BkFrameColor, RGB(128, 128, 128));
        QCOMPARE(BkFormColor, RGB(192, 192, 192));
        QCOMPARE(BkDisabledColor, RGB(192, 192, 192));
        QCOMPARE(BkFocusColor, RGB(255, 251, 240));
        QCOMPARE(BkGridAlternateColor, RGB(255, 251, 240));
        QCOMPARE(BkSelectedFrameColor, RGB(255, 251, 240));
        QCOMPARE(BkNormalColor, clWindow);
        QCOMPARE(BkReadOnlyColor, clInfoBk);
        QCOMPARE(BkTitoloSezioneColor, clInfoBk);
        QCOMPARE(BkRequiredColor, RGB(0, 255, 255));
        QCOMPARE(BkErrorColor, RGB(128, 0, 0));
        QCOMPARE(BkGridAlternateReadOnlyColor, RGB(192, 220, 192));
        QCOMPARE(BkGridSelectedColor, RGB(166, 202, 240));
        QCOMPARE(FrNormalColor, clWindowText);
        QCOMPARE(FrErrorColor, RGB(192, 192, 192));
        QCOMPARE(CurrentColorMapStyle, cmsOcean);
        QCOMPARE(ctrlPanelBackGroundPosition, quint8(3));
    }

    void shading()
    {
        QCOMPARE(GetColor(clGray, 0), clGray);
        QCOMPARE(GetHighLightColor(clGray, 100), RGB(154, 154, 154));
        QCOMPARE(GetShadowColor(clGray, 100), RGB(103, 103, 103));
        QCOMPARE(GetColor(clGray, 100), RGB(154, 154, 154));
        QCOMPARE(GetColor(clGray, -100), RGB(103, 103, 103));
        // 1000 + n is the shadow colour with amount n.
        QCOMPARE(GetColor(clGray, 1100), RGB(103, 103, 103));
        QCOMPARE(GetColor(clWhite, 500), clWhite);
        QCOMPARE(GetColor(clBlack, -500), clBlack);
        // Hue and saturation stay: a shaded red is still pure red.
        const TColor darkRed = GetShadowColor(clRed, 200);
        QCOMPARE(GetGValue(darkRed), 0);
        QCOMPARE(GetBValue(darkRed), 0);
        QVERIFY(GetRValue(darkRed) < 255);
    }

    void styles_data()
    {
        QTest::addColumn<int>("style");
        for (int s = cmsSilver; s <= cmsCielo; ++s)
            QTest::newRow(qPrintable(QString::number(s))) << s;
    }
    void styles()
    {
        QFETCH(int, style);
        const TStandardColorMap map;
        SetColorMapStyles(TColorMapStyles(style), map);
        const qint32 *row = ColorMapLumen[style];
        QCOMPARE(BkFrameColor, GetColor(map.FrameColor, row[ceBkFrameColor]));
        QCOMPARE(BkFormColor, GetColor(map.Color, row[ceBkFormColor]));
        QCOMPARE(BkFocusColor, GetColor(map.HighlightColor, row[ceBkFocusColor]));
        QCOMPARE(BkDisabledColor, GetColor(map.DisabledColor, row[ceBkDisabledColor]));
        QCOMPARE(BkRequiredColor, GetColor(map.HotColor, row[ceBkRequiredColor]));
        QCOMPARE(BkGridSelectedColor, GetColor(map.SelectedColor, row[ceBkGridSelectedColor]));
        QCOMPARE(FrDisabledColor, GetColor(map.DisabledFontColor, -70));
        QCOMPARE(FrErrorColor, GetColor(map.ErrorFontColor, style == cmsClassic ? -5 : 0));
        QCOMPARE(BkSelectedFrameColor, GetColor(map.HighlightColor, row[ceBkErrorColor]));
        QCOMPARE(FrGridAlternateReadOnlyColor, FrGridAlternateColor);
    }

    void lumenTable()
    {
        QCOMPARE(ColorMapLumen[cmsSilver][4], 1070);
        QCOMPARE(ColorMapLumen[cmsClassic][8], 1025);
        QCOMPARE(ColorMapLumen[cmsCielo][6], 1070);
        QCOMPARE(ColorMapLumen[cmsOcean][15], -70);
        QCOMPARE(ColorMapLumen[cmsClassic][18], -5);
        QCOMPARE(ColorMapLumen[cmsOlive][18], 0);
    }

    void ambiente()
    {
        ResetAmbiente();
        QCOMPARE(dbmsOracle, QStringLiteral("ORACLE (CORE LAB)"));
        QCOMPARE(dbmsOleDbSqlServer, QStringLiteral("MICROSOFT SQL SERVER"));
        QCOMPARE(dbmsAccess, QStringLiteral("MS JET"));
        QCOMPARE(CurrencyChange, Currency(1936.27));
        QCOMPARE(esercizio_max, 2200);
        QCOMPARE(eKeyViol, quint16(9729));
        QCOMPARE(usrGuest, QStringLiteral("QUILBA"));
        QCOMPARE(pwdGuest, usrGuest.toLower());
        QCOMPARE(chSi, QStringLiteral("S"));
        QCOMPARE(DCName, QStringLiteral("DC"));
        QCOMPARE(EMailAgente, eaOutlookExpress);
        QCOMPARE(TipoLog, luAccess);
        QCOMPARE(Connessioni, quint8(4));
        QCOMPARE(modifica_report, 1);
        QCOMPARE(getbyte(QLatin1Char('A')), 0);
        QCOMPARE(getbyte(QLatin1Char('Z')), 25);
        QCOMPARE(DesUserLevel[ulReadWrite], QStringLiteral("Lettura e scrittura"));
        QCOMPARE(DesUserLevel[ulRead], QStringLiteral("Sola lettura"));
        QCOMPARE(DesUserLevel[ulDenied], QStringLiteral("Accesso negato"));
        QCOMPARE(DesUserLevel[ulUnknown], QStringLiteral("Non specificato"));
    }
};

QTEST_GUILESS_MAIN(tst_UsrConf)
#include "tst_usrconf.moc"
