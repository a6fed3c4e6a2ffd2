// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated regional analysis server: takes the pupil recording, answers the simulated child's refraction.
#pragma once

#include "simulatedworld.h"

#include <QString>
#include <QStringList>

#include <memory>

// Listens in a thread of its own on a loopback address. A POST of a
// multipart form to "/production/MAC" or "/upload_pupil_images/MAC" with a
// "student_info" field and a "pupil_video" file holding a sound AVI gets one
// line: "x," and then OS sphere, OD sphere, OS cylinder, OD cylinder, pupil
// distance, OS axis, OD axis. Any other path gets 404, an incomplete form or
// a broken AVI 422 with the reason. Every request is logged in one line.
// All members may be called from any thread.
class AnalysisServer
{
public:
    static constexpr int kDefaultPort = 15000;

    // What the server does with an upload it accepted.
    enum class Fault {
        None,           // answers
        NoAnswer,       // holds the connection for the silence time, then answers too late
        ServerError,    // HTTP 500 with a text body
        ShortReply,     // the first four fields only
        EmptyReply,     // HTTP 200 with nothing in it
        GarbageNumbers, // eight fields that are no numbers
        SlowChunks,     // the whole answer, a few bytes per chunk with a pause between them
    };
    static constexpr int kFaultCount = 7;
    // Plain English, for the log and the control panel.
    static QString faultName(Fault fault);

    // What the server saw of the last request on an upload path.
    struct Upload
    {
        QString path;
        QString mac;
        QString studentInfo;
        QString fileName;
        QString fileType;
        qint64 fileSize = 0;
        int frames = 0;
        int status = 0;
        QString answer; // the body sent, or the fault's name
    };

    AnalysisServer();
    ~AnalysisServer();
    AnalysisServer(const AnalysisServer &) = delete;
    AnalysisServer &operator=(const AnalysisServer &) = delete;

    // False when the address is not a loopback address, the port cannot be
    // bound or the server already runs.
    bool start(const QString &address, int port = kDefaultPort);
    // Ends waits in progress, then the thread.
    void stop();
    bool isRunning() const;

    void setFault(Fault fault);
    Fault fault() const;
    // Answered instead of the simulated child's refraction; empty goes back to that.
    void setScriptedAnswer(const QString &line);
    QString scriptedAnswer() const;
    // How long NoAnswer holds a connection: by default longer than the device waits.
    void setSilenceMs(int milliseconds);
    // The pause between two chunks of SlowChunks.
    void setChunkPauseMs(int milliseconds);

    // Every request received, whatever its path.
    int requestCount() const;
    Upload lastUpload() const;

    // The answer line for a refraction.
    static QString answerFor(const SimulatedWorld::Refraction &refraction);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
