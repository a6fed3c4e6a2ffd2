// SPDX-License-Identifier: GPL-2.0-or-later
// GData: receipts and test pages on the Bluetooth printer or through the cloud printing service.
#include "gdata.h"

#include "bluetoothprint.h"
#include "btprintermanager.h"
#include "camcfg.h"
#include "cloudprintform.h"
#include "common.h"
#include "platform.h"
#include "posixserialtransport.h"
#include "receipttext.h"
#include "systemclock.h"

#include <QDebug>
#include <QThread>

namespace {

QString printerKind(const GData &data)
{
    return data.m_pCamCfg ? data.m_pCamCfg->value(CamCfg::PrinterKind) : QString();
}

} // namespace

QString GData::printResult()
{
    const QString kind = printerKind(*this);
    QString status;
    if (kind == QLatin1String("bt"))
        status = bluetoothPrintResult();
    else if (kind == QLatin1String("network"))
        status = httpPrintResult();
    m_printRecord.reset();
    return status;
}

QString GData::printTestpage()
{
    const QString kind = printerKind(*this);
    if (kind == QLatin1String("bt"))
        return bluetoothPrintTestpage();
    if (kind == QLatin1String("network"))
        return httpPrintTestpage();
    return QString();
}

QString GData::bluetoothPrintString(const QString &text)
{
    const BusyJob job(*this);
    PosixSerialTransport transport(Platform::instance().printerSerialDevice, bluetoothprint::kBaudRate);
    const auto sleep = [this](int ms) {
        if (m_fnPrinterSleep)
            m_fnPrinterSleep(ms);
        else
            QThread::msleep(static_cast<unsigned long>(ms));
    };
    switch (bluetoothprint::printText(transport, text, sleep)) {
    case bluetoothprint::Status::Ok: return QStringLiteral("OK");
    case bluetoothprint::Status::OpenFailed: return tr("Open printer failed");
    case bluetoothprint::Status::InitFailed: return tr("Printer init failed");
    }
    return tr("Printer init failed");
}

QString GData::bluetoothPrintResult()
{
    return bluetoothPrintString(receipttext::bluetoothReceipt(m_printRecord.value_or(currentTest()), getLocalTime()));
}

QString GData::bluetoothPrintTestpage()
{
    return bluetoothPrintString(receipttext::bluetoothTestPage(getLocalTime()));
}

QString GData::httpPrintString(const QString &text)
{
    const BusyJob job(*this);
    const QString reqTime = QString::number(systemclock::nowMSecs() / 1000);
    const QString deviceID = m_pCamCfg ? m_pCamCfg->value(CamCfg::PrinterDeviceId) : QString();
    const QString url = QStringLiteral("http://") + Platform::instance().cloudPrintHost + cloudprintform::kPath;
    const QString reply =
        m_pCommon->httpPostRequest(url, cloudprintform::body(deviceID, reqTime, text), m_nPrintTimeoutSeconds);
    qDebug("httpPrintString reply: %s", qPrintable(reply));
    return cloudprintform::accepted(reply) ? QStringLiteral("OK") : QStringLiteral("Error");
}

QString GData::httpPrintResult()
{
    return httpPrintString(receipttext::cloudTicket(m_printRecord.value_or(currentTest()), getLocalTime()));
}

QString GData::httpPrintTestpage()
{
    return httpPrintString(receipttext::cloudTestTicket(getLocalTime()));
}

BtPrinterManager *GData::btPrinterManager()
{
    if (!m_pBtPrinterManager) {
        m_pBtPrinterManager = new BtPrinterManager(this);
        m_pBtPrinterManager->setPrintString([this](const QString &text) { return bluetoothPrintString(text); });
    }
    return m_pBtPrinterManager;
}
