// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Services.h"

#include <memory>

// Owns the real services of a running program and hands them out as one Services value.
class SystemServices
{
public:
    SystemServices();
    ~SystemServices();
    SystemServices(const SystemServices&) = delete;
    SystemServices& operator=(const SystemServices&) = delete;

    const Services& services() const { return m_services; }

private:
    std::unique_ptr<MessageService> m_messages;
    std::unique_ptr<InputService> m_input;
    std::unique_ptr<AdminCheck> m_admin;
    std::unique_ptr<VolumeService> m_volumes;
    std::unique_ptr<ShellService> m_shell;
    std::unique_ptr<MediaPlayer> m_player;
    std::unique_ptr<ProgramEnd> m_programEnd;
    std::unique_ptr<CopyProgressService> m_copyProgress;
    std::unique_ptr<NoticeService> m_notices;
    Services m_services;
};
