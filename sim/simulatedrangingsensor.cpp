// SPDX-License-Identifier: GPL-2.0-or-later
// The simulator's time-of-flight ranging sensor: a register model of the chip behind the I2C bus calls.
#include "simulatedrangingsensor.h"

#include "simulatedworld.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <linux/i2c-dev.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr uint16_t kGpioMuxControl = 0x0030;
constexpr uint16_t kGpioStatus = 0x0031;
constexpr uint16_t kPhaseCalTimeout = 0x004B;
constexpr uint16_t kRangeTimeoutA = 0x005E;
constexpr uint16_t kInterMeasurementPeriod = 0x006C;
constexpr uint16_t kInterruptClear = 0x0086;
constexpr uint16_t kModeStart = 0x0087;
constexpr uint16_t kResultBlock = 0x0089;
constexpr uint16_t kOscillatorCalibration = 0x00DE;
constexpr uint16_t kFirmwareStatus = 0x00E5;
constexpr uint16_t kModelId = 0x010F;
constexpr uint16_t kModuleType = 0x0110;

constexpr uint8_t kModelIdValue = 0xEE;
constexpr uint8_t kModuleTypeValue = 0xAC;
// Oscillator ticks per millisecond of this part: with the chip's 1.075
// scaling, the default configuration's period 3977 is its 100 ms.
constexpr uint16_t kOscillatorTicksPerMs = 37;
constexpr uint8_t kShortModeMarker = 0x14;
constexpr uint8_t kActiveLowBit = 0x10;
constexpr uint8_t kModeBits = 0x70; // timed, back-to-back or single-shot ranging
constexpr uint8_t kClearRangeInterrupt = 0x01;

// Device range statuses: a completed range, and a target too faint to range.
constexpr uint8_t kRangeComplete = 9;
constexpr uint8_t kNoTarget = 4;
constexpr int kShortModeReachMm = 1300;
constexpr int kLongModeReachMm = 4000;

constexpr size_t kKeptWrites = 4096;
constexpr auto kShortestPeriod = std::chrono::milliseconds(15);

// The budget each timeout A value stands for, in either distance mode.
struct BudgetTimeout
{
    uint16_t timeoutA;
    int milliseconds;
};
constexpr BudgetTimeout kBudgetTimeouts[] = {
    {0x001D, 15}, {0x0051, 20}, {0x00D6, 33}, {0x01AE, 50},  {0x02E1, 100}, {0x03E1, 200}, {0x0591, 500},
    {0x001E, 20}, {0x0060, 33}, {0x00AD, 50}, {0x01CC, 100}, {0x02D9, 200}, {0x048F, 500},
};

uint16_t fixedPoint(double value, int fractionBits)
{
    const double scaled = std::round(value * (1 << fractionBits));
    return static_cast<uint16_t>(std::clamp(scaled, 0.0, 65535.0));
}

} // namespace

SimulatedRangingSensor &SimulatedRangingSensor::instance()
{
    // Lives until the process ends: the polling thread may still be inside a
    // transaction while the program exits.
    static SimulatedRangingSensor *const sensor = new SimulatedRangingSensor;
    return *sensor;
}

SimulatedRangingSensor::SimulatedRangingSensor()
    : m_registers(0x10000, 0)
{
    powerCycle();
}

SimulatedRangingSensor::~SimulatedRangingSensor()
{
    for (const auto &handle : m_handles)
        ::close(handle.first);
}

// --- descriptors ---

int SimulatedRangingSensor::open(const char *path, int)
{
    if (!path) {
        errno = EFAULT;
        return -1;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_present || std::strcmp(path, kDevicePath) != 0) {
        errno = ENOENT;
        return -1;
    }
    // A descriptor of our own, so that the number cannot collide with
    // another open file.
    const int fd = ::eventfd(0, EFD_CLOEXEC);
    if (fd < 0)
        return -1;
    m_handles[fd] = Handle();
    ++m_busOpens;
    return fd;
}

int SimulatedRangingSensor::close(int fd)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handles.erase(fd) == 0) {
        errno = EBADF;
        return -1;
    }
    ::close(fd);
    return 0;
}

int SimulatedRangingSensor::ioctl(int fd, unsigned long request, unsigned long argument)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto handle = m_handles.find(fd);
    if (handle == m_handles.end()) {
        errno = EBADF;
        return -1;
    }
    if (request != I2C_SLAVE && request != I2C_SLAVE_FORCE) {
        errno = ENOTTY;
        return -1;
    }
    if (argument > 0x7F) {
        errno = EINVAL;
        return -1;
    }
    handle->second.address = static_cast<int>(argument);
    return 0;
}

bool SimulatedRangingSensor::answers(int fd, int *error) const
{
    const auto handle = m_handles.find(fd);
    if (handle == m_handles.end()) {
        *error = EBADF;
        return false;
    }
    // Nobody acknowledges the address: the adapter reports the missing
    // acknowledgement as a remote I/O error.
    if (!m_present || m_silent || handle->second.address != kAddress) {
        *error = EREMOTEIO;
        return false;
    }
    return true;
}

