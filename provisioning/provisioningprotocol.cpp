// SPDX-License-Identifier: GPL-2.0-or-later
// The provisioning servers' line protocol: one request line in, one command or one error out.
#include "provisioningprotocol.h"

#include "wifiparsers.h"

#include <QList>

namespace provisioningprotocol {

namespace {

// With its length: the QByteArray overload stops at the first NUL, which
// would hide the NUL and everything after it from the checks.
QString fromUtf8(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

bool isUtf8(const QByteArray &bytes)
{
    // Qt replaces every malformed, overlong or surrogate sequence, so only
    // well-formed text survives the round trip unchanged.
    return fromUtf8(bytes).toUtf8() == bytes;
}

Parsed failure(Error error)
{
    Parsed parsed;
    parsed.error = error;
    return parsed;
}

} // namespace

bool decodeField(const QByteArray &field, QByteArray *bytes)
{
    QByteArray out;
    out.reserve(field.size());
    for (int i = 0; i < field.size(); ++i) {
        const char c = field.at(i);
        if (c != '%') {
            out.append(c);
            continue;
        }
        if (i + 2 >= field.size())
            return false;
        const int high = wifiparsers::hexDigit(field.at(i + 1));
        const int low = wifiparsers::hexDigit(field.at(i + 2));
        if (high < 0 || low < 0)
            return false;
        out.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    *bytes = out;
    return true;
}

QByteArray encodeField(const QString &text)
{
    static const char kHex[] = "0123456789ABCDEF";
    QByteArray out;
    for (const char c : text.toUtf8()) {
        const auto u = static_cast<unsigned char>(c);
        if (u > 0x20 && u < 0x7f && c != '%') {
            out.append(c);
        } else {
            out.append('%');
            out.append(kHex[u >> 4]);
            out.append(kHex[u & 0x0f]);
        }
    }
    return out;
}

bool validSsid(const QByteArray &utf8)
{
    if (utf8.isEmpty() || utf8.size() > kMaxSsidBytes || !isUtf8(utf8))
        return false;
    // A single quote cannot sit inside the shell quoting of the set_network
    // command; control characters (C1 included) have no place in a name.
    for (const QChar c : fromUtf8(utf8)) {
        if (c == QLatin1Char('\'') || c.category() == QChar::Other_Control)
            return false;
    }
    return true;
}

bool validPassphrase(const QByteArray &bytes)
{
    // A WPA passphrase is 8 to 63 printable ASCII characters.
    if (bytes.size() < kMinPskBytes || bytes.size() > kMaxPskBytes)
        return false;
    for (const char c : bytes) {
        if (c < 0x20 || c > 0x7e || c == '\'')
            return false;
    }
    return true;
}

Parsed parseCommand(const QByteArray &raw)
{
    if (raw.size() + 1 > kMaxLineLength)
        return failure(Error::TooLong);
    QByteArray line = raw;
    if (line.endsWith('\r'))
        line.chop(1);
    for (const char c : line) {
        if (c < 0x20 || c > 0x7e)
            return failure(Error::BadCharacter);
    }
    if (line.isEmpty())
        return failure(Error::UnknownVerb);

    const QList<QByteArray> words = line.split(' ');
    const QByteArray &verbWord = words.first();
    if (verbWord.size() != 1)
        return failure(Error::UnknownVerb);
    for (const QByteArray &word : words) {
        if (word.isEmpty())
            return failure(Error::BadArguments);
    }
    const int fieldCount = words.size() - 1;

    Parsed parsed;
    Command &command = parsed.command;
    switch (verbWord.at(0)) {
    case 'P': {
        if (fieldCount != 1)
            return failure(Error::BadArguments);
        const QByteArray &pin = words.at(1);
        if (pin.size() != kPinLength)
            return failure(Error::BadPin);
        for (const char c : pin) {
            if (c < '0' || c > '9')
                return failure(Error::BadPin);
        }
        command.verb = Verb::Pin;
        command.pin = pin;
        return parsed;
    }
    case 'S':
    case 'L':
    case 'T':
    case 'Q':
        if (fieldCount != 0)
            return failure(Error::BadArguments);
        command.verb = verbWord.at(0) == 'S'   ? Verb::Scan
                       : verbWord.at(0) == 'L' ? Verb::List
                       : verbWord.at(0) == 'T' ? Verb::Status
                                               : Verb::Quit;
        return parsed;
    case 'A':
    case 'C':
    case 'F': {
        const bool add = verbWord.at(0) == 'A';
        if (fieldCount < 1 || fieldCount > (add ? 2 : 1))
            return failure(Error::BadArguments);
        QByteArray ssid;
        if (!decodeField(words.at(1), &ssid))
            return failure(Error::BadEncoding);
        if (!isUtf8(ssid))
            return failure(Error::BadEncoding);
        if (!validSsid(ssid))
            return failure(Error::BadSsid);
        command.ssid = fromUtf8(ssid);
        if (fieldCount == 2) {
            QByteArray passphrase;
            if (!decodeField(words.at(2), &passphrase))
                return failure(Error::BadEncoding);
            if (!validPassphrase(passphrase))
                return failure(Error::BadPassphrase);
            command.passphrase = QString::fromLatin1(passphrase);
        }
        command.verb = add ? Verb::Add : verbWord.at(0) == 'C' ? Verb::Connect : Verb::Forget;
        return parsed;
    }
    default: return failure(Error::UnknownVerb);
    }
}

QByteArray errorWord(Error error)
{
    switch (error) {
    case Error::None: return QByteArrayLiteral("none");
    case Error::TooLong: return QByteArrayLiteral("too-long");
    case Error::BadCharacter: return QByteArrayLiteral("bad-character");
    case Error::UnknownVerb: return QByteArrayLiteral("unknown-command");
    case Error::BadArguments: return QByteArrayLiteral("bad-arguments");
    case Error::BadEncoding: return QByteArrayLiteral("bad-encoding");
    case Error::BadPin: return QByteArrayLiteral("bad-pin");
    case Error::BadSsid: return QByteArrayLiteral("bad-ssid");
    case Error::BadPassphrase: return QByteArrayLiteral("bad-passphrase");
    }
    return QByteArrayLiteral("none");
}

} // namespace provisioningprotocol
