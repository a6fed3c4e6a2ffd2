// SPDX-License-Identifier: GPL-2.0-or-later
// The report mailer: one MIME message handed to the mail server over SMTP, plain or encrypted.
#include "mailer.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>
#include <QUuid>

#include <curl/curl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace {

struct EasyDeleter
{
    void operator()(CURL *handle) const { curl_easy_cleanup(handle); }
};
struct MimeDeleter
{
    void operator()(curl_mime *mime) const { curl_mime_free(mime); }
};
struct ListDeleter
{
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};
using Easy = std::unique_ptr<CURL, EasyDeleter>;
using Mime = std::unique_ptr<curl_mime, MimeDeleter>;
using List = std::unique_ptr<curl_slist, ListDeleter>;

void initialiseCurlOnce()
{
    // Not thread-safe in itself, and curl_easy_init would otherwise do it
    // behind our back on whichever thread sends first.
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

bool append(List &list, const QByteArray &line)
{
    curl_slist *grown = curl_slist_append(list.get(), line.constData());
    if (!grown)
        return false;
    list.release();
    list.reset(grown);
    return true;
}

// An attachment already in memory, streamed to libcurl without a second copy.
struct Source
{
    QByteArray bytes;
    curl_off_t position = 0;
};

size_t readSource(char *buffer, size_t size, size_t items, void *argument)
{
    auto *source = static_cast<Source *>(argument);
    const size_t left = size_t(source->bytes.size() - source->position);
    const size_t count = std::min(size * items, left);
    std::memcpy(buffer, source->bytes.constData() + source->position, count);
    source->position += curl_off_t(count);
    return count;
}

int seekSource(void *argument, curl_off_t offset, int origin)
{
    auto *source = static_cast<Source *>(argument);
    if (origin != SEEK_SET || offset < 0 || offset > curl_off_t(source->bytes.size()))
        return CURL_SEEKFUNC_FAIL;
    source->position = offset;
    return CURL_SEEKFUNC_OK;
}

// The first refusal and the command it answered, to tell a refused
// recipient from a refused sender or message: libcurl reports each of them
// as the same send error.
struct Transcript
{
    QByteArray lastCommand;
    QByteArray refusedCommand;
    QByteArray refusal;
};

int recordExchange(CURL *, curl_infotype type, char *data, size_t size, void *argument)
{
    auto *transcript = static_cast<Transcript *>(argument);
    if (type == CURLINFO_HEADER_OUT) {
        // Only the verb is kept: the lines after AUTH carry the credentials.
        static const QByteArrayList verbs = {"EHLO", "HELO", "STARTTLS", "AUTH", "MAIL", "RCPT", "DATA"};
        const QByteArray text = QByteArray(data, int(size)).trimmed();
        const QByteArray verb = text.split(' ').constFirst().toUpper();
        if (verbs.contains(verb))
            transcript->lastCommand = verb;
    } else if (type == CURLINFO_HEADER_IN && transcript->refusal.isEmpty() && size > 0 &&
               (data[0] == '4' || data[0] == '5')) {
        transcript->refusal = QByteArray(data, int(size)).trimmed();
        transcript->refusedCommand = transcript->lastCommand;
    }
    return 0;
}

// libcurl quotes a file name but passes other bytes as they are; a header
// must stay ASCII without a charset of its own.
QString plainFileName(const QString &name)
{
    QString plain = name;
    for (QChar &c : plain) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7e || c == QLatin1Char('"') || c == QLatin1Char('\\'))
            c = QLatin1Char('_');
    }
    return plain;
}

} // namespace

Mailer::Mailer(Account account)
    : m_account(std::move(account))
{
}

void Mailer::setTimeouts(int totalMs, int connectMs)
{
    m_nTimeoutMs = std::max(1, totalMs);
    m_nConnectTimeoutMs = std::max(1, std::min(connectMs, m_nTimeoutMs));
}

bool Mailer::parseSecurity(const QString &text, Security &security)
{
    const QString name = text.trimmed().toLower();
    if (name == QLatin1String("none"))
        security = Security::None;
    else if (name == QLatin1String("starttls"))
        security = Security::StartTls;
    else if (name == QLatin1String("tls"))
        security = Security::Tls;
    else
        return false;
    return true;
}

QStringList Mailer::splitAddresses(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    return text.split(separators, Qt::SkipEmptyParts);
}

bool Mailer::isValidAddress(const QString &address)
{
    // Deliberately loose: the server judges the mailbox. This only keeps out
    // what would break the SMTP command or the header it is written into.
    static const QRegularExpression form(QStringLiteral("^[!#-'*+\\-/-9=?A-Z^-~.]+@[A-Za-z0-9.\\-\\[\\]:]+$"));
    return form.match(address).hasMatch() && !address.startsWith(QLatin1Char('.')) &&
           !address.contains(QLatin1String(".."));
}

