// SPDX-License-Identifier: GPL-2.0-or-later
// The letter to a child's parents: one A4 page per child in a PDF, in the interface language.
#include "parentletter.h"

#include <QFile>
#include <QFont>
#include <QFontMetrics>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace parentletter {

namespace {

// A class context for the translations of the letter's texts.
class ParentLetter
{
    Q_DECLARE_TR_FUNCTIONS(ParentLetter)
};

// The one font of the device that holds both Latin and Chinese letters.
const char kFontFamily[] = "WenQuanYi Micro Hei";
constexpr int kDotsPerInch = 300;

QFont letterFont(int points, bool bold = false)
{
    QFont font(QString::fromLatin1(kFontFamily));
    font.setPointSize(points);
    font.setBold(bold);
    return font;
}

// Draws the text wrapped into the width at the top of `area` and moves the
// top of `area` below it.
void paragraph(QPainter &painter, QRect &area, const QFont &font, const QString &text, int gapAfter)
{
    painter.setFont(font);
    const QRect used = painter.boundingRect(area, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
    painter.drawText(area, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
    area.setTop(used.bottom() + gapAfter);
}

void drawValues(QPainter &painter, QRect &area, const Letter &letter)
{
    const QFont head = letterFont(11, true);
    const QFont cell = letterFont(11);
    const int rowHeight = QFontMetrics(cell, painter.device()).height() * 3 / 2;
    const int first = area.width() * 34 / 100;
    const int column = (area.width() - first) / 3;
    const QStringList headings = {ParentLetter::tr("Sphere (D)"), ParentLetter::tr("Cylinder (D)"),
                                  ParentLetter::tr("Axis (°)")};
    const QVector<QStringList> rows = {
        {ParentLetter::tr("Right eye (OD)"), letter.odSphere, letter.odCylinder, letter.odAxis},
        {ParentLetter::tr("Left eye (OS)"), letter.osSphere, letter.osCylinder, letter.osAxis},
    };
    int top = area.top();
    painter.setFont(head);
    for (int i = 0; i < headings.size(); ++i)
        painter.drawText(QRect(area.left() + first + i * column, top, column, rowHeight), Qt::AlignCenter,
                         headings.at(i));
    top += rowHeight;
    painter.drawLine(area.left(), top, area.right(), top);
    for (const QStringList &row : rows) {
        painter.setFont(head);
        painter.drawText(QRect(area.left(), top, first, rowHeight), Qt::AlignLeft | Qt::AlignVCenter, row.at(0));
        painter.setFont(cell);
        for (int i = 1; i < row.size(); ++i)
            painter.drawText(QRect(area.left() + first + (i - 1) * column, top, column, rowHeight), Qt::AlignCenter,
                             row.at(i));
        top += rowHeight;
    }
    painter.drawLine(area.left(), top, area.right(), top);
    area.setTop(top + rowHeight / 2);
    paragraph(painter, area, cell, ParentLetter::tr("Pupil distance: %1 mm").arg(letter.pupilDistance), rowHeight);
}

void drawLetter(QPainter &painter, const QRect &page, const Letter &letter)
{
    QRect area = page;
    const int gap = QFontMetrics(letterFont(11), painter.device()).height();
    paragraph(painter, area, letterFont(20, true), ParentLetter::tr("Vision screening result"), gap / 2);
    paragraph(painter, area, letterFont(10),
              ParentLetter::tr("Screened with: %1\nTest date: %2").arg(letter.device, letter.testTime), gap);

    const QString sex = letter.male ? ParentLetter::tr("Male") : ParentLetter::tr("Female");
    paragraph(painter, area, letterFont(13, true), letter.name, gap / 4);
    paragraph(painter, area, letterFont(11), ParentLetter::tr("Sex: %1    Birthday: %2").arg(sex, letter.birthday),
              gap);
    drawValues(painter, area, letter);

    const bool pass = letter.result == QLatin1String("Pass");
    const bool refer = letter.result == QLatin1String("Refer");
    const QString verdict =
        pass ? ParentLetter::tr("Pass") : (refer ? ParentLetter::tr("Refer") : ParentLetter::tr("No result"));
    paragraph(painter, area, letterFont(16, true), ParentLetter::tr("Result: %1").arg(verdict), gap / 2);

    QString explanation;
    if (pass) {
        explanation = ParentLetter::tr(
            "The screening found no sign that your child's eyes need a closer look today. A screening is a quick "
            "check, not a diagnosis: it can miss a problem. If your child squints, tilts the head, holds things very "
            "close or complains about the eyes, see an eye-care professional.");
    } else if (refer) {
        explanation = ParentLetter::tr(
            "The screening found values that should be checked. This is not a diagnosis: many children referred "
            "turn out to need nothing, and only a full eye examination can tell. Please make an appointment with an "
            "eye-care professional (optometrist or ophthalmologist) and bring this letter.");
    } else {
        explanation = ParentLetter::tr(
            "The screening could not give a result. A screening is not a diagnosis; please have your child screened "
            "again or see an eye-care professional.");
    }
    paragraph(painter, area, letterFont(11), explanation, gap);

    if (letter.photo.isNull()) {
        paragraph(painter, area, letterFont(10), ParentLetter::tr("No pupil photo was kept for this test."), gap);
        return;
    }
    paragraph(painter, area, letterFont(10), ParentLetter::tr("Pupil photo taken during the test:"), gap / 4);
    QSize size = letter.photo.size().scaled(area.width(), std::max(area.height(), 1), Qt::KeepAspectRatio);
    if (size.width() > area.width() * 3 / 4)
        size.scale(area.width() * 3 / 4, size.height(), Qt::KeepAspectRatio);
    painter.drawImage(QRect(area.topLeft(), size), letter.photo);
}

} // namespace

bool write(const QString &path, const QVector<Letter> &letters)
{
    if (letters.isEmpty())
        return false;
    QPdfWriter pdf(path);
    pdf.setResolution(kDotsPerInch);
    pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(20, 20, 20, 20),
                                  QPageLayout::Millimeter));
    pdf.setTitle(ParentLetter::tr("Vision screening result"));
    pdf.setCreator(QStringLiteral("Orvella"));
    QPainter painter;
    if (!painter.begin(&pdf))
        return false;
    const QRect page = pdf.pageLayout().paintRectPixels(kDotsPerInch).translated(
        -pdf.pageLayout().paintRectPixels(kDotsPerInch).topLeft());
    for (int i = 0; i < letters.size(); ++i) {
        if (i > 0 && !pdf.newPage())
            return false;
        drawLetter(painter, page, letters.at(i));
    }
    return painter.end();
}

} // namespace parentletter
