// SPDX-License-Identifier: GPL-3.0-or-later

#include "SystemServices.h"

#include "AppProgramEnd.h"
#include "DesktopShellService.h"
#include "QtCopyProgressService.h"
#include "QtInputService.h"
#include "QtMediaPlayer.h"
#include "QtMessageService.h"
#include "QtNoticeService.h"
#include "SystemAdminCheck.h"
#include "volumes/VolumeService.h"

SystemServices::SystemServices()
    : m_messages(std::make_unique<QtMessageService>()), m_input(std::make_unique<QtInputService>()),
      m_admin(std::make_unique<SystemAdminCheck>()), m_volumes(std::make_unique<SystemVolumeService>()),
      m_shell(std::make_unique<DesktopShellService>()), m_player(std::make_unique<QtMediaPlayer>()),
      m_programEnd(std::make_unique<AppProgramEnd>()), m_copyProgress(std::make_unique<QtCopyProgressService>()),
      m_notices(std::make_unique<QtNoticeService>())
{
    m_services.messages = m_messages.get();
    m_services.input = m_input.get();
    m_services.admin = m_admin.get();
    m_services.volumes = m_volumes.get();
    m_services.shell = m_shell.get();
    m_services.player = m_player.get();
    m_services.programEnd = m_programEnd.get();
    m_services.copyProgress = m_copyProgress.get();
    m_services.notices = m_notices.get();
}

SystemServices::~SystemServices() = default;
