// SPDX-License-Identifier: GPL-2.0-or-later
// The report mailer: one MIME message handed to the mail server over SMTP, plain or encrypted.
#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

// Blocks the calling thread for the whole exchange, never longer than its
// time-out. Writes no files; attachments are read whole before the server
// is contacted, so a file that cannot be read sends nothing at all.
class Mailer
{
    Q_DECLARE_TR_FUNCTIONS(Mailer)

public:
    enum class Security {
        None,     // plain SMTP
        StartTls, // plain connection upgraded before anything else is said
        Tls,      // encrypted from the first byte (SMTPS)
    };

    struct Account
    {
        QString host;
        int port = 25;
        Security security = Security::StartTls;
        // Empty: the server is used without logging in.
        QString user;
        QString password;
        QString sender;
        // PEM certificates trusted for the server instead of the system's.
        QString caFile;
    };

    struct Attachment
    {
        QString path;
        // What the recipient sees; empty means the file's own name.
        QString fileName;
        QByteArray contentType = "application/octet-stream";
    };

    struct Message
    {
        // One or more addresses, separated by commas, semicolons or white space.
        QString recipients;
        QString subject;
        QString body;
        // The body goes out as UTF-8 in this type ("text/plain", "text/html").
        QByteArray bodyType = "text/plain";
        QVector<Attachment> attachments;
        // Stamped on the message; invalid means now by the host's clock.
        QDateTime date;
    };

    // A recording of a few megabytes over a weak Wi-Fi link needs most of
    // the minute. The whole send may take this plus one second for every
    // kSlowestBytesPerSecond of attachments, but ends sooner when less than
    // kStalledBytesPerSecond moved for kStalledSeconds.
    static constexpr int kDefaultTimeoutMs = 60000;
    static constexpr int kSlowestBytesPerSecond = 16 * 1024;
    static constexpr int kStalledBytesPerSecond = 256;
    static constexpr int kStalledSeconds = 20;
    static constexpr int kDefaultConnectTimeoutMs = 10000;

    explicit Mailer(Account account);

    // The whole send ends within totalMs, reaching the server within connectMs.
    void setTimeouts(int totalMs, int connectMs);
    int timeoutMs() const { return m_nTimeoutMs; }

    // Empty once the server has accepted the message, else what went wrong,
    // in words for the operator.
    QString send(const Message &message) const;

    // "none", "starttls" or "tls" in any case; false for anything else.
    static bool parseSecurity(const QString &text, Security &security);
    static QStringList splitAddresses(const QString &text);
    static bool isValidAddress(const QString &address);
    // A header value in ASCII: as it is when it can be, else RFC 2047 words.
    static QByteArray encodeHeaderText(const QString &text);

private:
    QString timedOut(const QString &server) const;

    Account m_account;
    int m_nTimeoutMs = kDefaultTimeoutMs;
    int m_nConnectTimeoutMs = kDefaultConnectTimeoutMs;
};
