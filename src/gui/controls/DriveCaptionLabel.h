// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLabel>

// The drive caption, Label4(3). Its caption is kept whole as the label's text and in its tool tip; where the
// label is too narrow to show it, the middle of the drive text or volume label is left out, never the kind of
// drive that ends (": HD DRIVE ") or starts (" CD/ DVD Volume: ") it, which is what the caption is for.
class DriveCaptionLabel : public QLabel
{
    Q_OBJECT
public:
    explicit DriveCaptionLabel(QWidget* parent = nullptr);

    void setCaption(const QString& caption);
    // The caption as it fits the label's width.
    QString shownText() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};
