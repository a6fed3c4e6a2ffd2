// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated receipt printer's reading of its command stream: lines of text with their alignment and weight.
#include "escposdecoder.h"

namespace sim {

namespace {

constexpr char kEsc = 0x1b;
constexpr char kGs = 0x1d;

} // namespace

void EscPosDecoder::feed(const QByteArray &bytes)
{
    const QByteArray data = m_pending + bytes;
    m_pending.clear();
    int i = 0;
    while (i < data.size()) {
        const char c = data.at(i);
        if (c == kEsc || c == kGs) {
            if (i + 1 >= data.size()) {
                m_pending = data.mid(i);
                return;
            }
            const char command = data.at(i + 1);
            const bool takesArgument = c == kGs || command != '@';
            if (takesArgument && i + 2 >= data.size()) {
                m_pending = data.mid(i);
                return;
            }
            const int argument = takesArgument ? static_cast<unsigned char>(data.at(i + 2)) : 0;
            // ESC a and ESC E also take the digits '0' to '2' as numbers.
            const int number = argument >= '0' && argument <= '2' ? argument - '0' : argument;
            const QString head = QLatin1String(c == kEsc ? "ESC " : "GS ") + QLatin1Char(command);
            if (c == kEsc && command == '@') {
                m_align = 0;
                m_bold = false;
                m_table = 0;
                m_commands << head;
            } else if (c == kEsc && command == 't') {
                m_table = argument;
                m_commands << head + QStringLiteral(" %1").arg(argument);
            } else if (c == kEsc && command == 'a') {
                m_align = number <= 2 ? number : 0;
                m_commands << head + QStringLiteral(" %1").arg(argument);
            } else if (c == kEsc && command == 'E') {
                m_bold = (number & 1) != 0;
                m_commands << head + QStringLiteral(" %1").arg(argument);
            } else if (c == kEsc && command == '!') {
                m_bold = (argument & 0x08) != 0;
                m_commands << head + QStringLiteral(" %1").arg(argument);
            } else if (c == kGs && command == '!') {
                m_commands << head + QStringLiteral(" %1").arg(argument);
            } else {
                m_commands << QStringLiteral("unknown 0x%1 0x%2")
                                  .arg(static_cast<unsigned char>(c), 2, 16, QLatin1Char('0'))
                                  .arg(static_cast<unsigned char>(command), 2, 16, QLatin1Char('0'));
            }
            i += takesArgument ? 3 : 2;
            continue;
        }
        if (c == '\n')
            endLine();
        else if (c != '\r')
            m_text.append(c);
        ++i;
    }
}

void EscPosDecoder::finish()
{
    if (!m_text.isEmpty())
        endLine();
}

void EscPosDecoder::endLine()
{
    m_lines.append({QString::fromUtf8(m_text), m_align, m_bold});
    m_text.clear();
}

} // namespace sim
