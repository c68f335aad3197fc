// SPDX-License-Identifier: MIT
// A look at a written workbook. The library that writes it does not notice when the disk fills under its temporary
// files and then packs what there is.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

// Why the workbook is not whole, or an empty text. Every sheet must be there, to its end, with its rows.
// rows_of_sheets: rows of sheet 1, 2, ..., the header included.
QString xlsx_trouble(const QByteArray& native_path, const QVector<qint64>& rows_of_sheets);
