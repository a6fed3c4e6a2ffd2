// SPDX-License-Identifier: GPL-2.0-or-later
// Carries out provisioning commands with its own wirelessutil, in a provisioning worker thread.
#pragma once

#include "provisioningprotocol.h"
#include "wirelessutil.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <atomic>

Q_DECLARE_METATYPE(provisioningprotocol::Command)

// Lives in a worker thread: every wpa_cli run blocks, and a join waits up to
// fifteen seconds for the association, which the sockets must not feel.
class WifiObject : public QObject
{
    Q_OBJECT

public:
    explicit WifiObject(QObject *parent = nullptr);

    // Stops a join waiting for its association, from any thread; the next
    // check ends it.
    void cancel() { m_cancelled = true; }

public slots:
    void execute(quint64 ticket, const provisioningprotocol::Command &command);

signals:
    // The whole reply: data lines ("D ..."), then "OK ..." or "E word".
    void finished(quint64 ticket, const QByteArray &reply);
    // A saved network was added, connected or forgotten (or not).
    void networkChanged(int verb, const QString &ssid, bool succeeded);

private:
    QByteArray scan();
    QByteArray list();
    QByteArray status();
    QByteArray add(const QString &ssid, const QString &passphrase);
    QByteArray connectSaved(const QString &ssid);
    QByteArray forget(const QString &ssid);
    bool prefer(int id);
    bool pause(int ms);

    wirelessutil m_wireless;
    std::atomic<bool> m_cancelled{false};
};
