// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated regional analysis server: takes the pupil recording, answers the simulated child's refraction.
#include "analysisserver.h"

#include "avireader.h"
#include "localhttpserver.h"

#include <QByteArray>
#include <QDebug>
#include <QHostAddress>

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace {

// The two paths of the four regions, and the device's MAC address as Qt
// prints it: upper case, colon-separated.
const char *const kUploadPattern = R"((/(?:production|upload_pupil_images)/)([0-9A-F]{2}(?::[0-9A-F]{2}){5}))";

// 422 rather than 400: the device reads the body of a content error but takes
// 400 for a protocol failure, and a refusal should not look like silence.
constexpr int kRefused = 422;

// Bytes per chunk of a slow answer: small enough that the line arrives in pieces.
constexpr size_t kSlowChunkBytes = 3;

const char *const kFaultNames[AnalysisServer::kFaultCount] = {
    "none", "no answer", "HTTP 500", "short reply", "empty reply", "garbage numbers", "slow chunks",
};

} // namespace

struct AnalysisServer::Private
{
    LocalHttpServer http;

    mutable std::mutex mutex; // guards the settings and lastUpload
    Fault fault = Fault::None;
    QString scriptedAnswer;
    int silenceMs = 100000;
    int chunkPauseMs = 300;
    Upload lastUpload;
    std::atomic<int> requests{0};

    bool pause(int milliseconds) { return http.pause(milliseconds); }

    void handleUpload(const httplib::Request &request, httplib::Response &response);
    void answer(httplib::Response &response, Fault chosen, const QString &line, Upload &seen);
};

QString AnalysisServer::faultName(Fault fault)
{
    const int index = static_cast<int>(fault);
    return index >= 0 && index < kFaultCount ? QLatin1String(kFaultNames[index]) : QStringLiteral("?");
}

QString AnalysisServer::answerFor(const SimulatedWorld::Refraction &r)
{
    return QString::asprintf("x,%+.2f,%+.2f,%+.2f,%+.2f,%d,%d,%d", r.osSphere, r.odSphere, r.osCylinder, r.odCylinder,
                             r.pupilDistance, r.osAxis, r.odAxis);
}

AnalysisServer::AnalysisServer()
    : d(std::make_unique<Private>())
{
}

AnalysisServer::~AnalysisServer()
{
    stop();
}

bool AnalysisServer::start(const QString &address, int port)
{
    if (d->http.isRunning())
        return false;
    const QHostAddress host(address);
    if (host.isNull() || !host.isLoopback()) {
        qDebug("AnalysisServer [%s] is not a loopback address: not started", qPrintable(address));
        return false;
    }

    httplib::Server *server = &d->http.routes();
    server->set_pre_routing_handler([this](const httplib::Request &, httplib::Response &) {
        ++d->requests;
        return httplib::Server::HandlerResponse::Unhandled;
    });
    server->Post(kUploadPattern, [this](const httplib::Request &request, httplib::Response &response) {
        d->handleUpload(request, response);
    });
    const auto notFound = [](const httplib::Request &request, httplib::Response &response) {
        response.status = 404;
        response.set_content("no such path", "text/plain");
        qDebug("AnalysisServer %s %s -> [404]", request.method.c_str(), request.path.c_str());
    };
    server->Post(".*", notFound);
    server->Get(".*", notFound);

    return d->http.start(address, port, "AnalysisServer");
}

void AnalysisServer::stop()
{
    d->http.stop();
}

bool AnalysisServer::isRunning() const
{
    return d->http.isRunning();
}

void AnalysisServer::setFault(Fault fault)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->fault = fault;
}

AnalysisServer::Fault AnalysisServer::fault() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->fault;
}

void AnalysisServer::setScriptedAnswer(const QString &line)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->scriptedAnswer = line;
}

QString AnalysisServer::scriptedAnswer() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->scriptedAnswer;
}

void AnalysisServer::setSilenceMs(int milliseconds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->silenceMs = std::max(0, milliseconds);
}

void AnalysisServer::setChunkPauseMs(int milliseconds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->chunkPauseMs = std::max(0, milliseconds);
}

int AnalysisServer::requestCount() const
{
    return d->requests;
}

