// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListingImport.h"

#include "common/NativeText.h"
#include "export/ListingWriter.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QStringDecoder>
#include <algorithm>
#include <map>

using namespace CatalogueRecords;

namespace {

// The set a file belongs to: its folder and the NAME the four file names share.
bool setOf(const QString& file, QString* dir, QString* name)
{
    const QFileInfo fi(file);
    const QString base = fi.fileName();
    static const ListingFile::Kind kinds[] = {ListingFile::FoldersWithPaths, ListingFile::Folders,
                                              ListingFile::FilesWithPaths, ListingFile::Files};
    for (const ListingFile::Kind k : kinds) {
        const QString prefix = ListingFile::fileName(k, QString()).chopped(4); // without ".txt"
        if (base.startsWith(prefix) && base.endsWith(QLatin1String(".txt"))) {
            *dir = fi.absolutePath();
            *name = base.mid(prefix.size(), base.size() - prefix.size() - 4);
            return true;
        }
    }
    return false;
}

struct Listing
{
    QByteArray dateLine, sourceLine, parentLine;
    QList<QByteArray> lines;
};

// Bytes that are not UTF-8 come back from the display form as lone surrogates U+DC80..U+DCFF, which valid
// UTF-8 never produces.
bool isUtf8(const QByteArray& bytes)
{
    const QString text = NativeText::toDisplay(bytes);
    return std::none_of(text.cbegin(), text.cend(),
                        [](QChar c) { return c.unicode() >= 0xDC80 && c.unicode() <= 0xDCFF; });
}

bool readListing(const QString& path, const QString& encoding, Listing& out, QString* error)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("Cannot read %1: %2").arg(path, f.errorString());
        return false;
    }
    QByteArray all = f.readAll();
    if (!encoding.isEmpty()) {
        if (encoding.compare(QLatin1String("windows-1252"), Qt::CaseInsensitive) == 0 ||
            encoding.compare(QLatin1String("cp1252"), Qt::CaseInsensitive) == 0) {
            all = ListingImport::fromWindows1252(all);
        } else if (encoding.compare(QLatin1String("utf-8"), Qt::CaseInsensitive) != 0 &&
                   encoding.compare(QLatin1String("utf8"), Qt::CaseInsensitive) != 0) {
            QStringDecoder d(encoding.toLatin1().constData());
            if (!d.isValid()) {
                if (error)
                    *error = QStringLiteral("Unknown encoding: %1").arg(encoding);
                return false;
            }
            all = QString(d.decode(all)).toUtf8();
        }
    } else if (!isUtf8(all)) {
        all = ListingImport::fromWindows1252(all);
    }
    QList<QByteArray> lines = all.split('\n');
    for (QByteArray& l : lines)
        if (l.endsWith('\r'))
            l.chop(1);
    // Date, SOURCE, empty, Parent Folder, title "... (N):", empty, then N lines.
    static const QRegularExpression title(QStringLiteral("\\((\\d+)\\):\\s*$"));
    const QRegularExpressionMatch m =
        lines.size() >= 6 ? title.match(QString::fromUtf8(lines[4])) : QRegularExpressionMatch();
    if (!m.hasMatch() || !lines[1].startsWith("SOURCE:") || !lines[3].startsWith("Parent Folder: ")) {
        if (error)
            *error = QStringLiteral("%1 is not a listing file.").arg(path);
        return false;
    }
    const qint64 count = m.captured(1).toLongLong();
    out.dateLine = lines[0];
    out.sourceLine = lines[1].mid(7);
    out.parentLine = lines[3].mid(15);
    out.lines = lines.mid(6, qsizetype(std::min<qint64>(count, lines.size() - 6)));
    if (out.lines.size() == 1 && out.lines[0] == "NO FOLDER FOUND")
        out.lines.clear();
    return true;
}

qint64 dateOf(const QByteArray& dateLine, const QString& file)
{
    const QString text = QString::fromUtf8(dateLine).mid(6).trimmed();
    for (const QLocale& l : {QLocale::system(), QLocale(QLocale::English)}) {
        const QDate d = l.toDate(text, QStringLiteral("dd MMMM yyyy"));
        if (d.isValid())
            return QDateTime(d, QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    }
    return QFileInfo(file).lastModified().toMSecsSinceEpoch();
}

} // namespace

QByteArray ListingImport::fromWindows1252(const QByteArray& bytes)
{
    // 0x80..0x9F differ from Latin-1; 0x81, 0x8D, 0x8F, 0x90 and 0x9D are unassigned and kept as those code points.
    static const char16_t high[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                      0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    QString text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        text.append(QChar(b >= 0x80 && b < 0xA0 ? high[b - 0x80] : char16_t(b)));
    }
    return text.toUtf8();
}