QByteArray Mailer::encodeHeaderText(const QString &text)
{
    QString flat = text;
    for (QChar &c : flat) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            c = QLatin1Char(' ');
    }
    bool ascii = true;
    for (const QChar c : flat)
        ascii = ascii && c.unicode() < 0x80;
    if (ascii)
        return flat.toLatin1();

    // RFC 2047 keeps an encoded word to 75 characters; 45 bytes of UTF-8 fit
    // in one. Words are cut between characters, never inside one.
    QByteArray encoded;
    QByteArray chunk;
    const auto flush = [&encoded, &chunk] {
        if (chunk.isEmpty())
            return;
        if (!encoded.isEmpty())
            encoded += ' ';
        encoded += "=?UTF-8?B?" + chunk.toBase64() + "?=";
        chunk.clear();
    };
    for (int i = 0; i < flat.size(); ++i) {
        const int length = flat.at(i).isHighSurrogate() && i + 1 < flat.size() ? 2 : 1;
        const QByteArray character = flat.mid(i, length).toUtf8();
        if (chunk.size() + character.size() > 45)
            flush();
        chunk += character;
        i += length - 1;
    }
    flush();
    return encoded;
}

QString Mailer::timedOut(const QString &server) const
{
    return tr("The mail server %1 did not answer within %2 seconds")
        .arg(server)
        .arg(QString::number(m_nTimeoutMs / 1000.0, 'g', 3));
}

