// SPDX-License-Identifier: GPL-2.0-or-later
// A simulated server's HTTP side: a cpp-httplib server on its own thread, whose waits stop() cuts short.
#include "localhttpserver.h"

#include <httplib.h>

#include <QDebug>

#include <sys/socket.h>

LocalHttpServer::LocalHttpServer() = default;

LocalHttpServer::~LocalHttpServer()
{
    stop();
}

httplib::Server &LocalHttpServer::routes()
{
    if (!m_server) {
        m_server = std::make_unique<httplib::Server>();
        // cpp-httplib's default adds SO_REUSEPORT, with which a second server on
        // the same address and port would share the requests instead of failing.
        m_server->set_socket_options([](int socket) {
            const int yes = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        });
        // A connection left open by the client would otherwise hold stop() up.
        m_server->set_keep_alive_timeout(1);
    }
    return *m_server;
}

bool LocalHttpServer::start(const QString &address, int port, const char *name)
{
    if (m_running)
        return false;
    if (!routes().bind_to_port(address.toStdString(), port)) {
        qDebug("%s cannot listen on [%s:%d]", name, qPrintable(address), port);
        m_server.reset();
        return false;
    }
    {
        std::lock_guard<std::mutex> lock(m_waitMutex);
        m_stopping = false;
    }
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
    // A stop() before the thread listens would be lost, and the join would
    // wait for ever: start() returns once the server runs (or gives up).
    for (int waited = 0; !m_server->is_running() && waited < 2000; waited += 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    m_running = true;
    qDebug("%s listening on [%s:%d]", name, qPrintable(address), port);
    return true;
}

void LocalHttpServer::stop()
{
    if (!m_running)
        return;
    {
        std::lock_guard<std::mutex> lock(m_waitMutex);
        m_stopping = true;
    }
    m_waitCondition.notify_all();
    m_server->stop();
    m_thread.join();
    m_server.reset();
    m_running = false;
}

bool LocalHttpServer::isRunning() const
{
    return m_running;
}

bool LocalHttpServer::pause(int milliseconds)
{
    std::unique_lock<std::mutex> lock(m_waitMutex);
    return !m_waitCondition.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return m_stopping; });
}
