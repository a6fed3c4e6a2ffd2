// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: whatever bytes a provisioning client sends, the parser answers without harm and keeps its promises.
#include "provisioningprotocol.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace provisioningprotocol;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

bool printableAscii(const QByteArray &bytes, char low)
{
    for (const char c : bytes) {
        if (c < low || c > '~')
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray line(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const Parsed parsed = parseCommand(line);
    if (parsed.error != Error::None)
        return 0;

    // Anything accepted was one short line of printable ASCII.
    require(line.size() < kMaxLineLength);
    require(printableAscii(line.endsWith('\r') ? line.left(line.size() - 1) : line, ' '));

    const Command &command = parsed.command;
    if (command.verb == Verb::Pin) {
        require(command.pin.size() == kPinLength);
        return 0;
    }
    if (command.verb != Verb::Add && command.verb != Verb::Connect && command.verb != Verb::Forget)
        return 0;

    // What reaches wpa_cli obeys the rules, and says the same after the
    // client-side encoding round trip.
    const QByteArray ssid = command.ssid.toUtf8();
    require(validSsid(ssid));
    require(!ssid.contains('\'') && !ssid.contains('\n') && !ssid.contains('\0'));
    require(command.passphrase.isEmpty() || validPassphrase(command.passphrase.toLatin1()));
    const QByteArray encoded = encodeField(command.ssid);
    require(printableAscii(encoded, '!'));
    QByteArray decoded;
    require(decodeField(encoded, &decoded) && decoded == ssid);
    QByteArray again = line.left(1) + ' ' + encoded;
    if (!command.passphrase.isEmpty())
        again += ' ' + encodeField(command.passphrase);
    const Parsed reparsed = parseCommand(again);
    require(reparsed.error == Error::None && reparsed.command.ssid == command.ssid &&
            reparsed.command.passphrase == command.passphrase);
    return 0;
}
