// SPDX-License-Identifier: MIT
// The man(7) macros, as far as they are needed.
#include "host/manual/roff.h"

#include <QStringList>

QString roff_text(const QString& text) {
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\e"));
    escaped.replace(QLatin1Char('-'), QStringLiteral("\\-"));
    escaped.replace(QLatin1Char('\''), QStringLiteral("\\(aq"));
    return escaped.startsWith(QLatin1Char('.')) ? QStringLiteral("\\&") + escaped : escaped;
}

QString roff_bold(const QString& text) {
    return QStringLiteral("\\fB%1\\fR").arg(roff_text(text));
}

QString roff_italic(const QString& text) {
    return QStringLiteral("\\fI%1\\fR").arg(roff_text(text));
}

QString roff_section(const QString& title) {
    return QStringLiteral(".SH %1\n").arg(roff_text(title.toUpper()));
}

QString roff_subsection(const QString& title) {
    return QStringLiteral(".SS %1\n").arg(roff_text(title));
}

QString roff_paragraph(const QString& text) {
    return QStringLiteral(".PP\n%1\n").arg(roff_text(text));
}

QString roff_item(const QString& tag, const QString& text) {
    return QStringLiteral(".TP\n%1\n%2\n").arg(tag, roff_text(text));
}

QString roff_lines(const QString& text) {
    QString lines = QStringLiteral(".PP\n.nf\n");
    for (const QString& line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        lines += roff_text(line) + QLatin1Char('\n');
    }
    return lines + QStringLiteral(".fi\n");
}

QString roff_title(const QString& name, const QString& section, const QString& volume) {
    return QStringLiteral(".TH %1 %2 \"\" \"cortana %3\" \"%4\"\n")
        .arg(roff_text(name.toUpper()), section, QStringLiteral(CORTANA_VERSION), volume);
}
