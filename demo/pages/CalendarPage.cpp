// Demo page "Calendario": the month calendar with its month and year buttons, the first day of the
// week, the weekend days and their colour, and read-only mode.
#include "DemoPages.h"
#include "Formatting.h"
#include "calendario.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

QWidget *createCalendarPage(DemoContext &)
{
    auto *page = new QWidget;
    auto *layout = new QHBoxLayout(page);

    auto *left = new QVBoxLayout;
    auto *buttons = new QHBoxLayout;
    auto *calendar = new TinCalendar;
    calendar->setUseCurrentDate(false);
    calendar->setCalendarDate(EncodeDate(2026, 3, 2));
    calendar->setWeekends({Sab, Dom});
    calendar->setMinimumSize(calendar->sizeHint() * 1.5);
    const auto button = [&](const QString &text, void (TinCalendar::*step)()) {
        auto *b = new QPushButton(text);
        QObject::connect(b, &QPushButton::clicked, calendar, [calendar, step] { (calendar->*step)(); });
        buttons->addWidget(b);
    };
    button(QStringLiteral("« Anno"), &TinCalendar::PrevYear);
    button(QStringLiteral("‹ Mese"), &TinCalendar::PrevMonth);
    button(QStringLiteral("Mese ›"), &TinCalendar::NextMonth);
    button(QStringLiteral("Anno »"), &TinCalendar::NextYear);
    auto *chosen = new QLabel;
    chosen->setStyleSheet(QStringLiteral("font-weight: bold"));
    auto *doubleClicked = new QLabel(QStringLiteral("Doppio clic su un giorno per sceglierlo."));
    left->addLayout(buttons);
    left->addWidget(calendar);
    left->addWidget(chosen);
    left->addWidget(doubleClicked);
    left->addStretch(1);
    layout->addLayout(left, 2);

    const auto showDate = [calendar, chosen] {
        chosen->setText(QStringLiteral("Data: %1").arg(FormatDateTime(QStringLiteral("dddd d mmmm yyyy"),
                                                                      calendar->CalendarDate())));
    };
    calendar->OnChange = [showDate](QObject *) { showDate(); };
    calendar->OnDblClick = [calendar, doubleClicked](QObject *) {
        doubleClicked->setText(QStringLiteral("Scelto il %1").arg(DateToStr(calendar->CalendarDate())));
    };
    showDate();

    auto *options = new QGroupBox(QStringLiteral("Opzioni"));
    auto *form = new QFormLayout(options);
    auto *start = new QComboBox;
    for (int d = Dom; d <= Sab; ++d)
        start->addItem(FormatSettings.LongDayNames.value(d), d);
    start->setCurrentIndex(Lun);
    QObject::connect(start, &QComboBox::currentIndexChanged, calendar,
                     [calendar, start] { calendar->setStartOfWeek(TGiorni(start->currentData().toInt())); });
    form->addRow(QStringLiteral("Primo giorno della settimana:"), start);

    auto *weekendBox = new QWidget;
    auto *weekendRow = new QHBoxLayout(weekendBox);
    weekendRow->setContentsMargins(0, 0, 0, 0);
    QList<QCheckBox *> days;
    for (int d = Dom; d <= Sab; ++d) {
        auto *c = new QCheckBox(FormatSettings.ShortDayNames.value(d));
        c->setChecked(calendar->Weekends().contains(TGiorni(d)));
        days << c;
        weekendRow->addWidget(c);
    }
    for (QCheckBox *c : days) {
        QObject::connect(c, &QCheckBox::toggled, calendar, [calendar, days] {
            quint8 bits = 0;
            for (int d = 0; d < days.size(); ++d)
                if (days[d]->isChecked())
                    bits |= quint8(1u << d);
            calendar->setWeekends(TGiorniSettimana::fromInt(bits));
        });
    }
    form->addRow(QStringLiteral("Giorni festivi:"), weekendBox);

    auto *colour = new QComboBox;
    colour->addItem(QStringLiteral("Rosso"), clRed);
    colour->addItem(QStringLiteral("Blu"), clBlue);
    colour->addItem(QStringLiteral("Verde"), clGreen);
    QObject::connect(colour, &QComboBox::currentIndexChanged, calendar,
                     [calendar, colour] { calendar->setWeekendColor(colour->currentData().toUInt()); });
    form->addRow(QStringLiteral("Colore dei festivi:"), colour);

    auto *readOnly = new QCheckBox(QStringLiteral("Sola lettura"));
    QObject::connect(readOnly, &QCheckBox::toggled, calendar, [calendar](bool on) { calendar->setReadOnly(on); });
    form->addRow(QString(), readOnly);

    auto *today = new QPushButton(QStringLiteral("Oggi"));
    QObject::connect(today, &QPushButton::clicked, calendar, [calendar, showDate] {
        calendar->setUseCurrentDate(true);
        showDate();
    });
    form->addRow(QString(), today);

    auto *right = new QVBoxLayout;
    right->addWidget(options);
    right->addStretch(1);
    layout->addLayout(right, 1);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(45, QStringLiteral("Calendario"), createCalendarPage);
