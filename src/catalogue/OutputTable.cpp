// SPDX-License-Identifier: GPL-3.0-or-later

#include "OutputTable.h"

#include "common/NativeText.h"

#include <algorithm>

OutputTable::OutputTable(Form form, QList<QByteArray> header, std::FILE* out)
    : m_form(form), m_header(std::move(header)), m_out(out)
{
}

OutputTable::~OutputTable()
{
    flush();
}

void OutputTable::add(const QList<QByteArray>& fields)
{
    if (m_form == Form::Table) {
        m_rows.append(fields);
        return;
    }
    const QByteArray line = fields.join('\t') + (m_form == Form::Nul ? QByteArray(1, '\0') : QByteArray("\n"));
    std::fwrite(line.constData(), 1, size_t(line.size()), m_out);
}

void OutputTable::flush()
{
    if (m_form != Form::Table || (m_rows.isEmpty() && m_header.isEmpty()))
        return;
    const auto width = [](const QByteArray& f) {
        return qsizetype(NativeText::displayLength(std::string_view(f.constData(), size_t(f.size()))));
    };
    QList<qsizetype> widths(m_header.size(), 0);
    for (qsizetype c = 0; c < m_header.size(); ++c)
        widths[c] = width(m_header[c]);
    for (const auto& row : m_rows)
        for (qsizetype c = 0; c < row.size() && c < widths.size(); ++c)
            widths[c] = std::max(widths[c], width(row[c]));
    const auto put = [&](const QList<QByteArray>& row) {
        QByteArray line;
        for (qsizetype c = 0; c < row.size(); ++c) {
            const QByteArray pad(std::max<qsizetype>(0, widths.value(c) - width(row[c])), ' ');
            const bool last = c + 1 == row.size();
            if (m_right.contains(int(c)))
                line += pad + row[c];
            else
                line += last ? row[c] : row[c] + pad;
            if (!last)
                line += "  ";
        }
        line += '\n';
        std::fwrite(line.constData(), 1, size_t(line.size()), m_out);
    };
    put(m_header);
    for (const auto& row : m_rows)
        put(row);
    m_rows.clear();
    m_header.clear();
}