QString Mailer::send(const Message &message) const
{
    const Account &account = m_account;
    const QString server = QStringLiteral("%1:%2").arg(account.host).arg(account.port);
    if (account.host.trimmed().isEmpty())
        return tr("No mail server is set");
    QUrl url;
    url.setScheme(QLatin1String(account.security == Security::Tls ? "smtps" : "smtp"));
    url.setHost(account.host.trimmed(), QUrl::StrictMode);
    url.setPort(account.port);
    if (!url.isValid() || url.host().isEmpty() || account.port <= 0 || account.port > 65535)
        return tr("The mail server %1 is not a valid address").arg(server);
    if (!isValidAddress(account.sender))
        return tr("The sender address \"%1\" is not valid").arg(account.sender);

    const QStringList recipients = splitAddresses(message.recipients);
    if (recipients.isEmpty())
        return tr("No recipient address is set");
    for (const QString &recipient : recipients) {
        if (!isValidAddress(recipient))
            return tr("The recipient address \"%1\" is not valid").arg(recipient);
    }

    // Every attachment is read before the server hears from us, so a missing
    // file never leaves a message without it in someone's inbox.
    std::vector<Source> sources(size_t(message.attachments.size()));
    for (int i = 0; i < message.attachments.size(); ++i) {
        const QString &path = message.attachments.at(i).path;
        QFile file(path);
        if (!file.exists())
            return tr("The attachment %1 is missing").arg(path);
        if (!file.open(QIODevice::ReadOnly))
            return tr("The attachment %1 cannot be read").arg(path);
        sources[size_t(i)].bytes = file.readAll();
        if (file.error() != QFileDevice::NoError)
            return tr("The attachment %1 cannot be read").arg(path);
        if (sources[size_t(i)].bytes.isEmpty())
            return tr("The attachment %1 is empty").arg(path);
    }

    initialiseCurlOnce();
    Easy easy(curl_easy_init());
    if (!easy)
        return tr("The mailer cannot start");
    CURL *curl = easy.get();
    Mime mime(curl_mime_init(curl));
    List headers;
    List recipientList;
    if (!mime)
        return tr("The mailer cannot start");

    const QDateTime date = message.date.isValid() ? message.date : QDateTime::currentDateTimeUtc();
    const QByteArray sender = account.sender.toLatin1();
    QByteArray to;
    bool built = true;
    for (const QString &recipient : recipients) {
        to += (to.isEmpty() ? "" : ", ") + recipient.toLatin1();
        built = built && append(recipientList, '<' + recipient.toLatin1() + '>');
    }
    built = built && append(headers, "Date: " + date.toString(Qt::RFC2822Date).toLatin1());
    built = built && append(headers, "From: <" + sender + '>');
    built = built && append(headers, "To: " + to);
    built = built && append(headers, "Subject: " + encodeHeaderText(message.subject));
    // Large providers turn away mail without one as likely spam.
    const QByteArray domain = sender.mid(sender.lastIndexOf('@') + 1);
    built = built && append(headers, "Message-ID: <" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + '@' +
                                         (domain.isEmpty() ? QByteArray("localhost") : domain) + '>');

    const QByteArray body = message.body.toUtf8();
    curl_mimepart *part = curl_mime_addpart(mime.get());
    built = built && part && curl_mime_data(part, body.constData(), size_t(body.size())) == CURLE_OK &&
            curl_mime_type(part, QByteArray(message.bodyType + "; charset=utf-8").constData()) == CURLE_OK &&
            // Quoted-printable: an exported table is one line far longer than SMTP allows.
            curl_mime_encoder(part, "quoted-printable") == CURLE_OK;
    for (int i = 0; built && i < message.attachments.size(); ++i) {
        const Attachment &attachment = message.attachments.at(i);
        Source &source = sources[size_t(i)];
        const QString shownName =
            plainFileName(attachment.fileName.isEmpty() ? QFileInfo(attachment.path).fileName() : attachment.fileName);
        part = curl_mime_addpart(mime.get());
        built = part &&
                curl_mime_data_cb(part, curl_off_t(source.bytes.size()), readSource, seekSource, nullptr, &source) ==
                    CURLE_OK &&
                curl_mime_type(part, attachment.contentType.constData()) == CURLE_OK &&
                curl_mime_filename(part, shownName.toLatin1().constData()) == CURLE_OK &&
                curl_mime_encoder(part, "base64") == CURLE_OK;
    }
    if (!built)
        return tr("The mailer cannot start");

    char errors[CURL_ERROR_SIZE] = {};
    Transcript transcript;
    const QByteArray address = url.toString().toUtf8();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errors);
    // Time-outs must not rely on SIGALRM: the program has other threads.
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    // A large export over a weak link may rightly need longer than the
    // limit; the limit grows with the attachments, and a link that stalls
    // is given up on by the low-speed limit long before that.
    qint64 attached = 0;
    for (const Source &source : sources)
        attached += source.bytes.size();
    const qint64 totalMs = m_nTimeoutMs + attached * 1000 / kSlowestBytesPerSecond;
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, long(totalMs));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, long(kStalledBytesPerSecond));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, long(kStalledSeconds));
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, long(m_nConnectTimeoutMs));
    curl_easy_setopt(curl, CURLOPT_USE_SSL,
                     long(account.security == Security::None ? CURLUSESSL_NONE : CURLUSESSL_ALL));
    const QByteArray caFile = QFile::encodeName(account.caFile);
    if (!caFile.isEmpty())
        curl_easy_setopt(curl, CURLOPT_CAINFO, caFile.constData());
    const QByteArray user = account.user.toUtf8();
    const QByteArray password = account.password.toUtf8();
    if (!user.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    }
    const QByteArray mailFrom = '<' + sender + '>';
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, mailFrom.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, recipientList.get());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_MIMEPOST, mime.get());
    // The debug function only sees the exchange with verbose on; it prints nothing.
    curl_easy_setopt(curl, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(curl, CURLOPT_DEBUGFUNCTION, recordExchange);
    curl_easy_setopt(curl, CURLOPT_DEBUGDATA, &transcript);

    const CURLcode result = curl_easy_perform(curl);
    // The message is accepted, refused or given up on. Left open, the
    // connection would be closed with a QUIT whose reply libcurl awaits for
    // up to two minutes, well past our time-out, inside curl_easy_cleanup.
    curl_socket_t connection = CURL_SOCKET_BAD;
    if (curl_easy_getinfo(curl, CURLINFO_ACTIVESOCKET, &connection) == CURLE_OK && connection != CURL_SOCKET_BAD)
        ::shutdown(connection, SHUT_RDWR);
    if (result == CURLE_OK)
        return QString();

    const QString detail = QString::fromUtf8(errors[0] ? errors : curl_easy_strerror(result));
    switch (result) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT: return tr("The mail server %1 cannot be reached").arg(server);
    case CURLE_OPERATION_TIMEDOUT: return timedOut(server);
    case CURLE_LOGIN_DENIED: return tr("The mail server %1 refused the user name or password").arg(server);
    case CURLE_USE_SSL_FAILED: return tr("The mail server %1 does not offer an encrypted connection").arg(server);
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
        return tr("The encrypted connection to the mail server %1 failed: %2").arg(server, detail);
    default: break;
    }
    if (!transcript.refusal.isEmpty()) {
        const QString reply = QString::fromUtf8(transcript.refusal);
        if (transcript.refusedCommand == "RCPT")
            return tr("The mail server refused the recipient: %1").arg(reply);
        if (transcript.refusedCommand == "MAIL")
            return tr("The mail server refused mail from %1: %2").arg(account.sender, reply);
        if (transcript.refusedCommand == "AUTH")
            return tr("The mail server %1 refused the login: %2").arg(server, reply);
        if (transcript.refusedCommand.isEmpty() || transcript.refusedCommand == "EHLO" ||
            transcript.refusedCommand == "HELO" || transcript.refusedCommand == "STARTTLS")
            return tr("The mail server %1 turned the device away: %2").arg(server, reply);
        return tr("The mail server refused the message: %1").arg(reply);
    }
    return tr("Sending the mail to %1 failed: %2").arg(server, detail);
}
