// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the history page (search, ticks, delete, export) and one child's test records.
#include "maindialog.h"

#include "gdata.h"
#include "historysearch.h"
#include "keypaddlg.h"
#include "ui_pagehistory.h"
#include "ui_pagenomenu.h"
#include "ui_pageuserdetail.h"
#include "uploaddlg.h"

#include <QApplication>
#include <QEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QItemSelectionModel>
#include <QPainter>
#include <QScroller>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

#include <functional>

namespace {

enum SearchResultColumn { ColumnTick, ColumnName, ColumnSex, ColumnBirthday, SearchResultColumnCount };

const char kTickOn[] = ":/pic/checkon.jpg";
const char kTickOff[] = ":/pic/checkoff.jpg";

// The record keeps the English words; the page shows them translated. The
// model keeps the record's text beside the shown one, because the ticked
// rows' keys are rebuilt from the model.
constexpr int RecordTextRole = Qt::UserRole + 1;

// The icon column has no text, and the standard delegate would put its icon
// at the left edge where a text would follow.
class CentredIconDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyleOptionViewItem cell(option);
        initStyleOption(&cell, index);
        const QIcon icon = cell.icon;
        cell.features &= ~QStyleOptionViewItem::HasDecoration;
        cell.icon = QIcon();
        QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
        if (icon.isNull())
            return;
        const QSize size = icon.actualSize(cell.decorationSize);
        icon.paint(painter, QStyle::alignedRect(cell.direction, Qt::AlignCenter, size, cell.rect));
    }
};

class PressFilter : public QObject
{
public:
    PressFilter(QWidget *field, std::function<void()> pressed)
        : QObject(field)
        , m_pressed(std::move(pressed))
    {
        setObjectName(QStringLiteral("pressFilter"));
        field->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::MouseButtonPress)
            return false;
        m_pressed();
        return true;
    }

private:
    std::function<void()> m_pressed;
};

// Puts a model filled apart from the view in place of the shown one. Rows
// inserted one at a time into a shown table make its header walk all of its
// rows at each insertion, which a history of years would feel.
void showModel(QTableView *table, QStandardItemModel *&shown, QStandardItemModel *next, const QVector<int> &widths)
{
    // The view replaces its selection model but leaves the old one to the caller.
    QItemSelectionModel *oldSelection = table->selectionModel();
    table->setModel(next);
    delete oldSelection;
    delete shown;
    shown = next;
    int column = 0;
    for (const int width : widths)
        table->setColumnWidth(column++, width);
}

const QVector<int> kSearchResultWidths = {60, 250, 125, 180};
// The time, six refraction values and the pupil distance; the result takes the rest.
const QVector<int> kUserDetailWidths = {232, 84, 84, 84, 84, 84, 84, 72};

QStandardItemModel *newSearchResultModel(QObject *parent)
{
    auto *model = new QStandardItemModel(0, SearchResultColumnCount, parent);
    model->setHorizontalHeaderLabels(
        {QString(), MainDialog::tr("Name"), MainDialog::tr("Sex"), MainDialog::tr("Birthday")});
    return model;
}

QStandardItemModel *newUserDetailModel(QObject *parent)
{
    auto *model = new QStandardItemModel(0, historysearch::kValuesPerTest, parent);
    model->setHorizontalHeaderLabels({MainDialog::tr("Time"), MainDialog::tr("OD SPH"), MainDialog::tr("OD CYL"),
                                      MainDialog::tr("OD AXIS"), MainDialog::tr("OS SPH"), MainDialog::tr("OS CYL"),
                                      MainDialog::tr("OS AXIS"), MainDialog::tr("PD"), MainDialog::tr("Result")});
    return model;
}

void setupTable(QTableView *table, int rowHeight)
{
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(rowHeight);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->horizontalHeader()->setFixedHeight(48);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
    // A finger drags the list; a tap without a drag still reaches the row.
    QScroller::grabGesture(table->viewport(), QScroller::LeftMouseButtonGesture);
}

} // namespace

QStandardItem *MainDialog::newAlignCenterQStandardItem(const QString &text)
{
    auto *item = new QStandardItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setEditable(false);
    return item;
}

void MainDialog::watchPresses(QWidget *field, void (MainDialog::*pressed)())
{
    if (field->findChild<QObject *>(QStringLiteral("pressFilter"), Qt::FindDirectChildrenOnly))
        return;
    new PressFilter(field, [this, pressed] { (this->*pressed)(); });
}

void MainDialog::pageSearchInit()
{
    uiHistory->editSearch->clear();
    on_buttonSearch_clicked();
}

