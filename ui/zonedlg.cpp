// SPDX-License-Identifier: GPL-2.0-or-later
// The time-zone chooser: one button for each of the device's 25 fixed-offset zones.
#include "zonedlg.h"

#include "msgdialog.h"
#include "ui_zonedlg.h"

#include <QPushButton>
#include <QScrollBar>
#include <QScroller>
#include <QShowEvent>

#include <iterator>

namespace {

struct Zone
{
    const char *value;
    const char *label;
};

// East of UTC first, then west; the values are what the settings keep.
const Zone kZones[] = {
    {"0", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+00: Universal Coordinated Time")},
    {"1", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+01: European Central Time")},
    {"2", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+02: Eastern European Time")},
    {"3", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+03: Eastern African Time")},
    {"4", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+04: Near East Time")},
    {"5", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+05: Pakistan Lahore Time")},
    {"5.5", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+5.5: Indian Standard Time")},
    {"6", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+06: Bangladesh Standard Time")},
    {"7", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+07: Vietnam Standard Time")},
    {"8", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+08: China Standard Time")},
    {"9", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+09: Japan Standard Time")},
    {"10", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+10: Australia Eastern Time")},
    {"11", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+11: Solomon Standard Time")},
    {"12", QT_TRANSLATE_NOOP("ZoneDlg", "UTC+12: New Zealand Standard Time")},
    {"-1", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-01: Central African Time")},
    {"-2", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-02: Noronha Standard Time")},
    {"-3", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-03: Brazil Eastern Time")},
    {"-4", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-04: Virgin Islands Time")},
    {"-5", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-05: Eastern Standard Time")},
    {"-6", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-06: Central Standard Time")},
    {"-7", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-07: Mountain Standard Time")},
    {"-8", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-08: Pacific Standard Time")},
    {"-9", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-09: Alaska Standard Time")},
    {"-10", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-10: Hawaii Standard Time")},
    {"-11", QT_TRANSLATE_NOOP("ZoneDlg", "UTC-11: Midway Islands Time")},
};

constexpr int kZoneButtonHeight = 80;

} // namespace

ZoneDlg::ZoneDlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::ZoneDlg>())
{
    ui->setupUi(this);
    setModal(true);

    for (int i = 0; i < int(std::size(kZones)); ++i) {
        auto *button = new QPushButton(tr(kZones[i].label), ui->widgetZones);
        button->setObjectName(QStringLiteral("buttonZone%1").arg(i));
        button->setProperty("zone", QString::fromLatin1(kZones[i].value));
        button->setCheckable(true);
        button->setFocusPolicy(Qt::NoFocus);
        button->setMinimumHeight(kZoneButtonHeight);
        connect(button, &QPushButton::clicked, this, [this, i] { choose(i); });
        ui->layoutZones->addWidget(button);
        m_zoneButtons << button;
    }
    // 25 rows do not fit the screen: the list follows the finger.
    QScroller::grabGesture(ui->scrollAreaZones->viewport(), QScroller::LeftMouseButtonGesture);
    QScrollerProperties properties = QScroller::scroller(ui->scrollAreaZones->viewport())->scrollerProperties();
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QVariant::fromValue(QScrollerProperties::OvershootAlwaysOff));
    QScroller::scroller(ui->scrollAreaZones->viewport())->setScrollerProperties(properties);
}

ZoneDlg::~ZoneDlg() = default;

QString ZoneDlg::zoneLabel(const QString &value)
{
    for (const Zone &zone : kZones) {
        if (value == QLatin1String(zone.value))
            return tr(zone.label);
    }
    return value;
}

void ZoneDlg::Init(const QString &current)
{
    for (QPushButton *button : qAsConst(m_zoneButtons))
        button->setChecked(button->property("zone").toString() == current);
}

void ZoneDlg::showEvent(QShowEvent *event)
{
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        MsgDialog::centreOnDeviceScreen(this);
    QDialog::showEvent(event);
    layout()->activate();
    ui->layoutZones->activate();
    // The zone in force opens in the middle of the list's window, with its
    // neighbours on both sides.
    for (const QPushButton *button : qAsConst(m_zoneButtons)) {
        if (button->isChecked()) {
            const int room = ui->scrollAreaZones->viewport()->height() - button->height();
            ui->scrollAreaZones->verticalScrollBar()->setValue(button->y() - room / 2);
        }
    }
}

void ZoneDlg::choose(int zone)
{
    strZone = QString::fromLatin1(kZones[zone].value);
    accept();
}

void ZoneDlg::on_buttonZoneReturn_clicked()
{
    reject();
}
