// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <cstdint>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// One prepared statement, finalised when it goes out of scope. Binding indices start at 1, columns at 0.
class SqliteStatement
{
public:
    SqliteStatement(sqlite3* db, std::string_view sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    bool ok() const { return m_stmt != nullptr; }

    void bind(int i, qint64 value);
    void bind(int i, double value);
    void bind(int i, const QString& text);
    // Bytes are bound as a blob without copying: they must stay alive until the next step.
    void bindBlob(int i, std::string_view bytes);
    void bindNull(int i);

    // True while a row is there; `done()` tells a normal end from an error afterwards.
    bool step();
    bool done() const { return m_done; }
    void reset();

    qint64 integer(int col) const;
    double real(int col) const;
    bool isNull(int col) const;
    QString text(int col) const;
    // The column's bytes, valid until the next step or reset.
    std::string_view blob(int col) const;
    QByteArray bytes(int col) const;

private:
    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_stmt = nullptr;
    bool m_done = false;
};