// --- transactions ---

ssize_t SimulatedRangingSensor::write(int fd, const void *buffer, size_t count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    int error = 0;
    if (!answers(fd, &error)) {
        errno = error;
        return -1;
    }
    if (!buffer && count > 0) {
        errno = EFAULT;
        return -1;
    }
    // The chip takes nothing before a complete index.
    if (count < 2) {
        errno = EREMOTEIO;
        return -1;
    }
    ++m_transactions;
    const auto *bytes = static_cast<const uint8_t *>(buffer);
    const Clock::time_point now = Clock::now();
    // Unpaced measurements happen when someone looks, so that a stop or a
    // clear is not overtaken by a measurement nobody waited for.
    if (m_paced)
        advance(now);
    m_index = static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
    if (count > 2) {
        m_writes.push_back(Write{m_index, std::vector<uint8_t>(bytes + 2, bytes + count)});
        if (m_writes.size() > kKeptWrites)
            m_writes.pop_front();
    }
    for (size_t i = 2; i < count; ++i)
        writeRegister(m_index++, bytes[i], now);
    return static_cast<ssize_t>(count);
}

ssize_t SimulatedRangingSensor::read(int fd, void *buffer, size_t count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    int error = 0;
    if (!answers(fd, &error)) {
        errno = error;
        return -1;
    }
    if (!buffer && count > 0) {
        errno = EFAULT;
        return -1;
    }
    ++m_transactions;
    advance(Clock::now());
    auto *bytes = static_cast<uint8_t *>(buffer);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = readRegister(m_index++);
    return static_cast<ssize_t>(count);
}

// --- registers ---

void SimulatedRangingSensor::resetRegisters()
{
    std::fill(m_registers.begin(), m_registers.end(), 0);
    m_registers[kModelId] = kModelIdValue;
    m_registers[kModuleType] = kModuleTypeValue;
    m_registers[kOscillatorCalibration] = static_cast<uint8_t>(kOscillatorTicksPerMs >> 8);
    m_registers[kOscillatorCalibration + 1] = static_cast<uint8_t>(kOscillatorTicksPerMs & 0xFF);
}

uint8_t SimulatedRangingSensor::readRegister(uint16_t index) const
{
    switch (index) {
    case kFirmwareStatus: return Clock::now() >= m_bootedAt ? 0x01 : 0x00;
    case kGpioStatus: {
        const bool activeHigh = (m_registers[kGpioMuxControl] & kActiveLowBit) == 0;
        const bool level = m_interruptPending ? activeHigh : !activeHigh;
        return static_cast<uint8_t>((m_registers[kGpioStatus] & ~0x01) | (level ? 0x01 : 0x00));
    }
    default: return m_registers[index];
    }
}

void SimulatedRangingSensor::writeRegister(uint16_t index, uint8_t value, Clock::time_point now)
{
    switch (index) {
    case kModelId:
    case kModuleType:
    case kFirmwareStatus:
    case kOscillatorCalibration:
    case kOscillatorCalibration + 1: return; // read-only
    case kInterruptClear:
        m_registers[index] = value;
        if (value & kClearRangeInterrupt)
            m_interruptPending = false;
        return;
    case kModeStart:
        m_registers[index] = value;
        if (value & kModeBits)
            startRanging(now);
        else
            m_ranging = false;
        return;
    default: m_registers[index] = value; return;
    }
}

uint16_t SimulatedRangingSensor::word(uint16_t index) const
{
    return static_cast<uint16_t>(m_registers[index] << 8 | m_registers[index + 1]);
}

uint32_t SimulatedRangingSensor::dword(uint16_t index) const
{
    return static_cast<uint32_t>(word(index)) << 16 | word(static_cast<uint16_t>(index + 2));
}

// --- ranging ---

SimulatedRangingSensor::Clock::duration SimulatedRangingSensor::measurementPeriod() const
{
    // A measurement takes its budget; the next starts at the next
    // inter-measurement tick after it.
    std::chrono::milliseconds budget(0);
    const uint16_t timeoutA = word(kRangeTimeoutA);
    for (const BudgetTimeout &entry : kBudgetTimeouts) {
        if (entry.timeoutA == timeoutA)
            budget = std::chrono::milliseconds(entry.milliseconds);
    }
    std::chrono::microseconds interval(0);
    const uint16_t ticksPerMs = word(kOscillatorCalibration) & 0x3FF;
    if (ticksPerMs > 0)
        interval = std::chrono::microseconds(
            static_cast<int64_t>(dword(kInterMeasurementPeriod) * 1000.0 / (ticksPerMs * 1.075)));
    return std::max<Clock::duration>({budget, interval, kShortestPeriod});
}

void SimulatedRangingSensor::startRanging(Clock::time_point now)
{
    m_ranging = true;
    m_rangingStart = now;
    m_period = measurementPeriod();
    m_periodsServed = 0;
    m_interruptPending = false;
}

