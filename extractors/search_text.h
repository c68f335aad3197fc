// SPDX-License-Identifier: MIT
// Cuts the search text and the search time out of what Windows left of a web search in the registry. Bytes in, text
// out. A null result ("not there") is stored as NULL, an empty one as ''. Times are Unix seconds in decimal where the
// evidence holds 10 or 13 digits (milliseconds lose their last three); whatever else is found is passed on as it is.
#pragma once

#include <QByteArray>
#include <QString>

// The two cutters of the recent-documents key, on a value's raw data. Zero bytes are left out of the text, so UTF-16
// data works as far as it is ASCII. Blank data gives "" for both.
QString search_text_in_value(const QByteArray& value_data); // up to the first "&"; null without one
QString search_time_in_value(const QByteArray& value_data); // from "sbts=" to the next "."; null when either is missing

// The two cutters of the file-extension key, on a subkey's name. A blank name gives "" for both.
QString search_text_in_name(const QByteArray& key_name); // from "search?q=" to the next "&", percent-decoded; else null
QString search_time_in_name(const QByteArray& key_name); // from "sbts=" to the end; null when missing or at the start
