// SPDX-License-Identifier: GPL-2.0-or-later
// A receipt printer behind a serial device node (the bound RFCOMM port), through termios.
#include "posixserialtransport.h"

#include <QElapsedTimer>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

speed_t speedFor(int baudRate)
{
    switch (baudRate) {
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    default: return B0;
    }
}

} // namespace

PosixSerialTransport::PosixSerialTransport(const QString &path, int baudRate)
    : m_path(path)
    , m_baudRate(baudRate)
{
}

PosixSerialTransport::~PosixSerialTransport()
{
    close();
}

int PosixSerialTransport::open()
{
    if (m_fd >= 0)
        return 0;
    // Opened blocking: a bound RFCOMM port makes its connection inside open(),
    // and the kernel's page time-out bounds that wait. Writes afterwards must
    // not block without a limit, so the descriptor turns non-blocking.
    const QByteArray path = QFile::encodeName(m_path);
    m_fd = ::open(path.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_fd < 0)
        return -1;
    const int flags = ::fcntl(m_fd, F_GETFL);
    if (flags < 0 || ::fcntl(m_fd, F_SETFL, flags | O_NONBLOCK) < 0 || configure() < 0) {
        close();
        return -1;
    }
    return 0;
}

bool PosixSerialTransport::isOpen() const
{
    return m_fd >= 0;
}

int PosixSerialTransport::configure()
{
    const speed_t speed = speedFor(m_baudRate);
    termios tio{};
    if (m_fd < 0 || speed == B0 || ::tcgetattr(m_fd, &tio) < 0)
        return -1;
    ::cfmakeraw(&tio);
    tio.c_cflag &= ~(CSIZE | PARENB | CSTOPB | CRTSCTS);
    tio.c_cflag |= CS8 | CREAD | CLOCAL;
    tio.c_iflag &= ~(IXON | IXOFF | IXANY);
    tio.c_cc[VMIN] = 0;
    tio.c_cc[VTIME] = 0;
    if (::cfsetispeed(&tio, speed) < 0 || ::cfsetospeed(&tio, speed) < 0)
        return -1;
    return ::tcsetattr(m_fd, TCSANOW, &tio) < 0 ? -1 : 0;
}

int PosixSerialTransport::write(const char *bytes, int length)
{
    if (m_fd < 0 || length < 0)
        return -1;
    QElapsedTimer waited;
    waited.start();
    int sent = 0;
    while (sent < length) {
        const ssize_t n = ::write(m_fd, bytes + sent, static_cast<size_t>(length - sent));
        if (n > 0) {
            sent += static_cast<int>(n);
            continue;
        }
        if (n < 0 && errno != EAGAIN && errno != EINTR)
            return -1;
        const int left = kWriteLimitMs - static_cast<int>(waited.elapsed());
        if (left <= 0)
            return -1;
        pollfd room{m_fd, POLLOUT, 0};
        if (::poll(&room, 1, left) < 0 && errno != EINTR)
            return -1;
    }
    return 0;
}

int PosixSerialTransport::flush(int timeoutMs)
{
    if (m_fd < 0)
        return -1;
    // tcdrain() has no limit and a stalled printer never drains; the output
    // queue is watched instead.
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        int queued = 0;
        if (::ioctl(m_fd, TIOCOUTQ, &queued) < 0)
            return -1;
        if (queued == 0)
            return 0;
        if (waited.elapsed() >= timeoutMs)
            return -1;
        ::usleep(10 * 1000);
    }
}

void PosixSerialTransport::close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}
