// SPDX-License-Identifier: GPL-2.0-or-later
// A simulated server's HTTP side: a cpp-httplib server on its own thread, whose waits stop() cuts short.
#pragma once

#include <QString>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace httplib {
class Server;
}

class LocalHttpServer
{
public:
    LocalHttpServer();
    ~LocalHttpServer();
    LocalHttpServer(const LocalHttpServer &) = delete;
    LocalHttpServer &operator=(const LocalHttpServer &) = delete;

    // The server to add routes to before start().
    httplib::Server &routes();
    // Binds and starts answering; false (and logged under `name`) when the
    // address is taken or the server already runs.
    bool start(const QString &address, int port, const char *name);
    void stop();
    bool isRunning() const;

    // Waits up to `milliseconds` inside a handler; false when the server is
    // stopping meanwhile, so a silent or slow answer never holds stop() up.
    bool pause(int milliseconds);

private:
    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
    bool m_running = false;
    std::mutex m_waitMutex;
    std::condition_variable m_waitCondition;
    bool m_stopping = false;
};
