// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated receipt printer's reading of its command stream: lines of text with their alignment and weight.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace sim {

struct PrintedLine
{
    QString text;
    int align = 0; // 0 left, 1 centre, 2 right
    bool bold = false;
};

// Understands ESC @ (initialise), ESC t n (character table), ESC a n
// (alignment), ESC E n (bold), ESC ! n (print mode: bold bit), GS ! n (size,
// ignored), LF and CR. Text is read as UTF-8 whatever the table, which is
// what this model's firmware does. Anything else is noted and skipped.
class EscPosDecoder
{
public:
    void feed(const QByteArray &bytes);
    // Ends a line still being filled (the job is over).
    void finish();

    const QVector<PrintedLine> &lines() const { return m_lines; }
    // Commands in order, readable: "ESC @", "ESC a 1", "unknown 0x1d 0x56".
    const QStringList &commands() const { return m_commands; }

private:
    void endLine();

    QVector<PrintedLine> m_lines;
    QStringList m_commands;
    QByteArray m_text;
    QByteArray m_pending; // an escape sequence cut between two reads
    int m_align = 0;
    bool m_bold = false;
    int m_table = 0;
};

} // namespace sim
