// SPDX-License-Identifier: GPL-2.0-or-later
// The "please wait" dialog: runs one long operation chosen by its mode and keeps the result.
#pragma once

#include <QDialog>
#include <QString>

#include <memory>

namespace Ui {
class UploadDlg;
}

// Set mode, exec(), then read the result that belongs to the mode:
//   0 upload the recording       -> bResult
//   1 download a new version     -> bResult
//   4 print a test page          -> strResult
//   5 print the result           -> strResult
//   6 check for a new version    -> nResult
//   7 mail the result            -> strResult
//   9 mail the video report      -> strResult
// Modes 2, 3 and 8 run nothing and close at once.
class UploadDlg : public QDialog
{
    Q_OBJECT

public:
    explicit UploadDlg(QWidget *parent = nullptr);
    ~UploadDlg() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    int mode = 0;
    bool bResult = false;
    QString strResult;
    int nResult = -1;
    int progress = 0;

public slots:
    // One tick of the progress figure.
    void timerProgress();

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void runOperation();

    std::unique_ptr<Ui::UploadDlg> ui;
    bool m_bOperationStarted = false;
};
