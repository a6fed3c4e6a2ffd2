// SPDX-License-Identifier: GPL-2.0-or-later
// The simulator's time-of-flight ranging sensor: a register model of the chip behind the I2C bus calls.
#pragma once

#include "i2cbus.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

// Answers the Linux I2C device interface of bus 0 with the ranging chip at
// address 0x29: a write transaction carries a 16-bit register index (MSB
// first) and then data for consecutive registers; a read continues from the
// index last written. The chip boots shortly after power-up, identifies
// itself at 0x010F, takes its configuration in plain registers, and while
// ranging completes a measurement per inter-measurement period (at least the
// timing budget): the result block at 0x0089 is filled from the simulated
// world's child distance, and the data-ready bit of 0x0031 (at the polarity
// chosen in 0x0030) is raised until the interrupt is cleared at 0x0086. A
// measurement completed while the previous one is still uncleared is lost.
//
// The program uses the one instance(); a test may build its own for a clean
// state. Every public call is thread-safe.
class SimulatedRangingSensor : public I2cBus
{
public:
    static constexpr const char *kDevicePath = "/dev/i2c-0";
    static constexpr int kAddress = 0x29;
    static constexpr std::chrono::milliseconds kBootTime{2};

    static SimulatedRangingSensor &instance();

    SimulatedRangingSensor();
    ~SimulatedRangingSensor() override;
    SimulatedRangingSensor(const SimulatedRangingSensor &) = delete;
    SimulatedRangingSensor &operator=(const SimulatedRangingSensor &) = delete;

    int open(const char *path, int flags) override;
    int close(int fd) override;
    int ioctl(int fd, unsigned long request, unsigned long argument) override;
    ssize_t read(int fd, void *buffer, size_t count) override;
    ssize_t write(int fd, const void *buffer, size_t count) override;

    // Faults. Each takes effect at the next transaction that it concerns.
    void setPresent(bool present);       // absent: the bus node is missing (ENOENT); open buses get no answer
    void setNeverReady(bool neverReady); // ranging runs but no measurement ever completes
    void setSilent(bool silent);         // the bus node is there, but the chip acknowledges nothing
    void setRawRangeStatus(int raw);     // device status 0..31 of every measurement; -1: as measured
    // Unpaced, a measurement completes as soon as the previous one has been
    // cleared instead of once per period, so that tests need not wait.
    void setPaced(bool paced);
    void setNoiseMm(int amplitude); // measured distance within +-amplitude of the world's
    // Registers back to their power-on values, ranging stopped; the firmware
    // reports booted after bootTime.
    void powerCycle(std::chrono::milliseconds bootTime = kBootTime);
    // A healthy, present, paced chip with a little noise again.
    void resetFaults();

    // What tests and the control panel may observe.
    struct Write
    {
        uint16_t index;
        std::vector<uint8_t> data;
    };
    // Data writes, oldest first (the index-only writes that start a read are
    // not among them); only the most recent ones are kept.
    std::vector<Write> writes() const;
    void clearWrites();
    int busOpens() const;
    int openDescriptors() const;
    int transactions() const; // reads and writes the chip answered
    int measurements() const;
    bool ranging() const;
    uint8_t registerValue(uint16_t index) const;
    // Stores a byte as if the chip had produced it (result registers included).
    void setRegisterValue(uint16_t index, uint8_t value);

private:
    using Clock = std::chrono::steady_clock;

    struct Handle
    {
        int address = -1;
    };

    void resetRegisters();
    uint8_t readRegister(uint16_t index) const;
    void writeRegister(uint16_t index, uint8_t value, Clock::time_point now);
    void startRanging(Clock::time_point now);
    // Completes the measurements whose time has come.
    void advance(Clock::time_point now);
    void measure();
    Clock::duration measurementPeriod() const;
    uint16_t word(uint16_t index) const;
    uint32_t dword(uint16_t index) const;
    bool answers(int fd, int *error) const;

    mutable std::mutex m_mutex;
    std::map<int, Handle> m_handles;
    std::vector<uint8_t> m_registers;
    uint16_t m_index = 0;

    Clock::time_point m_bootedAt;
    bool m_ranging = false;
    Clock::time_point m_rangingStart;
    Clock::duration m_period{};
    int64_t m_periodsServed = 0;
    bool m_interruptPending = false;
    uint8_t m_streamCount = 0;
    uint32_t m_noiseState = 1;

    bool m_present = true;
    bool m_neverReady = false;
    bool m_silent = false;
    int m_rawRangeStatus = -1;
    bool m_paced = true;
    int m_noiseMm = 2;

    std::deque<Write> m_writes;
    int m_busOpens = 0;
    int m_transactions = 0;
    int m_measurements = 0;
};