std::unique_ptr<ListingImport> ListingImport::load(const QStringList& files, const QString& encoding, QString* error)
{
    if (files.isEmpty()) {
        if (error)
            *error = QStringLiteral("No listing file given.");
        return nullptr;
    }
    QString dir, name;
    if (!setOf(files.first(), &dir, &name)) {
        if (error)
            *error = QStringLiteral("%1 is not named as a listing file (\"Folders List WithPath NAME.txt\" ...).")
                         .arg(files.first());
        return nullptr;
    }
    const auto pathOf = [&](ListingFile::Kind k) { return dir + QLatin1Char('/') + ListingFile::fileName(k, name); };
    Listing folders, sizes, fileList;
    if (!readListing(pathOf(ListingFile::FoldersWithPaths), encoding, folders, error) ||
        !readListing(pathOf(ListingFile::Folders), encoding, sizes, error) ||
        !readListing(pathOf(ListingFile::FilesWithPaths), encoding, fileList, error))
        return nullptr;

    std::unique_ptr<ListingImport> imp(new ListingImport);
    ScanInfo& info = imp->m_info;
    info.imported = true;
    info.listingName = name;
    info.startPath = folders.parentLine;
    // A listing written on Windows names its folders C:\..., anything else with slashes.
    const bool windows = info.startPath.contains('\\') || (info.startPath.size() >= 2 && info.startPath[1] == ':');
    info.separator = windows ? '\\' : '/';
    info.volume.label = QString::fromUtf8(folders.sourceLine).trimmed();
    info.volume.mountPoint = windows ? info.startPath.left(3) : QByteArray("/");
    info.scannedAtMs = dateOf(folders.dateLine, pathOf(ListingFile::FoldersWithPaths));
    if (!imp->build(folders.lines, sizes.lines, fileList.lines, error))
        return nullptr;
    info.folderCount = imp->folderCount() - 1;
    info.fileCount = imp->fileCount();
    return imp;
}

std::uint32_t ListingImport::folderFor(std::string_view relative)
{
    if (relative.empty())
        return 0;
    const auto it = std::lower_bound(m_index.begin(), m_index.end(), relative,
                                     [](const auto& e, std::string_view key) { return e.first < key; });
    if (it != m_index.end() && it->first == relative)
        return it->second;
    // A folder the folder list lacks (a Short listing stopped early): made from its path.
    const std::size_t cut = relative.rfind(m_info.separator);
    const std::uint32_t parent =
        folderFor(cut == std::string_view::npos ? std::string_view() : relative.substr(0, cut));
    const std::string_view nm = cut == std::string_view::npos ? relative : relative.substr(cut + 1);
    m_folders.push_back({parent, std::string(nm), NoSize});
    const auto id = std::uint32_t(m_folders.size() - 1);
    m_index.insert(std::lower_bound(m_index.begin(), m_index.end(), relative,
                                    [](const auto& e, std::string_view key) { return e.first < key; }),
                   {std::string(relative), id});
    return id;
}

bool ListingImport::build(const QList<QByteArray>& folderPaths, const QList<QByteArray>& folderNames,
                          const QList<QByteArray>& filePaths, QString* error)
{
    const QByteArray start = m_info.startPath;
    const char sep = m_info.separator;
    const auto relative = [&](const QByteArray& path, std::string_view& rel) {
        if (!path.startsWith(start))
            return false;
        qsizetype from = start.size();
        if (from < path.size() && path[from] == sep)
            ++from;
        rel = std::string_view(path.constData() + from, size_t(path.size() - from));
        return true;
    };
    m_folders.push_back({0, std::string(), NoSize});
    // Folders come after their sub-folders in the list; sort by path first so parents exist before children.
    std::vector<std::pair<std::string_view, qsizetype>> order;
    for (qsizetype i = 0; i < folderPaths.size(); ++i) {
        std::string_view rel;
        if (!relative(folderPaths[i], rel) || rel.empty()) {
            if (error)
                *error = QStringLiteral("The folder %1 is not below %2.")
                             .arg(QString::fromUtf8(folderPaths[i]), QString::fromUtf8(start));
            return false;
        }
        order.emplace_back(rel, i);
    }
    std::sort(order.begin(), order.end());
    static const QRegularExpression kb(QStringLiteral(" \\((-?\\d+)kB\\)$"));
    for (const auto& [rel, i] : order) {
        const std::uint32_t id = folderFor(rel);
        qint64 bytes = NoSize;
        if (i < folderNames.size()) {
            const QRegularExpressionMatch m = kb.match(QString::fromUtf8(folderNames[i]));
            if (m.hasMatch())
                bytes = m.captured(1).toLongLong() * 1024;
        }
        m_folders[id].bytes = bytes;
    }
    qint64 total = 0;
    for (const Item& f : m_folders)
        if (f.parent == 0 && f.bytes > 0 && &f != &m_folders[0])
            total += f.bytes;
    m_info.totalBytes = total;
    for (const QByteArray& path : filePaths) {
        std::string_view rel;
        if (!relative(path, rel) || rel.empty())
            continue;
        const std::size_t cut = rel.rfind(sep);
        const std::uint32_t parent = folderFor(cut == std::string_view::npos ? std::string_view() : rel.substr(0, cut));
        m_files.push_back({parent, std::string(cut == std::string_view::npos ? rel : rel.substr(cut + 1)), NoSize});
    }
    return true;
}

ScanSource::Entry ListingImport::folder(qint64 index) const
{
    const Item& f = m_folders[size_t(index)];
    return {f.parent, f.name, f.bytes, NoTime};
}

ScanSource::Entry ListingImport::file(qint64 index) const
{
    const Item& f = m_files[size_t(index)];
    return {f.parent, f.name, NoSize, NoTime};
}