void MainDialog::tableViewSearchResultInit()
{
    QTableView *table = uiHistory->tableViewSearchResult;
    if (!m_pSearchResultModel) {
        table->setItemDelegateForColumn(ColumnTick, new CentredIconDelegate(table));
        setupTable(table, 64);
        watchPresses(uiHistory->editSearch, &MainDialog::editSearchPressed);
    }
    showModel(table, m_pSearchResultModel, newSearchResultModel(this), kSearchResultWidths);
    m_strFlags.clear();
    m_bSelectAll = false;
    uiHistory->buttonSelectAll->setIcon(QIcon(QString::fromLatin1(kTickOff)));
}

void MainDialog::on_buttonSearch_clicked()
{
    tableViewSearchResultInit();
    const QStringList keys = historysearch::childKeys(g_pData->readTestResult(), uiHistory->editSearch->text());

    QStandardItemModel *rows = newSearchResultModel(this);
    const QIcon off(QString::fromLatin1(kTickOff));
    for (const QString &key : keys) {
        const QStringList fields = historysearch::keyFields(key);
        QStandardItem *tick = newAlignCenterQStandardItem(QString());
        tick->setIcon(off);
        const QString &sex = fields.at(1);
        QStandardItem *sexItem = newAlignCenterQStandardItem(
            sex == QLatin1String("Male") ? tr("Male") : (sex == QLatin1String("Female") ? tr("Female") : sex));
        sexItem->setData(sex, RecordTextRole);
        rows->appendRow(
            {tick, newAlignCenterQStandardItem(fields.at(0)), sexItem, newAlignCenterQStandardItem(fields.at(2))});
        m_strFlags << QStringLiteral("0");
    }
    showModel(uiHistory->tableViewSearchResult, m_pSearchResultModel, rows, kSearchResultWidths);
}

void MainDialog::editSearchPressed()
{
    const QString before = uiHistory->editSearch->text();
    KeypadDlg keypad;
    keypad.setTarget(uiHistory->editSearch);
    // Device coordinates; in the simulator the device is a window somewhere on a desktop.
    keypad.move(mapToGlobal(QPoint(0, 350)));
    keypad.exec();
    // The ticks belong to the list they were made in; a new search text
    // makes a new list, so it is shown at once.
    if (uiHistory->editSearch->text() != before)
        on_buttonSearch_clicked();
}

void MainDialog::on_tableViewSearchResult_clicked(const QModelIndex &index)
{
    const int row = index.row();
    if (row < 0 || row >= m_strFlags.size())
        return;
    if (index.column() != ColumnTick) {
        showUserDetail(row);
        return;
    }
    const bool on = m_strFlags.at(row) != QLatin1String("1");
    m_strFlags[row] = on ? QStringLiteral("1") : QStringLiteral("0");
    m_pSearchResultModel->item(row, ColumnTick)->setIcon(QIcon(QString::fromLatin1(on ? kTickOn : kTickOff)));
    qDebug("strFlag[%d]=%s", row, qPrintable(m_strFlags.at(row)));
}

void MainDialog::on_buttonSelectAll_clicked()
{
    m_bSelectAll = !m_bSelectAll;
    const QIcon icon(QString::fromLatin1(m_bSelectAll ? kTickOn : kTickOff));
    const QString flag = m_bSelectAll ? QStringLiteral("1") : QStringLiteral("0");
    uiHistory->buttonSelectAll->setIcon(icon);
    for (int row = 0; row < m_strFlags.size(); ++row) {
        m_strFlags[row] = flag;
        m_pSearchResultModel->item(row, ColumnTick)->setIcon(icon);
    }
}

QStringList MainDialog::selectedHistoryKeys() const
{
    QStringList keys;
    for (int row = 0; row < m_strFlags.size(); ++row) {
        if (m_strFlags.at(row) != QLatin1String("1"))
            continue;
        keys << m_pSearchResultModel->item(row, ColumnName)->text() + QLatin1Char(',') +
                    m_pSearchResultModel->item(row, ColumnSex)->data(RecordTextRole).toString() + QLatin1Char(',') +
                    m_pSearchResultModel->item(row, ColumnBirthday)->text();
    }
    return keys;
}

void MainDialog::on_buttonHistoryDelete_clicked()
{
    const QStringList keys = selectedHistoryKeys();
    if (keys.isEmpty()) {
        showMessage(tr("No Record Selected"), QString(), QString(), tr("OK"), QString());
        return;
    }
    if (showMessage(tr("Delete Records"), QString(), tr("Yes"), QString(), tr("No")) != 0)
        return;
    const QString history = g_pData->readTestResult();
    if (!g_pData->saveDeleteResult(historysearch::withoutKeys(history, keys))) {
        showMessage(tr("Delete Failed!"), tr("The history could not be read or written; nothing was deleted."),
                    QString(), tr("OK"), QString());
        return;
    }
    // After the history: a photo without its record is never shown, a
    // record without its photo would say that none was kept.
    g_pData->deletePhotos(history, keys);
    on_buttonSearch_clicked();
}

