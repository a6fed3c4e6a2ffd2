// SPDX-License-Identifier: GPL-2.0-or-later
// Reads the texts that wpa_cli prints (scan results, saved networks, status, signal) into plain values.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Text in, values out: no command is run here. wpa_cli's tables start with a
// header line, separate fields with tabs and escape non-ASCII SSID bytes as
// \xNN; lines are split keeping empty parts and fields trimmed before use.
namespace wifiparsers {

// The value of one hexadecimal digit in either case; -1 for any other character.
int hexDigit(char c);

// "%" followed by two hexadecimal digits becomes that byte; every other byte
// is copied, a lone or malformed "%" included.
QByteArray urlDecode(const QByteArray &bytes);

// wpa_cli's escaped SSID as readable text: the \xNN escapes become bytes read
// as UTF-8. A literal "%NN" in a network's name is decoded as well.
QString ssidDecode(const QString &text);

// "\u773c\u79d1" -> the characters of those UTF-16 code units; pieces that are
// not a hexadecimal code unit are left out.
QString unicodeToText(const QString &text);

// Networks in range, one entry per name, strongest first.
struct AccessPointList
{
    QStringList ssids;        // decoded
    QStringList signalLevels; // dBm as wpa_cli printed it
    QStringList flags;        // "[WPA2-PSK-CCMP][ESS]"
};

// scan_result: of several access points with one name the first printed
// wins, whatever the others' strength; hidden networks (four fields or an
// empty name) are left out. Equal signals keep no guaranteed order.
AccessPointList parseScanResults(const QString &text);

// list_network: the decoded SSIDs of the saved networks, in their order.
QStringList parseSavedNetworks(const QString &text);

// status: the last "bssid=", "ssid=" and "wpa_state=" values. A "bssid=" line
// matches the "ssid=" test too, so the ssid is right only because wpa_cli
// prints its "ssid=" line after the "bssid=" one; the ssid is not decoded.
struct LinkStatus
{
    QString bssid;
    QString ssid;
    QString state;
};
LinkStatus parseStatus(const QString &text);

// The text after "wpa_state=" on the last line that holds it; empty if none.
QString lastWpaState(const QString &statusText);

// The network number of the saved network named ssid in a list_network text,
// the last match winning; -1 when there is none.
int findSavedNetwork(const QString &listText, const QString &ssid);

// signal_poll: the number after "RSSI=" on the first line, else 0 (unknown).
int parseRssi(const QString &signalPollText);

// A wpa_cli reply that says "OK", its line breaks ignored.
bool isOk(const QString &reply);

} // namespace wifiparsers
