// SPDX-License-Identifier: MIT
// Texts as lines of a manual page.
#pragma once

#include <QString>

// Text that stands for itself: escaped, and safe at the beginning of a line.
QString roff_text(const QString& text);
QString roff_bold(const QString& text);
QString roff_italic(const QString& text);

// A section or, one level down, a subsection.
QString roff_section(const QString& title);
QString roff_subsection(const QString& title);
QString roff_paragraph(const QString& text);
// tag: as roff_bold() and the others give it; text: plain.
QString roff_item(const QString& tag, const QString& text);
// Lines as they are, each plain text.
QString roff_lines(const QString& text);

// The page's first line. section: "1".
QString roff_title(const QString& name, const QString& section, const QString& volume);