void SimulatedRangingSensor::advance(Clock::time_point now)
{
    if (!m_ranging || m_neverReady)
        return;
    if (!m_paced) {
        if (!m_interruptPending)
            measure();
        return;
    }
    const int64_t periods = (now - m_rangingStart) / m_period;
    if (periods <= m_periodsServed)
        return;
    m_periodsServed = periods;
    if (!m_interruptPending)
        measure();
}

void SimulatedRangingSensor::measure()
{
    // A little noise from a fixed sequence, so that runs repeat.
    m_noiseState = m_noiseState * 1664525u + 1013904223u;
    const int noise = m_noiseMm > 0 ? static_cast<int>((m_noiseState >> 8) % (2u * m_noiseMm + 1)) - m_noiseMm : 0;
    const int distance = std::clamp(SimulatedWorld::instance().childDistanceMm.load() + noise, 0, 65535);
    const bool shortMode = m_registers[kPhaseCalTimeout] == kShortModeMarker;
    const int reach = shortMode ? kShortModeReachMm : kLongModeReachMm;
    const uint8_t status = m_rawRangeStatus >= 0 ? static_cast<uint8_t>(m_rawRangeStatus)
                           : distance <= reach   ? kRangeComplete
                                                 : kNoTarget;

    // Return signal falls with the square of the distance; the chip enables
    // more SPADs the weaker it gets. Rates are 9.7 fixed-point MCPS.
    const double metres = std::max(distance, 30) / 1000.0;
    const double signalMcps = distance <= reach ? 10.0 / (metres * metres) : 0.05;
    const double ambientMcps = 0.01 + SimulatedWorld::instance().ambientLight.load() * 0.02;
    const int spads = std::clamp(16 + distance / 16, 16, 255);
    const uint16_t signal = fixedPoint(signalMcps, 7);
    const uint16_t ambient = fixedPoint(ambientMcps, 7);
    const uint16_t sigma = fixedPoint(1.0 + distance / 400.0, 2);

    uint8_t *block = &m_registers[kResultBlock];
    std::fill(block, block + 17, 0);
    block[0] = status;
    block[2] = ++m_streamCount;
    block[3] = static_cast<uint8_t>(spads);
    block[5] = static_cast<uint8_t>(signal >> 8);
    block[6] = static_cast<uint8_t>(signal & 0xFF);
    block[7] = static_cast<uint8_t>(ambient >> 8);
    block[8] = static_cast<uint8_t>(ambient & 0xFF);
    block[9] = static_cast<uint8_t>(sigma >> 8);
    block[10] = static_cast<uint8_t>(sigma & 0xFF);
    block[13] = static_cast<uint8_t>(distance >> 8);
    block[14] = static_cast<uint8_t>(distance & 0xFF);
    block[15] = block[5];
    block[16] = block[6];
    m_interruptPending = true;
    ++m_measurements;
}

// --- control ---

void SimulatedRangingSensor::setPresent(bool present)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_present = present;
}

void SimulatedRangingSensor::setNeverReady(bool neverReady)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_neverReady = neverReady;
}

void SimulatedRangingSensor::setSilent(bool silent)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_silent = silent;
}

void SimulatedRangingSensor::setRawRangeStatus(int raw)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_rawRangeStatus = raw < 0 ? -1 : (raw & 0x1F);
}

void SimulatedRangingSensor::setPaced(bool paced)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (paced && !m_paced) {
        // Periods that passed unpaced are not owed afterwards.
        m_rangingStart = Clock::now();
        m_periodsServed = 0;
    }
    m_paced = paced;
}

void SimulatedRangingSensor::setNoiseMm(int amplitude)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_noiseMm = std::max(amplitude, 0);
}

void SimulatedRangingSensor::powerCycle(std::chrono::milliseconds bootTime)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    resetRegisters();
    m_index = 0;
    m_ranging = false;
    m_interruptPending = false;
    m_bootedAt = Clock::now() + bootTime;
}

void SimulatedRangingSensor::resetFaults()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_present = true;
    m_neverReady = false;
    m_silent = false;
    m_rawRangeStatus = -1;
    m_paced = true;
    m_noiseMm = 2;
}

std::vector<SimulatedRangingSensor::Write> SimulatedRangingSensor::writes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::vector<Write>(m_writes.begin(), m_writes.end());
}

void SimulatedRangingSensor::clearWrites()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_writes.clear();
}

int SimulatedRangingSensor::busOpens() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_busOpens;
}

int SimulatedRangingSensor::openDescriptors() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_handles.size());
}

int SimulatedRangingSensor::transactions() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_transactions;
}

int SimulatedRangingSensor::measurements() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_measurements;
}

bool SimulatedRangingSensor::ranging() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_ranging;
}

uint8_t SimulatedRangingSensor::registerValue(uint16_t index) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return readRegister(index);
}

void SimulatedRangingSensor::setRegisterValue(uint16_t index, uint8_t value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_registers[index] = value;
}
