// SPDX-License-Identifier: GPL-2.0-or-later
// Reads the texts that wpa_cli prints (scan results, saved networks, status, signal) into plain values.
#include "wifiparsers.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace wifiparsers {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

namespace {

// The lines of a wpa_cli table after its header, split into fields.
QVector<QStringList> tableRows(const QString &text)
{
    const QStringList lines = text.split('\n');
    QVector<QStringList> rows;
    for (int i = 1; i < lines.size(); ++i)
        rows.append(lines.at(i).split('\t'));
    return rows;
}

} // namespace

QByteArray urlDecode(const QByteArray &bytes)
{
    QByteArray out;
    out.reserve(bytes.size());
    for (int i = 0; i < bytes.size(); ++i) {
        if (bytes.at(i) == '%' && i + 2 < bytes.size()) {
            const int high = hexDigit(bytes.at(i + 1));
            const int low = hexDigit(bytes.at(i + 2));
            if (high >= 0 && low >= 0) {
                out += static_cast<char>(high * 16 + low);
                i += 2;
                continue;
            }
        }
        out += bytes.at(i);
    }
    return out;
}

QString ssidDecode(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1String("\\x"), QLatin1String("%"));
    return QString::fromUtf8(urlDecode(escaped.toLocal8Bit()));
}

QString unicodeToText(const QString &text)
{
    QString out;
    const QStringList pieces = text.split(QLatin1String("\\u"));
    for (const QString &piece : pieces) {
        bool ok = false;
        const uint unit = piece.toUInt(&ok, 16);
        if (ok && unit <= 0xffff)
            out += QChar(static_cast<ushort>(unit));
    }
    return out;
}

AccessPointList parseScanResults(const QString &text)
{
    AccessPointList found;
    for (const QStringList &fields : tableRows(text)) {
        if (fields.size() != 5 || fields.at(4).trimmed().isEmpty())
            continue;
        const QString ssid = ssidDecode(fields.at(4).trimmed());
        if (found.ssids.contains(ssid))
            continue;
        found.flags << fields.at(3).trimmed();
        found.signalLevels << fields.at(2).trimmed();
        found.ssids << ssid;
    }

    QVector<int> order(found.ssids.size());
    std::iota(order.begin(), order.end(), 0);
    // Unstable on purpose: the device never promised an order among equals.
    std::sort(order.begin(), order.end(),
              [&found](int a, int b) { return found.signalLevels.at(a).toInt() > found.signalLevels.at(b).toInt(); });

    AccessPointList sorted;
    for (const int i : order) {
        sorted.ssids << found.ssids.at(i);
        sorted.signalLevels << found.signalLevels.at(i);
        sorted.flags << found.flags.at(i);
    }
    return sorted;
}

QStringList parseSavedNetworks(const QString &text)
{
    QStringList saved;
    for (const QStringList &fields : tableRows(text)) {
        if (fields.size() > 2)
            saved << ssidDecode(fields.at(1).trimmed());
    }
    return saved;
}

LinkStatus parseStatus(const QString &text)
{
    LinkStatus status;
    const QStringList lines = text.split('\n');
    for (const QString &raw : lines) {
        const QString line = raw.trimmed();
        if (line.contains(QLatin1String("bssid=")))
            status.bssid = line.mid(6);
        if (line.contains(QLatin1String("wpa_state=")))
            status.state = line.mid(10);
        if (line.contains(QLatin1String("ssid=")))
            status.ssid = line.mid(5);
    }
    return status;
}

QString lastWpaState(const QString &statusText)
{
    static const QLatin1String key("wpa_state=");
    QString state;
    const QStringList lines = statusText.split('\n');
    for (const QString &line : lines) {
        const int at = line.indexOf(key);
        if (at >= 0)
            state = line.mid(at + key.size()).trimmed();
    }
    return state;
}

int findSavedNetwork(const QString &listText, const QString &ssid)
{
    if (listText.split('\n').size() < 2)
        return -1;
    int id = -1;
    for (const QStringList &fields : tableRows(listText)) {
        if (fields.size() > 2 && ssidDecode(fields.at(1).trimmed()) == ssid)
            id = fields.at(0).trimmed().toInt();
    }
    return id;
}

int parseRssi(const QString &signalPollText)
{
    const QString line = signalPollText.split('\n').first().trimmed();
    if (!line.contains(QLatin1String("RSSI=")))
        return 0;
    return line.mid(5).toInt();
}

bool isOk(const QString &reply)
{
    QString text = reply;
    text.remove('\n');
    return text == QLatin1String("OK");
}

} // namespace wifiparsers
