// SPDX-License-Identifier: GPL-3.0-or-later

#include "FolderReader.h"

#include "common/NativeText.h"

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <cerrno>
#include <chrono>
#include <filesystem>

void FolderReader::prepare(const QByteArray&, int, Start&) {}

FolderReader::FolderReader(Start& start) : m_start(start) {}

FolderReader::~FolderReader() = default;

void FolderReader::close() {}

void FolderReader::release(FolderPlace&) {}

bool FolderReader::list(const FolderPlace& place, bool, DirState& state, int& error, Sink& sink)
{
    namespace fs = std::filesystem;
    const QString display = NativeText::toDisplay(place.path);
    const fs::path dirPath(reinterpret_cast<const wchar_t*>(display.utf16()));
    std::error_code ec;
    fs::directory_iterator it(dirPath, ec);
    if (ec) {
        state = ec == std::errc::no_such_file_or_directory ? DirState::Vanished : DirState::Unreadable;
        error = ec.value();
        return false;
    }
    {
        std::error_code e2;
        const auto written = fs::last_write_time(dirPath, e2);
        sink.folderTime(
            e2 ? LLONG_MIN
               : std::int64_t(std::chrono::duration_cast<std::chrono::seconds>(
                                  std::chrono::clock_cast<std::chrono::system_clock>(written).time_since_epoch())
                                  .count()));
    }
    for (; it != fs::directory_iterator(); it.increment(ec)) {
        if (ec)
            break;
        const std::wstring w = it->path().filename().wstring();
        const QByteArray name = NativeText::fromDisplay(QString::fromWCharArray(w.data(), qsizetype(w.size())));
        std::error_code e2;
        const auto st = it->symlink_status(e2);
        if (e2)
            continue;
        const bool isDir = fs::is_directory(st) && !it->is_symlink(e2);
        const std::uint64_t size = isDir ? 0 : it->file_size(e2);
        const bool sized = !e2;
        const auto written = it->last_write_time(e2);
        const std::int64_t mtime =
            e2 ? LLONG_MIN
               : std::int64_t(std::chrono::duration_cast<std::chrono::seconds>(
                                  std::chrono::clock_cast<std::chrono::system_clock>(written).time_since_epoch())
                                  .count());
        sink.add({name.constData(), size_t(name.size())}, sized ? size : 0, mtime, isDir, false);
    }
    return true;
}

void FolderReader::openChild(const FolderPlace& parent, std::string_view name, FolderPlace& child, DirState&, int&)
{
    child.path = parent.path;
    if (child.path.empty() || child.path.back() != Separator)
        child.path.push_back(Separator);
    child.path.append(name);
}

QByteArray FolderReader::absoluteFolder(const QByteArray& path)
{
    const QFileInfo info(NativeText::toDisplay(path));
    if (!info.isDir()) {
        errno = info.exists() ? ENOTDIR : ENOENT;
        return {};
    }
    return NativeText::fromDisplay(QDir::toNativeSeparators(info.absoluteFilePath()));
}

QByteArray FolderReader::currentFolder()
{
    return NativeText::fromDisplay(QDir::toNativeSeparators(QDir::currentPath()));
}
