// SPDX-License-Identifier: GPL-2.0-or-later
// The provisioning servers' line protocol: one request line in, one command or one error out.
#pragma once

#include <QByteArray>
#include <QString>

// Pure functions, no sockets: the servers, the tests and the fuzzer call
// them alike. A request is one line of printable ASCII: a one-letter verb,
// then fields separated by one blank; a field carries UTF-8 text with every
// byte outside "!" to "~", and "%" itself, written as %XX.
namespace provisioningprotocol {

// A line longer than this, its line feed included, is refused unread: the
// longest honest request (an SSID of 32 bytes and a passphrase of 63, both
// fully escaped) fits.
constexpr int kMaxLineLength = 320;
constexpr int kPinLength = 6;
constexpr int kMaxSsidBytes = 32;
constexpr int kMinPskBytes = 8;
constexpr int kMaxPskBytes = 63;

enum class Verb {
    Pin,     // P pin
    Scan,    // S
    List,    // L
    Status,  // T
    Add,     // A ssid [passphrase]
    Connect, // C ssid
    Forget,  // F ssid
    Quit,    // Q
};

enum class Error {
    None,
    TooLong,      // the line is over kMaxLineLength
    BadCharacter, // a byte outside blank to "~" (NUL, control, DEL, 8-bit)
    UnknownVerb,
    BadArguments, // wrong number of fields, empty field, doubled blank
    BadEncoding,  // a "%" not followed by two hexadecimal digits, or not UTF-8
    BadPin,
    BadSsid,
    BadPassphrase,
};

struct Command
{
    Verb verb = Verb::Quit;
    QByteArray pin;
    QString ssid;
    QString passphrase; // empty: an open network
};

struct Parsed
{
    Error error = Error::None;
    Command command;
};

// The line without its line feed; one carriage return before it is allowed.
Parsed parseCommand(const QByteArray &line);

// The word of an "E" reply.
QByteArray errorWord(Error error);

// Field escaping both ways; decodeField returns false for a malformed escape.
QByteArray encodeField(const QString &text);
bool decodeField(const QByteArray &field, QByteArray *bytes);

// The rules the supplicant's commands need, shared with anyone who checks
// text before it goes to wpa_cli.
bool validSsid(const QByteArray &utf8);
bool validPassphrase(const QByteArray &bytes);

} // namespace provisioningprotocol
