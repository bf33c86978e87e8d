// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <cstdio>

// Rows of fields written in one of the three forms: a table with aligned columns under a header (for a person
// at a terminal), tab-separated lines, or NUL-ended records of tab-separated fields (for scripts, where a name
// may hold a line break). Fields are native bytes; a table pads by the width a terminal shows.
class OutputTable
{
public:
    enum class Form { Table, Tsv, Nul };

    OutputTable(Form form, QList<QByteArray> header, std::FILE* out);
    ~OutputTable();
    OutputTable(const OutputTable&) = delete;
    OutputTable& operator=(const OutputTable&) = delete;

    // Numeric columns are right-aligned in a table.
    void setRightAligned(QList<int> columns) { m_right = std::move(columns); }
    // Lines or records go out at once; a table waits until flush() to know its widths.
    void add(const QList<QByteArray>& fields);
    void flush();

private:
    Form m_form;
    QList<QByteArray> m_header;
    QList<int> m_right;
    std::FILE* m_out;
    QList<QList<QByteArray>> m_rows;
};
