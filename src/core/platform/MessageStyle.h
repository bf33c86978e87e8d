// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// The buttons and the icon of a message box. The design names each box by its classic style number, the sum of a
// buttons code (0 OK, 1 OK/Cancel, 3 Yes/No/Cancel, 4 Yes/No) and an icon code (16 stop, 32 question,
// 48 exclamation, 64 information); fromClassic() and classic() are the one place those numbers are read.
class MessageStyle
{
public:
    enum class Buttons { Ok, OkCancel, YesNoCancel, YesNo };
    enum class Icon { None, Critical, Question, Exclamation, Information };

    constexpr MessageStyle() = default;
    constexpr MessageStyle(Buttons buttons, Icon icon) : m_buttons(buttons), m_icon(icon) {}

    static constexpr MessageStyle fromClassic(int style)
    {
        Buttons buttons = Buttons::Ok;
        switch (style & 7) {
        case 1:
            buttons = Buttons::OkCancel;
            break;
        case 3:
            buttons = Buttons::YesNoCancel;
            break;
        case 4:
            buttons = Buttons::YesNo;
            break;
        default:
            break;
        }
        Icon icon = Icon::None;
        switch (style & 0x70) {
        case 16:
            icon = Icon::Critical;
            break;
        case 32:
            icon = Icon::Question;
            break;
        case 48:
            icon = Icon::Exclamation;
            break;
        case 64:
            icon = Icon::Information;
            break;
        default:
            break;
        }
        return {buttons, icon};
    }

    constexpr int classic() const
    {
        constexpr int buttonCodes[] = {0, 1, 3, 4};
        constexpr int iconCodes[] = {0, 16, 32, 48, 64};
        return buttonCodes[int(m_buttons)] + iconCodes[int(m_icon)];
    }

    constexpr Buttons buttons() const { return m_buttons; }
    constexpr Icon icon() const { return m_icon; }
    // Whether the box asks a question to be answered Yes or No.
    constexpr bool asks() const { return m_buttons == Buttons::YesNo || m_buttons == Buttons::YesNoCancel; }

    friend constexpr bool operator==(MessageStyle, MessageStyle) = default;

    // The styles the program's boxes use.
    static const MessageStyle Plain;               // 0
    static const MessageStyle Critical;            // 16
    static const MessageStyle YesNoCancelCritical; // 19
    static const MessageStyle YesNoQuestion;       // 36
    static const MessageStyle Exclamation;         // 48
    static const MessageStyle YesNoExclamation;    // 52
    static const MessageStyle Information;         // 64
    static const MessageStyle YesNoInformation;    // 68

private:
    Buttons m_buttons = Buttons::Ok;
    Icon m_icon = Icon::None;
};

inline constexpr MessageStyle MessageStyle::Plain = fromClassic(0);
inline constexpr MessageStyle MessageStyle::Critical = fromClassic(16);
inline constexpr MessageStyle MessageStyle::YesNoCancelCritical = fromClassic(19);
inline constexpr MessageStyle MessageStyle::YesNoQuestion = fromClassic(36);
inline constexpr MessageStyle MessageStyle::Exclamation = fromClassic(48);
inline constexpr MessageStyle MessageStyle::YesNoExclamation = fromClassic(52);
inline constexpr MessageStyle MessageStyle::Information = fromClassic(64);
inline constexpr MessageStyle MessageStyle::YesNoInformation = fromClassic(68);
