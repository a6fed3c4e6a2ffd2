// SPDX-License-Identifier: GPL-2.0-or-later
// The device settings: 22 texts kept as one "|"-joined line in CAMCFG/config.txt.
#pragma once

#include <QString>

#include <array>

// Settings are known by position, 1 to 22. Every operation answers with a
// text, as the settings pages expect: "1"/"0" for success of a save, "1"/""
// for whether a parse had to fill in defaults.
class CamCfg
{
public:
    enum Position {
        Exposure = 1,
        Gain = 2,
        Setting3 = 3,
        LedLoop = 4,
        Setting5 = 5,
        Resolution = 6,
        AnalysisServer = 7,
        TimeZone = 8,
        ScreenOffMinutes = 9,
        PowerOffMinutes = 10,
        ReferralCriterion = 11,
        Region = 12,
        Language = 13,
        PrinterKind = 14,
        BluetoothPrinter = 15,
        PrinterDeviceId = 16, // the cloud printer's device ID
        AutoCapture = 17,
        PitchOffset = 18,
        DistanceOffset = 19,
        EmailReporting = 20,
        EmailAddress = 21,
        // What the history export mails besides its HTML table: "html", then
        // ",csv", ",pdf" and ",fhir" for each file switched on.
        ReportAttachments = 22,
    };
    static constexpr int kPositions = 22;

    static QString defaultValue(int position);

    void setBaseDir(const QString &dir) { m_strBaseDir = dir; }
    QString baseDir() const { return m_strBaseDir; }
    QString configDir() const;
    QString configFilePath() const;

    QString rawText() const { return m_strRaw; }
    void setRawText(const QString &text) { m_strRaw = text; }

    // 1-based; positions outside 1..22 read as empty and are not stored.
    QString value(int position) const;
    void setValue(int position, const QString &text);

    QString resetDefaultCFG();
    QString dogenCurrentCFG();
    QString parseCurrentCFG();
    QString saveCFG2File();
    QString readCFG4File();
    // Set by readCFG4File when the file is there but cannot be read: its
    // settings, the referral criterion among them, are then unknown.
    bool unreadable() const { return m_bUnreadable; }

private:
    bool makeConfigDir() const;

    QString m_strBaseDir;
    QString m_strRaw;
    std::array<QString, kPositions> m_values;
    bool m_bUnreadable = false;
};
