// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class AdminCheck;
class CopyProgressService;
class InputService;
class MediaPlayer;
class MessageService;
class NoticeService;
class ProgramEnd;
class ShellService;
class VolumeService;

// Everything platform-bound a window uses, handed to its constructor. The pointers are not owned; whoever
// builds the windows keeps the services alive longer than the windows.
struct Services
{
    MessageService* messages = nullptr;
    InputService* input = nullptr;
    AdminCheck* admin = nullptr;
    VolumeService* volumes = nullptr;
    ShellService* shell = nullptr;
    MediaPlayer* player = nullptr;
    ProgramEnd* programEnd = nullptr;
    CopyProgressService* copyProgress = nullptr;
    NoticeService* notices = nullptr;
};
