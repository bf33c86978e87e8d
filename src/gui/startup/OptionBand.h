// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QRadioButton>

// A version option of the start-up window. A classic option button answers a click anywhere on its rectangle,
// the coloured band here; Qt's radio button only answers on its circle and caption.
class OptionBand : public QRadioButton
{
    Q_OBJECT
public:
    using QRadioButton::QRadioButton;

protected:
    bool hitButton(const QPoint& pos) const override;
};