AnalysisServer::Upload AnalysisServer::lastUpload() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->lastUpload;
}

void AnalysisServer::Private::handleUpload(const httplib::Request &request, httplib::Response &response)
{
    Upload seen;
    seen.path = QString::fromStdString(request.path);
    seen.mac = QString::fromStdString(request.matches[2]);

    QString refusal;
    if (!request.is_multipart_form_data()) {
        refusal = QStringLiteral("not a multipart form");
    } else if (!request.has_file("student_info")) {
        refusal = QStringLiteral("no student_info field");
    } else if (!request.has_file("pupil_video") || request.get_file_value("pupil_video").filename.empty()) {
        refusal = QStringLiteral("no pupil_video file");
    }
    if (request.has_file("student_info"))
        seen.studentInfo = QString::fromStdString(request.get_file_value("student_info").content);
    if (refusal.isEmpty()) {
        const httplib::MultipartFormData video = request.get_file_value("pupil_video");
        seen.fileName = QString::fromStdString(video.filename);
        seen.fileType = QString::fromStdString(video.content_type);
        seen.fileSize = static_cast<qint64>(video.content.size());
        const avireader::Summary avi =
            avireader::inspect(QByteArray::fromRawData(video.content.data(), static_cast<int>(video.content.size())));
        seen.frames = avi.frames;
        if (!avi.valid)
            refusal = QStringLiteral("not a valid AVI: ") + avi.problem;
    }

    Fault chosen;
    QString line;
    int silence;
    {
        std::lock_guard<std::mutex> lock(mutex);
        chosen = fault;
        line = scriptedAnswer.isEmpty() ? answerFor(SimulatedWorld::instance().refraction()) : scriptedAnswer;
        silence = silenceMs;
    }
    if (!refusal.isEmpty()) {
        seen.status = kRefused;
        seen.answer = refusal;
        response.status = kRefused;
        response.set_content(refusal.toStdString(), "text/plain");
    } else {
        if (chosen == Fault::NoAnswer)
            pause(silence);
        answer(response, chosen, line, seen);
    }

    qDebug("AnalysisServer POST %s mac [%s] file [%lld] frames [%d] -> [%d] [%s]", qPrintable(seen.path),
           qPrintable(seen.mac), seen.fileSize, seen.frames, seen.status, qPrintable(seen.answer));
    std::lock_guard<std::mutex> lock(mutex);
    lastUpload = seen;
}

void AnalysisServer::Private::answer(httplib::Response &response, Fault chosen, const QString &line, Upload &seen)
{
    QString body = line;
    switch (chosen) {
    case Fault::None: break;
    case Fault::NoAnswer: break;
    case Fault::ServerError:
        response.status = 500;
        body = QStringLiteral("Internal Server Error: the analysis failed");
        break;
    case Fault::ShortReply: body = line.section(QLatin1Char(','), 0, 3); break;
    case Fault::EmptyReply: body.clear(); break;
    case Fault::GarbageNumbers:
        // Eight fields, as a server with a broken formatter might send them.
        body = QStringLiteral("x,+1.25D,-0.5 dpt,?,--,62mm,ninety,180deg");
        break;
    case Fault::SlowChunks: {
        int pauseMs;
        {
            std::lock_guard<std::mutex> lock(mutex);
            pauseMs = chunkPauseMs;
        }
        auto text = std::make_shared<std::string>(body.toStdString());
        auto sent = std::make_shared<size_t>(0);
        response.set_chunked_content_provider("text/plain",
                                              [this, text, sent, pauseMs](size_t, httplib::DataSink &sink) {
                                                  if (*sent > 0 && !pause(pauseMs))
                                                      return false;
                                                  const size_t count = std::min(kSlowChunkBytes, text->size() - *sent);
                                                  if (count > 0 && !sink.write(text->data() + *sent, count))
                                                      return false;
                                                  *sent += count;
                                                  if (*sent == text->size())
                                                      sink.done();
                                                  return true;
                                              });
        break;
    }
    }
    if (chosen != Fault::SlowChunks)
        response.set_content(body.toStdString(), "text/plain");
    seen.status = response.status > 0 ? response.status : 200;
    seen.answer = chosen == Fault::None ? body : faultName(chosen) + QStringLiteral(": ") + body;
}