void MainDialog::on_buttonHistoryExport_clicked()
{
    const QStringList keys = selectedHistoryKeys();
    if (keys.isEmpty()) {
        showMessage(tr("No Record Selected"), QString(), QString(), tr("OK"), QString());
        return;
    }
    if (!g_pData->prepareHistoryExport(keys)) {
        showMessage(tr("Open File Error"), QString(), QString(), tr("OK"), QString());
        return;
    }

    UploadDlg sending;
    sending.mode = 7;
    sending.exec();
    QString drive;
    if (!g_pData->m_strUsbExportDir.isEmpty())
        drive = tr("Also saved on the USB drive in %1").arg(QFileInfo(g_pData->m_strUsbExportDir).fileName());
    else if (!g_pData->m_strUsbExportError.isEmpty())
        drive = g_pData->m_strUsbExportError;
    showMessage(sending.strResult.isEmpty() ? tr("Success") : sending.strResult, drive, QString(), tr("OK"),
                QString());
}

void MainDialog::on_buttonHistoryPhoto_clicked()
{
    const QStringList keys = selectedHistoryKeys();
    if (keys.isEmpty()) {
        showMessage(tr("No Record Selected"), QString(), QString(), tr("OK"), QString());
        return;
    }
    // The first child ticked, at the latest test: the one just screened
    // when the operator checks that the photo was taken.
    for (int row = 0; row < m_strFlags.size(); ++row) {
        if (m_strFlags.at(row) == QLatin1String("1")) {
            showUserDetail(row);
            return;
        }
    }
}

void MainDialog::pageUserDetailInit()
{
    QTableView *table = uiUserDetail->tableViewUserDetail;
    if (!m_pUserDetailModel) {
        setupTable(table, 56);
        table->horizontalHeader()->setStretchLastSection(true);
    }
    showModel(table, m_pUserDetailModel, newUserDetailModel(this), kUserDetailWidths);
}

void MainDialog::showUserDetail(int row)
{
    const QString name = m_pSearchResultModel->item(row, ColumnName)->text();
    const QString sex = m_pSearchResultModel->item(row, ColumnSex)->data(RecordTextRole).toString();
    const QString birthday = m_pSearchResultModel->item(row, ColumnBirthday)->text();

    showNoMenuPage(uiNoMenu->pageUserDetail);
    uiUserDetail->labelUserDetailTitle->setText(name);
    uiUserDetail->labelUserDetailInfo->setText(m_pSearchResultModel->item(row, ColumnSex)->text() +
                                               QStringLiteral("   ") + birthday);
    pageUserDetailInit();

    m_strUserDetailKey = name + QLatin1Char(',') + sex + QLatin1Char(',') + birthday;
    const QVector<QStringList> tests = historysearch::testsOf(g_pData->readTestResult(), name, sex, birthday);
    QStandardItemModel *rows = newUserDetailModel(this);
    for (const QStringList &test : tests) {
        QList<QStandardItem *> cells;
        for (const QString &value : test)
            cells << newAlignCenterQStandardItem(value);
        // The photo belongs to the record, not to the texts shown.
        cells.first()->setData(g_pData->photoPath(m_strUserDetailKey, test), Qt::UserRole);
        QStandardItem *result = cells.last();
        if (test.last() == QLatin1String("Pass"))
            result->setText(tr("Pass"));
        else if (test.last() == QLatin1String("Refer"))
            result->setText(tr("Refer"));
        rows->appendRow(cells);
    }
    showModel(uiUserDetail->tableViewUserDetail, m_pUserDetailModel, rows, kUserDetailWidths);
    const int latest = rows->rowCount() - 1;
    if (latest >= 0) {
        uiUserDetail->tableViewUserDetail->selectRow(latest);
        uiUserDetail->tableViewUserDetail->scrollToBottom();
    }
    showUserDetailPhoto(latest);
}

void MainDialog::on_tableViewUserDetail_clicked(const QModelIndex &index)
{
    showUserDetailPhoto(index.row());
}

void MainDialog::showUserDetailPhoto(int row)
{
    QLabel *photo = uiUserDetail->labelUserDetailPhoto;
    QLabel *caption = uiUserDetail->labelUserDetailPhotoCaption;
    photo->clear();
    if (!m_pUserDetailModel || row < 0 || row >= m_pUserDetailModel->rowCount()) {
        caption->clear();
        return;
    }
    const QString time = m_pUserDetailModel->item(row, 0)->text();
    const QImage image(m_pUserDetailModel->item(row, 0)->data(Qt::UserRole).toString());
    if (image.isNull()) {
        caption->setText(tr("No pupil photo was kept for the test of %1.").arg(time));
        return;
    }
    photo->setPixmap(QPixmap::fromImage(image.scaled(photo->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    caption->setText(tr("Pupil photo of the test of %1").arg(time));
}
