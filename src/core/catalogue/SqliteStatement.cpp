// SPDX-License-Identifier: GPL-3.0-or-later

#include "SqliteStatement.h"

#include <sqlite3.h>

SqliteStatement::SqliteStatement(sqlite3* db, std::string_view sql) : m_db(db)
{
    if (sqlite3_prepare_v2(db, sql.data(), int(sql.size()), &m_stmt, nullptr) != SQLITE_OK)
        m_stmt = nullptr;
}

SqliteStatement::~SqliteStatement()
{
    sqlite3_finalize(m_stmt);
}

void SqliteStatement::bind(int i, qint64 value)
{
    sqlite3_bind_int64(m_stmt, i, value);
}

void SqliteStatement::bind(int i, double value)
{
    sqlite3_bind_double(m_stmt, i, value);
}

void SqliteStatement::bind(int i, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(m_stmt, i, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

void SqliteStatement::bindBlob(int i, std::string_view bytes)
{
    // An empty view still binds a zero-length blob, not NULL, so "no name" and "the empty name" stay apart.
    sqlite3_bind_blob(m_stmt, i, bytes.empty() ? "" : bytes.data(), int(bytes.size()), SQLITE_STATIC);
}

void SqliteStatement::bindNull(int i)
{
    sqlite3_bind_null(m_stmt, i);
}

bool SqliteStatement::step()
{
    if (!m_stmt)
        return false;
    const int rc = sqlite3_step(m_stmt);
    m_done = rc == SQLITE_DONE;
    return rc == SQLITE_ROW;
}

void SqliteStatement::reset()
{
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
    m_done = false;
}

qint64 SqliteStatement::integer(int col) const
{
    return sqlite3_column_int64(m_stmt, col);
}

double SqliteStatement::real(int col) const
{
    return sqlite3_column_double(m_stmt, col);
}

bool SqliteStatement::isNull(int col) const
{
    return sqlite3_column_type(m_stmt, col) == SQLITE_NULL;
}

QString SqliteStatement::text(int col) const
{
    const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, col));
    return QString::fromUtf8(p, sqlite3_column_bytes(m_stmt, col));
}

std::string_view SqliteStatement::blob(int col) const
{
    const auto* p = static_cast<const char*>(sqlite3_column_blob(m_stmt, col));
    const int n = sqlite3_column_bytes(m_stmt, col);
    return p ? std::string_view(p, std::size_t(n)) : std::string_view();
}

QByteArray SqliteStatement::bytes(int col) const
{
    const std::string_view b = blob(col);
    return QByteArray(b.data(), qsizetype(b.size()));
}
